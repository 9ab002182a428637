#pragma once

#include <QObject>
#include <QString>

#include "shell/RecentFiles.h"

class QMenu;

namespace hylden {

/// A submenu of the files used last, filled each time it opens.
class RecentFilesMenu : public QObject {
  Q_OBJECT

 public:
  RecentFilesMenu(QMenu* menu, INISettings& settings, std::string_view kind);

  void Add(const std::string& path) { files_.Add(path); }

 signals:
  void Chosen(const QString& path);

 private:
  void Fill();

  QMenu* menu_;
  RecentFiles files_;
};

}  // namespace hylden
