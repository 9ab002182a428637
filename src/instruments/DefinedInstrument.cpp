#include "instruments/DefinedInstrument.h"

#include <algorithm>
#include <utility>

#include "instruments/DefinitionListing.h"
#include "instruments/MeterDefinition.h"
#include "instruments/PowerMeterDefinition.h"
#include "instruments/SigGenDefinition.h"
#include "shell/Shell.h"
#include "text/Numbers.h"
#include "text/RecordFile.h"
#include "text/TextFile.h"

namespace hylden {

namespace {

/// How the file operations name themselves in a report, and the heading of the listing.
struct Names {
  const char *Load, *Save, *Print, *Heading;
};

constexpr Names NamesOf(const SigGenDefinition&) {
  return {"SigGen.LoadFile", "SigGen.SaveFile", "SigGen.PrintSetup", "Signal Generator Definition"};
}
constexpr Names NamesOf(const MeterDefinition&) {
  return {"Meter.LoadFile", "meter.SaveFile", "Meter.PrintSetup", "Meter Definition"};
}
constexpr Names NamesOf(const PowerMeterDefinition&) {
  return {"PwrMtr.LoadFile", "PwrMtr.SaveFile", "PwrMtr.PrintSetup", "Power Meter Definition"};
}

std::size_t LineCount(const std::string& text) {
  return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

/// Whether anything stands behind the first lines of a file.
bool HasFurtherLines(const std::string& content, std::size_t first) {
  constexpr std::string_view kDosEnd = "\x1A";
  LineReader lines(content);
  for (std::size_t n = 0; !lines.AtEnd(); ++n) {
    const std::string_view line = Trim(lines.NextLine());
    if (n >= first && !line.empty() && line != kDosEnd) return true;
  }
  return false;
}

/// Looks for a text that is sent and that the bus can't carry.
struct CarriageCheck {
  std::string NotCarried;

  void Text(const std::string& command) {
    if (!Gpib::Carries(command)) NotCarried = command;
  }
  void OptionalText(const std::string&) {}  // an expression stays in the program
  void Int16(int) {}
  void Int32(int) {}
  void Single(float) {}
  void Double(double) {}
};

template <class Record>
std::string TextNotCarried(Record sent) {
  sent.InstrumentName.clear();  // which stays in the program, too
  CarriageCheck check;
  Fields(check, sent);
  return check.NotCarried;
}

}  // namespace

template <class Record>
Done DefinedInstrument<Record>::LoadFile(const std::string& path) {
  Done loaded = LoadFileOrKeep(path);
  if (!loaded) {
    Forget();
    fileName_ = path;
  }
  return loaded;
}

template <class Record>
Done DefinedInstrument<Record>::LoadFileOrKeep(const std::string& path) {
  return Trapped(NamesOf(definition_).Load, path, [&] {
    KnownFile file(path);
    Record read;
    LoadRecord(path, read);
    PutDefinition(read);
    fileName_ = path;
    file_ = std::move(file);
  });
}

template <class Record>
void DefinedInstrument<Record>::Forget() {
  PutDefinition({});
  fileName_.clear();
  hasDefinition_ = false;
}

template <class Record>
Done DefinedInstrument<Record>::Ready() const {
  const std::string kind(FileKind(definition_));
  if (!hasDefinition_) return Because("There is no " + kind + " to work with.\r\n" + fileName_);
  const std::string text = TextNotCarried(definition_);
  if (text.empty()) return {};
  return Because("The bus can't carry every character of a text in the " + kind + ":\r\n" + text + "\r\n" + fileName_);
}

template <class Record>
Done DefinedInstrument<Record>::Open(const char* name) {
  if (Done ready = Ready(); !ready) return ready;
  return gpib_.GpibOpen(Address(), definition_.InitString.empty() ? "" : definition_.InitString + terminator_.Text,
                        name, terminator_.Bare());
}

template <class Record>
Done DefinedInstrument<Record>::SaveFile(const std::string& path) {
  return Trapped(NamesOf(definition_).Save, path, [&] {
    std::string content = RecordText(definition_);
    ReplaceFile(path, content);
    fileName_ = path;
    file_ = {path, std::move(content)};
  });
}

template <class Record>
std::string DefinedInstrument<Record>::LostBySave() const {
  if (file_.Path() != fileName_) return {};
  std::string lost = file_.LostByReplacing();
  if (lost.empty() && HasFurtherLines(file_.Content(), LineCount(RecordText(definition_))))
    lost = fileName_ + "\r\nalso holds further lines. A save keeps those of the definition only.";
  return lost;
}

template <class Record>
Done DefinedInstrument<Record>::PrintSetup(std::string_view context) {
  const Names names = NamesOf(definition_);
  return Trapped(context.empty() ? names.Print : context, fileName_,
                 [&] { shell_.printer.Print(ListingJob(names.Heading, Listing(definition_))); });
}

template <class Record>
void DefinedInstrument<Record>::PutDefinition(const Record& definition) {
  definition_ = definition;
  terminator_.Derive(definition_.EndOfString);
  hasDefinition_ = true;
}

template <class Record>
void DefinedInstrument<Record>::SetAddress(int address) {
  definition_.Address = static_cast<std::int16_t>(address);
}

template class DefinedInstrument<SigGenDefinition>;
template class DefinedInstrument<MeterDefinition>;
template class DefinedInstrument<PowerMeterDefinition>;

}  // namespace hylden
