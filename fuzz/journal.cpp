#include "app/Recovery.h"
#include "fuzz/Fuzzed.h"
#include "run/JournalText.h"
#include "text/TextFile.h"

/// The input as a journal, and its lines with the checks that they would have had.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace hylden;
  const std::string text(TextOf(data, size));
  std::string sealed;
  for (LineReader lines(text); !lines.AtEnd();) sealed += SealedLine(lines.NextLine());
  for (const std::string& journal : {text, sealed})
    if (const auto recovery = RecoveryOf(journal)) (void)DescriptionOf(*recovery);
  return 0;
}
