#include "testrun/RunExport.h"

#include <gtest/gtest.h>

#include <string>

#include "testrun/RunData.h"

namespace hylden {
namespace {

RunData Example() {
  RunData data;
  StepResult first{-10.04F, 120.05F, 76.449, 40.1, {}, {}};
  first.Marks.SigGenAtCalibration = true;
  data.FillStep(data.AddStep(0.15), first);
  data.Add(ThresholdEntry{0.15, -1.5, "display \"on\", flickers; badly\r\nthen dark"});
  StepResult second{-8, 120, {}, 42.0, -999.0, {}};
  second.Marks.ForwardCapHeld = second.Marks.PowerAboveTarget = true;
  data.FillStep(data.AddStep(80), second);
  data.AddStep(81.5);  // failed
  return data;
}

TEST(RunExport, TheTableHoldsEveryRowWithBothDecimalSigns) {
  const struct {
    DecimalSign Sign;
    std::string Table;
  } cases[] = {
      {DecimalSign::Point,
       "Kind,Row,Frequency (MHz),Generator level (dBm),Test level (dBuV),Induced current (dBuA),Forward power "
       "(dBm),Reverse power (dBm),Reached,Threshold (dB),Comment,Time\r\n"
       "step,1,0.15,-10.0,120.1,76.4,40.1,,generator level,,,2026-11-23 18:35:07\r\n"
       "threshold,2,0.15,,,,,,,-1.5,\"display \"\"on\"\", flickers; badly\r\nthen dark\",\r\n"
       "step,3,80.0,-8.0,120.0,,42.0,,forward power cap,,,\r\n"
       "step,4,81.5,,,,,,not held,,,\r\n"},
      {DecimalSign::Comma,
       "Kind;Row;Frequency (MHz);Generator level (dBm);Test level (dBuV);Induced current (dBuA);Forward power "
       "(dBm);Reverse power (dBm);Reached;Threshold (dB);Comment;Time\r\n"
       "step;1;0,15;-10,0;120,1;76,4;40,1;;generator level;;;2026-11-23 18:35:07\r\n"
       "threshold;2;0,15;;;;;;;-1,5;\"display \"\"on\"\", flickers; badly\r\nthen dark\";\r\n"
       "step;3;80,0;-8,0;120,0;;42,0;;forward power cap;;;\r\n"
       "step;4;81,5;;;;;;not held;;;\r\n"},
  };
  for (const auto& c : cases) EXPECT_EQ(RunCsv(Example(), {{1, "2026-11-23 18:35:07"}}, c.Sign), c.Table);
}

}  // namespace
}  // namespace hylden
