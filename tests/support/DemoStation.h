#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string>

#include "app/Station.h"
#include "bench/Bench.h"
#include "platform/VirtualTime.h"
#include "support/FailingDriver.h"
#include "support/FakeDialogs.h"
#include "support/FakePrinter.h"
#include "support/FakeSpeaker.h"
#include "support/TempDir.h"

namespace hylden {

/// The demo station of examples/ on the simulated bench, in virtual time, wired by the programs' own app/Station: for
/// whole runs, which the bench's physics judge, and for windows (desktop/DemoWindows.h). Chosen calls of its bus can
/// fail.
template <class Events = VirtualEventLoop>
struct DemoStation {
  /// @param adjust  changes the bench before it is built
  /// @param others  dialogs in place of the fake ones
  /// @param copied  the station's files may be written
  explicit DemoStation(const std::string& equipmentFile = "station.eqp",
                       const std::function<void(BenchConfig&)>& adjust = {}, Dialogs* others = nullptr,
                       bool copied = false)
      : atStation(copied ? Copied() : kFiles),
        bench(clock, Adjusted(adjust)),
        shell({others ? *others : dialogs, clock, events, speaker, printer, driver}, directory.Path()) {
    EXPECT_TRUE(station.LoadEquipment(equipmentFile) && station.Apply());
    EXPECT_TRUE(documents.calSetup.LoadDef("cdn-10v.csu"));
  }

  /// Loads a test of the demo station with its calibration info, and cables the meter as it needs.
  void LoadTest(const std::string& file) {
    ASSERT_TRUE(documents.testSetup.LoadDef(file));
    ASSERT_TRUE(documents.calInfo.LoadDef(Test().CalInfoFile));
    if (Test().MonitorProbe) bench.Connect(MeterAt::Probe);
  }
  TestDefinition& Test() { return documents.testSetup.Definition; }
  bool RfIsOn() const { return bench.State().Generator.RfOn; }

  TempDir directory;
  WorkingDirectory atStation;  ///< its files name each other without a directory
  VirtualClock clock;
  Bench bench;
  FailingDriver driver{bench.Driver()};
  Events events{clock};
  FakeDialogs dialogs;
  FakeSpeaker speaker;
  FakePrinter printer;
  Shell shell;
  Station station{shell, &bench};
  Instruments& instruments = station.instruments;
  Documents& documents = station.documents;

 private:
  static constexpr const char* kFiles = HYLDEN_SOURCE_DIR "/examples/station";

  std::string Copied() const {
    std::filesystem::copy(kFiles, directory.File("station"));
    return directory.File("station");
  }
  static BenchConfig Adjusted(const std::function<void(BenchConfig&)>& adjust) {
    BenchConfig config = LoadBenchFile("bench.txt").Config;
    if (adjust) adjust(config);
    return config;
  }
};

}  // namespace hylden
