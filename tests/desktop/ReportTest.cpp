#include <cstdlib>
#include <filesystem>

#include "desktop/FormDriver.h"
#include "support/TestShell.h"
#include "testrun/qt/ReportPdf.h"
#include "testrun/qt/frmReport.h"
#include "text/TextFile.h"

namespace hylden {
namespace {

using testing::HasSubstr;

/// A run in a file, with as many steps and a threshold in each hundred.
OpenedRun RunOf(const TestShell& t, int steps) {
  RunData data;
  for (int i = 1; i <= steps; ++i) {
    data.FillStep(data.AddStep(i), StepResult{-10, 140, {}, 40.5});
    if (i % 100 == 0) data.SetComment(data.AddThreshold(i, -1.5), "dark from " + std::to_string(i));
  }
  const std::string file = t.directory.File("radio.run");
  EXPECT_TRUE(FileRunData(data, file, false));
  return *OpenRun(file);
}

std::string TextOfPdf(const std::string& file) {
  EXPECT_EQ(std::system(("pdftotext -layout '" + file + "' '" + file + ".txt'").c_str()), 0);
  return ReadTextFile(file + ".txt");
}

TEST(ReportPdf, HoldsEveryThresholdAndEveryStepOnCountedPages) {
  const TestShell t;
  const std::string file = t.directory.File("radio.pdf");
  ASSERT_TRUE(FileReport(RunOf(t, 300), {ReportPaper::Letter, true}, file));
  EXPECT_THAT(ReadTextFile(file),
              testing::AllOf(testing::StartsWith("%PDF"), HasSubstr("[0 0 612"), HasSubstr("pdfaid:part")));
  const std::string text = TextOfPdf(file);
  for (int i = 100; i <= 300; i += 100) EXPECT_THAT(text, HasSubstr("dark from " + std::to_string(i)));
  EXPECT_THAT(text, testing::ContainsRegex("T3 +300.0 +140.0 +-1.5 +138.5 +8.41"));
  for (int i = 1; i <= 300; ++i)
    EXPECT_THAT(text, testing::ContainsRegex(" " + std::to_string(i) + ".0 +-10.0 +140.0"));
  EXPECT_THAT(text, testing::ContainsRegex("page 2 of [0-9]"));
}

TEST(frmReport, KeepsWhatWasEnteredAndStaysWhereNothingCouldBeSaved) {
  TestShell t;
  frmReport form(t.shell, RunOf(t, 2));
  Find<QLineEdit>(form, "txtLab").setText("A lab");
  Find<QPlainTextEdit>(form, "txtRemarks").setPlainText("one\ntwo");
  Find<QComboBox>(form, "cboPaper").setCurrentIndex(1);
  t.dialogs.AnswerSave(t.directory.File("no/radio.pdf"));
  form.accept();
  EXPECT_TRUE(form.SavedFile().empty());
  EXPECT_THAT(t.dialogs.LastText(), HasSubstr("no/radio.pdf"));
  EXPECT_EQ(t.dialogs.saveRequests.back().fileName, "radio.pdf");
  const std::string file = t.directory.File("radio.pdf");
  t.dialogs.AnswerSave(file);
  form.accept();
  EXPECT_EQ(form.SavedFile(), file);
  EXPECT_THAT(TextOfPdf(file), testing::AllOf(HasSubstr("A lab"), HasSubstr("two")));
  const auto again = OpenRun(t.directory.File("radio.run"));
  ASSERT_TRUE(again && again->Beside.Info);
  EXPECT_EQ(again->Beside.Info->Particulars.Remarks, (std::vector<std::string>{"one", "two"}));
  OpenedRun other = *again;
  other.Beside.Info.reset();
  frmReport next(t.shell, std::move(other));
  EXPECT_EQ(TextOf(next, "txtLab"), "A lab");
  EXPECT_EQ(Find<QPlainTextEdit>(next, "txtRemarks").toPlainText(), "") << "remarks are of one run";
  EXPECT_EQ(Find<QComboBox>(next, "cboPaper").currentText(), "Letter");
  const std::filesystem::path settings = t.shell.settings.ProgramDirectory() + "/Hylden.ini";
  std::filesystem::remove(settings);
  std::filesystem::create_directory(settings);
  t.dialogs.AnswerSave(t.directory.File("next.pdf"));
  next.accept();
  EXPECT_EQ(next.SavedFile(), t.directory.File("next.pdf")) << "settings that can't be written hold nobody up";
}

}  // namespace
}  // namespace hylden
