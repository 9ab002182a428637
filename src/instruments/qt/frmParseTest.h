#pragma once

#include <memory>

#include "shell/qt/WorkingForm.h"

namespace hylden {

class ResponseParser;
namespace Ui {
class frmParseTest;
}

/// Tries a parse expression on an answer: its result, and what a driver reads from it, or where the error is.
class frmParseTest : public WorkingForm {
  Q_OBJECT

 public:
  /// @param parser  the drivers' own; must outlive the form
  frmParseTest(Shell& shell, ResponseParser& parser, QWidget* parent = nullptr);
  ~frmParseTest() override;

  void ReturnString(const QString& answer);
  /// "X", the whole answer, stands for none.
  void ParseExpression(const QString& expression);

  QString HelpTopic() const override { return QStringLiteral("Trying a parse expression"); }

 signals:
  /// The expression is to become the definition's.
  void ExpressionSaved(const QString& expression);

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void Test();

  ResponseParser& parser_;
  std::unique_ptr<Ui::frmParseTest> ui_;
};

}  // namespace hylden
