#include "filewrite.h"

#include <atomic>

#include <dirent.h>
#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace vossel {

namespace {

// Hidden, and apart from any name a command gives: ".vossel-PID-SERIAL.part".
constexpr char kTemporaryPrefix[] = ".vossel-";
constexpr char kTemporarySuffix[] = ".part";

// Numbered across the process: several folders of one run may be written at once.
std::string TemporaryName() {
  static std::atomic<uint32_t> serial{0};
  static const pid_t self = getpid();
  return kTemporaryPrefix + std::to_string(self) + '-' + std::to_string(serial++) +
         kTemporarySuffix;
}

// The process that wrote the temporary file `name`, or 0 when the name is not one of ours.
pid_t TemporaryOwner(const char* name) {
  const size_t prefix = sizeof kTemporaryPrefix - 1;
  if (std::strncmp(name, kTemporaryPrefix, prefix) != 0) return 0;
  unsigned long pid = 0;
  unsigned long serial = 0;
  int end = 0;
  if (std::sscanf(name + prefix, "%lu-%lu.part%n", &pid, &serial, &end) != 2) return 0;
  if (name[prefix + static_cast<size_t>(end)] != '\0' || pid == 0 || pid > INT32_MAX) return 0;
  return static_cast<pid_t>(pid);
}

// Temporary files of processes that are gone: runs killed before they could remove them.
void RemoveStaleTemporaries(int dirFd) {
  const int scanFd = dup(dirFd);
  if (scanFd < 0) return;
  DIR* dir = fdopendir(scanFd);
  if (dir == nullptr) {
    close(scanFd);
    return;
  }
  while (const dirent* entry = readdir(dir)) {
    const pid_t owner = TemporaryOwner(entry->d_name);
    if (owner != 0 && kill(owner, 0) != 0 && errno == ESRCH) unlinkat(dirFd, entry->d_name, 0);
  }
  closedir(dir);
}

bool Fail(WriteFailure& failure, const std::string& path, int error) {
  failure.Path = path;
  failure.ErrorNumber = error;
  return false;
}

std::string PathOf(const WriteFolder& folder, const std::string& name) {
  return folder.Path.empty() || folder.Path.back() == '/' ? folder.Path + name
                                                          : folder.Path + '/' + name;
}

// Every byte, through short writes and interruptions.
bool WriteAll(int fd, const char* bytes, size_t size) {
  while (size > 0) {
    const ssize_t n = write(fd, bytes, size);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return false;
    if (n == 0) {
      errno = EIO;
      return false;
    }
    bytes += n;
    size -= static_cast<size_t>(n);
  }
  return true;
}

}  // namespace

bool OpenWriteFolder(const std::string& path, WriteFolder& folder, WriteFailure& failure) {
  folder.Path = path;
  folder.Descriptor = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (folder.Descriptor < 0) return Fail(failure, path, errno);
  RemoveStaleTemporaries(folder.Descriptor);
  return true;
}

bool WriteWhole(WriteFolder& folder, const std::string& name, const void* bytes, size_t size,
                WriteFailure& failure) {
  std::string temporary = TemporaryName();
  const int fd =
      openat(folder.Descriptor, temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
  if (fd < 0) return Fail(failure, PathOf(folder, name), errno);
  bool written = WriteAll(fd, static_cast<const char*>(bytes), size);
  int error = errno;
  // Some file systems report a failed write only at the close.
  if (close(fd) != 0 && written) {
    written = false;
    error = errno;
  }
  if (!written) {
    unlinkat(folder.Descriptor, temporary.c_str(), 0);
    return Fail(failure, PathOf(folder, name), error);
  }
  const std::lock_guard lock(folder.Lock);
  folder.Pending.push_back({std::move(temporary), name});
  return true;
}

bool PlaceWritten(WriteFolder& folder, WriteFailure& failure) {
  const std::lock_guard lock(folder.Lock);
  if (syncfs(folder.Descriptor) != 0) return Fail(failure, folder.Path, errno);
  // In the order of their names, so that a kill leaves the first ones.
  std::sort(folder.Pending.begin(), folder.Pending.end(),
            [](const PendingFile& a, const PendingFile& b) { return a.Name < b.Name; });
  const int fd = folder.Descriptor;
  for (size_t i = 0; i < folder.Pending.size(); ++i) {
    const PendingFile& file = folder.Pending[i];
    // A second name for the file that is there, so that a failure further on can put it back.
    PlacedFile placed{file.Name, TemporaryName()};
    if (linkat(fd, file.Name.c_str(), fd, placed.Backup.c_str(), 0) != 0) placed.Backup.clear();
    if (renameat(fd, file.Temporary.c_str(), fd, file.Name.c_str()) != 0) {
      Fail(failure, PathOf(folder, file.Name), errno);
      if (!placed.Backup.empty()) unlinkat(fd, placed.Backup.c_str(), 0);
      folder.Pending.erase(folder.Pending.begin(), folder.Pending.begin() + static_cast<long>(i));
      return false;
    }
    folder.Placed.push_back(std::move(placed));
  }
  folder.Pending.clear();
  if (fsync(fd) != 0) return Fail(failure, folder.Path, errno);
  // Every file is in place: what they replaced can go.
  for (const PlacedFile& placed : folder.Placed)
    if (!placed.Backup.empty()) unlinkat(fd, placed.Backup.c_str(), 0);
  folder.Placed.clear();
  return true;
}

void UndoWritten(WriteFolder& folder) {
  const std::lock_guard lock(folder.Lock);
  const int fd = folder.Descriptor;
  for (const PendingFile& file : folder.Pending) unlinkat(fd, file.Temporary.c_str(), 0);
  for (const PlacedFile& placed : folder.Placed) {
    if (placed.Backup.empty())
      unlinkat(fd, placed.Name.c_str(), 0);
    else
      renameat(fd, placed.Backup.c_str(), fd, placed.Name.c_str());
  }
  folder.Pending.clear();
  folder.Placed.clear();
}

void CloseWriteFolder(WriteFolder& folder) {
  if (folder.Descriptor >= 0) close(folder.Descriptor);
  folder.Descriptor = -1;
}

std::string WriteFailureText(const WriteFailure& failure) {
  return "cannot write '" + failure.Path + "': " + std::strerror(failure.ErrorNumber);
}

}  // namespace vossel
