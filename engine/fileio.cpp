#include "fileio.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace vossel {

namespace {

// Positions in a file are signed 32-bit, and a record may reach up to 64 KiB past its head.
constexpr int64_t kLargestFile = 0x7FFFFFFF - 0x10000;

FileReadResult Failure(int number) {
  FileReadResult result;
  result.ErrorNumber = number;
  result.Description = std::strerror(number);
  return result;
}

}  // namespace

FileReadResult ReadWholeFile(const std::string& path) {
  const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return Failure(errno);
  struct stat info {};
  if (::fstat(fd, &info) != 0) {
    const int number = errno;
    ::close(fd);
    return Failure(number);
  }
  int number = 0;
  if (S_ISDIR(info.st_mode))
    number = EISDIR;
  else if (!S_ISREG(info.st_mode) || info.st_size == 0)
    number = ENODATA;  // no buffer for 0 bytes
  else if (info.st_size > kLargestFile)
    number = EFBIG;
  if (number != 0) {
    ::close(fd);
    return Failure(number);
  }
  FileReadResult result;
  result.Bytes.resize(static_cast<size_t>(info.st_size));
  size_t done = 0;
  while (done < result.Bytes.size()) {
    const ssize_t got = ::read(fd, result.Bytes.data() + done, result.Bytes.size() - done);
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) {
      // A file that shrank under us, or a read error: either way it cannot be read whole.
      number = got < 0 ? errno : EIO;
      ::close(fd);
      return Failure(number);
    }
    done += static_cast<size_t>(got);
  }
  ::close(fd);
  result.Ok = true;
  return result;
}

}  // namespace vossel
