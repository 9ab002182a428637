#include "calibration/InsertionLossText.h"

#include <string_view>

#include "calibration/CableCalibration.h"
#include "shell/INISettings.h"
#include "text/ExistingPath.h"
#include "text/Pattern.h"
#include "text/TextFile.h"

namespace hylden {

namespace {

// Columns of the file, counted from 1.
constexpr std::size_t kLossColumn = 15, kDirectColumn = 25, kInsertColumn = 35;

/// Pads with blanks so that what follows stands at the column.
void Tab(std::string& line, std::size_t column) {
  if (line.size() < column - 1) line.resize(column - 1, ' ');
}

std::string Columns(const std::string& frequency, const std::string& loss, const std::string& direct,
                    const std::string& insert) {
  std::string line = frequency;
  Tab(line, kLossColumn);
  line += loss;
  Tab(line, kDirectColumn);
  line += direct;
  Tab(line, kInsertColumn);
  return line + insert;
}

std::string DataLine(const CablePoint& point) {
  constexpr std::string_view kLevel = "##0.0#";
  return Columns(Format(point.Freq, "####0.000###") + ", ", Format(point.Loss, kLevel) + ", ",
                 Format(point.Direct, kLevel) + ", ", Format(point.Insert, kLevel));
}

}  // namespace

std::string InsertionLossText(const std::vector<CablePoint>& points, const std::string& fileName) {
  std::string nameLine;
  Tab(nameLine, kInsertColumn);
  std::vector<std::string> lines = {nameLine + fileName,
                                    "",
                                    "Date:__________________________________________________",
                                    "",
                                    "Performed by:__________________________________________",
                                    "",
                                    "Device:________________________________________________",
                                    "",
                                    "Equipment Used:________________________________________",
                                    "",
                                    "",
                                    Columns("Frequency,", "InsLoss,", "Direct,", "Insert")};
  for (const CablePoint& point : points) lines.push_back(DataLine(point));
  return JoinLines(lines);
}

FileRequest InsertionLossRequest(INISettings& settings, const std::string& name) {
  return {"Select Filname", "InsLoss (*.los)|*.los|Text File (*.txt)|*.txt|All Files (*.*)|*.*",
          settings.GetDataDir(datakind::kInsertionLoss), name.empty() ? "*.los" : name};
}

Done FileInsertionLoss(const std::vector<CablePoint>& points, const std::string& path) {
  return Trapped("RunCblCal.SaveFile", path, [&] { ReplaceFile(path, InsertionLossText(points, FullPath(path))); });
}

}  // namespace hylden
