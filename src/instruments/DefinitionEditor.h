#pragma once

#include <memory>
#include <optional>
#include <set>
#include <string>

#include "instruments/DefinitionTexts.h"
#include "shell/FormEntries.h"

namespace hylden {

class InstrumentTrial;
class Shell;
struct Instruments;

/// A definition while it is edited and tried. The driver's record is what Test, Save and Print work on: the form's
/// entries go there first. What was loaded or saved last is the station's; to that the driver returns in the end.
class DefinitionEditor {
 public:
  /// @param instruments  their driver of the kind is edited and driven; must outlive the editor
  static std::unique_ptr<DefinitionEditor> Of(InstrumentKind kind, Shell& shell, Instruments& instruments);
  virtual ~DefinitionEditor() = default;
  DefinitionEditor(const DefinitionEditor&) = delete;
  DefinitionEditor& operator=(const DefinitionEditor&) = delete;

  const DefinitionTexts& Texts() const { return TextsOf(kind_); }
  InstrumentKind Kind() const { return kind_; }
  virtual InstrumentTrial& Trial() = 0;
  /// Loaded or saved last; empty when there is none.
  const std::string& File() const { return file_; }

  /// The definition as a form shows it.
  virtual FormEntries Shown() const = 0;
  /// The same of what was loaded or saved last.
  virtual FormEntries Saved() const = 0;
  /// The controls whose entries would be refused.
  virtual std::set<std::string> Refused(const FormEntries& entries) const = 0;
  /// Takes the form over into the driver's record; RF goes off first where that changes.
  /// @return false with a failure, or after a message
  virtual bool Take(const FormEntries& entries, std::optional<EntryFailure>& failure) = 0;
  /// Another unit was chosen: the meter's levels are shown in it.
  virtual void ChangeUnits(FormEntries& entries) = 0;

  /// Begins an empty definition, without a file.
  virtual bool New() = 0;
  /// @return false after a message: everything is as it was, but for the trial, which has ended
  virtual bool Load(const std::string& path) = 0;
  /// What a save under this path would lose, as a line for its question; empty: nothing.
  virtual std::string LostBySave(const std::string& path) const = 0;
  /// Saves the driver's record. @return false after a message
  virtual bool Save(const std::string& path) = 0;
  /// Prints the driver's record.
  virtual void Print() = 0;
  /// Ends the trial, before anything is asked; what was only tried is no more the driver's.
  virtual void Leave() = 0;

 protected:
  explicit DefinitionEditor(InstrumentKind kind) : kind_(kind) {}

  std::string file_;

 private:
  const InstrumentKind kind_;
};

}  // namespace hylden
