#include "run/RunJournal.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <filesystem>
#include <utility>

#include "run/RunDisplay.h"
#include "run/TimeText.h"
#include "run/UnsavedRows.h"
#include "shell/Shell.h"
#include "shell/Version.h"
#include "text/Characters.h"

namespace hylden {

namespace {

/// What a file's name may hold everywhere, and can be typed.
std::string Plain(std::string_view name) {
  constexpr std::size_t kLongest = 60;
  std::string plain(FirstCharacters(name, kLongest));
  std::replace_if(
      plain.begin(), plain.end(), [](unsigned char c) { return c < 0x80 && !std::isalnum(c) && c != '.' && c != '_'; },
      '-');
  const bool begins = !plain.empty() && plain.front() != '-' && plain.front() != '.';
  return begins ? plain : "run" + plain;
}

}  // namespace

RunJournal::RunJournal(Shell& shell, UnsavedRows& rows) : shell_(shell), rows_(rows) {
  rows_.onSettled = [this] { Settle(); };
}

RunJournal::~RunJournal() {
  rows_.onSettled = nullptr;
  if (!rows_.Any() && !rows_.AreKept()) Settle();
}

void RunJournal::Begin(JournalHead head) {
  Remove();
  head_ = std::move(head);
  head_.Program = VersionTitle();
  head_.Started = TimeText(shell_.clock.Now());
  head_.Notice = shell_.runNotice;
  on_ = shell_.journals != nullptr;
  complete_ = told_ = false;
}

void RunJournal::Take(JournalHead head, std::unique_ptr<JournalWriter> file) {
  head_ = std::move(head);
  file_ = std::move(file);
  on_ = complete_ = false;
}

bool RunJournal::GoOn() {
  on_ = shell_.journals != nullptr;
  complete_ = told_ = false;
  return file_ != nullptr;
}

void RunJournal::Seam(int row) {
  if (file_) file_->Append(SeamLine(row));
}

/// "radio_20261123-183507"
std::string RunJournal::FileName() const {
  std::string time = head_.Started;
  std::erase_if(time, [](char c) { return c == '-' || c == ':'; });
  std::replace(time.begin(), time.end(), ' ', '-');
  const std::string name = std::filesystem::path(head_.Name).stem().string();
  return Plain(name.empty() ? TextOf(head_.Kind) : name) + "_" + time;
}

void RunJournal::Row(int number, std::string_view values) {
  if (!on_) return;
  std::string lines;
  if (!file_) {
    file_ = shell_.journals->Begin(FileName());
    lines = HeadLines(head_);
  }
  file_->Append(lines + RowLine(number, values));
}

/// The rows are in a file, not wanted, or too few for one.
void RunJournal::Settle() {
  if (complete_ || !shell_.keepsJournals) return Remove();
  on_ = false;
  file_.reset();
}

void RunJournal::Remove() {
  on_ = false;
  if (const auto file = std::exchange(file_, nullptr)) file->Remove();
}

void RunJournal::TellTrouble(RunDisplay& display) {
  const auto trouble = file_ && !told_ ? shell_.journals->Trouble() : std::nullopt;
  if (!trouble) return;
  told_ = true;
  const std::string text = "The journal of the run could not be written: " + *trouble;
  shell_.log.LogFile(text);
  display.Note(text);
}

}  // namespace hylden
