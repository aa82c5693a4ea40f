// The file system's own cost of what export does with its files: N files of given sizes and bytes,
// each written under a hidden temporary name, one syncfs for all, then renamed into place in name
// order and the folder synced. Nothing is decoded or encoded: timed against `vossel-cli export`
// of the same GRF file, it shows what export adds to the writing.
//
//   bench_filecreate pack DIR PACK     the files of an export's DIR into one file, once
//   bench_filecreate write PACK DIR    the same files made again in DIR (made when missing)
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

// A pack: for each file a line "NAME SIZE\n" and its bytes, one after the other.
int Pack(const fs::path& dir, const fs::path& pack) {
  std::vector<fs::path> files;
  for (const fs::directory_entry& e : fs::directory_iterator(dir))
    if (e.is_regular_file()) files.push_back(e.path());
  std::sort(files.begin(), files.end());
  std::ofstream out(pack, std::ios::binary);
  for (const fs::path& f : files) {
    std::ifstream in(f, std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    out << f.filename().string() << ' ' << bytes.size() << '\n' << bytes;
  }
  std::printf("%zu files packed\n", files.size());
  return out ? 0 : 1;
}

bool WriteAll(int fd, const char* bytes, size_t size) {
  while (size > 0) {
    const ssize_t n = write(fd, bytes, size);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return false;
    bytes += n;
    size -= static_cast<size_t>(n);
  }
  return true;
}

int Write(const fs::path& pack, const fs::path& dir) {
  std::ifstream in(pack, std::ios::binary);
  const std::string all((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  struct File {
    std::string Name, Temporary;
    size_t At = 0, Size = 0;
  };
  std::vector<File> files;
  for (size_t at = 0; at < all.size();) {
    const size_t space = all.find(' ', at), end = all.find('\n', at);
    if (space == std::string::npos || end == std::string::npos) break;
    File f;
    f.Name = all.substr(at, space - at);
    f.Size = std::stoull(all.substr(space + 1, end - space - 1));
    f.At = end + 1;
    at = f.At + f.Size;
    files.push_back(f);
  }
  fs::create_directories(dir);
  const int dirFd = open(dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (dirFd < 0) return 1;
  const std::string prefix = ".vossel-" + std::to_string(getpid()) + "-";
  for (size_t i = 0; i < files.size(); ++i) {
    File& f = files[i];
    f.Temporary = prefix + std::to_string(i) + ".part";
    const int fd =
        openat(dirFd, f.Temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (fd < 0 || !WriteAll(fd, all.data() + f.At, f.Size) || close(fd) != 0) {
      std::perror(f.Name.c_str());
      return 1;
    }
  }
  if (syncfs(dirFd) != 0) return 1;
  for (const File& f : files)
    if (renameat(dirFd, f.Temporary.c_str(), dirFd, f.Name.c_str()) != 0) return 1;
  if (fsync(dirFd) != 0) return 1;
  close(dirFd);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 4 && std::strcmp(argv[1], "pack") == 0) return Pack(argv[2], argv[3]);
  if (argc == 4 && std::strcmp(argv[1], "write") == 0) return Write(argv[2], argv[3]);
  std::fprintf(stderr, "usage: bench_filecreate pack DIR PACK | write PACK DIR\n");
  return 2;
}
