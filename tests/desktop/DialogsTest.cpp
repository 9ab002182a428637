#include "desktop/FormDriver.h"
#include "platform/qt/CommandWindow.h"
#include "platform/qt/QtDialogs.h"
#include "platform/qt/QtText.h"
#include "support/TempDir.h"

namespace hylden {
namespace {

TEST(FileFilters, OffersEveryKindInBothCases) {
  EXPECT_EQ(QtFilters("Equipment Setup Files (*.eqp)|*.eqp|All Files|*.*"),
            (QStringList{"Equipment Setup Files (*.eqp *.EQP)", "All Files (*)"}));
  EXPECT_EQ(QtFilters("Tables|*.los;*.fac"), QStringList{"Tables (*.los *.LOS *.fac *.FAC)"});
  EXPECT_TRUE(QtFilters("").isEmpty());
  EXPECT_EQ(DefaultSuffix("Equipment Setup Files (*.eqp)|*.eqp|All Files|*.*"), "eqp");
  EXPECT_EQ(DefaultSuffix("All Files|*.*"), "");
  EXPECT_EQ(DefaultSuffix(""), "");
}

TEST(QtDialogs, EscapeIsHaltAndTheCautiousAnswerAndSoIsTheEndOfTheProgramWithoutAHalt) {
  const std::pair<MessageButtons, MessageAnswer> boxes[] = {{MessageButtons::Ok, MessageAnswer::Ok},
                                                            {MessageButtons::OkCancel, MessageAnswer::Cancel},
                                                            {MessageButtons::YesNo, MessageAnswer::No},
                                                            {MessageButtons::YesNoCancel, MessageAnswer::Cancel},
                                                            {MessageButtons::RetryCancel, MessageAnswer::Cancel}};
  for (const auto& [buttons, answer] : boxes) {
    QtDialogs dialogs;
    int halts = 0;
    dialogs.onEscape = [&] { ++halts; };
    OnModalWindow([](QWidget& box) { QTest::keyClick(&box, Qt::Key_Escape); });
    EXPECT_EQ(dialogs.Show({"Go on?", {}, MessageIcon::Question, buttons}), answer);
    EXPECT_EQ(halts, 1);
    OnModalWindow([&](QWidget&) { dialogs.CloseBoxes(); });
    EXPECT_EQ(dialogs.Show({"Go on?", {}, MessageIcon::Question, buttons}), answer);
    EXPECT_EQ(halts, 1);
  }
}

TEST(QtDialogs, ShowsLinesAndTheProgramsOwnTitle) {
  QtDialogs dialogs;
  OnModalWindow([](QWidget& window) {
    auto& box = dynamic_cast<QMessageBox&>(window);
    EXPECT_EQ(box.windowTitle(), "Hylden");
    EXPECT_EQ(box.text(), "one\ntwo\nthree <b>");
    EXPECT_EQ(box.textFormat(), Qt::PlainText);
    EXPECT_EQ(box.accessibleDescription(), box.text());
    box.button(QMessageBox::Yes)->click();
  });
  EXPECT_EQ(dialogs.Show({"one\r\ntwo\rthree <b>", {}, MessageIcon::None, MessageButtons::YesNo}), MessageAnswer::Yes);
}

TEST(QtDialogs, PointsAtABoxWhileTheProgramIsBusy) {
  QtDialogs dialogs;
  const auto shape = [] { return QApplication::overrideCursor() ? QApplication::overrideCursor()->shape() : -1; };
  QApplication::setOverrideCursor(Qt::WaitCursor);
  OnModalWindow([&](QWidget& box) {
    EXPECT_EQ(shape(), Qt::ArrowCursor);
    QTest::keyClick(&box, Qt::Key_Escape);
  });
  dialogs.Tell("Error initializing meter");
  EXPECT_EQ(shape(), Qt::WaitCursor);
  QApplication::restoreOverrideCursor();
  EXPECT_EQ(shape(), -1);
}

TEST(QtDialogs, EnterAnswersButNoKeyThatIsHeldDownFromBefore) {
  QtDialogs dialogs;
  int halts = 0;
  dialogs.onEscape = [&] { ++halts; };
  OnModalWindow([](QWidget& window) {
    auto& box = dynamic_cast<QMessageBox&>(window);
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Escape})
      for (QObject* const target : {static_cast<QObject*>(box.button(QMessageBox::Ok)), static_cast<QObject*>(&box)}) {
        QKeyEvent held(QEvent::KeyPress, key, Qt::NoModifier, QString(), true);
        QCoreApplication::sendEvent(target, &held);
        EXPECT_TRUE(box.isVisible()) << key;
      }
    QTest::keyClick(&box, Qt::Key_Return);
  });
  EXPECT_EQ(dialogs.Show({"Sure?", {}, MessageIcon::None, MessageButtons::OkCancel}), MessageAnswer::Ok);
  EXPECT_EQ(halts, 0);
}

