#pragma once

#include <string>
#include <string_view>

#include "instruments/Command.h"
#include "instruments/Gpib.h"
#include "shell/KnownFile.h"

namespace hylden {

class Shell;

/// An instrument that is driven through its definition: the definition, the file it came from, the terminator it asks
/// for. Without one it refuses to be opened.
template <class Record>
class DefinedInstrument {
 public:
  DefinedInstrument(const DefinedInstrument&) = delete;
  DefinedInstrument& operator=(const DefinedInstrument&) = delete;

  /// A file that fails leaves no definition: another instrument's commands and limits would be worse than none.
  Done LoadFile(const std::string& path);
  /// The same, but a file that fails leaves everything as it was.
  Done LoadFileOrKeep(const std::string& path);
  /// Drops definition and file.
  void Forget();
  /// False after LoadFile has failed and after Forget, until a definition comes in.
  bool HasDefinition() const { return hasDefinition_; }
  /// A failure leaves the old file whole.
  Done SaveFile(const std::string& path);
  /// What a save under FileName would lose of the file, as a line for its question: what somebody else has written into
  /// it since it was loaded or saved, or lines that no definition has. Empty: nothing.
  std::string LostBySave() const;
  /// The definition's listing on the printer. @param context  names a failure; empty: the operation itself
  Done PrintSetup(std::string_view context = {});

  const Record& Definition() const { return definition_; }
  void PutDefinition(const Record& definition);
  const std::string& FileName() const { return fileName_; }
  const std::string& InstrumentName() const { return definition_.InstrumentName; }
  int Address() const { return definition_.Address; }
  void SetAddress(int address);
  double MaximumFreq() const { return definition_.MaximumFreq; }
  double MinimumFreq() const { return definition_.MinimumFreq; }

 protected:
  DefinedInstrument(Shell& shell, Gpib& gpib) : shell_(shell), gpib_(gpib) {}
  ~DefinedInstrument() = default;

  /// Done when there is a definition to work with.
  Done Ready() const;
  /// Finds the instrument and sends its Init String; nothing where that is empty.
  Done Open(const char* name);
  /// Sends a command, ended as the instrument asks for it. @param failure  the first line of why not
  Done SendCommand(const std::string& command, const std::string& failure) {
    return gpib_.Send(Address(), command + terminator_.Text, failure);
  }
  /// @param value  in the unit of the command
  std::string FreqCommand(double value, std::string_view pattern) const {
    return SettingCommand(definition_.FreqSetPrefix, value, pattern, definition_.FreqSetSuffix);
  }
  bool HasFreqCommand() const { return !definition_.FreqSetPrefix.empty() || !definition_.FreqSetSuffix.empty(); }

  Shell& shell_;
  Gpib& gpib_;
  Record definition_;
  Terminator terminator_;

 private:
  std::string fileName_;
  KnownFile file_;
  bool hasDefinition_ = true;
};

}  // namespace hylden
