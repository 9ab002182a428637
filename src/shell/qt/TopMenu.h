#pragma once

#include <QMainWindow>
#include <memory>
#include <string>

namespace hylden {

namespace Ui {
class TopMenu;
}

/// The main menu: three buttons ask for the working areas, the fourth ends the program; on the simulated
/// bench a fifth asks for its panel, elsewhere one for the demo station.
class TopMenu : public QMainWindow {
  Q_OBJECT

 public:
  explicit TopMenu(QWidget* parent = nullptr);
  ~TopMenu() override;

  /// Caption and heading: the version title.
  void SetTitle(const std::string& title);
  /// Names the files of the station and of the test that are loaded; empty when there is none.
  void ShowStation(const std::string& equipmentFile, const std::string& testFile);
  /// Shows the button of the bench panel, which is there only when the simulated bench drives the program.
  void OfferBench();
  /// Shows the button of the demo station, which is there only when the program came with one.
  void OfferDemo();

 signals:
  void ConfigureRequested();
  void CalibrationRequested();
  void RunTestRequested();
  /// A saved run is to be looked at.
  void OpenRunDataRequested();
  void BenchRequested();
  void DemoRequested();
  void HelpRequested(const QString& topic);
  /// The main menu has closed: the program ends.
  void Closed();

 protected:
  void closeEvent(QCloseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  std::unique_ptr<Ui::TopMenu> ui_;
};

}  // namespace hylden
