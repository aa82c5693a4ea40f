// Whatever a file claims, a load holds no more than the store, the table and a little more, and a
// scan with its chunk lists no more than the file, the tables and their lines. Each runs in a
// child process whose address space may grow by only that much.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>

#include "chunks.h"
#include "grf.h"
#include "grf_writer.h"
#include "load_sprites.h"

using namespace vossel;

namespace {

using grfw::Bytes;

// Whether `work` runs to its end with room for `bytes` more of address space.
template <typename Work>
bool FitsIn(int64_t bytes, Work work) {
  const pid_t child = fork();
  if (child == 0) {
    int64_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    const rlimit limit{static_cast<rlim_t>(pages * sysconf(_SC_PAGESIZE) + bytes), RLIM_INFINITY};
    setrlimit(RLIMIT_AS, &limit);
    try {
      work();
    } catch (...) {
      _exit(1);
    }
    _exit(0);
  }
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

// Records that each claim far more than they hold: widths of 32,767 by 255 rows, length words of
// 32,767, run-form streams of 32,759 bytes, all cut short.
Bytes Claims(int records) {
  const Bytes kinds[] = {grfw::RawSprite(0x7FFF, 2, 255, 0x7FFF, 0, 0, {0x7F}),
                         grfw::RawSprite(0x7FFF, 0xFF, 0, 0, 0, 0, {}),
                         grfw::RawSprite(0x7FFF, 8, 255, 0x7FFF, 0, 0, {0x00, 1}),
                         grfw::RawSprite(10, 2, 255, 0x7FFF, 0, 0, {0x80, 0x01})};
  std::vector<Bytes> all;
  for (int i = 0; i < records; ++i) all.push_back(kinds[i % 4]);
  return grfw::FileOf(all, false);
}

}  // namespace

TEST(Memory, ALoadOrAScanHoldsLittleBesideTheStoreAndTheFile) {
  constexpr int64_t kSmall = 256 << 10, kTable = 32767 * sizeof(SpriteRecord);
  EXPECT_FALSE(
      FitsIn(kSmall, [] { std::vector<uint8_t>(2 * kSmall, 1).swap(*new std::vector<uint8_t>); }));
  for (const Bytes& file : {Claims(4), Claims(40000)}) {
    const int64_t size = static_cast<int64_t>(file.size());
    // The store, the table, the row buffer and its copy.
    EXPECT_TRUE(FitsIn(kSpriteDataCapacity + kTable + 2 * kRowBufferSize + kSmall, [&] {
      SpriteStore store;
      LoadSprites(file.data(), static_cast<int32_t>(size), store, nullptr);
    })) << size;
    // A copy of the file, three tables grown by doubling, and lines that grow with the file.
    EXPECT_TRUE(FitsIn(size * 2 + 2 * 32767 * 9 + size * 64 + kSmall, [&] {
      ChunkScan scan;
      ScanBuffer(file, scan);
      for (int32_t v = 0; v < static_cast<int32_t>(scan.SpriteOffset.size()); ++v)
        ChunkList(scan, v);
    })) << size;
  }
}
