#include "shell/qt/OptionsMenu.h"

#include <QAction>
#include <QMenu>
#include <functional>
#include <string_view>

#include "platform/qt/CommandWindow.h"
#include "platform/qt/QtText.h"
#include "shell/FitsSettings.h"
#include "shell/Shell.h"
#include "shell/qt/WorkingForm.h"
#include "shell/qt/frmPickDir.h"

namespace hylden {

namespace {

struct DirectoryEntry {
  const char* name;
  const char* caption;
  std::string_view kind;
};

constexpr DirectoryEntry kEquipDirectory{"mnuFileOptEquipDir", "&Equipment Directory", datakind::kEquip};

constexpr DirectoryEntry kDirectories[] = {
    {"mnuFileOptCalDir", "&Calibration Setups Dir", datakind::kCalibrations},
    {"mnuFileOptTestDir", "&Test Setups Directory", datakind::kTestSetups},
    {"mnuFileOptResultDir", "Test &Results", datakind::kTestResults},
    {"mnuFileOptCableDir", "Ca&ble Directory", datakind::kCables},
    {"mnuFileOptCouplerDir", "Cou&pler Directory", datakind::kFactors},
    {"mnuFileOptProbeDir", "Pr&obe Directory", datakind::kProbes},
    {"mnuFileOptFreqListDir", "Freq &List Dir", datakind::kFreqList},
    {"mnuFileOptInsLossDir", "&Insertion Loss Output Dir", datakind::kInsertionLoss},
};

void ChooseDirectory(Shell& shell, const DirectoryEntry& entry) {
  try {
    frmPickDir picker(shell, CommandWindow::ForBox());
    picker.AskFor(QString::fromLatin1(entry.caption).remove(QLatin1Char('&')));
    picker.StartDir(shell.settings.GetDataDir(entry.kind));
    picker.exec();
    const std::string picked = picker.PickedDir();
    if (!picked.empty() && FitsSettings(shell, picked)) shell.settings.SaveDataDir(entry.kind, picked);
  } catch (const std::exception& error) {
    shell.ReportError(error, "INISettings.SaveDataDir");
  }
}

void ChooseEquipmentFile(Shell& shell) {
  try {
    const std::string current = shell.settings.GetDefaultEquipFile();
    FileRequest request{"Select equipment file", "Equipment Setup Files (*.eqp)|*.eqp|All Files|*.*"};
    if (current.size() < 2)
      request.directory = shell.settings.GetDataDir(datakind::kEquip);
    else
      request.fileName = current;
    const auto chosen = shell.dialogs.OpenFile(request);
    if (chosen && FitsSettings(shell, *chosen)) shell.settings.SaveDefaultEquipFile(*chosen);
  } catch (const std::exception& error) {
    shell.ReportError(error, "INISettings.SaveDefaultEquipFile");
  }
}

/// Runs a command of the form that the menu hangs on.
void RunFrom(QMenu& menu, const QAction& entry, const std::function<void()>& command) {
  QWidget* owner = &menu;
  while (owner->parentWidget()) owner = owner->parentWidget();
  if (auto* const form = qobject_cast<WorkingForm*>(owner))
    form->Guard(FromQt(entry.objectName()), command);
  else
    command();
}

void AddDirectory(QMenu& menu, Shell& shell, const DirectoryEntry& entry) {
  QAction* const action = menu.addAction(QString::fromLatin1(entry.caption));
  action->setObjectName(QString::fromLatin1(entry.name));
  QObject::connect(action, &QAction::triggered, &menu,
                   [&menu, &shell, &entry, action] { RunFrom(menu, *action, [&] { ChooseDirectory(shell, entry); }); });
}

}  // namespace

void FillOptionsMenu(QMenu& menu, Shell& shell) {
  AddDirectory(menu, shell, kEquipDirectory);
  QAction* const file = menu.addAction(QStringLiteral("&Default Equipment File"));
  file->setObjectName(QStringLiteral("mnuFileOptEquipfile"));
  QObject::connect(file, &QAction::triggered, &menu,
                   [&menu, &shell, file] { RunFrom(menu, *file, [&] { ChooseEquipmentFile(shell); }); });
  for (const DirectoryEntry& entry : kDirectories) AddDirectory(menu, shell, entry);
}

}  // namespace hylden
