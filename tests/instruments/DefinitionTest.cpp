#include "instruments/DefinitionListing.h"
#include "support/FieldChanger.h"
#include "support/SameRecord.h"
#include "support/TestStation.h"
#include "text/RecordFile.h"

namespace hylden {
namespace {

/// What a driver and its definition have in common, for the tests that hold for all three.
template <class DriverType, class DefinitionType>
struct Kind {
  using Driver = DriverType;
  using Definition = DefinitionType;
};
struct SigGenKind : Kind<SigGen, SigGenDefinition> {
  static SigGen& Of(TestStation& s) { return s.sigGen; }
  static SigGenDefinition Sample() { return SampleSigGen(); }
  static constexpr int kLines = 33, kLinesNeeded = 33;
  static constexpr const char *kLoad = "SigGen.LoadFile", *kSave = "SigGen.SaveFile", *kPrint = "SigGen.PrintSetup";
};
struct MeterKind : Kind<Meter, MeterDefinition> {
  static Meter& Of(TestStation& s) { return s.meter; }
  static MeterDefinition Sample() { return SampleMeter(); }
  static constexpr int kLines = 19, kLinesNeeded = 18;
  static constexpr const char *kLoad = "Meter.LoadFile", *kSave = "meter.SaveFile", *kPrint = "Meter.PrintSetup";
};
struct PMKind : Kind<PM, PowerMeterDefinition> {
  static PM& Of(TestStation& s) { return s.pm; }
  static PowerMeterDefinition Sample() { return SamplePowerMeter(); }
  static constexpr int kLines = 20, kLinesNeeded = 19;
  static constexpr const char *kLoad = "PwrMtr.LoadFile", *kSave = "PwrMtr.SaveFile", *kPrint = "PwrMtr.PrintSetup";
};

/// The first lines of a file's content.
std::string Head(const std::string& content, int lines) {
  std::size_t end = 0;
  for (int i = 0; i < lines; ++i) end = content.find("\r\n", end) + 2;
  return content.substr(0, end);
}

Done Opened(SigGen& driver) {
  return driver.InitSigGen(100, -30);
}
Done Opened(Meter& driver) {
  return driver.InitMeter();
}
Done Opened(PM& driver) {
  return driver.InitPwrMtr();
}

template <class K>
class DefinitionFileTest : public testing::Test {
 protected:
  TestStation s;
  typename K::Driver& driver = K::Of(s);
  TempDir& directory = s.t.directory;
  std::string path = directory.File("one.def");
};
using Kinds = testing::Types<SigGenKind, MeterKind, PMKind>;
TYPED_TEST_SUITE(DefinitionFileTest, Kinds);

TYPED_TEST(DefinitionFileTest, KeepsEveryFieldThroughAFile) {
  const auto sample = TypeParam::Sample();
  ASSERT_EQ(FieldCount(sample), TypeParam::kLines);
  for (int field = 0; field < TypeParam::kLines; ++field) {
    SCOPED_TRACE(field);
    const auto changed = WithChangedField(sample, field);
    this->driver.PutDefinition(changed);
    EXPECT_TRUE(this->driver.SaveFile(this->path));
    const std::string content = this->directory.Read("one.def");
    this->driver.PutDefinition(sample);
    EXPECT_TRUE(this->driver.LoadFile(this->path));
    EXPECT_TRUE(SameRecord(this->driver.Definition(), changed));
    EXPECT_FALSE(SameRecord(this->driver.Definition(), sample));
    EXPECT_TRUE(this->driver.SaveFile(this->path));
    EXPECT_EQ(this->directory.Read("one.def"), content);
  }
}

TYPED_TEST(DefinitionFileTest, AFileThatIsTooShortIsReportedAndLeavesNoDefinition) {
  auto other = TypeParam::Sample();
  other.InstrumentName = "Other";
  this->driver.PutDefinition(other);
  ASSERT_TRUE(this->driver.SaveFile(this->path));
  const std::string content = this->directory.Read("one.def");
  EXPECT_EQ(Head(content, TypeParam::kLines), content);
  this->driver.PutDefinition(TypeParam::Sample());

  this->directory.Write("enough.def", Head(content, TypeParam::kLinesNeeded));
  EXPECT_TRUE(this->driver.LoadFile(this->directory.File("enough.def")));
  const std::string cut = this->directory.Write("cut.def", Head(content, TypeParam::kLinesNeeded - 1));
  this->driver.PutDefinition(TypeParam::Sample());
  const Done loaded = this->driver.LoadFile(cut);
  EXPECT_FALSE(this->driver.HasDefinition());
  EXPECT_EQ(this->driver.InstrumentName(), "");
  EXPECT_EQ(this->driver.FileName(), cut);
  const std::string place = ", behind line " + std::to_string(TypeParam::kLinesNeeded - 1) + " of the ";
  EXPECT_TRUE(FailsWith(loaded, "Error # 62\rInput past end of file" + place));
  EXPECT_TRUE(Told(loaded).front().ends_with("\r" + std::string(TypeParam::kLoad) + "\r" + cut));
}

TYPED_TEST(DefinitionFileTest, AChosenFileOrASaveThatFailsLeavesDefinitionAndFileName) {
  ASSERT_TRUE(this->driver.SaveFile(this->path));
  EXPECT_FALSE(this->driver.LoadFileOrKeep(this->directory.File("missing.def")));
  const std::string nowhere = this->directory.File("missing/two.def");
  EXPECT_EQ(Told(this->driver.SaveFile(nowhere)),
            Strings{"Error # 76\rPath not found\r" + std::string(TypeParam::kSave) + "\r" + nowhere});
  EXPECT_TRUE(this->driver.HasDefinition());
  EXPECT_TRUE(SameRecord(this->driver.Definition(), TypeParam::Sample()));
  EXPECT_EQ(this->driver.FileName(), this->path);
}

TYPED_TEST(DefinitionFileTest, AFailingPrinterIsReported) {
  EXPECT_TRUE(this->driver.PrintSetup());
  EXPECT_EQ(this->s.t.printer.jobs.size(), 1U);
  this->s.t.printer.failure = ErrorNumber::DeviceIoError;
  EXPECT_TRUE(
      FailsWith(this->driver.PrintSetup(), "Error # 57\rDevice I/O error\r" + std::string(TypeParam::kPrint) + "\r"));
}

TYPED_TEST(DefinitionFileTest, ATextThatTheBusCanNotCarryIsToldAndNothingIsSent) {
  auto sample = TypeParam::Sample();
  sample.InstrumentName = "\u2126";  // which stays here
  this->driver.PutDefinition(sample);
  EXPECT_TRUE(Opened(this->driver));
  this->s.Took();
  sample.FreqSetSuffix = "M\u2126";
  this->driver.PutDefinition(sample);
  EXPECT_TRUE(FailsWith(Opened(this->driver), "The bus can't carry every character of a text in the "));
  EXPECT_EQ(this->s.Took(), Strings{});
}

TEST(Definition, LoadingDerivesTheTerminator) {
  TestStation s;
  SigGenDefinition d = SampleSigGen();
  d.EndOfString = 2;
  const std::string path = s.t.directory.File("cr.sg");
  SaveRecord(path, d);
  EXPECT_TRUE(s.sigGen.LoadFile(path));
  s.sigGen.SetAddress(5);
  EXPECT_EQ(s.sigGen.Address(), 5);
  EXPECT_EQ(s.Out(s.sigGen.RfOff()), (Strings{"> 5 OUTP OFF\\r\\n"}));
}

TEST(Definition, WithoutOneAnInstrumentIsNeverAddressed) {
  TestStation s;
  for (const bool failed : {true, false}) {
    if (failed) {
      EXPECT_FALSE(s.sigGen.LoadFile("missing.sg"));
      EXPECT_FALSE(s.meter.LoadFile("missing.mtr"));
      EXPECT_FALSE(s.pm.LoadFile("missing.pm"));
    } else {
      s.sigGen.Forget();
      s.meter.Forget();
      s.pm.Forget();
    }
    const std::string file = failed ? "missing.sg" : "";
    EXPECT_TRUE(
        FailsWith(s.sigGen.InitSigGen(1, -30), "There is no signal generator definition to work with.\r\n" + file));
    EXPECT_FALSE(s.sigGen.SetFreqLevel(1, -30));
    EXPECT_FALSE(s.sigGen.RfOn());
    EXPECT_FALSE(s.meter.InitMeter());
    EXPECT_FALSE(s.pm.InitPwrMtr());
    EXPECT_EQ(s.Took(), Strings{});
    EXPECT_FALSE(s.sigGen.RfIsOn());
  }
}

TEST(DefinitionListing, PrintsAMeterInGroups) {
  TestStation s;
  MeterDefinition d = SampleMeter();
  d.InitString = std::string(60, 'a') + std::string(60, 'b') + "c";
  d.ParseCmd = "X";
  s.meter.PutDefinition(d);
  EXPECT_TRUE(s.meter.PrintSetup());
  const std::string expected =
      "\n\n\n\n\n\nInstrument Name: Analyser\n        Address: 13\n\n    Init String: " + std::string(60, 'a') +
      "\n                 " + std::string(60, 'b') +
      "\n                 c\n\nFreq Set Prefix: CF\n         Suffix: MZ\n\n Lev Set Prefix: RL\n                 DB\n\n"
      "  Maximum Level: 120 dBuV\n  Minimum Level: 20 dBuV\n\n   Maximum Freq: 1000\n   Minimum Freq: 0.1\n\n"
      "        Trigger: TS\n           Read: MA?\n      Parse cmd: X\n       Shutdown: BYE\n\n"
      "          Units: 1  (0 = Volts, 1 = dBuv, 2 = mv, 3 = dbmv, 4 = dbm)\n"
      "           Type: 0  (0 = SpecAn, 1 = Scope, 2 = RfMeter)\n  Settling Time: 0.5\n"
      "  End of String: 0  (0 = none, 1 = cr, 2 = cr/lf)\n";
  std::string printed;
  for (const std::string& line : s.t.printer.Lines()) printed += line + "\n";
  EXPECT_EQ(printed, expected);
}

TEST(DefinitionListing, ShowsEveryFieldUnderALabelOfOneWidth) {
  const auto check = [](const auto& sample) {
    const Strings before = Listing(sample);
    for (const std::string& line : before) {
      if (!line.empty()) {
        EXPECT_EQ(line.substr(15, 2), line[15] == ':' ? ": " : "  ") << line;
      }
    }
    for (int field = 0; field < FieldCount(sample); ++field) {
      const Strings after = Listing(WithChangedField(sample, field));
      EXPECT_NE(after, before) << "field " << field << " is not printed";
    }
  };
  check(SampleSigGen());
  check(SampleMeter());
  check(SamplePowerMeter());
}

TEST(DefinitionListing, CutsTheInitStringBetweenCharacters) {
  SigGenDefinition d = SampleSigGen();
  d.InitString = std::string(59, 'a') + "\xC2\xB5" + "b";
  const Strings lines = Listing(d);
  EXPECT_EQ(lines.at(3), "    Init String: " + std::string(59, 'a') + "\xC2\xB5");
  EXPECT_EQ(lines.at(4), std::string(17, ' ') + "b");
}

}  // namespace
}  // namespace hylden
