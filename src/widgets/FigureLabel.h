#pragma once

#include <QLabel>

namespace hylden {

/// A short text that is drawn as large as its place allows: a figure that is read across the room. It never asks for
/// another place because of its text, so the window stays calm while the figures change.
class FigureLabel : public QLabel {
  Q_OBJECT

 public:
  explicit FigureLabel(QWidget* parent = nullptr);
  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace hylden
