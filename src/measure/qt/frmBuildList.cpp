#include "measure/qt/frmBuildList.h"

#include <QKeyEvent>
#include <QTextBlock>
#include <algorithm>

#include "measure/ReadFreq.h"
#include "platform/qt/QtText.h"
#include "shell/Shell.h"
#include "shell/qt/FormPrompts.h"
#include "text/TextFile.h"
#include "ui_frmBuildList.h"
#include "widgets/PathLabel.h"

namespace hylden {

namespace {

constexpr char kListFilter[] = "Frequency List Files (*.lst)|*.lst|All Files|*.*";
/// Lines that go into the text box in one turn: a hundred thousand at once would freeze the window.
constexpr std::size_t kLinesAtOnce = 5000;

/// The boxes' captions, by the kind of the part.
struct PartCaptions {
  const char *Start, *Step, *StartTip, *StepTip;
};

PartCaptions CaptionsOf(ListPartKind kind) {
  switch (kind) {
    case ListPartKind::Linear:
      return {"&Start, MHz", "S&tep, MHz", "First frequency, MHz; above 0", "Step between frequencies, MHz; above 0"};
    case ListPartKind::Log:
      return {"&Start, MHz", "S&tep, %", "First frequency, MHz; above 0",
              "Step between frequencies, percent of the present frequency; above 0"};
    case ListPartKind::Harmonics:
      break;
  }
  return {"F&undamental, MHz", "# of ha&rmonics", "Fundamental, MHz; above 0",
          "How many multiples of the fundamental, itself the first; a whole number"};
}

}  // namespace

frmBuildList::frmBuildList(Shell& shell, QWidget* parent)
    : SetupForm(shell, parent, "", ""), ui_(std::make_unique<Ui::frmBuildList>()) {
  ui_->setupUi(this);
  On(ui_->cmdAdd, [this] { Add(); });
  for (QLineEdit* const box : {ui_->txtRangeStart, ui_->txtRangeEnd, ui_->txtStepSize}) {
    connect(box, &QLineEdit::returnPressed, ui_->cmdAdd, &QPushButton::click);
    box->installEventFilter(this);
  }
  ui_->txtList->installEventFilter(this);
  ui_->txtList->addAction(ui_->mnuEditDelete);
  On(ui_->cmdClear, [this] { Clear(); });
  On(ui_->mnuFileAdd, [this] { AddFile(); });
  On(ui_->mnuFileSaveAs, [this] { SaveAs(); });
  On(ui_->mnuEditUndo, [this] { Undo(); });
  On(ui_->mnuEditDelete, [this] { DeleteLines(); });
  connect(ui_->cmdExit, &QPushButton::clicked, this, &QWidget::close);
  connect(ui_->mnuFileExit, &QAction::triggered, this, &QWidget::close);
  connect(ui_->mnuHelpList, &QAction::triggered, this, [this] { emit HelpRequested(HelpTopic()); });
  moreLines_.setSingleShot(true);
  connect(&moreLines_, &QTimer::timeout, this, [this] { ShowMoreLines(linesShown_ + kLinesAtOnce); });
  FormEntries entries = EntriesShowing(ListPart());
  for (const char* const box : {"txtRangeStart", "txtRangeEnd", "txtStepSize"}) entries[box].clear();
  ShowEntries(entries);
  ShowList();
}

frmBuildList::~frmBuildList() = default;

void frmBuildList::DoIt(const QString& file) {
  if (auto list = Read(FromQt(file))) builder_.Open(std::move(*list), FromQt(file));
  ShowList();
}

QString frmBuildList::GetFilename() const {
  return ToQt(builder_.File());
}

QString frmBuildList::HelpTopic() const {
  return QStringLiteral("Frequency lists");
}

UsedControls frmBuildList::UsedNow() const {
  return UsedWith(Entries(), ListPart());
}

void frmBuildList::EnableControls() {
  SetupForm::EnableControls();
  ListPart part;
  TakeEntries(Entries(), part, EntryTaker::Refuses::Nothing);
  const PartCaptions captions = CaptionsOf(part.Kind);
  ui_->lblRangeStart->setText(QString::fromLatin1(captions.Start));
  ui_->lblStep->setText(QString::fromLatin1(captions.Step));
  ui_->txtRangeStart->setToolTip(QString::fromLatin1(captions.StartTip));
  ui_->txtStepSize->setToolTip(QString::fromLatin1(captions.StepTip));
  const bool hasEnd = part.Kind != ListPartKind::Harmonics;
  ui_->lblRangeEnd->setVisible(hasEnd);
  ui_->txtRangeEnd->setVisible(hasEnd);
}

void frmBuildList::Add() {
  ListPart part;
  if (const auto failure = TakeEntries(Entries(), part)) return PointOut(*this, *failure, shell_.dialogs);
  builder_.Add(part);
  ShowList();
  ui_->txtRangeStart->setText({});  // with nothing to undo in the box: the next Undo is the list's
  ui_->txtRangeStart->setFocus();
}

std::optional<std::vector<double>> frmBuildList::Read(const std::string& file) {
  auto list = ReadFreq::FileTolist(file);
  if (!shell_.Ok(list) || list->empty()) return std::nullopt;
  return std::move(*list);
}

void frmBuildList::AddFile() {
  const auto path = AskFile("Select frequency list file", kListFilter, datakind::kFreqList, builder_.File());
  if (!path) return;
  ShowCaption(*path);
  ui_->txtList->setPlainText(QStringLiteral("Sorting..."));
  ui_->txtList->viewport()->repaint();
  if (auto list = Read(*path)) {
    if (std::any_of(list->begin(), list->end(), [](double frequency) { return frequency <= 0; }))
      shell_.dialogs.Tell("A frequency of 0 MHz or less would end the list:\r\n" + *path);
    else
      builder_.AddFile(*list, *path);
  }
  ShowList();
}

void frmBuildList::SaveAs() {
  if (builder_.List().empty()) return shell_.dialogs.Tell("Nothing to save!");
  const auto path = AskSaveFile("Frequency List Filename", kListFilter, datakind::kFreqList, builder_.File());
  if (!path || !shell_.Ok(builder_.Save(*path))) return;
  ShowState();
  shell_.Saved(*path);
}

void frmBuildList::Clear() {
  builder_.Clear();
  ShowList();
}

void frmBuildList::Undo() {
  if (builder_.CanUndo()) ShowList(builder_.Undo());
}

/// Takes the selected lines out, else the one with the caret; the others stay where they are on the screen.
void frmBuildList::DeleteLines() {
  QTextCursor cursor = ui_->txtList->textCursor();
  if (!cursor.hasSelection() && focusWidget() != ui_->txtList)  // the caret is not to be seen
    return shell_.dialogs.Tell("Select the lines first that are to be deleted.");
  const int start = cursor.selectionStart(), last = std::max(start, cursor.selectionEnd() - 1);
  const auto lineAt = [this](int position) {
    return static_cast<std::size_t>(ui_->txtList->document()->findBlock(position).blockNumber());
  };
  const std::size_t first = lineAt(start), end = std::min(lineAt(last) + 1, linesShown_);
  if (first >= end) return;  // below the last line
  builder_.Remove(first, end - first);
  linesShown_ -= end - first;
  cursor.setPosition(ui_->txtList->document()->findBlockByNumber(static_cast<int>(first)).position());
  cursor.setPosition(ui_->txtList->document()->findBlockByNumber(static_cast<int>(end)).position(),
                     QTextCursor::KeepAnchor);
  cursor.removeSelectedText();
  ui_->txtList->setTextCursor(cursor);
  ShowState();
}

/// Undo and Delete are the list's where a text has none of its own: a box in which nothing was typed, the list itself.
bool frmBuildList::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::ShortcutOverride) return SetupForm::eventFilter(watched, event);
  const auto* const box = qobject_cast<QLineEdit*>(watched);
  const bool isUndo = static_cast<const QKeyEvent*>(event)->matches(QKeySequence::Undo);
  if (box && (!isUndo || box->isUndoAvailable())) return false;
  event->ignore();
  return true;
}

