#pragma once

#include <QMainWindow>
#include <QTimer>
#include <memory>

#include "bench/BenchReadout.h"

namespace hylden {

namespace Ui {
class frmBench;
}

/// The bench panel: what the virtual instruments are doing, how the product fares, and how the meter is cabled. It
/// looks at the bench a few times a second while it can be seen, so a run takes no notice of it.
class frmBench : public QMainWindow {
  Q_OBJECT

 public:
  /// The bench must outlive the panel.
  explicit frmBench(Bench& bench, QWidget* parent = nullptr);
  ~frmBench() override;

  /// Whether the program may cable the meter as its runs need it.
  bool CablesByItself() const;
  /// Shows what the bench is doing now.
  void Refresh();

 signals:
  void HelpRequested(const QString& topic);
  /// Whoever opened the panel knows whether the key means it or a run.
  void EscapePressed();

 protected:
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void ConnectCabling();
  void AskForHelp();
  void ShowGenerator(const BenchReadout& bench);
  void ShowMeters(const BenchReadout& bench);
  void ShowProduct(const ProductReadout& product);
  void ShowCabling(MeterAt place);

  Bench& bench_;
  std::unique_ptr<Ui::frmBench> ui_;
  QTimer watch_;
};

}  // namespace hylden
