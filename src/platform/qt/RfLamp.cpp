#include "platform/qt/RfLamp.h"

#include <QApplication>
#include <QEvent>

#include "platform/qt/ThemeColors.h"

namespace hylden {

RfLamp::RfLamp(QWidget* parent) : QLabel(parent) {
  setAutoFillBackground(true);
  setAlignment(Qt::AlignCenter);
  Colour();
}

void RfLamp::ShowRf(bool on) {
  if (on == on_) return;
  on_ = on;
  Colour();
}

void RfLamp::Colour() {
  QPalette colours;
  if (on_) {
    const QPalette theme = QApplication::palette();
    colours.setColor(QPalette::Window, HighlightRed(theme));
    colours.setColor(QPalette::WindowText, IsDark(theme) ? Qt::black : Qt::white);
  }
  if (colours != palette()) setPalette(colours);
  setText(on_ ? QStringLiteral("RF ON") : QStringLiteral("RF off"));
}

void RfLamp::changeEvent(QEvent* event) {
  QLabel::changeEvent(event);
  if (event->type() == QEvent::PaletteChange) Colour();
}

}  // namespace hylden
