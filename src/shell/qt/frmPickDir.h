#pragma once

#include <QDialog>
#include <memory>
#include <string>

class QListWidgetItem;

namespace hylden {

class Shell;
namespace Ui {
class frmPickDir;
}

/// Picks a directory: a list of the directories on the way to the current one and of those below it, and the drives.
/// The box shows what OK takes: the highlighted directory, or what is typed, which is made when it does not exist yet.
class frmPickDir : public QDialog {
  Q_OBJECT

 public:
  explicit frmPickDir(Shell& shell, QWidget* parent = nullptr);
  ~frmPickDir() override;

  /// Says what the directory is for.
  void AskFor(const QString& what);
  /// Points the lists at a directory; one that does not exist is told, and the lists stay where they were.
  void StartDir(const std::string& path);
  /// The directory picked with OK; empty after Cancel.
  std::string PickedDir() const { return pickedDir_; }

  void accept() override;
  void reject() override;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void FillDrives();
  void ShowDirectory(const QString& path);
  void ShowDrive(const QString& path);
  void Open(const QListWidgetItem* row);
  void AddRow(const QString& path, int depth);
  QString Chosen() const;
  bool Make(const QString& path);
  void NewFolder();

  Shell& shell_;
  std::unique_ptr<Ui::frmPickDir> ui_;
  QString directory_;
  std::string pickedDir_;
};

}  // namespace hylden
