#pragma once

#include <QLabel>
#include <string>

class QResizeEvent;

namespace hylden {

/// A label for a file path: the tag keeps the full path, the caption is as much of it as fits the label's width on one
/// line, and is fitted again when the label is resized. Read the path from the tag, never from the caption.
class PathLabel : public QLabel {
  Q_OBJECT
  Q_PROPERTY(QString tag READ Tag)

 public:
  explicit PathLabel(QWidget* parent = nullptr);

  QString Tag() const { return tag_; }
  /// The full path.
  std::string Path() const { return tag_.toStdString(); }
  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  friend void FitPathLabel(const std::string& path, PathLabel& label);
  void Fit();

  QString tag_;
};

/// A window's caption; a path in it that is too long is shortened in its middle, so that the file's name is seen.
QString FittedCaption(const QString& caption);

/// Shows a path in a label; an empty path clears it. The tool tip becomes the full path.
void FitPathLabel(const std::string& path, PathLabel& label);

}  // namespace hylden
