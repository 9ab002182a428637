#include "platform/qt/SingleInstance.h"

#include <QFileInfo>

#ifdef Q_OS_UNIX
#include <unistd.h>

#include <cerrno>
#include <csignal>
#endif

namespace hylden {

namespace {

/// Whether the process that the lock file names is gone. Only its own user may remove a left-over lock file from a
/// shared temporary directory, so such a file is looked through instead.
bool HolderIsGone(const QLockFile& lock) {
#ifdef Q_OS_UNIX
  qint64 process = 0;
  QString host, program;
  if (!lock.getLockInfo(&process, &host, &program)) return false;
  return process > 0 && kill(static_cast<pid_t>(process), 0) != 0 && errno == ESRCH;
#else
  Q_UNUSED(lock);
  return false;
#endif
}

QString UserSuffix() {
#ifdef Q_OS_UNIX
  return QString::number(getuid());
#else
  return QStringLiteral("user");
#endif
}

}  // namespace

SingleInstance::SingleInstance(const QString& directory) : directory_(directory) {}

bool SingleInstance::Claim() {
  for (const QString& name : {QStringLiteral("hylden.lock"), QStringLiteral("hylden-%1.lock").arg(UserSuffix())}) {
    lock_ = std::make_unique<QLockFile>(QDir(directory_).filePath(name));
    lock_->setStaleLockTime(0);  // a lock is stale when its holder is gone, never by age
    if (lock_->tryLock()) return true;
    if (lock_->error() != QLockFile::LockFailedError) return true;
    if (!HolderIsGone(*lock_)) return false;
  }
  return true;
}

}  // namespace hylden
