#include "fileio.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace vossel {

namespace {

// Positions in a whole-file buffer are signed 32-bit, and a record may reach up to 64 KiB past its
// head.
constexpr int64_t kLargestFile = 0x7FFFFFFF - 0x10000;

template <typename Result>
Result Failure(int number) {
  Result result;
  result.ErrorNumber = number;
  result.Description = std::strerror(number);
  return result;
}

int64_t ModifiedOf(const struct stat& info) {
  return int64_t{info.st_mtim.tv_sec} * 1000000000 + info.st_mtim.tv_nsec;
}

}  // namespace

FileOpenResult OpenForReading(const std::string& path) {
  const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return Failure<FileOpenResult>(errno);
  struct stat info {};
  int number = 0;
  if (::fstat(fd, &info) != 0)
    number = errno;
  else if (S_ISDIR(info.st_mode))
    number = EISDIR;
  else if (!S_ISREG(info.st_mode) || info.st_size == 0)
    number = ENODATA;  // no buffer for 0 bytes
  if (number != 0) {
    ::close(fd);
    return Failure<FileOpenResult>(number);
  }
  FileOpenResult result;
  result.Ok = true;
  result.File = FileHandle(new OpenedFile{fd, int64_t{info.st_size}, ModifiedOf(info)},
                           [](const OpenedFile* f) {
                             ::close(f->Descriptor);
                             delete f;
                           });
  return result;
}

ReadOutcome CheckUnchanged(const OpenedFile& file) {
  struct stat info {};
  if (::fstat(file.Descriptor, &info) != 0) return {ReadEnd::Failed, errno, 0};
  if (info.st_size != file.Length || ModifiedOf(info) != file.Modified)
    return {ReadEnd::Changed, 0, int64_t{info.st_size}};
  return {};
}

ReadOutcome ReadAt(const OpenedFile& file, int64_t at, uint8_t* to, int64_t n) {
  int64_t done = 0;
  while (done < n) {
    const ssize_t got = ::pread(file.Descriptor, to + done, static_cast<size_t>(n - done),
                                static_cast<off_t>(at + done));
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return {ReadEnd::Failed, errno, 0};
    if (got == 0) break;  // the file ends early
    done += got;
  }
  // A short read, or bytes read from a file rewritten since it was opened.
  const ReadOutcome now = CheckUnchanged(file);
  if (now.End == ReadEnd::Ok && done < n) return {ReadEnd::Changed, 0, at + done};
  return now;
}

FileReadResult ReadAll(const OpenedFile& file) {
  if (file.Length > kLargestFile) return Failure<FileReadResult>(EFBIG);
  FileReadResult result;
  result.Bytes.resize(static_cast<size_t>(file.Length));
  const ReadOutcome read = ReadAt(file, 0, result.Bytes.data(), file.Length);
  // A file that shrank or grew under us, or a read error: either way it cannot be read whole.
  if (read.End != ReadEnd::Ok)
    return Failure<FileReadResult>(read.End == ReadEnd::Failed ? read.ErrorNumber : EIO);
  result.Ok = true;
  return result;
}

FileReadResult ReadWholeFile(const std::string& path) {
  const FileOpenResult open = OpenForReading(path);
  if (!open.Ok) {
    FileReadResult result;
    result.ErrorNumber = open.ErrorNumber;
    result.Description = open.Description;
    return result;
  }
  return ReadAll(*open.File);
}

}  // namespace vossel
