#include "platform/native/JournalFolder.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <utility>

#include "text/DiskSync.h"

namespace hylden {

namespace {

namespace fs = std::filesystem;

constexpr const char* kEnding = ".journal";

}  // namespace

/// A journal that is being written; touched by the thread of the disk only.
struct JournalFolder::Page {
  std::string Name;
  std::unique_ptr<OwnedFile> File = nullptr;
  std::string Waiting = {};  ///< what could not be written yet
};

class JournalFolder::Writer : public JournalWriter {
 public:
  Writer(JournalFolder& folder, std::shared_ptr<Page> page) : folder_(folder), page_(std::move(page)) {}

  void Append(std::string lines) override {
    folder_.disk_.Post([folder = &folder_, page = page_, added = std::move(lines)] { folder->Write(*page, added); });
    if (folder_.time_ == Time::Virtual) folder_.Settle();
  }
  void Remove() override {
    folder_.disk_.Post([page = page_] {
      if (page->File) (void)page->File->Remove();
      page->File.reset();
      page->Waiting.clear();
    });
  }

 private:
  JournalFolder& folder_;
  std::shared_ptr<Page> page_;
};

JournalFolder::JournalFolder(std::string folder, Time time) : folder_(std::move(folder)), time_(time) {}

JournalFolder::~JournalFolder() = default;

std::unique_ptr<JournalWriter> JournalFolder::Begin(const std::string& name) {
  {
    const std::lock_guard lock(mutex_);
    trouble_.reset();
  }
  return std::make_unique<Writer>(*this, pages_.emplace_back(std::make_shared<Page>(Page{name})));
}

std::unique_ptr<JournalWriter> JournalFolder::GoOn(AbandonedJournal journal) {
  auto page = std::make_shared<Page>(Page{std::move(journal.Name), std::move(journal.File)});
  // Its last line may be torn: what comes begins a line of its own.
  if (!journal.Bytes.ends_with('\n')) page->Waiting = "\r\n";
  return std::make_unique<Writer>(*this, pages_.emplace_back(std::move(page)));
}

std::optional<std::string> JournalFolder::Obstacle() const {
  std::error_code failure;
  fs::create_directories(folder_, failure);
  if (!failure && access(folder_.c_str(), W_OK | X_OK) != 0) failure.assign(errno, std::generic_category());
  return failure ? std::optional(failure.message()) : std::nullopt;
}

std::string JournalFolder::PathOf(const std::string& name) const {
  return folder_ + "/" + name + kEnding;
}

std::optional<std::string> JournalFolder::Trouble() const {
  const std::lock_guard lock(mutex_);
  return trouble_;
}

void JournalFolder::Note(const std::error_code& failure) {
  const std::lock_guard lock(mutex_);
  if (failure && !trouble_) trouble_ = failure.message();
}

/// The name tells apart what begins in the same second: the process, and a number where one process begins several.
void JournalFolder::Make(Page& page) {
  constexpr int kMostAtOnce = 1000;
  std::error_code failure;
  if (fs::create_directories(folder_, failure)) (void)SyncFolder(fs::path(folder_).parent_path());
  if (failure) return Note(failure);  // what it would come to next is only that the folder is missing
  const std::string name = page.Name + "_" + std::to_string(getpid());
  for (int number = 1; number < kMostAtOnce; ++number) {
    page.Name = number == 1 ? name : name + "-" + std::to_string(number);
    page.File = OwnedFile::Make(PathOf(page.Name), failure);
    if (failure != std::errc::file_exists) break;
  }
  Note(failure);
}

void JournalFolder::Write(Page& page, const std::string& lines) {
  page.Waiting += lines;
  if (!page.File) {
    const std::string begun = page.Name;
    Make(page);
    if (!page.File) page.Name = begun;
  }
  if (!page.File) return;
  const auto lasting = time_ == Time::Real ? OwnedFile::Lasting::PowerCut : OwnedFile::Lasting::Process;
  const std::error_code failure = page.File->Append(page.Waiting, lasting);
  if (!failure) page.Waiting.clear();
  Note(failure);
}

std::vector<std::string> JournalFolder::Kept() {
  Settle();
  std::vector<std::string> names;
  for (const auto& page : pages_)
    if (page->File) names.push_back(page->Name);
  return names;
}

std::vector<AbandonedJournal> JournalFolder::Abandoned() const {
  std::vector<AbandonedJournal> found;
  std::error_code failed;
  fs::directory_iterator entry(folder_, failed);
  for (; !failed && entry != fs::directory_iterator(); entry.increment(failed)) {
    const fs::path& path = entry->path();
    if (path.extension() != kEnding) continue;
    auto file = OwnedFile::Take(path.string());
    std::optional<std::string> bytes = file ? file->Read() : std::nullopt;
    if (bytes) found.push_back({path.stem().string(), std::move(*bytes), std::move(file)});
  }
  std::sort(found.begin(), found.end(), [](const auto& a, const auto& b) { return a.Name < b.Name; });
  return found;
}

std::optional<std::string> JournalFolder::Unreadable() const {
  std::error_code failed;
  const fs::directory_iterator entries(folder_, failed);
  if (!failed || failed == std::errc::no_such_file_or_directory) return std::nullopt;
  return failed.message();
}

}  // namespace hylden
