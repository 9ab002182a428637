#include "shell/qt/frmPickDir.h"

#include <QDir>
#include <QFileInfo>
#include <QKeyEvent>
#include <QStyle>

#include "platform/qt/QtText.h"
#include "shell/FitsSettings.h"
#include "shell/Shell.h"
#include "text/ExistingPath.h"
#include "text/RuntimeError.h"
#include "ui_frmPickDir.h"
#include "widgets/PathLabel.h"

namespace hylden {

namespace {

constexpr int kPathRole = Qt::UserRole;
constexpr int kIndent = 3;

/// The directories from the root down to this one.
QStringList WayTo(const QString& path) {
  QStringList way;
  QDir directory(path);
  do {
    way.prepend(directory.absolutePath());
  } while (directory.cdUp());
  return way;
}

/// Roots, the user's home, and what is mounted for the user.
QStringList Drives() {
  QStringList drives;
  for (const QFileInfo& root : QDir::drives()) drives << root.absoluteFilePath();
  drives << QDir::homePath();
  const QString user = QString::fromLocal8Bit(qgetenv("USER"));
  for (const QString& mounts : {QStringLiteral("/media/") + user, QStringLiteral("/run/media/") + user}) {
    for (const QFileInfo& drive : QDir(mounts).entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot))
      drives << drive.absoluteFilePath();
  }
  drives.removeDuplicates();
  return drives;
}

}  // namespace

frmPickDir::frmPickDir(Shell& shell, QWidget* parent)
    : QDialog(parent), shell_(shell), ui_(std::make_unique<Ui::frmPickDir>()) {
  ui_->setupUi(this);
  ui_->lstDir->installEventFilter(this);
  connect(ui_->lstDir, &QListWidget::currentItemChanged, this, [this](const QListWidgetItem* row) {
    if (row) ui_->txtDir->setText(row->data(kPathRole).toString());
  });
  connect(ui_->cmdNew, &QPushButton::clicked, this, &frmPickDir::NewFolder);
  ui_->lblFor->hide();
  FillDrives();
  ShowDirectory(QDir::currentPath());
  ShowDrive(directory_);
  connect(ui_->lstDir, &QListWidget::itemDoubleClicked, this, &frmPickDir::Open);
  connect(ui_->cboDrive, &QComboBox::textActivated, this, &frmPickDir::ShowDirectory);
}

frmPickDir::~frmPickDir() = default;

void frmPickDir::StartDir(const std::string& path) {
  if (path.empty()) return;
  const std::string found = ExistingPath(path);
  const QFileInfo directory(ToQt(found));
  if (!directory.isDir()) {
    shell_.dialogs.Tell("Existing entry, " + path + ", does not exist on your system.\r\nChoose another path.");
    return;
  }
  if (!directory.isReadable() || !directory.isExecutable()) {
    shell_.ReportError(RuntimeError(ErrorNumber::PathFileAccessError), "frmPickDir.StartDir");
    return;
  }
  ShowDirectory(directory.absoluteFilePath());
  ShowDrive(directory_);
}

void frmPickDir::accept() {
  const QString path = Chosen();
  const std::string text = FromQt(path);
  if (!QFileInfo(path).isDir()) {
    const MessageAnswer answer = shell_.dialogs.Show(
        {text + " does not exist.\r\nCreate it?", {}, MessageIcon::Question, MessageButtons::YesNo});
    if (answer != MessageAnswer::Yes || !Make(path)) return;
  }
  pickedDir_ = text;
  QDialog::accept();
}

QString frmPickDir::Chosen() const {
  const QString typed = ui_->txtDir->text().trimmed();
  return typed.isEmpty() ? directory_ : QDir::cleanPath(QDir(directory_).absoluteFilePath(typed));
}

bool frmPickDir::Make(const QString& path) {
  if (!FitsSettings(shell_, FromQt(path))) return false;
  if (QDir().mkpath(path)) return true;
  shell_.dialogs.Tell("The directory can't be created:\r\n" + FromQt(path), MessageIcon::Exclamation);
  return false;
}

void frmPickDir::NewFolder() {
  const auto name = shell_.dialogs.InputBox("Name of the new folder", "New Folder");
  const QString folder = name ? ToQt(*name).trimmed() : QString();
  if (folder.isEmpty()) return;
  const QString path = QDir(Chosen()).filePath(folder);
  if (Make(path)) ShowDirectory(path);
}

void frmPickDir::AskFor(const QString& what) {
  ui_->lblFor->setText(what);
  ui_->lblFor->show();
}

void frmPickDir::reject() {
  pickedDir_.clear();
  QDialog::reject();
}

bool frmPickDir::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::KeyPress) return QDialog::eventFilter(watched, event);
  switch (static_cast<QKeyEvent*>(event)->key()) {
    case Qt::Key_Right:
      Open(ui_->lstDir->currentItem());
      return true;
    case Qt::Key_Left:
    case Qt::Key_Backspace:
      ShowDirectory(QFileInfo(directory_).absolutePath());
      return true;
    default:
      return false;
  }
}

void frmPickDir::FillDrives() {
  ui_->cboDrive->addItems(Drives());
}

void frmPickDir::ShowDrive(const QString& path) {
  int best = -1;
  qsizetype bestLength = 0;
  for (int i = 0; i < ui_->cboDrive->count(); ++i) {
    const QString drive = ui_->cboDrive->itemText(i);
    const bool holds =
        path == drive || path.startsWith(drive.endsWith(QLatin1Char('/')) ? drive : drive + QLatin1Char('/'));
    if (!holds || drive.size() < bestLength) continue;
    best = i;
    bestLength = drive.size();
  }
  ui_->cboDrive->setCurrentIndex(best);
}

void frmPickDir::ShowDirectory(const QString& path) {
  directory_ = QDir(path).absolutePath();
  ui_->lstDir->clear();
  const QStringList way = WayTo(directory_);
  int depth = 0;
  for (const QString& part : way) AddRow(part, depth++);
  ui_->lstDir->setCurrentRow(depth - 1);
  for (const QFileInfo& below :
       QDir(directory_)
           .entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name | QDir::IgnoreCase | QDir::LocaleAware))
    AddRow(below.absoluteFilePath(), depth);
  FitPathLabel(FromQt(directory_), *ui_->lblPath);
}

void frmPickDir::AddRow(const QString& path, int depth) {
  const QString name = QDir(path).dirName();
  auto* const row =
      new QListWidgetItem(QString(qsizetype{depth} * kIndent, QLatin1Char(' ')) + (name.isEmpty() ? path : name));
  row->setIcon(style()->standardIcon(directory_.startsWith(path) ? QStyle::SP_DirOpenIcon : QStyle::SP_DirClosedIcon));
  row->setData(kPathRole, path);
  row->setData(Qt::AccessibleTextRole, path);
  ui_->lstDir->addItem(row);
}

void frmPickDir::Open(const QListWidgetItem* row) {
  if (row) ShowDirectory(row->data(kPathRole).toString());
}

}  // namespace hylden
