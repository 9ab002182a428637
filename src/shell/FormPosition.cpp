#include "shell/FormPosition.h"

#include <algorithm>
#include <cstdint>
#include <limits>

#include "text/Numbers.h"

namespace hylden {

namespace {

std::optional<double> Edge(std::string_view piece) {
  if (!IsNumeric(piece)) return std::nullopt;
  using Limits = std::numeric_limits<std::int16_t>;
  return std::clamp<double>(NearestWhole(LeadingNumber(piece)), Limits::min(), Limits::max());
}

}  // namespace

std::optional<TwipPlace> SetFormPosition(std::string_view position, TwipSize window, TwipSize screen) {
  if (position.size() <= 2) return std::nullopt;
  const std::size_t comma = position.find(',');
  if (comma == std::string_view::npos) return std::nullopt;
  const std::string_view rest = position.substr(comma + 1);
  const auto left = Edge(position.substr(0, comma));
  const auto top = Edge(rest.substr(0, rest.find(',')));
  if (!left || !top) return std::nullopt;
  const bool onScreen =
      *left >= 0 && *left + window.width <= screen.width && *top >= 0 && *top + window.height <= screen.height;
  if (onScreen) return TwipPlace{*left, *top};
  return TwipPlace{(screen.width - window.width) / 2, NearestWhole((screen.height - window.height) / 2)};
}

std::string FormPositionText(TwipPlace place) {
  return ShortestText(place.left) + "," + ShortestText(place.top);
}

}  // namespace hylden
