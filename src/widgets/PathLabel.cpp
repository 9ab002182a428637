#include "widgets/PathLabel.h"

#include <QEvent>
#include <QFontMetrics>
#include <algorithm>

#include "platform/qt/QtText.h"
#include "shell/FormInput.h"

namespace hylden {

namespace {

constexpr int kUsualCharacters = 40, kFewestCharacters = 12;

}  // namespace

PathLabel::PathLabel(QWidget* parent) : QLabel(parent) {
  setTextFormat(Qt::PlainText);
  setMargin(3);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QSize PathLabel::sizeHint() const {
  return {fontMetrics().averageCharWidth() * kUsualCharacters, QLabel::sizeHint().height()};
}

QSize PathLabel::minimumSizeHint() const {
  return {fontMetrics().averageCharWidth() * kFewestCharacters, QLabel::minimumSizeHint().height()};
}

void PathLabel::resizeEvent(QResizeEvent* event) {
  QLabel::resizeEvent(event);
  Fit();
}

void PathLabel::changeEvent(QEvent* event) {
  QLabel::changeEvent(event);
  if (event->type() == QEvent::FontChange) Fit();
}

void PathLabel::Fit() {
  const int room = contentsRect().width() - 2 * margin();
  const auto fits = [&](const QString& text) { return fontMetrics().horizontalAdvance(text) <= room; };
  const QString shortened = ToQt(ShortenPath(Path()));
  if (fits(tag_))
    setText(tag_);
  else
    setText(fits(shortened) ? shortened : ToQt(FileNameOnly(Path())));
}

QString FittedCaption(const QString& caption) {
  constexpr qsizetype kLongest = 72, kFewestInFront = 8;
  const qsizetype name = std::max(caption.lastIndexOf(QLatin1Char('/')), caption.lastIndexOf(QLatin1Char('\\')));
  const qsizetype path = caption.indexOf(QLatin1String(": ")) + 2;
  if (caption.size() <= kLongest || path < 2 || name <= path + kFewestInFront) return caption;
  const QString behind = QStringLiteral("...") + caption.mid(name);
  const qsizetype front = std::max(kLongest - behind.size(), path + kFewestInFront);
  return front >= name ? caption : caption.left(front) + behind;
}

void FitPathLabel(const std::string& path, PathLabel& label) {
  label.tag_ = ToQt(path);
  label.setToolTip(label.tag_);
  label.setAccessibleDescription(label.tag_);
  label.Fit();
}

}  // namespace hylden
