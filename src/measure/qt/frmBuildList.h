#pragma once

#include <QTimer>
#include <memory>
#include <optional>
#include <vector>

#include "measure/ListBuilder.h"
#include "shell/qt/SetupForm.h"

namespace hylden {

namespace Ui {
class frmBuildList;
}

/// Composes a frequency list of ranges, harmonics and other lists, and saves it.
class frmBuildList : public SetupForm {
  Q_OBJECT

 public:
  explicit frmBuildList(Shell& shell, QWidget* parent = nullptr);
  ~frmBuildList() override;

  /// Begins with a list file, which its caller uses now; with an empty list where there is none, or it can't be read.
  void DoIt(const QString& file);
  /// The list file that the caller is to use when the form has closed; empty: it keeps what it had.
  QString GetFilename() const;

  QString HelpTopic() const override;

 protected:
  bool QueryUnload() override;
  UsedControls UsedNow() const override;
  void EnableControls() override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void Add();
  void AddFile();
  void SaveAs();
  void Clear();
  void Undo();
  void DeleteLines();
  /// Asks what becomes of the list. @return whether the form may close; the list to be used is the builder's file then
  bool Settle();
  std::optional<std::vector<double>> Read(const std::string& file);
  void ShowList(std::size_t line = 0);
  void ShowMoreLines(std::size_t end);
  void ShowState();
  void ShowCaption(const std::string& file);

  ListBuilder builder_;
  std::size_t linesShown_ = 0;
  QTimer moreLines_;
  std::unique_ptr<Ui::frmBuildList> ui_;
};

}  // namespace hylden
