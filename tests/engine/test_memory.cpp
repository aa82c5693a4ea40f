// Whatever a file claims, a load holds no more than the store, the table and a small constant, and
// a scan no more than the file and its tables. Counted by standing in for malloc in this program.
#include <gtest/gtest.h>

#include <malloc.h>

#include <algorithm>
#include <cstdlib>

#include "chunks.h"
#include "grf.h"
#include "grf_writer.h"

extern "C" {
void* __libc_malloc(size_t);
void* __libc_calloc(size_t, size_t);
void* __libc_realloc(void*, size_t);
void __libc_free(void*);
}

namespace {

int64_t live = 0, peak = 0;  // the tests run on one thread

void* Held(void* p, int64_t before = 0) {
  live += (p ? static_cast<int64_t>(malloc_usable_size(p)) : 0) - before;
  peak = std::max(peak, live);
  return p;
}

}  // namespace

extern "C" {
void* malloc(size_t n) {
  return Held(__libc_malloc(n));
}
void* calloc(size_t n, size_t size) {
  return Held(__libc_calloc(n, size));
}
void* realloc(void* old, size_t n) {
  const int64_t before = old ? static_cast<int64_t>(malloc_usable_size(old)) : 0;
  void* p = __libc_realloc(old, n);
  return p ? Held(p, before) : p;
}
void free(void* p) {
  live -= p ? static_cast<int64_t>(malloc_usable_size(p)) : 0;
  __libc_free(p);
}
}

namespace {

using grfw::Bytes;

// Peak bytes held above what was held before `work` ran.
template <typename Work>
int64_t PeakOf(Work work) {
  const int64_t base = live;
  peak = base;
  work();
  return peak - base;
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

constexpr int64_t kTable = 32767 * static_cast<int64_t>(sizeof(SpriteRecord));
constexpr int64_t kSmall = 256 * 1024;

}  // namespace

TEST(Memory, ALoadOrAScanHoldsLittleBesideTheStoreAndTheFile) {
  for (const Bytes& file : {Claims(4), Claims(40000)}) {
    // The store, the table, the row buffer and its copy.
    int64_t used = PeakOf([&] {
      SpriteStore store;
      LoadSprites(file.data(), static_cast<int32_t>(file.size()), store, nullptr);
    });
    EXPECT_LE(used, kSpriteDataCapacity + kTable + 2 * kRowBufferSize + kSmall) << file.size();
    // A copy of the file and three tables of at most 32,767 entries, grown by doubling; chunk
    // lists that grow with the file, not with what a record claims.
    ChunkScan scan;
    used = PeakOf([&] { ScanBuffer(file, scan); });
    EXPECT_LE(used, static_cast<int64_t>(file.size()) * 2 + 2 * 32767 * 9 + kSmall);
    used = PeakOf([&] {
      for (int32_t v = 0; v < static_cast<int32_t>(scan.SpriteOffset.size()); ++v)
        ChunkList(scan, v);
    });
    EXPECT_LE(used, static_cast<int64_t>(file.size()) * 64 + kSmall) << file.size();
  }
}
