#include "make-station/BenchCalibration.h"

#include <algorithm>
#include <iostream>
#include <stdexcept>
#include <utility>

#include "app/BusChoice.h"
#include "app/Station.h"
#include "bench/Bench.h"
#include "calibration/CalibrationDisplay.h"
#include "calibration/LevelCalibration.h"
#include "platform/VirtualTime.h"
#include "platform/console/ConsolePrinter.h"

namespace hylden {
namespace {

class QuietSpeaker : public Speaker {
 public:
  void Beep(int, int) override {}
};

/// Passes messages on, declines every question, and names the record's file when it is saved.
class Operator : public Dialogs {
 public:
  explicit Operator(std::string recordFile) : recordFile_(std::move(recordFile)) {}

  MessageAnswer Show(const Message& message) override {
    if (message.buttons == MessageButtons::YesNo) return MessageAnswer::No;
    std::string line = message.text;
    std::replace(line.begin(), line.end(), '\r', ' ');
    std::cerr << line << "\n";
    return message.buttons == MessageButtons::Ok ? MessageAnswer::Ok : MessageAnswer::Cancel;
  }
  std::optional<std::string> InputBox(const std::string&, const std::string&, const std::string&) override {
    return std::nullopt;
  }
  std::optional<std::string> OpenFile(const FileRequest&) override { return std::nullopt; }
  std::optional<std::string> SaveFile(const FileRequest&) override { return recordFile_; }

 private:
  std::string recordFile_;
};

void Require(bool done, const std::string& failure) {
  if (!done) throw std::runtime_error(failure);
}

/// The station on the bench, ready to be calibrated.
class BenchCalibration {
 public:
  BenchCalibration(const BenchConfig& config, const std::string& recordFile)
      : bus_(clock_, config), operator_(recordFile) {
    bus_.SimulatedBench()->Bus().passTime = [this](std::int64_t ms) { clock_.Advance(ms); };
  }

  void Load(const std::string& equipmentFile, const CalSetupRecord& setup) {
    Equip& equip = station_.documents.equip;
    Require(equip.LoadDef(equipmentFile) == 1 && equip.LoadDefinitions(), equipmentFile + " can't be loaded");
    bus_.EquipBench(equip.Record, station_.instruments);
    if (const auto missing = CheckStation(setup, equip.Record)) throw std::runtime_error(missing->Text);
    station_.documents.calSetup.Record = setup;
  }

  void RunAndSave() {
    CalibrationDisplay display;
    LevelCalibration calibration(station_.shell, station_.instruments, station_.documents, display);
    Require(calibration.Prepare(), "the calibration can't be started");
    calibration.Run();
    Require(calibration.Outcome() == RunOutcome::Finished, "the calibration ended early");
    Require(calibration.Save(), "the calibration can't be saved");
  }

 private:
  VirtualClock clock_;
  VirtualEventLoop events_{clock_};
  Bus bus_;
  Operator operator_;
  QuietSpeaker speaker_;
  ConsolePrinter printer_{std::cout};
  Station station_{{operator_, clock_, events_, speaker_, printer_, bus_.Driver()}, "."};
};

}  // namespace

void CalibrateOnBench(const BenchConfig& config, const std::string& equipmentFile, const CalSetupRecord& setup,
                      const std::string& recordFile) {
  BenchCalibration calibration(config, recordFile);
  calibration.Load(equipmentFile, setup);
  calibration.RunAndSave();
}

}  // namespace hylden
