#include <gtest/gtest.h>

#include <filesystem>
#include <set>
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

constexpr const char* kPages = HYLDEN_SOURCE_DIR "/docs/formats/";

/// The examples of a page of docs/formats: the lines of its fenced blocks of plain text.
std::vector<std::vector<std::string>> Examples(const std::string& page) {
  std::vector<std::vector<std::string>> examples;
  bool inside = false;
  for (const std::string& line : ReadLines(kPages + page)) {
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
/// @return the page
template <class Record>
std::string WholeRecord(const std::string& page, bool trailingBlank = false) {
  SCOPED_TRACE(page);
  const auto examples = Examples(page);
  const std::string text = examples.empty() ? "no example" : JoinLines(examples.front());
  Record record;
  RecordReader reader(text);
  EXPECT_NO_THROW(Fields(reader, record));
  EXPECT_EQ(RecordText(record, trailingBlank), text);
  return page;
}

TEST(FormatPages, ExamplesOfRecordsAreWhatTheProgramWrites) {
  const std::set<std::string> records = {
      WholeRecord<SigGenDefinition>("signal-generator.md"),      WholeRecord<MeterDefinition>("meter.md"),
      WholeRecord<PowerMeterDefinition>("power-meter.md"),       WholeRecord<EquipRecord>("equipment.md"),
      WholeRecord<CalSetupRecord>("calibration-setup.md", true), WholeRecord<TestDefinition>("test-definition.md"),
      WholeRecord<CalInfoRec>("calibration-record.md", true)};
  const std::string list = ReadTextFile(std::string(kPages) + "README.md");
  for (const auto& file : std::filesystem::directory_iterator(kPages)) {
    const std::string page = file.path().filename().string();
    const bool isRecord = ReadTextFile(file.path().string()).find("A [record](README.md#") != std::string::npos;
    EXPECT_EQ(isRecord, records.contains(page)) << page << ": a record's example is looked at above";
    EXPECT_TRUE(page == "README.md" || list.find("(" + page + ")") != std::string::npos) << page << " is not listed";
  }
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