bool frmBuildList::Settle() {
  const auto ask = [this](const std::string& question) {
    return shell_.dialogs.Show({question, {}, MessageIcon::Question, MessageButtons::YesNoCancel});
  };
  if (builder_.IsUnsaved()) {
    const MessageAnswer answer = ask("Save before exiting?");
    if (answer == MessageAnswer::Yes) SaveAs();
    if (answer != MessageAnswer::No) return false;
  }
  if (builder_.IsUnchanged()) {
    builder_.LetFileGo();
  } else if (!builder_.File().empty()) {
    const MessageAnswer answer = ask("Do you want to use file " + builder_.File() + "?");
    if (answer == MessageAnswer::No) builder_.LetFileGo();
    return answer == MessageAnswer::Yes || answer == MessageAnswer::No;
  }
  return true;
}

bool frmBuildList::QueryUnload() {
  return Settle();
}

/// Shows the list with the caret at a line; what is below comes in the next turns.
void frmBuildList::ShowList(std::size_t line) {
  ui_->txtList->clear();
  linesShown_ = 0;
  ShowMoreLines(line + kLinesAtOnce);
  ui_->txtList->setTextCursor(QTextCursor(ui_->txtList->document()->findBlockByNumber(static_cast<int>(line))));
  ui_->txtList->ensureCursorVisible();
  ShowState();
}

void frmBuildList::ShowMoreLines(std::size_t end) {
  const std::vector<double>& list = builder_.List();
  const auto at = [&](std::size_t line) {
    return list.begin() + static_cast<std::ptrdiff_t>(std::min(line, list.size()));
  };
  QTextCursor below(ui_->txtList->document());
  below.movePosition(QTextCursor::End);
  below.insertText(ToQt(JoinLines(ListLines({at(linesShown_), at(end)}))));
  linesShown_ = std::min(end, list.size());
  if (linesShown_ < list.size()) moreLines_.start(0);
}

void frmBuildList::ShowState() {
  ui_->lblCount->setText(ToQt(ListSummary(builder_.List())));
  ui_->mnuEditUndo->setEnabled(builder_.CanUndo());
  ui_->mnuEditDelete->setEnabled(!builder_.List().empty());
  ShowCaption(builder_.File());
}

void frmBuildList::ShowCaption(const std::string& file) {
  setWindowTitle(
      FittedCaption(QStringLiteral("Frequency List: ") + (file.empty() ? QStringLiteral("(unsaved)") : ToQt(file))));
}

}  // namespace hylden
