#pragma once

#include <QLabel>

namespace hylden {

/// Tells whether RF is on, in red when it is.
class RfLamp : public QLabel {
  Q_OBJECT

 public:
  explicit RfLamp(QWidget* parent = nullptr);
  void ShowRf(bool on);

 protected:
  void changeEvent(QEvent* event) override;

 private:
  void Colour();

  bool on_ = false;
};

}  // namespace hylden
