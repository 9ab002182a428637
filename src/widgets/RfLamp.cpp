#include "widgets/RfLamp.h"

#include <QApplication>
#include <QEvent>

#include "widgets/ThemeColors.h"

namespace hylden {

RfLamp::RfLamp(QWidget* parent) : QLabel(parent) {
  setAutoFillBackground(true);
  setAlignment(Qt::AlignCenter);
  Colour();
}

void RfLamp::ShowRf(bool on, bool known) {
  if (on == on_ && known == known_) return;
  on_ = on;
  known_ = known;
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
  const QString state = on_ ? QStringLiteral("RF ON") : QStringLiteral("RF off");
  setText(known_ ? state : QStringLiteral("RF ON?"));
  setToolTip(known_ ? QString() : QStringLiteral("The generator did not take a command: RF may be on"));
}

void RfLamp::changeEvent(QEvent* event) {
  QLabel::changeEvent(event);
  if (event->type() == QEvent::PaletteChange) Colour();
}

}  // namespace hylden
