#include <gmock/gmock.h>

#include "app/DesktopUtilities.h"
#include "support/DemoStation.h"

namespace hylden {
namespace {

TEST(DesktopUtilities, ShortcutStartsTheProgramOnItsFiles) {
  const std::string text = ShortcutText("/opt/hylden", "/lab/100% \"A\"/st$.eqp", "/lab/b\\c.tst");
  EXPECT_THAT(text, testing::HasSubstr("\nExec=\"/opt/hylden\" \"/e:/lab/100%% \\\\\"A\\\\\"/st\\\\$.eqp\" "
                                       "\"/t:/lab/b\\\\\\\\c.tst\"\n"));
}

TEST(DesktopUtilities, FailuresAreTold) {
  DemoStation<> m;
  FakeDialogs& dialogs = m.dialogs;
  m.documents.equip.EquipFileName.clear();
  RunUtility(Utility::Interpolation, m.station, {});
  EXPECT_EQ(dialogs.LastText(), "Error running Interp.exe");
  RunUtility(Utility::Shortcut, m.station, {});
  EXPECT_EQ(dialogs.LastText(), "Save the equipment first: a shortcut names its file.");
  m.shell.settings.SaveDataDir(datakind::kProbes, m.directory.File("gone"));
  RunUtility(Utility::SystemCheck, m.station, m.directory.File("hylden.hlp"));
  EXPECT_TRUE(dialogs.WasShownContaining("NOT OK:  Data, Probes: " + m.directory.File("gone") + " (not there)"));
  EXPECT_EQ(dialogs.messages.back().icon, MessageIcon::Exclamation);
}

TEST(DesktopUtilities, SystemCheckTellsHowEachInstrumentIsReachedAndWhetherTheBusAnswers) {
  DemoStation<> m;
  const auto shown = [&] {
    RunUtility(Utility::SystemCheck, m.station, {});
    return m.dialogs.LastText();
  };
  EXPECT_THAT(shown(),
              testing::HasSubstr("OK:  Bus: The interface is cleared\r\n      Address 18: simulated bench\r\n"));
  EXPECT_FALSE(m.shell.AtWork()) << "the instruments are free again";
  BusPanel other(m.shell, m.station.instruments);
  ASSERT_TRUE(other.ClearInterface());
  EXPECT_THAT(shown(), testing::HasSubstr("OK:  Bus: The bus window is using the instruments\r\n"));
}

}  // namespace
}  // namespace hylden
