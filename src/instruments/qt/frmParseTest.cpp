#include "instruments/qt/frmParseTest.h"

#include <QFontDatabase>
#include <QKeyEvent>

#include "instruments/ResponseParser.h"
#include "platform/qt/QtText.h"
#include "shell/Shell.h"
#include "ui_frmParseTest.h"

namespace hylden {

frmParseTest::frmParseTest(Shell& shell, ResponseParser& parser, QWidget* parent)
    : WorkingForm(shell, parent), parser_(parser), ui_(std::make_unique<Ui::frmParseTest>()) {
  ui_->setupUi(this);
  // The mark of an error stands below its character.
  ui_->txtExplanation->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  On(ui_->cmdTest, [this] { Test(); });
  On(ui_->cmdSave, [this] {
    emit ExpressionSaved(ui_->txtEvalExpression->text());
    CloseBehindCommand();
  });
  connect(ui_->cmdHelp, &QPushButton::clicked, this, [this] { emit HelpRequested(HelpTopic()); });
  for (const QLineEdit* const box : {ui_->txtRetString, ui_->txtEvalExpression}) {
    connect(box, &QLineEdit::returnPressed, ui_->cmdTest, &QPushButton::click);
    // A result of other texts would be believed.
    connect(box, &QLineEdit::textChanged, this, [this] {
      ui_->txtResult->clear();
      ui_->txtExplanation->clear();
    });
  }
}

frmParseTest::~frmParseTest() = default;

void frmParseTest::ReturnString(const QString& answer) {
  ui_->txtRetString->setText(answer);
}

void frmParseTest::ParseExpression(const QString& expression) {
  ui_->txtEvalExpression->setText(expression.isEmpty() ? QStringLiteral("X") : expression);
}

void frmParseTest::Test() {
  const ParseExplanation outcome =
      parser_.Explain(FromQt(ui_->txtRetString->text()), FromQt(ui_->txtEvalExpression->text()));
  ui_->txtResult->setText(outcome.Parsed ? ToQt(*outcome.Parsed) : QString());
  ui_->txtExplanation->setPlainText(ToQt(outcome.Text));
  if (outcome.At) {
    ui_->txtEvalExpression->setFocus();
    ui_->txtEvalExpression->setCursorPosition(static_cast<int>(*outcome.At));
  }
  if (!outcome.Parsed)
    for (const Message& box : outcome.Parsed.error().Boxes()) shell_.dialogs.Show(box);
}

void frmParseTest::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape)
    close();
  else
    WorkingForm::keyPressEvent(event);
}

}  // namespace hylden
