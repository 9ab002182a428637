#include "shell/qt/AboutBox.h"

#include <QSysInfo>

#include "platform/Dialogs.h"
#include "platform/qt/QtText.h"
#include "shell/Version.h"

namespace hylden {

void ShowAbout(Dialogs& dialogs) {
  const QString text =
      QStringLiteral(
          "%1\r\nConducted RF immunity testing\r\n\r\nFree software under the GNU General Public License, "
          "version 3 or later,\r\nwithout any warranty.\r\n\r\nSystem: %2 (%3)\r\nKernel: %4 %5\r\nQt: %6")
          .arg(ToQt(VersionTitle()), QSysInfo::prettyProductName(), QSysInfo::currentCpuArchitecture(),
               QSysInfo::kernelType(), QSysInfo::kernelVersion(), QString::fromLatin1(qVersion()));
  dialogs.Show({FromQt(text), "About Hylden", MessageIcon::Information});
}

}  // namespace hylden
