#include "filewatch.h"

#include <QFile>
#include <QFileInfo>

namespace vossel {

FileWatch::FileWatch(QObject* parent) : QObject(parent) {
  timer_.setSingleShot(true);
  connect(&timer_, &QTimer::timeout, this, [this] { Settle(); });
  connect(&watcher_, &QFileSystemWatcher::fileChanged, this, [this] { Stir(); });
  connect(&watcher_, &QFileSystemWatcher::directoryChanged, this, [this] { Stir(); });
}

void FileWatch::Follow(const std::string& path) {
  if (path == path_) {
    Rewatch();
    return;
  }
  Stop();
  if (path.empty()) return;
  path_ = path;
  Rewatch();
  reported_ = seen_ = LookAtFile();
}

void FileWatch::Stop() {
  timer_.stop();
  const QStringList watched = watcher_.files() + watcher_.directories();
  if (!watched.isEmpty()) watcher_.removePaths(watched);
  path_.clear();
}

FileWatch::Look FileWatch::LookAtFile() const {
  const QFileInfo info(QFile::decodeName(path_.c_str()));
  if (!info.exists()) return {};
  return {true, info.size(), info.lastModified(),
          info.fileTime(QFileDevice::FileMetadataChangeTime)};
}

// A running wait goes on: a busy folder must not put the check off for ever. The check at its end
// waits again if the file has moved meanwhile.
void FileWatch::Stir() {
  if (path_.empty() || timer_.isActive()) return;
  seen_ = LookAtFile();
  timer_.start(SettleMs);
}

void FileWatch::Settle() {
  Rewatch();
  const Look now = LookAtFile();
  if (now != seen_) {
    seen_ = now;
    timer_.start(SettleMs);
    return;
  }
  if (now == reported_) return;
  // Whoever is told may be reading a file already: it hears of this one when it has finished.
  if (Busy && Busy()) {
    timer_.start(SettleMs);
    return;
  }
  reported_ = now;
  // Last, since a handler may follow another file or stop.
  if (now.Exists && Changed) Changed();
  if (!now.Exists && Gone) Gone();
}

void FileWatch::Rewatch() {
  if (path_.empty()) return;
  const QString file = QFile::decodeName(path_.c_str());
  const QString folder = QFileInfo(file).absolutePath();
  if (!watcher_.directories().contains(folder) && QFileInfo(folder).isDir())
    watcher_.addPath(folder);
  if (watcher_.files().contains(file)) watcher_.removePath(file);
  if (QFileInfo::exists(file)) watcher_.addPath(file);
}

}  // namespace vossel
