#include "widgets/HaltButton.h"

#include <QApplication>
#include <QEvent>

#include "platform/qt/RepaintFilter.h"
#include "widgets/ThemeColors.h"

namespace hylden {

HaltButton::HaltButton(QWidget* parent) : QPushButton(parent) {
  setProperty(kHaltsProperty, true);
  Colour();
}

void HaltButton::Colour() {
  const QColor red = HighlightRed(QApplication::palette());
  QPalette colours;
  for (const QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive})
    colours.setColor(group, QPalette::ButtonText, red);
  if (palette().color(QPalette::Active, QPalette::ButtonText) != red) setPalette(colours);
}

void HaltButton::changeEvent(QEvent* event) {
  QPushButton::changeEvent(event);
  if (event->type() == QEvent::PaletteChange) Colour();
}

}  // namespace hylden
