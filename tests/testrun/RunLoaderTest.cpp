// What a test run visits, settled before anything is switched on: what record and tables cover, what a list adds.

#include "testrun/RunLoader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "testrun/RunInputs.h"
#include "testrun/RunReport.h"
#include "testrun/RunRig.h"

namespace hylden {
namespace {

using testing::ElementsAreArray;

/// Fixed steps of 2 MHz from 1 to 6: the number of steps is rounded up to 4, so the last one is at 7 MHz.
struct Loading : RunRig {
  Loading() {
    test.StopFreq = 6;
    test.StepType = StepType::Linear;
    test.LinearStep = 2;
    Record("1,-10,120,40,30,\r\n5,-8,120,42,32,\r\n8,-6,120,44,34,\r\n");
  }
  void Record(std::string_view data) { t.directory.Write("bench.cal", data); }
  void UseList(std::string_view frequencies) {
    test.FreqList = true;
    test.ListFile = t.directory.Write("few.lst", frequencies);
  }
  bool Load() {
    loader.PlanSteps();
    return inputs.ListReadable && loader.LoadCalibration() && loader.LoadFactors();
  }

  RunInputs inputs{t.shell};
  RunLoader loader{t.shell, documents, display, inputs};
};

struct LoadCase {
  const char* name;
  void (*arrange)(Loading&);
  std::vector<double> steps;  ///< none: the run is refused
  const char* text;           ///< null: nothing is told
};

TEST(RunLoader, TheStepsAreThoseThatEverythingCovers) {
  const LoadCase cases[] = {
      {"a rounded last step stays where everything covers it", [](auto&) {}, {1, 3, 5, 7}, nullptr},
      {"one that is not covered is left out and told once",
       [](auto& l) {
         l.Record("1,-10,120,40,30,\r\n5,-8,120,42,32,\r\n6,-6,120,44,34,\r\n");
         l.equipment.FwdPortFile = l.t.directory.Write("short.fac", "1 0\r\n6.5 0\r\n");
       },
       {1, 3, 5},
       "The last step, 7 MHz, lies beyond the stop frequency, and tables or calibration do not cover it.\r\n"
       "It is left out; the last one is 5 MHz."},
      {"coverage is judged by the plan's own ends",
       [](auto& l) {
         l.test.StopFreq = 5.9;  // the last step is at 5 MHz
         l.Record("1,-10,120,40,30,\r\n5,-8,120,42,32,\r\n");
         l.equipment.FwdPortFile = l.equipment.RevPortFile = l.t.directory.Write("short.fac", "1 0\r\n5 0\r\n");
       },
       {1, 3, 5},
       nullptr},
      {"a record in falling order is taken as if it rose",
       [](auto& l) { l.Record("8,-6,120,44,34,\r\n5,-8,120,42,32,\r\n1,-10,120,40,30,\r\n"); },
       {1, 3, 5, 7},
       nullptr},
      {"a list adds its frequencies", [](auto& l) { l.UseList("2\r\n4\r\n"); }, {1, 2, 3, 4, 5, 7}, nullptr},
      {"a list of one frequency is left out",
       [](auto& l) { l.UseList("2\r\n"), l.test.ListFile = "few.lst"; },
       {1, 3, 5, 7},
       "The frequency list holds one frequency only, and is left out:\r\nfew.lst"},
      {"no list can be read", [](auto& l) { l.UseList("Freq\r\n"); }, {}, "Bad data in frequency list file"},
      {"the record ends early",
       [](auto& l) { l.Record("1,-10,120,40,30,\r\n4.5,-8,120,42,32,\r\n"); },
       {},
       "Calibration file does not cover frequency range:\r\nit goes from 1 to 4.5 MHz."},
      {"the record begins late",
       [](auto& l) { l.Record("1.5,-10,120,40,30,\r\n9,-8,120,42,32,\r\n"); },
       {},
       "Calibration file does not cover frequency range:\r\nit goes from 1.5 to 9 MHz."},
      {"no test level",
       [](auto& l) { l.Record("1,-10,120,40,30,\r\n3,-8,-999.00,42,32,\r\n8,-8,120,42,32,\r\n"); },
       {},
       "Calibration file gives no level at 3 MHz"},
      {"no generator level",
       [](auto& l) { l.Record("1,-10,120,40,30,\r\n3,-999,120,42,32,\r\n8,-8,120,42,32,\r\n"); },
       {},
       "Calibration file gives no level at 3 MHz"},
      {"short cable loss",
       [](auto& l) {
         l.test.MonitorProbe = true, l.equipment.CableLossFile = l.t.directory.Write("short.los", "1 1\r\n3 2\r\n");
       },
       {},
       "Cable loss file does not cover frequency range"},
      {"no probe",
       [](auto& l) { l.test.MonitorProbe = true, l.equipment.ProbeFile = ""; },
       {},
       "Error loading probe factor file."},
      {"no forward port",
       [](auto& l) { l.equipment.FwdPortFile = l.t.directory.File("none.fac"); },
       {},
       "Error loading foward coupling port file"},
      {"high reverse port",
       [](auto& l) { l.equipment.RevPortFile = l.t.directory.Write("high.fac", "2 1\r\n9 2\r\n"); },
       {},
       "Reverse port file does not cover frequency range"},
  };
  for (const LoadCase& c : cases) {
    SCOPED_TRACE(c.name);
    Loading loading;
    const WorkingDirectory here(loading.t.directory.Path());
    c.arrange(loading);
    ASSERT_EQ(loading.Load(), !c.steps.empty()) << loading.t.dialogs.LastText();
    std::vector<double> planned;
    for (const PlanStep& step : loading.inputs.Steps) planned.push_back(step.Freq);
    if (!c.steps.empty()) {
      EXPECT_THAT(planned, ElementsAreArray(c.steps));
      EXPECT_EQ(loading.display.plan.Steps, static_cast<int>(c.steps.size()));
    }
    if (!c.text)
      EXPECT_THAT(loading.t.dialogs.Texts(), testing::IsEmpty());
    else
      EXPECT_TRUE(loading.t.dialogs.WasShownContaining(c.text)) << testing::PrintToString(loading.t.dialogs.Texts());
  }
}

TEST(RunLoader, AListThatIsLeftOutIsNotReported) {
  for (const bool used : {false, true}) {
    Loading loading;
    loading.UseList(used ? "2\r\n4\r\n" : "2\r\n");
    loading.Load();
    std::string report = loading.documents.testSetup.StringPrintTestSetup();
    for (const PrintedLine& line : DetailedReport(loading.documents, RunData()).lines) report += line.text + "\n";
    EXPECT_EQ(report.find("few.lst") != std::string::npos, used);
    EXPECT_TRUE(loading.test.FreqList) << "the definition itself stays";
  }
}

}  // namespace
}  // namespace hylden
