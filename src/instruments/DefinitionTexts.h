#pragma once

namespace hylden {

enum class InstrumentKind { SigGen, Meter, PwrMtr };

/// What the definitions of a kind are called: on their editor, in its dialogs and where one is chosen.
struct DefinitionTexts {
  const char* Caption;
  const char* LoadTitle;
  const char* SaveTitle;
  const char* Filter;
  const char* Suffix;
  const char* What;   ///< "The meter definition"
  const char* Topic;  ///< of the manual
};

const DefinitionTexts& TextsOf(InstrumentKind kind);

}  // namespace hylden
