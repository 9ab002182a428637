#include "documents/qt/RunSetupForm.h"

#include <QPushButton>

#include "documents/Equip.h"
#include "platform/qt/QtText.h"
#include "shell/Shell.h"
#include "widgets/PathLabel.h"

namespace hylden {

void RunSetupForm::ConnectList() {
  On(findChild<QPushButton*>(QStringLiteral("cmdListFile")), [this] { SelectListFile(); });
  On(findChild<QPushButton*>(QStringLiteral("cmdCreateList")),
     [this] { emit CreateListRequested(ToQt(Entries()["lblListFile"])); });
}

void RunSetupForm::SelectListFile() {
  if (const auto path = AskListFile(Entries()["lblListFile"])) UseList(ToQt(*path));
}

bool RunSetupForm::TellMissing(const std::optional<StartFailure>& missing) {
  if (!missing) return false;
  shell_.dialogs.Tell(missing->Text);
  emit EditEquipmentRequested(missing->EquipmentTab);
  return true;
}

}  // namespace hylden
