#pragma once

#include <QObject>
#include <QString>

#include "shell/RecentFiles.h"

class QMenu;

namespace hylden {

/// A submenu of the files used last, filled each time it opens. It says so where one was left out.
class RecentFilesMenu : public QObject {
  Q_OBJECT

 public:
  RecentFilesMenu(QMenu* menu, INISettings& settings, std::string_view kind);

  void Add(const std::string& path) { leftOut_ = !files_.Add(path) || leftOut_; }

 signals:
  void Chosen(const QString& path);

 private:
  void Fill();

  QMenu* menu_;
  RecentFiles files_;
  bool leftOut_ = false;  ///< a path that is too long for the settings
};

}  // namespace hylden
