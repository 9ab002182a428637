#pragma once

#include <memory>
#include <optional>
#include <string>

namespace hylden {

/// A file to which lines are added and which outlives its program, however that ends. Nobody waits for it, and it never
/// fails: what keeps it from being written is the Trouble of its Journals. It stays when this object goes.
class JournalWriter {
 public:
  virtual ~JournalWriter() = default;
  /// @param lines  whole lines
  virtual void Append(std::string lines) = 0;
  /// Removes the file, once what was appended has been written.
  virtual void Remove() = 0;
};

/// Where runs keep their rows while they record.
class Journals {
 public:
  virtual ~Journals() = default;
  /// @param name  what the name of the file begins with
  virtual std::unique_ptr<JournalWriter> Begin(const std::string& name) = 0;
  /// Why the last one begun can't be written; nothing where it can.
  virtual std::optional<std::string> Trouble() const = 0;
};

}  // namespace hylden
