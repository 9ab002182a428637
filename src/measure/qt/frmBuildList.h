#pragma once

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

 private:
  void Add();
  void AddFile();
  void SaveAs();
  void Clear();
  /// Asks what becomes of the list. @return whether the form may close; the list to be used is the builder's file then
  bool Settle();
  std::optional<std::vector<double>> Read(const std::string& file);
  void ShowList();
  void ShowCaption(const std::string& file);

  ListBuilder builder_;
  std::unique_ptr<Ui::frmBuildList> ui_;
};

}  // namespace hylden
