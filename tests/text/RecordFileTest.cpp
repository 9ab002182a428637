#include "text/RecordFile.h"

#include <gtest/gtest.h>

#include "support/SameRecord.h"
#include "support/TempDir.h"

namespace hylden {
namespace {

struct Sample {
  std::string Name;
  double Freq = 0;
  float Level = 0;
  std::int16_t Address = 0;
  std::int32_t Code = 0;
  bool On = false, Late = false;
  std::string Comment;
};

template <class F>
void Fields(F& f, Sample& s) {
  f.Text(s.Name);
  f.Double(s.Freq);
  f.Single(s.Level);
  f.Int16(s.Address);
  f.Int32(s.Code);
  f.Flag(s.On);
  f.FlagOrEmpty(s.Late);
  f.OptionalText(s.Comment);
  f.SpareLines(2);
}

Sample Read(const std::string& text) {
  RecordReader reader(text);
  Sample sample;
  Fields(reader, sample);
  return sample;
}

std::string Written(Sample sample, bool trailingBlank = false) {
  RecordWriter writer(trailingBlank);
  Fields(writer, sample);
  return writer.Content();
}

const Sample kSample{"C:\\Cal, 10 V", 0.15, -12.5F, 18, 2, true, false, "late"};

TEST(RecordFile, WritesOneLinePerFieldInPrintStyle) {
  EXPECT_EQ(Written(kSample), "C:\\Cal, 10 V\r\n .15\r\n-12.5\r\n 18\r\n 2\r\nTrue\r\nFalse\r\nlate\r\n\r\n\r\n");
  EXPECT_EQ(Written(kSample, true),
            "C:\\Cal, 10 V\r\n .15 \r\n-12.5 \r\n 18 \r\n 2 \r\nTrue\r\nFalse\r\nlate\r\n\r\n\r\n");
}

TEST(RecordFile, ReadsOlderAndHandEditedFiles) {
  const Sample sample = Read(" n \n0.15\n1e1\n18.4\n&H2\n-1\n\n");
  EXPECT_EQ(sample.Name, " n ");
  EXPECT_EQ(sample.Freq, 0.15);
  EXPECT_EQ(sample.Level, 10.0F);
  EXPECT_EQ(sample.Address, 18);
  EXPECT_EQ(sample.Code, 2);
  EXPECT_TRUE(sample.On);
  EXPECT_FALSE(sample.Late);
  EXPECT_EQ(sample.Comment, "");
  EXPECT_FALSE(Read("n\n1\n1\n1\n1\nTrue\n").Late) << "empty lines at the end may be missing";
}

constexpr std::string_view FileKind(const Sample&) {
  return "sample";
}

TEST(RecordFile, AFaultKeepsTheFieldsBeforeItAndNamesItsLineAndTheKindOfFile) {
  const std::string most(59, 'x');
  const std::tuple<std::string, int, std::string> rows[] = {
      {"new\n1\n", 62, "Input past end of file, behind line 2 of the sample"},
      {"new\n1\nlow\n", 13, "Type mismatch, line 3 of the sample: \"low\""},
      {"new\n1\n\n", 13, "Type mismatch, line 3 of the sample: \"\""},
      {"new\n1\n0,15\n", 13, "Type mismatch, line 3 of the sample: \"0,15\""},
      {"new\n1\n1E39\n", 6, "Overflow, line 3 of the sample: \"1E39\""},
      {"new\n1\nb\1nary\n", 13, "Type mismatch, line 3 of the sample: \"b nary\""},
      {"new\n1\n" + most + "\xC3\xA4\n", 13, "Type mismatch, line 3 of the sample: \"" + most + "...\""},
  };
  TempDir directory;
  for (const auto& [text, number, description] : rows) {
    Sample sample = kSample;
    try {
      LoadRecord(directory.Write("a.txt", text), sample);
      FAIL() << text;
    } catch (const RuntimeError& error) {
      EXPECT_EQ(error.Number(), number);
      EXPECT_EQ(error.Description(), description);
    }
    EXPECT_EQ(sample.Name, "new");
    EXPECT_EQ(sample.Freq, 1);
    EXPECT_EQ(sample.Level, -12.5F);
  }
}

TEST(RecordFile, ALineEndWithinATextDoesNotShiftTheFields) {
  Sample sample = kSample;
  sample.Name = "two\r\nlines\nmore";
  EXPECT_EQ(Read(Written(sample)).Name, "two lines more");
  EXPECT_EQ(Read(Written(sample)).Address, 18);
}

}  // namespace
}  // namespace hylden
