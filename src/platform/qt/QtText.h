#pragma once

#include <QString>
#include <string>
#include <string_view>

namespace hylden {

inline QString ToQt(std::string_view utf8) {
  return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}
inline std::string FromQt(const QString& text) {
  return text.toStdString();
}

/// A message text for the screen: CR LF and CR become plain line ends.
inline QString ScreenText(std::string_view text) {
  return ToQt(text).replace(QLatin1String("\r\n"), QLatin1String("\n")).replace(QLatin1Char('\r'), QLatin1Char('\n'));
}

}  // namespace hylden
