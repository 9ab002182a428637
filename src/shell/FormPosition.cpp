#include "shell/FormPosition.h"

#include <algorithm>

#include "text/Numbers.h"

namespace hylden {

namespace {

std::optional<double> Edge(std::string_view piece) {
  if (!IsNumeric(piece)) return std::nullopt;
  return NearestWhole(LeadingNumber(piece));
}

bool IsOn(const TwipScreen& screen, double x, double y) {
  return x >= screen.place.left && x <= screen.place.left + screen.size.width && y >= screen.place.top &&
         y <= screen.place.top + screen.size.height;
}

bool IsVisible(TwipPlace place, TwipSize window, const std::vector<TwipScreen>& screens) {
  const auto shown = [&](double x, double y) {
    return std::any_of(screens.begin(), screens.end(), [&](const TwipScreen& screen) { return IsOn(screen, x, y); });
  };
  const double right = place.left + window.width, bottom = place.top + window.height;
  return shown(place.left, place.top) && shown(right, place.top) && shown(place.left, bottom) && shown(right, bottom);
}

TwipPlace Centred(TwipSize window, const TwipScreen& screen) {
  return {screen.place.left + (screen.size.width - window.width) / 2,
          screen.place.top + NearestWhole((screen.size.height - window.height) / 2)};
}

}  // namespace

std::optional<TwipPlace> SetFormPosition(std::string_view position, TwipSize window,
                                         const std::vector<TwipScreen>& screens) {
  if (position.size() <= 2) return std::nullopt;
  const std::size_t comma = position.find(',');
  if (comma == std::string_view::npos) return std::nullopt;
  const std::string_view rest = position.substr(comma + 1);
  const auto left = Edge(position.substr(0, comma));
  const auto top = Edge(rest.substr(0, rest.find(',')));
  if (!left || !top) return std::nullopt;
  const TwipPlace place{*left, *top};
  return IsVisible(place, window, screens) ? place : Centred(window, screens.front());
}

std::string FormPositionText(TwipPlace place) {
  return ShortestText(place.left) + "," + ShortestText(place.top);
}

}  // namespace hylden
