#pragma once

#include <QPixmap>
#include <QWidget>

namespace hylden {

/// The program's mark: an amplitude-modulated carrier under its envelope.
QPixmap LogoPixmap(int size);

class LogoPicture : public QWidget {
  Q_OBJECT

 public:
  explicit LogoPicture(QWidget* parent = nullptr);
  QSize sizeHint() const override { return {128, 128}; }

 protected:
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace hylden
