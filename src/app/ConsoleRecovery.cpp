#include <algorithm>
#include <filesystem>
#include <iostream>
#include <optional>

#include "app/ConsoleJobs.h"
#include "app/ConsoleOutput.h"
#include "app/Recovery.h"
#include "documents/SaveCal.h"
#include "platform/console/ConsoleDialogs.h"
#include "platform/native/JournalFolder.h"
#include "platform/native/ProgramDirectory.h"
#include "testrun/RunInfo.h"
#include "text/TextFile.h"

namespace hylden {

namespace {

void Tell(const Failure& failure) {
  for (const Message& box : failure.Boxes()) std::cerr << ForTerminal(box.text) << '\n';
}

std::string Reason(const Failure& failure) {
  return failure.Boxes().front().text;
}

void List(std::vector<AbandonedJournal> journals) {
  for (AbandonedJournal& journal : journals) {
    const auto recovery = RecoveryOf(std::move(journal.Bytes));
    const std::string text = recovery ? DescriptionOf(*recovery) : Reason(recovery.error()) + ", it is left alone";
    std::cout << ForTerminal(journal.Name + "  " + text) << '\n';
  }
}

std::vector<std::string> FilesOf(const RunOptions& options, JournalKind kind) {
  std::vector<std::string> files = {options.OutputFile};
  if (const auto info = InfoFileBeside(options.OutputFile); info && kind == JournalKind::LevelCalibration)
    files.push_back(*info);
  if (kind == JournalKind::Test) files.push_back(RunInfoFile(options.OutputFile));
  return files;
}

/// What keeps the rows from going there; nothing when they may.
/// @param size  of the journal, bytes
std::optional<std::string> Obstacle(const RunOptions& options, const std::vector<std::string>& files,
                                    const AbandonedJournal& journal, std::size_t size) {
  if (FirstReplaced(files, {journal.File->Path()})) return "--output would replace the journal itself.";
  for (const std::string& file : files) {
    if (const auto obstacle = SaveObstacle(file, size)) return "Nothing can be written to " + file + ": " + *obstacle;
    std::error_code ignored;
    if (!options.Yes && std::filesystem::exists(SavePath(file), ignored))
      return file + " exists; with --yes it is replaced.";
  }
  return std::nullopt;
}

/// One that can't be removed would be offered again.
ExitState Remove(const AbandonedJournal& journal) {
  const std::error_code failure = journal.File->Remove();
  if (!failure) return ExitState::Finished;
  std::cerr << "The journal could not be removed: " << journal.File->Path() << ": " << failure.message() << '\n';
  return ExitState::Failed;
}

ExitState Save(const RunOptions& options, AbandonedJournal& journal) {
  const std::size_t size = journal.Bytes.size();
  const auto recovery = RecoveryOf(std::move(journal.Bytes));
  if (!recovery) {
    std::cerr << journal.File->Path() << ": " << Reason(recovery.error()) << '\n';
    return ExitState::Failed;
  }
  if (const auto obstacle = Obstacle(options, FilesOf(options, recovery->Head.Kind), journal, size)) {
    std::cerr << *obstacle << '\n';
    return ExitState::Failed;
  }
  if (const Done saved = SaveRecovery(*recovery, options.OutputFile); !saved) {
    Tell(saved.error());
    return ExitState::Failed;
  }
  std::cout << ForTerminal(DescriptionOf(*recovery)) << "\nsaved in " << options.OutputFile << '\n';
  return Remove(journal);
}

ExitState Discard(AbandonedJournal& journal) {
  const auto recovery = RecoveryOf(std::move(journal.Bytes));
  if (Remove(journal) == ExitState::Failed) return ExitState::Failed;
  std::cout << ForTerminal(recovery ? DescriptionOf(*recovery) : Reason(recovery.error()))
            << "\nremoved: " << journal.File->Path() << '\n';
  return ExitState::Finished;
}

ExitState Missing(const JournalFolder& folder, const std::string& name) {
  const std::string path = folder.PathOf(name);
  const bool isName = name.find('/') == std::string::npos;
  std::error_code ignored;
  if (isName && std::filesystem::exists(path, ignored))
    std::cerr << "The journal is in use, or is another user's: " << path << '\n';
  else
    std::cerr << "No such journal waits in " << folder.Folder() << ": " << name << '\n';
  return ExitState::Failed;
}

}  // namespace

ExitState RunRecovery(const RunOptions& options) {
  const JournalFolder folder(JournalsIn(ProgramDirectory()));
  if (const auto trouble = folder.Unreadable()) {
    std::cerr << "The journals in " << folder.Folder() << " can't be read: " << *trouble << '\n';
    return ExitState::Failed;
  }
  std::vector<AbandonedJournal> journals = folder.Abandoned();
  if (options.Journal.empty() && !options.OutputFile.empty()) {
    std::cerr << "--recover: the name of the journal is missing; without --output they are listed\n";
    return ExitState::Usage;
  }
  if (options.Journal.empty()) {
    if (journals.empty()) std::cout << "No journal waits in " << folder.Folder() << '\n';
    List(std::move(journals));
    return ExitState::Finished;
  }
  if (options.OutputFile.empty() && !options.Discard) {
    std::cerr << "--output: the file to save it in is missing\n";
    return ExitState::Usage;
  }
  const auto found = std::find_if(journals.begin(), journals.end(),
                                  [&](const auto& journal) { return journal.Name == options.Journal; });
  if (found == journals.end()) return Missing(folder, options.Journal);
  return options.Discard ? Discard(*found) : Save(options, *found);
}

}  // namespace hylden
