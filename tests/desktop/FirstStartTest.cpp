#include <QCommandLinkButton>

#include "app/Desktop.h"
#include "app/DesktopDemo.h"
#include "app/Station.h"
#include "desktop/FormDriver.h"
#include "documents/qt/frmEquipment.h"
#include "shell/qt/TopMenu.h"
#include "shell/qt/frmWelcome.h"
#include "support/TestShell.h"

namespace hylden {
namespace {

/// A program that was installed, with a demo station, and has no settings yet.
class FirstStartTest : public testing::Test {
 protected:
  FirstStartTest() {
    t.directory.Write("shared/station/station.eqp", "as delivered");
    t.directory.Write("shared/station/bench.txt", "");
    Directories directories(t.directory.File("home"));
    std::filesystem::create_directories(directories.Program);
    directories.Shared = t.directory.File("shared");
    shell_ = std::make_unique<Shell>(Platform{t.dialogs, t.clock, t.events, t.speaker, t.printer, bus_}, directories);
    station_ = std::make_unique<Station>(*shell_);
    Restart();
  }
  void Restart() {
    desktop_.reset();
    desktop_ = std::make_unique<Desktop>(*station_);
    EXPECT_TRUE(desktop_->Start(""));
  }

  TestShell t;
  ScriptedBus bus_;
  std::unique_ptr<Shell> shell_;
  std::unique_ptr<Station> station_;
  std::unique_ptr<Desktop> desktop_;
};

TEST_F(FirstStartTest, WelcomesOnceAndLeadsToWhatIsChosen) {
  auto* const welcome = OpenWindow<frmWelcome>();
  ASSERT_TRUE(welcome);
  EXPECT_TRUE(welcome->findChild<QCommandLinkButton*>("cmdDemo")->isVisible());
  Press(*welcome, "cmdOwnStation");
  EXPECT_TRUE(OpenWindow<frmEquipment>());
  Turn();
  EXPECT_FALSE(OpenWindow<frmWelcome>());
  Restart();
  EXPECT_FALSE(OpenWindow<frmWelcome>());
  EXPECT_TRUE(desktop_->Menu().findChild<QWidget*>("cmdDemo")->isVisible());
}

TEST_F(FirstStartTest, ACopyOfTheDemoStationKeepsWhatItsUserHasChanged) {
  const std::string copy = t.directory.File("documents/Demo station");
  CopyDemoStation(shell_->settings.SharedDirectory(), copy);
  EXPECT_NE(t.directory.Read("documents/Demo station/Hylden.ini").find("Driver=bench"), std::string::npos);
  t.directory.Write("documents/Demo station/station.eqp", "mine");
  std::filesystem::remove(copy + "/bench.txt");
  CopyDemoStation(shell_->settings.SharedDirectory(), copy);
  EXPECT_EQ(t.directory.Read("documents/Demo station/station.eqp"), "mine");
  EXPECT_TRUE(t.directory.Exists("documents/Demo station/bench.txt"));
}

TEST_F(FirstStartTest, SaysWhyTheDemoStationCanNotBeCopied) {
  const std::string inTheWay = t.directory.Write("home/Demo station", "");
  t.dialogs.Answer(MessageAnswer::Ok);
  OpenDemoStation(*shell_);
  EXPECT_TRUE(t.dialogs.LastText().starts_with("The demo station can't be copied to\r\n" + inTheWay + "\r\n"))
      << t.dialogs.LastText();
}

}  // namespace
}  // namespace hylden
