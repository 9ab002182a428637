#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "platform/Journals.h"
#include "platform/native/OwnedFile.h"
#include "platform/native/WorkThread.h"

namespace hylden {

/// A journal that its program has left behind, and its bytes. Nobody else gets it as long as this is kept.
struct AbandonedJournal {
  std::string Name;  ///< of the file, without folder and ending
  std::string Bytes;
  std::unique_ptr<OwnedFile> File;
};

/// Journals as files of one folder, written on a thread of their own. Each is locked by the program that writes it.
class JournalFolder : public Journals {
 public:
  /// How the run's time passes.
  enum class Time {
    Real,    ///< rows are written and synced while the run goes on
    Virtual  ///< a run that takes no time waits for each row instead, but not for the disk behind it
  };

  /// @param folder  made when the first journal begins
  explicit JournalFolder(std::string folder, Time time = Time::Real);
  /// Writes what still waits.
  ~JournalFolder() override;

  const std::string& Folder() const { return folder_; }
  /// Why no journal can be made there; nothing when one can, as far as it can be told. Makes the folder.
  std::optional<std::string> Obstacle() const;
  /// The file of a journal, by its name.
  std::string PathOf(const std::string& name) const;
  std::unique_ptr<JournalWriter> Begin(const std::string& name) override;
  std::optional<std::string> Trouble() const override;

  /// Takes a journal that was left behind, to go on with it. It is as it was until something is appended.
  std::unique_ptr<JournalWriter> GoOn(AbandonedJournal journal);

  /// Returns when all that was appended has been written, as far as it can be.
  void Settle() { disk_.Wait(); }
  /// The names of the journals begun here that are still there.
  std::vector<std::string> Kept();
  /// What programs that are gone have left here, by name; another's that is in use, or can't be read, is passed over.
  std::vector<AbandonedJournal> Abandoned() const;
  /// Why nobody can tell what waits here; nothing when it can be told, also where there is no folder.
  std::optional<std::string> Unreadable() const;

 private:
  struct Page;
  class Writer;

  void Make(Page& page);
  void Write(Page& page, const std::string& lines);
  void Note(const std::error_code& failure);

  std::string folder_;
  Time time_;
  mutable std::mutex mutex_;
  std::optional<std::string> trouble_;  ///< guarded by the mutex
  std::vector<std::shared_ptr<Page>> pages_;
  WorkThread disk_;  ///< the last to come and the first to go
};

}  // namespace hylden
