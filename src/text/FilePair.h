#pragma once

#include <string>

namespace hylden {

class FileReplacement;

// Two files that belong together are of one age, wherever their save is cut off. The new ones first wait beside the old
// ones, each as ".hylden-new-" and its name, and then take their places, the first one first. As long as the second one
// does not wait, the old pair counts; as soon as it does, the new one, of which what waits is put in place by whoever
// comes next.

/// Places both. The second one is to be gone first when it fails: it is declared behind the first.
/// @throws RuntimeError; the old pair is untouched, unless the disk fails after the first has taken its place: then the
/// new one counts
void PlacePair(FileReplacement& first, FileReplacement& second);

/// Puts in place what a save that was cut off has left waiting; before either file is read or written.
/// @throws RuntimeError when that can't be: no file of the pair may be used then
void SettlePair(const std::string& first, const std::string& second);

}  // namespace hylden
