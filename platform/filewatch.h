// Follows one file on disk and tells when it has been rewritten, once its writer has finished, and
// when it has gone.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include <QDateTime>
#include <QFileSystemWatcher>
#include <QObject>
#include <QTimer>

namespace vossel {

class FileWatch : public QObject {
  Q_OBJECT

 public:
  explicit FileWatch(QObject* parent = nullptr);

  // Follows `path` from now on; the same path again keeps what has been seen of it. The empty
  // text stops following.
  void Follow(const std::string& path);
  void Stop();
  const std::string& Path() const { return path_; }

  // How long, in milliseconds, the file's size and time must stay as they are before a change
  // counts: a writer may still be at work until then.
  int32_t SettleMs = 300;
  // The file has been rewritten, or has come back, and has stood still since.
  std::function<void()> Changed;
  // The file is no longer there. Changed follows if it comes back.
  std::function<void()> Gone;
  // True while the news must wait: it is told again a moment later.
  std::function<bool()> Busy;

 private:
  struct Look {
    bool Exists = false;
    int64_t Size = -1;
    QDateTime Modified, MetadataChanged;
    bool operator==(const Look&) const = default;
  };
  Look LookAtFile() const;
  void Stir();
  void Settle();
  // Watches the path again: a file renamed over it or made anew is another file to the system.
  void Rewatch();

  std::string path_;
  QFileSystemWatcher watcher_;
  QTimer timer_;
  Look seen_;      // at the last stir or check
  Look reported_;  // at the last report, or when following began
};

}  // namespace vossel
