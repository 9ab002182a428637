#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace hylden {

/// Twips in an inch, the unit of window places and sizes.
constexpr double kTwipsPerInch = 1440;

/// Width and height in twips.
struct TwipSize {
  double width = 0, height = 0;
};

/// A window's left and top edge in twips.
struct TwipPlace {
  double left = 0, top = 0;
  bool operator==(const TwipPlace&) const = default;
};

/// Where a window goes as it opens: at its stored place, or centred when that is not wholly on the screen. Edges are
/// taken to the nearest whole number within 16 bits.
/// @param position  "left,top" as stored
/// @return nothing when the window keeps its designed place: no text, or one that is not two numbers
std::optional<TwipPlace> SetFormPosition(std::string_view position, TwipSize window, TwipSize screen);

/// The text that SetFormPosition reads.
std::string FormPositionText(TwipPlace place);

}  // namespace hylden
