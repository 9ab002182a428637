#pragma once

#include <algorithm>
#include <cmath>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "documents/Documents.h"
#include "support/TestStation.h"
#include "text/Numbers.h"

namespace hylden {

/// A station with a little physics behind its bus: what the generator sends reaches the power meter's sensors through
/// an amplifier, and the meter as the rig has it; IFI amplifiers answer when the equipment has them. The cable loses 1
/// dB.
class StationRig : public TestStation {
 public:
  StationRig() {
    bus.transcript.onLine = [this](const std::string& line) { Follow(line); };
    bus.fallback = [this](int address, const std::string& command) { return AnswerOf(address, command); };
    t.dialogs.onShow = [this](const Message&) { rfOnAtMessage = rfOnAtMessage || rfOn; };
    const TempDir& files = t.directory;
    equipment.CableLossFile = files.Write("cable.los", "0.1 1\r\n1000 1\r\n1001 2\r\n");
    equipment.FwdPortFile = equipment.RevPortFile = files.Write("port.fac", "0.1 0\r\n1000 0\r\n1001 1\r\n");
    equipment.AmpConfiguration = AmpConfig::DualFwdRev;
    Redefine(pm, [](auto& d) { d.Bandswitch = 2, d.SettlingTime = 0.1F; });
    Redefine(meter, [](auto& d) { d.MaximumLevel = 140, d.MinimumLevel = -200, d.SettlingTime = 0.1F; });
  }
  virtual ~StationRig() = default;

  /// Gives the station a pair of IFI amplifiers.
  void UseIfi(double bandSwitchMHz = 2) {
    equipment.AmplifierType = AmpType::Ifi;
    equipment.IfiBandSwitch = bandSwitchMHz;
  }
  /// How often the text was shown in a message.
  int Shown(const std::string& text) const {
    const auto texts = t.dialogs.Texts();
    return static_cast<int>(std::count(texts.begin(), texts.end(), text));
  }

  Documents documents{t.shell, instruments};
  EquipRecord& equipment = documents.equip.Record;

  // The physics.
  double gainDb = 50;                    ///< from the generator to the forward power
  std::map<double, double> gainErrorDb;  ///< more or less gain at a frequency
  double returnLossDb = 10;              ///< forward over reverse power
  double stepDbm = 0;                    ///< coarse steps that the generator's level comes in
  double generatorDbm = -200, frequencyMHz = 0;
  bool rfOn = false;
  bool rfOnAtMessage = false;             ///< RF was on while a message stood
  std::vector<std::string> throwAtLines;  ///< the next bus call of each of these beginnings throws
  double highestDbm = -200;               ///< highest generator level with RF on
  std::map<double, double> highestAt;     ///< the same by frequency

 protected:
  /// What the meter shows, dBuV, when the generator sends this level.
  virtual double MeterReading(double levelDbm) = 0;

 private:
  void Follow(const std::string& line) {
    const auto thrown = std::find_if(throwAtLines.begin(), throwAtLines.end(),
                                     [&](const std::string& beginning) { return line.starts_with(beginning); });
    if (thrown != throwAtLines.end()) {
      throwAtLines.erase(thrown);
      throw RuntimeError(ErrorNumber::Overflow);
    }
    if (!line.starts_with("> 18 ") || line.find(" !") != std::string::npos) return;
    const std::string command = line.substr(5);
    if (command.starts_with("POW ")) generatorDbm = LeadingNumber(command.substr(4));
    if (stepDbm > 0) generatorDbm = std::floor(generatorDbm / stepDbm) * stepDbm;
    if (command.starts_with("FREQ ")) frequencyMHz = LeadingNumber(command.substr(5));
    if (command.starts_with("OUTP")) rfOn = command == "OUTP ON";
    if (!rfOn) return;
    highestDbm = std::max(highestDbm, generatorDbm);
    double& highest = highestAt.try_emplace(frequencyMHz, generatorDbm).first->second;
    highest = std::max(highest, generatorDbm);
  }
  std::optional<std::string> AnswerOf(int address, const std::string& command) {
    const double level = rfOn ? generatorDbm : -140;
    if (address == meter.Address()) return ShortestText(MeterReading(level));
    if (address == pm.Address()) {
      const auto error = gainErrorDb.find(frequencyMHz);
      const double forward = level + gainDb + (error == gainErrorDb.end() ? 0 : error->second);
      return ShortestText(command == "BR?" ? forward - returnLossDb : forward);
    }
    return command.starts_with("RP") ? std::optional<std::string>("0100 0200\r\n") : std::nullopt;
  }
};

}  // namespace hylden
