#pragma once

#include <QLabel>
#include <string_view>

#include "platform/qt/QtText.h"
#include "text/Pattern.h"

namespace hylden {

/// What a figure shows as long as there is none.
inline constexpr char kNoFigure[] = "--";

/// Text that is already there costs no layout and no painting: a countdown is written a thousand times a second.
inline void ShowText(QLabel& label, const QString& text) {
  if (label.text() != text) label.setText(text);
}

inline void ShowNumber(QLabel& label, double value, std::string_view pattern) {
  ShowText(label, ToQt(Format(value, pattern)));
}

}  // namespace hylden
