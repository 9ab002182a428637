#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "app/ConsoleRun.h"

namespace hylden {

struct Documents;

/// The files that a job reads, or writes besides its output: none of them may be its output. Files without a name are
/// among them.
std::vector<std::string> FilesOfTheRun(const RunOptions& options, const Documents& documents,
                                       const std::string& programDirectory);

/// The first of the given files that saving these would replace, under whatever path; nothing when there is none.
std::optional<std::string> FirstReplaced(const std::vector<std::string>& saved, const std::vector<std::string>& others);

/// The file that a job makes and, of a calibration record or a test, the info file beside it. They are looked at before
/// anything is switched on, and again when they are saved, an hour later perhaps.
class ConsoleOutput {
 public:
  explicit ConsoleOutput(const RunOptions& options);

  /// The file as it is saved: the one that was asked for, until MoveAside.
  const std::string& Name() const { return files_.front(); }
  /// With the info file.
  const std::vector<std::string>& Files() const { return files_; }
  /// Keeps in mind what is there now.
  void Note();
  /// The files that have come, or changed, since.
  std::vector<std::string> Appeared() const;
  /// Takes a name with a number that nothing has yet: "today-2.run".
  void MoveAside();
  bool IsAside() const { return aside_; }

 private:
  struct State {
    std::uintmax_t Size = 0;
    std::filesystem::file_time_type Changed;
    bool operator==(const State&) const = default;
  };

  static std::optional<State> StateOf(const std::string& file);
  std::vector<std::string> FilesNamed(const std::string& name) const;

  RunOptions::Job job_;
  std::vector<std::string> files_;
  std::vector<std::optional<State>> noted_;
  bool aside_ = false;
};

}  // namespace hylden
