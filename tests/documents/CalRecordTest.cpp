#include <gtest/gtest.h>

#include <filesystem>
#include <limits>

#include "documents/CalInfo.h"
#include "documents/SaveCal.h"
#include "documents/clsCalFile.h"
#include "measure/Conversions.h"
#include "support/FieldChanger.h"
#include "support/SameRecord.h"
#include "support/TempDir.h"
#include "support/Told.h"
#include "text/Case.h"
#include "text/RecordFile.h"

namespace hylden {
namespace {

const CalInfoRec kInfo{"BCI, 10 V", "Amp \"A\"", "CDN-M2", "10v", "0.15 - 80", CouplingMethod::CurrentClamp50Ohm};

using Texts = std::vector<std::string>;

class CalRecordTest : public testing::Test {
 protected:
  Done Load(std::string_view data) {
    directory.Write("x.cal", data);
    return cal.LoadFile(directory.File("x.hyinfo"));
  }

  TempDir directory;
  clsCalFile cal;
};

TEST_F(CalRecordTest, ReadsBackTheRecordItSaved) {
  const CalRows rows{{0.15, -12.345, 129.54, 33.1}, {80, -10, 130, {}, 20}};
  ASSERT_TRUE(SaveCal(directory.File("Run 1.cal"), rows, kInfo));
  EXPECT_EQ(directory.Read("Run 1.cal"), "0.15,-12.345,129.54,33.10,na,\r\n80.0,-10.000,130.00,na,20.00,\r\n");
  EXPECT_EQ(directory.Read("Run 1.hyinfo"), "BCI, 10 V\r\nAmp \"A\"\r\nCDN-M2\r\n10v\r\n0.15 - 80\r\n 1 \r\n");

  ASSERT_TRUE(cal.LoadFile(directory.File("Run 1.hyinfo")));
  EXPECT_EQ(cal.GetNumSteps(), 1);
  EXPECT_EQ(cal.GetStartFreq(), 0.15);
  EXPECT_EQ(cal.GetStopFreq(), 80);
  EXPECT_EQ(cal.GetSigGen(0.15), -12.345F);
  EXPECT_EQ(cal.GetTestLevel(0.15), 129.54F);
  EXPECT_EQ(cal.GetFwdPwr(0.15), 33.10F);
  EXPECT_EQ(cal.GetRevPwr(0.15), -999);
  EXPECT_EQ(cal.GetFwdPwr(80), -999);
  EXPECT_EQ(cal.GetRevPwr(80), 20.0F);
}

TEST_F(CalRecordTest, KeepsEveryFieldOfTheDescription) {
  const CalRows rows{{1, 0, 1}, {2, 0, 1}};
  CalInfo calInfo;
  for (int field = 0; field < FieldCount(kInfo); ++field) {
    const CalInfoRec changed = WithChangedField(kInfo, field);
    ASSERT_TRUE(SaveCal(directory.File("x.cal"), rows, changed));
    ASSERT_TRUE(calInfo.LoadDef(directory.File("X.HYINFO")));
    EXPECT_TRUE(SameRecord(calInfo.Record, changed)) << field;
  }
}

TEST_F(CalRecordTest, KeepsTheOldRecordWhenASaveFails) {
  const CalRows one{{1, 0, 1}};
  directory.Write("x.cal", "kept");
  EXPECT_TRUE(FailsWith(SaveCal(directory.File("x.cal"), one, kInfo), "No data to save"));
  EXPECT_EQ(directory.Read("x.cal"), "kept");

  const CalRows two{one[0], one[0]};
  EXPECT_FALSE(SaveCal(directory.File("x.dat"), two, kInfo));
  EXPECT_FALSE(directory.Exists("x.dat"));

  // A record of two halves would replay new levels under the old amplifier.
  const std::string info = directory.Write("x.hyinfo", "kept");
  std::filesystem::permissions(info, std::filesystem::perms::owner_read);
  EXPECT_EQ(Told(SaveCal(directory.File("x.cal"), two, kInfo)),
            Texts{"Error # 70\rPermission denied\rfrmRunCal.SaveCal\r" + info});
  EXPECT_EQ(directory.Read("x.cal") + directory.Read("x.hyinfo"), "keptkept");

  const std::string nowhere = directory.File("nowhere/x.cal");
  EXPECT_EQ(Told(SaveCal(nowhere, two, kInfo)), Texts{"Error # 76\rPath not found\rfrmRunCal.SaveCal\r" + nowhere});
}

TEST_F(CalRecordTest, RefusesABadDescription) {
  CalInfo calInfo;
  calInfo.Record = kInfo;
  EXPECT_EQ(Told(calInfo.LoadDef("")), Texts{"WARNING: \rNo calibration filename specified\rin test definition file."});
  const std::string path = directory.Write("x.hyinfo", "a\r\nb\r\nc\r\nd\r\n1 - 2\r\nmethod\r\n");
  EXPECT_EQ(
      Told(calInfo.LoadDef(path)),
      Texts{"Error # 13\rType mismatch, line 6 of the calibration info file: \"method\"\rCalInfo.LoadDef\r" + path});
  EXPECT_FALSE(calInfo.LoadDef(directory.Write("x.hyinfo", "a\r\n")));
  EXPECT_TRUE(SameRecord(calInfo.Record, kInfo)) << "nothing half-loaded stays";
  EXPECT_FALSE(calInfo.LoadDef(directory.File("missing.hyinfo")));
}

TEST_F(CalRecordTest, RefusesABadDataFileAndNamesItsFault) {
  const std::string good = "1,2,3,4,5,\r\n";
  const std::string path = directory.File("x.cal");
  const std::string lowerPath = LowerCase(path);
  const std::string atEnd = "Unexpected end of file in " + lowerPath;
  const std::string badData = "Bad data in calibration file: " + lowerPath;
  const std::tuple<const char*, std::string, std::string> rows[] = {
      {"empty", "", atEnd},
      {"one line", good, atEnd},
      {"four fields", good + "2,2,3,4\r\n", badData + ", line 2: \"2,2,3,4\""},
      {"empty level", good + "2,,3,4,5,\r\n", badData},
      {"text for a frequency", good + "two,2,3,4,5,\r\n", badData},
      {"empty line", good + "\r\n" + good, badData},
      {"blank last line", good + good + " \r\n", badData},
      {"too large a level", good + "2,1E39,3,4,5,\r\n", badData},
      {"binary", std::string("\0\xFF,\r\n\1\2", 7), badData},
      {"heading", "Freq,SG,Level,Fwd,Rev,\r\n" + good, badData},
  };
  for (const auto& [name, data, message] : rows) {
    cal = {};
    EXPECT_TRUE(FailsWith(Load(data), message)) << name;
  }
}

TEST_F(CalRecordTest, RefusesANameThatIsNoRecords) {
  EXPECT_TRUE(FailsSilently(cal.LoadFile("")));
  EXPECT_EQ(Told(cal.LoadFile("A.CAL")), Texts{"Bad filename for calibration file: a.cal"});
  EXPECT_TRUE(
      FailsWith(cal.LoadFile(directory.File("missing.hyinfo")), "Error # 53\rFile not found\rclsCalFile.LoadFile\r"));
  EXPECT_EQ(cal.GetSigGen(1), -999);
  EXPECT_EQ(cal.GetNumSteps(), 0);
}

TEST_F(CalRecordTest, LoadsTheRecordInTheSpellingOfItsName) {
  directory.Write("Lab/x.cal", "1,-1,3,4,5,\r\n2,-1,3,4,5,\r\n");
  EXPECT_TRUE(cal.LoadFile(directory.File("Lab/X.HYINFO")));
  EXPECT_EQ(cal.GetSigGen(1), -1);

  // Where both spellings exist, the one beside the chosen info file counts: the other may be levels too high.
  directory.Write("Lab/X.cal", "1,-20,3,4,5,\r\n2,-20,3,4,5,\r\n");
  clsCalFile upper, lower;
  ASSERT_TRUE(upper.LoadFile(directory.File("Lab/X.hyinfo")));
  EXPECT_EQ(upper.GetSigGen(1), -20);
  ASSERT_TRUE(lower.LoadFile(directory.File("Lab/x.hyinfo")));
  EXPECT_EQ(lower.GetSigGen(1), -1);
}

TEST_F(CalRecordTest, TakesALineOfFiveFieldsAndANote) {
  const auto point = ParseCalLine(" 1.5 ,-2E1,+3,na,");
  ASSERT_TRUE(point);
  EXPECT_EQ(CalDataText({{point->Freq, point->SigGenLevel, point->TestLevel}}), "1.5,-20.000,3.00,na,na,\r\n");
  EXPECT_TRUE(IsMissing(double{point->FwdPwr}) && IsMissing(double{point->RevPwr}));
  for (const char* good : {"1,2,3,4,5", "1,2,3,4,5, ,", "1,2,3,4,5,measured again"}) EXPECT_TRUE(ParseCalLine(good));
  // A sixth number: the commas are decimal signs.
  for (const char* bad : {"1,2,3,4", "1,2,3,4,5,6", "0,15,-12,345,129,54,33,10,na,"}) EXPECT_FALSE(ParseCalLine(bad));
}

TEST_F(CalRecordTest, WhatEditorsLeaveAtTheEndDoesNoHarm) {
  for (const char* end : {"\r\n", "\x1A", "\r\n\x1A"}) {
    cal = {};
    EXPECT_TRUE(Load(std::string("1,-1,3,4,5,\r\n2,-2,3,4,5,\r\n") + end));
    EXPECT_EQ(cal.GetNumSteps(), 1);
  }
}

TEST_F(CalRecordTest, LooksUpBetweenItsPointsAndAtThem) {
  ASSERT_TRUE(Load("1,-20,100,30,20,\r\n100,-10,120,40,na,\r\n100,-12,130,38,25,\r\n200,-10,120,40,40,\r\n"));
  EXPECT_FLOAT_EQ(cal.GetTestLevel(10), 110);
  EXPECT_FLOAT_EQ(cal.GetSigGen(50.5), -15);
  EXPECT_FLOAT_EQ(cal.GetFwdPwr(50.5), 35) << "linear in dBm";
  EXPECT_EQ(cal.GetRevPwr(50.5), -999) << "a neighbour has none";
  EXPECT_EQ(cal.GetRevPwr(1), 20);
  // A band change has two points; the larger value counts.
  EXPECT_EQ(cal.GetSigGen(100), -10);
  EXPECT_EQ(cal.GetTestLevel(100), 130);
  EXPECT_EQ(cal.GetRevPwr(100), 25);
  EXPECT_FLOAT_EQ(cal.GetSigGen(150), -11);
  for (double outside : {0.999, 200.001, std::numeric_limits<double>::quiet_NaN()})
    EXPECT_EQ(cal.GetSigGen(outside), -999) << outside;
}

TEST_F(CalRecordTest, HasNoNetPowerWithoutBothPowers) {
  ASSERT_TRUE(
      Load("1,0,1,40,30,\r\n2,0,1,40,40,\r\n3,0,1,30,40,\r\n4,0,1,na,10,\r\n5,0,1,10,na,\r\n"
           "7,0,1,14548,10,\r\n"));
  EXPECT_NEAR(cal.GetNetPwr(1), 39.542, 0.001);
  for (double missing : {2.0, 3.0, 4.0, 5.0, 6.0, 7.0}) EXPECT_EQ(cal.GetNetPwr(missing), -999) << missing;
}

TEST_F(CalRecordTest, SortsPointsThatAreOutOfOrder) {
  ASSERT_TRUE(Load("1,10,1,na,na,\r\n9,90,1,na,na,\r\n3,30,1,na,na,\r\n5,50,1,na,na,\r\n"));
  for (double f : {1.0, 2.0, 3.0, 4.0, 5.0, 4.5, 1.0, 5.0, 3.0}) EXPECT_NEAR(cal.GetSigGen(f), 10 * f, 1e-4) << f;
}

}  // namespace
}  // namespace hylden
