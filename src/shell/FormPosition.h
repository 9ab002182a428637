#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

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

/// A screen among those of the machine: left or above of the first one its edges are negative.
struct TwipScreen {
  TwipPlace place;
  TwipSize size;
};

/// Where a window goes as it opens: at its stored place when all its corners are on screens that are there now, or else
/// centred on the first one. Edges are taken to the nearest whole number.
/// @param position  "left,top" as stored
/// @param screens   at least one
/// @return nothing when the window keeps its designed place: no text, or one that is not two numbers
std::optional<TwipPlace> SetFormPosition(std::string_view position, TwipSize window,
                                         const std::vector<TwipScreen>& screens);

/// The text that SetFormPosition reads.
std::string FormPositionText(TwipPlace place);

}  // namespace hylden
