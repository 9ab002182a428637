#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "documents/CalInfo.h"
#include "documents/CalSetupRecord.h"
#include "documents/EquipRecord.h"
#include "documents/TestDefinition.h"
#include "documents/clsCalFile.h"
#include "instruments/MeterDefinition.h"
#include "instruments/PowerMeterDefinition.h"
#include "instruments/SigGenDefinition.h"
#include "measure/InterpClass.h"
#include "measure/ReadFreq.h"
#include "support/ReadLines.h"
#include "text/RecordFile.h"
#include "text/TextFile.h"

namespace hylden {
namespace {

/// The examples of a page of docs/formats: the lines of its fenced blocks of plain text.
std::vector<std::vector<std::string>> Examples(const std::string& page) {
  std::vector<std::vector<std::string>> examples;
  bool inside = false;
  for (const std::string& line : ReadLines(HYLDEN_SOURCE_DIR "/docs/formats/" + page)) {
    if (line == "```text") {
      examples.emplace_back();
      inside = true;
    } else if (line == "```") {
      inside = false;
    } else if (inside) {
      examples.back().push_back(line);
    }
  }
  return examples;
}

/// Whether the page's first example is a whole record in exactly the form in which the program writes it.
template <class Record>
void ExpectWholeRecord(const std::string& page, bool trailingBlank = false) {
  SCOPED_TRACE(page);
  const auto examples = Examples(page);
  ASSERT_FALSE(examples.empty());
  const std::string text = JoinLines(examples.front());
  Record record;
  RecordReader reader(text);
  ASSERT_NO_THROW(Fields(reader, record));
  RecordWriter writer(trailingBlank);
  Fields(writer, record);
  EXPECT_EQ(writer.Content(), text);
}

TEST(FormatPages, ExamplesOfRecordsAreWhatTheProgramWrites) {
  ExpectWholeRecord<SigGenDefinition>("signal-generator.md");
  ExpectWholeRecord<MeterDefinition>("meter.md");
  ExpectWholeRecord<PowerMeterDefinition>("power-meter.md");
  ExpectWholeRecord<EquipRecord>("equipment.md");
  ExpectWholeRecord<CalSetupRecord>("calibration-setup.md", true);
  ExpectWholeRecord<TestDefinition>("test-definition.md");
  ExpectWholeRecord<CalInfoRec>("calibration-record.md", true);
}

TEST(FormatPages, ExamplesOfDataAreReadable) {
  const auto calibration = Examples("calibration-record.md"), list = Examples("frequency-list.md"),
             table = Examples("factor-table.md");
  for (const std::string& line : calibration.at(1)) EXPECT_TRUE(ParseCalLine(line)) << line;
  for (const std::string& line : list.at(0)) {
    double frequency = 0;
    EXPECT_TRUE(ReadFreq::ParseFreq(line, frequency)) << line;
  }
  bool dataBegun = false;
  for (const std::string& line : table.at(0)) {
    const bool isData = ParseFactorLine(line).Ok;
    EXPECT_TRUE(isData || !dataBegun) << line;
    dataBegun = isData;
  }
  EXPECT_TRUE(dataBegun);
}

}  // namespace
}  // namespace hylden
