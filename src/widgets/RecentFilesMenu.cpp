#include "widgets/RecentFilesMenu.h"

#include <QAction>
#include <QMenu>

#include "platform/qt/QtText.h"
#include "shell/INISettings.h"

namespace hylden {

RecentFilesMenu::RecentFilesMenu(QMenu* menu, INISettings& settings, std::string_view kind)
    : QObject(menu), menu_(menu), files_(settings, kind) {
  connect(menu_, &QMenu::aboutToShow, this, &RecentFilesMenu::Fill);
}

void RecentFilesMenu::Fill() {
  menu_->clear();
  int number = 0;
  for (const std::string& path : files_.List()) {
    QString caption = ToQt(path);
    caption.replace(QLatin1Char('&'), QLatin1String("&&"));
    QAction* const entry = menu_->addAction(QStringLiteral("&%1  %2").arg(++number).arg(caption));
    connect(entry, &QAction::triggered, this, [this, path] { emit Chosen(ToQt(path)); });
  }
  if (number == 0) menu_->addAction(QStringLiteral("None yet"))->setEnabled(false);
  if (leftOut_)
    menu_->addAction(QStringLiteral("A path of more than 127 characters can't be kept here"))->setEnabled(false);
}

}  // namespace hylden
