#include "app/DesktopReport.h"

#include <QApplication>
#include <algorithm>
#include <filesystem>
#include <iostream>
#include <system_error>

#include "app/ConsoleOutput.h"
#include "app/ConsoleRun.h"
#include "platform/console/ConsoleDialogs.h"
#include "platform/native/ProgramDirectory.h"
#include "shell/INISettings.h"
#include "testrun/qt/ReportPdf.h"
#include "text/TextFile.h"

namespace hylden {

namespace {

constexpr const char* kUsage =
    "Usage: hylden --report FILE.run --pdf OUT.pdf [--all-steps] [--paper a4|letter] [--yes]";

struct ReportOptions {
  std::string RunFile, PdfFile;
  bool AllSteps = false;
  std::optional<std::string> Paper = {};  ///< nothing: as the settings say
  bool Yes = false;                       ///< a file that is there is replaced
};

/// @return which argument is none of a report, or what is missing
Result<ReportOptions> Parse(const std::vector<std::string>& arguments) {
  ReportOptions options;
  for (auto at = arguments.begin(); at != arguments.end(); ++at) {
    const bool hasValue = at + 1 != arguments.end() && !(at + 1)->empty();
    if (*at == "--all-steps")
      options.AllSteps = true;
    else if (*at == "--yes")
      options.Yes = true;
    else if (*at == "--report" && hasValue)
      options.RunFile = *++at;
    else if (*at == "--pdf" && hasValue)
      options.PdfFile = *++at;
    else if (*at == "--paper" && hasValue)
      options.Paper = *++at;
    else if (*at == "--report" || *at == "--pdf" || *at == "--paper")
      return Because(*at + " needs a value");
    else
      return Because("No option of a report: " + *at);
  }
  if (options.PdfFile.empty()) return Because("--pdf is missing: the file for the report");
  if (options.Paper && *options.Paper != "a4" && *options.Paper != "letter")
    return Because("--paper is a4 or letter, not " + *options.Paper);
  return options;
}

int Fail(const Failure& failure) {
  for (const Message& box : failure.Boxes()) std::cerr << ForTerminal(box.text) << '\n';
  return static_cast<int>(ExitState::Failed);
}

/// @return why the report may not be written
Done MayWrite(const ReportOptions& options) {
  if (const auto replaced = FirstReplaced({options.PdfFile}, {options.RunFile, RunInfoFile(options.RunFile)}))
    return Because("--pdf would replace what the report is made of: " + *replaced);
  std::error_code ignored;
  if (!options.Yes && std::filesystem::exists(SavePath(options.PdfFile), ignored))
    return Because(options.PdfFile + " exists; with --yes it is replaced.");
  return {};
}

int Make(const ReportOptions& options) {
  Result<OpenedRun> run = OpenRun(options.RunFile);
  if (!run) return Fail(run.error());
  for (const std::string& trouble : run->Run.Troubles) std::cerr << options.RunFile << ": " << trouble << '\n';
  if (!run->Beside.Trouble.empty()) std::cerr << run->Beside.Trouble << '\n';
  if (const Done may = MayWrite(options); !may) return Fail(may.error());
  INISettings settings(ProgramDirectories());
  ReportPaper paper = LoadReportChoices(settings).Paper;
  if (options.Paper) paper = *options.Paper == "letter" ? ReportPaper::Letter : ReportPaper::A4;
  if (const Done made = FileReport(*run, {paper, options.AllSteps}, options.PdfFile); !made) return Fail(made.error());
  std::cout << "Report saved in " << options.PdfFile << '\n';
  return static_cast<int>(run->Run.Troubles.empty() ? ExitState::Finished : ExitState::Failed);
}

}  // namespace

std::optional<int> AnswerReport(const std::vector<std::string>& arguments) {
  if (std::find(arguments.begin(), arguments.end(), "--report") == arguments.end()) return std::nullopt;
  const auto options = Parse(arguments);
  if (!options) {
    (void)Fail(options.error());
    return std::cerr << kUsage << '\n', static_cast<int>(ExitState::Usage);
  }
  qputenv("QT_QPA_PLATFORM", "offscreen");
  char name[] = "hylden";
  char* argv[] = {name, nullptr};
  int argc = 1;
  const QApplication application(argc, argv);
  try {
    return Make(*options);
  } catch (const std::exception& error) {
    std::cerr << "hylden: " << error.what() << '\n';
    return static_cast<int>(ExitState::Failed);
  }
}

}  // namespace hylden