TEST(QtDialogs, InputBoxTellsCancelFromEmptyText) {
  QtDialogs dialogs;
  OnModalWindow([](QWidget& box) {
    auto* const edit = box.findChild<QLineEdit*>();
    ASSERT_NE(edit, nullptr);
    edit->clear();
    QTest::keyClick(edit, Qt::Key_Return);
  });
  EXPECT_EQ(dialogs.InputBox("Level", "", "10"), std::optional<std::string>(""));
  int halts = 0;
  dialogs.onEscape = [&] { ++halts; };
  OnModalWindow([](QWidget& box) {
    EXPECT_GE(box.width(), 400) << "no room for a comment";
    QTest::keyClick(&box, Qt::Key_Escape);
  });
  EXPECT_EQ(dialogs.InputBox("Level", "", "10"), std::nullopt);
  EXPECT_EQ(halts, 0) << "in a text Escape just leaves the text";
}

TEST(QtDialogs, SavesUnderANameThatCarriesTheKindsEnding) {
  constexpr const char *kLoss = "Loss (*.los)|*.los|Text (*.txt)|*.txt|All|*.*", *kRecord = "Record (*.cal)|*.cal";
  const struct {
    const char *filters, *preset;
    const char* typed;   ///< nullptr: nothing, just Save
    const char* filter;  ///< chosen; nullptr: the first
    const char* saved;   ///< nullptr: nothing
  } cases[] = {{kLoss, "*.los", nullptr, nullptr, nullptr},
               {kLoss, "", "cable", nullptr, "cable.los"},
               {kLoss, "", "cable", "Text (*.txt *.TXT)", "cable.txt"},
               {kLoss, "", "cable 1.5 m", nullptr, "cable 1.5 m"},
               {kLoss, "*.txt", "cable", nullptr, "cable.txt"},  // the kind that is wanted
               {kRecord, "", "level 1.5", nullptr, "level 1.5.cal"},
               {kRecord, "", "what?.cal", nullptr, nullptr}};
  const TempDir directory;
  std::string told;
  const Someone reader([&](QWidget& modal) {
    if (auto* const box = qobject_cast<QMessageBox*>(&modal)) told = FromQt(box->text()), box->accept();
  });
  for (const auto& c : cases) {
    SCOPED_TRACE(c.typed ? c.typed : c.preset);
    OnModalWindow([&](QWidget& window) {
      auto& dialog = dynamic_cast<QFileDialog&>(window);
      if (c.filter) dialog.selectNameFilter(QString::fromLatin1(c.filter)), emit dialog.filterSelected(c.filter);
      if (c.typed) dialog.selectFile(QString::fromLatin1(c.typed));
      QMetaObject::invokeMethod(&dialog, "accept");
      if (dialog.isVisible()) dialog.reject();
    });
    const auto saved = QtDialogs().SaveFile({"Save", c.filters, directory.File(""), c.preset});
    ASSERT_EQ(saved.has_value(), c.saved != nullptr);
    EXPECT_EQ(saved ? QFileInfo(ToQt(*saved)).fileName().toStdString() : "", c.saved ? c.saved : "");
  }
  EXPECT_NE(told.find("what?.cal"), std::string::npos) << told;
}

