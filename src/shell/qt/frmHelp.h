#pragma once

#include <QMainWindow>
#include <QMap>
#include <QString>
#include <QTextCursor>
#include <QTextDocument>
#include <QVector>
#include <memory>

class QTreeWidgetItem;
class QUrl;

namespace hylden {

namespace Ui {
class frmHelp;
}

/// The user's manual: one Markdown document with its headings as contents, search, back and forward.
class frmHelp : public QMainWindow {
  Q_OBJECT

 public:
  explicit frmHelp(QWidget* parent = nullptr);
  ~frmHelp() override;

  /// @return false when the file can't be read
  bool LoadFile(const QString& path);
  /// Shows the heading with this text, without regard to case and to blanks beside a colon; the beginning when there is
  /// none or the text is empty.
  void OpenTopic(const QString& topic);

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  /// Who opens the help looks for something.
  void showEvent(QShowEvent* event) override;

 private:
  void FillContents();
  void AddHeading(const QString& heading, int level, int position);
  void Show(int position);
  void Visit(int position);
  void Step(int by);
  void Follow(const QUrl& link);
  void GoToSearch();
  void FindNext();
  void FindPrevious();
  void Find(QTextDocument::FindFlags direction, QTextCursor::MoveOperation otherEnd);
  void MarkChapter();
  bool Scroll(int key);
  void MarkPlaces(const QString& text);
  void LeaveSearchOrClose();

  std::unique_ptr<Ui::frmHelp> ui_;
  QMap<QString, int> topics_, anchors_;    ///< places in the text
  QVector<QTreeWidgetItem*> lastOfLevel_;  ///< the contents entry that a deeper heading goes below
  QVector<int> visited_;
  qsizetype current_ = -1;
};

}  // namespace hylden
