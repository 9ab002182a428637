#include "instruments/DefinitionEditor.h"

#include <type_traits>

#include "instruments/DefinitionFields.h"
#include "instruments/Instruments.h"
#include "instruments/MeterTrial.h"
#include "instruments/PMTrial.h"
#include "instruments/SigGenTrial.h"
#include "shell/Shell.h"
#include "text/RecordFile.h"

namespace hylden {
namespace {

template <class TrialType>
class EditorOf : public DefinitionEditor {
 public:
  using Driver = typename TrialType::Driver;
  using Record = std::remove_cvref_t<decltype(std::declval<Driver>().Definition())>;

  EditorOf(InstrumentKind kind, Shell& shell, Instruments& instruments, Driver& driver)
      : DefinitionEditor(kind), shell_(shell), driver_(driver), trial_(shell, instruments) {
    Follow();
    if (station_) file_ = driver_.FileName();
  }

  InstrumentTrial& Trial() override { return trial_; }
  FormEntries Shown() const override { return EntriesShowing(record_); }
  FormEntries Saved() const override { return EntriesShowing(saved_); }
  std::set<std::string> Refused(const FormEntries& entries) const override { return RefusedWith(entries, record_); }

  bool Take(const FormEntries& entries, std::optional<EntryFailure>& failure) override {
    Record typed = record_;
    failure = TakeEntries(entries, typed);
    return !failure && Drive(typed);
  }

  void ChangeUnits(FormEntries& entries) override {
    if constexpr (std::is_same_v<Record, MeterDefinition>) hylden::ChangeUnits(entries, record_);
  }

  bool New() override {
    if (!trial_.MayChangeDefinition(true)) return false;
    file_.clear();
    record_ = saved_ = Record();
    return true;
  }

  bool Load(const std::string& path) override {
    if (!trial_.MayChangeDefinition(true)) return false;
    if (!shell_.Ok(driver_.LoadFileOrKeep(path))) return false;
    driver_.ForgetSettings();
    file_ = path;
    Follow();
    return true;
  }

  std::string LostBySave(const std::string& path) const override {
    // About another file the dialog has asked.
    return path == file_ ? driver_.LostBySave() : std::string();
  }

  bool Save(const std::string& path) override {
    if (!shell_.Ok(driver_.SaveFile(path))) return false;
    file_ = path;
    Follow();
    return true;
  }

  void Print() override { shell_.Ok(driver_.PrintSetup("mnuFilePrint")); }

  void Leave() override {
    trial_.End();
    if (!station_)
      driver_.Forget();
    else if (!Drives(*station_))
      Put(*station_);
  }

 private:
  /// The driver has what the station goes on with.
  void Follow() {
    record_ = saved_ = driver_.Definition();
    station_.reset();
    if (driver_.HasDefinition()) station_ = record_;
  }

  bool Drives(const Record& record) const {
    return driver_.HasDefinition() && RecordText(driver_.Definition()) == RecordText(record);
  }

  bool Drive(const Record& record) {
    if (!Drives(record)) {
      if (!trial_.MayChangeDefinition(record.Address != driver_.Address())) return false;
      Put(record);
    }
    record_ = record;
    return true;
  }

  void Put(const Record& record) {
    driver_.PutDefinition(record);
    driver_.ForgetSettings();
  }

  Shell& shell_;
  Driver& driver_;
  TrialType trial_;
  Record record_, saved_;
  std::optional<Record> station_;  ///< none when the station has no such instrument
};

}  // namespace

std::unique_ptr<DefinitionEditor> DefinitionEditor::Of(InstrumentKind kind, Shell& shell, Instruments& instruments) {
  switch (kind) {
    case InstrumentKind::SigGen:
      return std::make_unique<EditorOf<SigGenTrial>>(kind, shell, instruments, instruments.sigGen);
    case InstrumentKind::Meter:
      return std::make_unique<EditorOf<MeterTrial>>(kind, shell, instruments, instruments.meter);
    case InstrumentKind::PwrMtr:
      break;
  }
  return std::make_unique<EditorOf<PMTrial>>(kind, shell, instruments, instruments.pm);
}

}  // namespace hylden
