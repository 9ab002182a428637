#pragma once

#include <string>
#include <utility>
#include <vector>

#include "measure/Curve.h"
#include "testrun/OpenedRun.h"

namespace hylden {

/// A table of a report. A row that has fewer cells than there are headings: its last cell goes on to the right edge.
struct ReportTable {
  struct Column {
    std::string Heading;
    double Share = 1;      ///< of the width, beside those of the others
    bool IsNumber = true;  ///< stands at the right edge of its column
  };
  std::vector<Column> Columns;
  std::vector<std::vector<std::string>> Rows;
};

/// Curves with a line above them.
struct ReportFigure {
  std::string Title;
  std::vector<Curve> Curves;
  std::vector<CurveMark> Marks;
};

/// A section of a report: any of these may be empty, and they come in this order.
struct ReportSection {
  std::string Title;
  std::vector<std::string> Sentences;                        ///< a paragraph each
  std::vector<std::pair<std::string, std::string>> Entries;  ///< what it is, and its value
  std::vector<ReportFigure> Figures;
  ReportTable Table;
  std::vector<std::string> Notes;  ///< in small print, a paragraph each
};

/// What a test report says.
struct RunReportText {
  std::string Title, Subtitle;
  std::string Warning;  ///< that no instrument was driven; empty otherwise
  std::vector<ReportSection> Sections;
  std::string Header;  ///< of every page but the first
  std::string Footer;  ///< of every page: which program made it of which file
};

/// The report of a run. What is not known of it is said.
/// @param allSteps  with the table of all rows
RunReportText ReportOf(const OpenedRun& run, bool allSteps);

}  // namespace hylden
