#pragma once

#include <QIcon>
#include <QObject>
#include <memory>

class QMainWindow;

namespace hylden {

class Bench;
class Shell;
class frmBench;
enum class MeterAt : int;

/// What the windows show of the simulated bench: a notice on each of them, with a button that opens the bench panel.
/// Does nothing when there is no bench.
class BenchWindows : public QObject {
  Q_OBJECT

 public:
  /// @param bench  none when null
  /// @param shell  its notice is the windows'. Both must outlive the windows.
  BenchWindows(Bench* bench, Shell& shell, QIcon icon);
  ~BenchWindows() override;

  bool Present() const { return bench_ != nullptr; }
  /// Puts the notice on a window.
  void Announce(QMainWindow& window);
  /// Plugs the meter as a run needs it, unless the operator wants to do it.
  void Cable(MeterAt place);

  void ShowPanel();
  void ClosePanel();
  /// Keeps the open panel usable beside the form in front.
  void KeepBeside();

 signals:
  void HelpRequested(const QString& topic);
  /// Escape was pressed in the panel.
  void EscapePressed();

 private:
  void MakePanel();

  Bench* bench_;
  Shell& shell_;
  QIcon icon_;
  std::unique_ptr<frmBench> panel_;  ///< from its first opening on
};

}  // namespace hylden
