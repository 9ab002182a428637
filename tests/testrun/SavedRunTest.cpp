#include <gtest/gtest.h>

#include <array>

#include "support/TempDir.h"
#include "testrun/RunDataFile.h"
#include "testrun/RunInfo.h"
#include "text/TextFile.h"

namespace hylden {
namespace {

constexpr std::string_view kHead =
    "                   Test Run Data\r\n"
    "Note: Data with asterisks indicates item first meeting leveling criteria.\r\n"
    "Freq(MHz), SigGen(dBm), TestLev(dBuv), Probe(dBuA), FwdPwr(dBm), RevPwr(dBm)\r\n";
constexpr std::string_view kRows =
    "0.15, -10.0 **, 120.1, 76.4 **, 40.1 **, \r\n"
    "0.15, Threshold -1.5dB, display, flickers \r\n"
    "80.0, -8.0, 120.0, , 42.0 +2, 32.0\r\n"
    "81.5, , , , , \r\n"
    "0.15, Threshold 2.0dB, \r\n";

TEST(RunDataFile, AFileComesBackAsItIs) {
  const std::string text = std::string(kHead) + std::string(kRows);
  const auto run = RunDataOf(text);
  ASSERT_TRUE(run);
  EXPECT_EQ(RunFileText(run->Data, false), text);
  EXPECT_TRUE(run->Troubles.empty());
  const auto thresholds = RunDataOf(RunFileText(run->Data, true));
  ASSERT_TRUE(thresholds);
  EXPECT_TRUE(thresholds->ThresholdsOnly);
  EXPECT_EQ(thresholds->Data.Entries().size(), 2U);
  EXPECT_TRUE(thresholds->Troubles.empty());
}

TEST(RunDataFile, WhatIsNoRowIsToldAndCostsItselfOnly) {
  struct Case {
    const char* lines;
    std::size_t rows;
    const char* trouble;
  };
  for (const Case& c : {Case{"", 0, ""},
                        {"\r\n0.15, 1.0, 2.0, , , \r\n\r\n", 1, ""},
                        {"0.15, 1.0, 2.0, , , ", 1, "Line 4 has no end: its last level may be cut."},
                        {"0.15, 1.0, 2.0, , ", 0, "Line 4 is cut, and left out."},
                        {"0.15, Thresh", 0, "Line 4 is cut, and left out."},
                        {"1.0, Threshold 1.0dB, disp", 1, "Line 4 has no end: its comment may be cut."},
                        {"hello\n1.0, 1.0, 2.0, , , \n", 1, "Line 4 is none of run data."},
                        {"x, 1.0, 2.0, , , \n", 0, "Line 4 is none of run data."},
                        {"1.0, nan, 2.0, , , \n", 0, "Line 4 holds \"nan\" instead of a number, and is left out."},
                        {"1.0, , 2.0, 3.0, , \n", 0, "Line 4 lacks a level, and is left out."},
                        {"1e8, 1.0, 2.0, , , \n", 0, "Line 4 holds \"1e8\" instead of a number, and is left out."},
                        {"1.0, 1.0, 2.0, , 1e39, \n", 1, "Line 4 holds \"1e39\" instead of a number."},
                        {"1.0, 1.0, 2.0, , 1e999, \n", 1, "Line 4 holds \"1e999\" instead of a number."},
                        {"2.0, 1.0, 2.0, , , \n1.0, 1.0, 2.0, , , \n1.0, 1.0, 2.0, , , \n", 3, ""}}) {
    const auto run = RunDataOf(std::string(kHead) + c.lines);
    ASSERT_TRUE(run) << c.lines;
    EXPECT_EQ(run->Data.Entries().size(), c.rows) << c.lines;
    EXPECT_EQ(run->Troubles.empty() ? "" : run->Troubles.front(), c.trouble) << c.lines;
  }
  for (const char* text : {"", "\x89PNG", "Freq(MHz), Threshold, Comment\r\n"}) EXPECT_FALSE(RunDataOf(text)) << text;
  std::string inVolts = std::string(kHead) + "1.0, 1.0, 2.0, , , \n";
  inVolts.replace(inVolts.find("dBuv"), 4, "V");
  EXPECT_FALSE(RunDataOf(inVolts)) << "they would be shown as dBuV";
}

RunInfo Information() {
  RunInfo info;
  info.Program = "Hylden 1.1";
  info.Started = "2026-11-23 18:35:07";
  info.ActualSeconds = 61.25;
  info.PlannedSteps = 67;
  info.Seams = {3, 17};
  info.Particulars = {"Lab = ours", "", "radio\r\nblue", "", "23 \u00b0C", {"first", "", "[third]"}};
  info.Test = {"radio.tst", {}};
  info.Test->Is.Spare1 = "kept";
  info.Station = {"", {}};
  info.Station->Is.SigGenAddress = 18;
  info.CalPoints = {{0.15, -12.3F, 129.5F, 33.2F, -999}};
  info.Instruments = {{"Meter", "", "m.mtr"}, {"Signal generator", "SG 1", ""}};
  info.RowTimes = {{1, "2026-11-23 18:35:09"}, {3, "2026-11-23 18:35:12"}};
  return info;
}

TEST(RunInfoFile, KeepsEverythingThroughAFile) {
  TempDir directory;
  const std::string run = directory.File("a.run");
  ReplaceFile(run, "rows");
  ASSERT_TRUE(FileRunInfo(Information(), run));
  const RunInfoBeside read = ReadRunInfo(run, "rows");
  ASSERT_TRUE(read.Info) << read.Trouble;
  EXPECT_EQ(RunInfoText(*read.Info, "rows"), RunInfoText(Information(), "rows"));
  EXPECT_EQ(read.Info->Particulars.Remarks, Information().Particulars.Remarks);
  EXPECT_EQ(read.Info->Particulars.Product, "radio blue");
  EXPECT_EQ(read.Info->Test->Is.Spare1, "kept");
  EXPECT_EQ(read.Info->Station->Is.SigGenAddress, 18);
  EXPECT_EQ(read.Info->Seams, Information().Seams);
  EXPECT_EQ(read.Info->RowTimes, Information().RowTimes);
}

TEST(RunInfoFile, OneOfRunDataThatHaveChangedSinceIsNotWritten) {
  const TempDir directory;
  const std::string run = directory.Write("radio.run", "of the run that was opened");
  const std::string opened = ReadRunInfo(run, ReadTextFile(run)).Checksum;
  EXPECT_TRUE(FileRunInfo(Information(), run, opened));
  directory.Write("radio.run", "of another one");
  directory.Write("radio.runinfo", "of another one");
  EXPECT_FALSE(FileRunInfo(Information(), run, opened));
  EXPECT_EQ(directory.Read("radio.runinfo"), "of another one");
}

TEST(RunInfoFile, OneThatIsNotOfTheseRowsIsToldAndNotUsed) {
  TempDir directory;
  const std::string run = directory.File("a.run");
  const auto troubleOf = [&](std::string_view text) {
    ReplaceFile(RunInfoFile(run), text);
    const RunInfoBeside read = ReadRunInfo(run, "rows");
    EXPECT_FALSE(read.Info);
    return read.Trouble;
  };
  EXPECT_EQ(ReadRunInfo(run, "rows").Trouble, "") << "none is there";
  EXPECT_NE(troubleOf(RunInfoText(Information(), "others")).find("belongs to other run data"), std::string::npos);
  EXPECT_NE(troubleOf("Hylden run information 3\n").find("of another version"), std::string::npos);
  EXPECT_NE(troubleOf("\x89PNG").find("is no run information"), std::string::npos);
}

TEST(RunInfoFile, WhatIsDamagedIsToldAndCostsItselfOnly) {
  TempDir directory;
  const std::string run = directory.Write("a.run", "rows");
  const std::string whole = RunInfoText(Information(), "rows");
  const auto read = [&](std::string from, const std::string& to) {
    std::string text = whole;
    text.replace(text.find(from), from.size(), to);
    ReplaceFile(RunInfoFile(run), text);
    RunInfoBeside beside = ReadRunInfo(run, "rows");
    EXPECT_TRUE(beside.Info) << from;
    return beside;
  };
  for (const auto& [from, to, told] :
       std::vector<std::array<std::string, 3>>{{"[End]", "", "ends too early"},
                                               {"Actual=61.25", "Actual=6x", "damaged at \"Actual\""},
                                               {"Steps=67", "Steps 67", "damaged at \"Steps 67\""},
                                               {"Point=0.15", "Point=x", "damaged at \"Point\""},
                                               {"Continued=3", "Continued=-3", "damaged at \"Continued\""},
                                               {"\n1=2026", "\nx=2026", "damaged at \"x\""}}) {
    const RunInfoBeside beside = read(from, to);
    EXPECT_NE(beside.Trouble.find(told), std::string::npos) << beside.Trouble;
    EXPECT_EQ(beside.Info->Test->Is.Spare1, "kept");
  }
  EXPECT_EQ(read("information 2", "information 1").Trouble, "");
  std::string first = whole;
  first.replace(first.find("information 2"), 13, "information 1");
  ReplaceFile(RunInfoFile(run), first.substr(0, first.find("[End]")));
  EXPECT_EQ(ReadRunInfo(run, "rows").Trouble, "") << "the first form had no end";
}

}  // namespace
}  // namespace hylden
