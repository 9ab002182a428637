#pragma once

#include <QPushButton>

namespace hylden {

/// The button that ends a run: in red, so that it is found at a glance in every theme.
class HaltButton : public QPushButton {
  Q_OBJECT

 public:
  explicit HaltButton(QWidget* parent = nullptr);

 protected:
  void changeEvent(QEvent* event) override;

 private:
  void Colour();
};

}  // namespace hylden
