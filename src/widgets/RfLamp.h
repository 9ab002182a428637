#pragma once

#include <QLabel>

namespace hylden {

/// Tells whether RF is on, in red when it is or may be.
class RfLamp : public QLabel {
  Q_OBJECT

 public:
  explicit RfLamp(QWidget* parent = nullptr);
  /// @param known  false: whether RF is on is not known, which counts as on
  void ShowRf(bool on, bool known = true);

 protected:
  void changeEvent(QEvent* event) override;

 private:
  void Colour();

  bool on_ = false;
  bool known_ = true;
};

}  // namespace hylden