/// Where the next file dialog begins; it is answered with the file, or cancelled.
QString BeginsIn(QtDialogs& dialogs, const FileRequest& request, const std::string& chosen = {}) {
  QString directory;
  OnModalWindow([&](QWidget& window) {
    auto& dialog = dynamic_cast<QFileDialog&>(window);
    directory = dialog.directory().absolutePath();
    if (!chosen.empty()) {
      dialog.selectFile(ToQt(chosen));
      QMetaObject::invokeMethod(&dialog, "accept");
    }
    if (dialog.isVisible()) dialog.reject();
  });
  dialogs.OpenFile(request);
  return directory;
}

TEST(QtDialogs, FileDialogBeginsWhereTheOperatorIsAtWork) {
  const TempDir loaded, used, configured, other;
  const std::string filter = "Tables (*.los)|*.los";
  used.Write("a.los", "1 1\r\n");
  QtDialogs dialogs;
  const FileRequest request{"Open", filter, configured.Path()};
  EXPECT_EQ(BeginsIn(dialogs, request), ToQt(configured.Path()));
  EXPECT_EQ(BeginsIn(dialogs, request, used.File("a.los")), ToQt(configured.Path())) << "a cancel is no use";
  EXPECT_EQ(BeginsIn(dialogs, request), ToQt(used.Path()));
  EXPECT_EQ(BeginsIn(dialogs, {"Open", filter, configured.Path(), loaded.File("b.los")}), ToQt(loaded.Path()));
  EXPECT_EQ(BeginsIn(dialogs, {"Open", filter, configured.Path(), "/gone/b.los"}), ToQt(used.Path()));
  EXPECT_EQ(BeginsIn(dialogs, {"Open", "Lists|*.lst", configured.Path()}), ToQt(configured.Path())) << "another kind";
  EXPECT_EQ(BeginsIn(dialogs, {"Open", filter, other.Path()}), ToQt(other.Path())) << "configured since";
}

TEST(QtDialogs, BoxBelongsToTheFormWhoseCommandRuns) {
  QtDialogs dialogs;
  QWidget form, hidden, beside;
  form.show();
  beside.show();
  QApplication::setActiveWindow(&beside);
  const auto parent = [&] {
    const QWidget* found = nullptr;
    OnModalWindow([&](QWidget& box) {
      found = box.parentWidget();
      dynamic_cast<QDialog&>(box).reject();
    });
    dialogs.Tell("Something");
    return found;
  };
  EXPECT_EQ(parent(), &beside) << "no command: the active window";
  const CommandWindow outer(form);
  EXPECT_EQ(parent(), &form);
  {
    const CommandWindow inner(hidden);
    EXPECT_EQ(parent(), &form) << "a window that can't be seen shows no box";
  }
  QWidget onTop(&form, Qt::Window | Qt::WindowStaysOnTopHint);
  onTop.show();
  EXPECT_EQ(parent(), &onTop) << "it would cover the box";
  beside.hide();
  beside.setWindowModality(Qt::ApplicationModal);
  beside.show();
  EXPECT_EQ(parent(), &beside) << "the modal window locks the others";
}

TEST(QtDialogs, BoxOutlivesTheWindowItStandsOn) {
  QtDialogs dialogs;
  auto* const window = new QWidget;
  window->show();
  QApplication::setActiveWindow(window);
  OnModalWindow([window](QWidget&) { delete window; });
  EXPECT_EQ(dialogs.Show({"Go on?", {}, MessageIcon::None, MessageButtons::YesNo}), MessageAnswer::No);
}

}  // namespace
}  // namespace hylden
