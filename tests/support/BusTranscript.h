#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/GpibDriver.h"

namespace hylden {

/// The calls on a bus as lines of text, in order:
///   `> 18 FREQ 100.0 MHZ\r\n`   bytes sent; control characters and bytes above 126 are escaped (\r \n \t \xNN)
///   `< 13 72.669`               bytes received
///   `IFC`  `FIND 18`  `REMOTE 18`  `LOCAL 18`  `TMO 8`
/// A call that ended with ERR carries its error code: `> 18 RF ON !2`. A read that found nothing is `< 13 !6`.
/// The placeholder 0 at the head of an address list is left out.
class BusTranscript {
 public:
  const std::vector<std::string>& Lines() const { return lines_; }
  /// The lines of commands sent to the address, without the "> address " before them.
  std::vector<std::string> SentTo(int address) const;
  /// The lines so far; the transcript starts anew.
  std::vector<std::string> Take();
  void Clear() { lines_.clear(); }

  /// Called after every line, with the line.
  std::function<void(const std::string&)> onLine;

  void Add(std::string line, const GpibStatusCells* cells);

 private:
  std::vector<std::string> lines_;
};

/// Bytes with control characters and bytes above 126 escaped.
std::string Escaped(std::string_view bytes);
/// "FIND 18" and the like.
std::string AddressLine(std::string_view verb, std::span<const std::int16_t> addresses);
/// The addresses of a list up to its terminator, without the placeholder 0 at its head.
std::vector<std::int16_t> ListedAddresses(std::span<const std::int16_t> addresses);

/// Leaves a finished call's outcome in the cells, as a driver does; null cells are skipped.
void SetSuccess(GpibStatusCells* cells, std::size_t count, int extraBits = 0);
void SetFailure(GpibStatusCells* cells, int error, int extraBits = 0);

}  // namespace hylden
