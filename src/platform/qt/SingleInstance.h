#pragma once

#include <QDir>
#include <QLockFile>
#include <QString>
#include <memory>

namespace hylden {

/// One running program per computer, by a lock file in the system's temporary directory. A holder that has crashed
/// holds nothing.
class SingleInstance {
 public:
  explicit SingleInstance(const QString& directory = QDir::tempPath());

  /// Takes the place; false when another instance is running. Where no lock can be kept at all, the program runs.
  bool Claim();

 private:
  QString directory_;
  std::unique_ptr<QLockFile> lock_;
};

}  // namespace hylden
