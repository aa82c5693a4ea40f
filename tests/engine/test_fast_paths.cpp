// The loader's fast paths against a straightforward byte-loop decoder: the same table and the same
// bytes, on the real files and on random streams of every chunk shape.
#include <gtest/gtest.h>

#include <filesystem>
#include <random>

#include "fileio.h"
#include "load_helper.h"
#include "reference.h"

using grfw::Bytes;

namespace {

void ExpectSameAsReference(const Bytes& bytes, const std::string& what) {
  const Loaded l = Load(bytes);
  const ReferenceLoad ref = ReferenceDecode(bytes.data(), static_cast<int32_t>(bytes.size()));
  ASSERT_FALSE(ref.Failed) << what;
  ASSERT_EQ(l.Count(), ref.Count) << what;
  for (int i = 0; i < l.Count(); ++i) {
    const SpriteRecord& a = l.At(i);
    const SpriteRecord& b = ref.Table[static_cast<size_t>(i)];
    ASSERT_EQ(a.DataOffset, b.DataOffset) << what << " sprite " << i;
    ASSERT_EQ(a.Size, b.Size) << what << " sprite " << i;
    ASSERT_EQ(a.CompressedSize, b.CompressedSize) << what << " sprite " << i;
    ASSERT_EQ(a.Flags, b.Flags) << what << " sprite " << i;
  }
  ASSERT_EQ(l.Store.SpriteData.size(), ref.Data.size()) << what;
  const auto mismatch = std::mismatch(ref.Data.begin(), ref.Data.end(), l.Store.SpriteData.begin());
  const long at = mismatch.first - ref.Data.begin();
  std::string where;
  for (int i = 0; i < l.Count(); ++i)
    if (l.At(i).DataOffset <= at && at < l.At(i).DataOffset + l.At(i).Size)
      where = " in sprite " + std::to_string(i) + " (flags " + std::to_string(l.At(i).Flags) +
              ", " + std::to_string(l.At(i).Width) + " x " + std::to_string(l.At(i).Height) +
              ", byte " + std::to_string(at - l.At(i).DataOffset) + ")";
  EXPECT_EQ(mismatch.first, ref.Data.end()) << what << ": first different byte at " << at << where;
}

// A random stream for `decoded` bytes: data chunks of 1..128 and offset chunks of every length
// and distance, those reaching before the sprite's start included.
Bytes RandomStream(std::mt19937& rng, int32_t decoded) {
  Bytes s;
  int32_t made = 0;
  while (made < decoded) {
    const int32_t left = decoded - made;
    if (rng() % 3 == 0) {
      const int32_t n = std::min<int32_t>(left, 1 + static_cast<int32_t>(rng() % 128));
      Bytes data(static_cast<size_t>(n));
      for (uint8_t& b : data) b = static_cast<uint8_t>(rng());
      grfw::AddData(s, data);
      made += n;
    } else {
      const int32_t n = std::min<int32_t>(left, 1 + static_cast<int32_t>(rng() % 16));
      const int32_t pick = static_cast<int32_t>(rng() % 4);
      const int32_t distance = pick == 0   ? static_cast<int32_t>(rng() % 8)
                               : pick == 1 ? 8 + static_cast<int32_t>(rng() % 8)
                                           : static_cast<int32_t>(rng() % 2048);
      grfw::AddOffset(s, n, distance);
      made += n;
    }
  }
  return s;
}

}  // namespace

TEST(FastPaths, RealFilesGiveTheReferenceBytes) {
  for (const char* name : {"openttd.grf", "orig_extra.grf"}) {
    const std::string path = std::string(VOSSEL_BASESET_DIR) + "/" + name;
    if (!std::filesystem::exists(path)) GTEST_SKIP() << path << " is not installed";
    const FileReadResult file = ReadWholeFile(path);
    ASSERT_TRUE(file.Ok);
    ExpectSameAsReference(file.Bytes, name);
  }
}

TEST(FastPaths, RandomStreamsGiveTheReferenceBytes) {
  std::mt19937 rng(20261122);
  for (int round = 0; round < 40; ++round) {
    std::vector<Bytes> records;
    const int sprites = 1 + static_cast<int>(rng() % 40);
    for (int i = 0; i < sprites; ++i) {
      const int kind = static_cast<int>(rng() % 5);
      if (kind == 0) {
        Bytes data(rng() % 300);
        for (uint8_t& b : data) b = static_cast<uint8_t>(rng());
        records.push_back(grfw::ActionRecord(data));
      } else if (kind == 1) {
        // Run form: runs that stay in their rows and some that go on into the next.
        const uint16_t width = static_cast<uint16_t>(1 + rng() % 60);
        std::vector<std::vector<grfw::Run>> rows(1 + rng() % 30);
        for (auto& row : rows)
          for (size_t k = rng() % 4; k > 0; --k) {
            Bytes pixels(rng() % 70);
            for (uint8_t& b : pixels) b = static_cast<uint8_t>(rng());
            row.push_back({static_cast<uint8_t>(rng() % width), pixels});
          }
        records.push_back(grfw::RunSprite(width, rows));
      } else {
        const uint16_t width = static_cast<uint16_t>(1 + rng() % 300);
        const uint8_t height = static_cast<uint8_t>(1 + rng() % 100);
        const int32_t size = width * height;
        const uint8_t flags = kind == 2 ? 2 : 0;
        if (size > 32759 && flags == 0) continue;  // the length word could not hold it
        records.push_back(
            grfw::SpriteRec(flags, height, width, 0, 0, RandomStream(rng, size), size));
      }
    }
    ExpectSameAsReference(grfw::FileOf(records), "round " + std::to_string(round));
  }
}

TEST(FastPaths, DistanceZeroShowsWhatEarlierSpritesLeft) {
  // A run that spills 38 bytes past its 2 x 1 sprite, then a plain sprite whose second chunk, of
  // distance 0, keeps 15 of those bytes: a block written over them would show zeros instead.
  Bytes plain;
  grfw::AddData(plain, {1});
  grfw::AddOffset(plain, 15, 0);
  grfw::AddData(plain, Bytes(24, 2));
  // Two run-form sprites: the second's stream keeps 30 bytes the first left in the row buffer.
  Bytes rows;
  grfw::AddData(rows, {0x02, 0x00, 0x80 | 30, 0x00});
  grfw::AddOffset(rows, 15, 0);
  grfw::AddOffset(rows, 15, 0);
  // A closing action record keeps the file long enough behind the streams for 16-byte blocks.
  const Bytes file = grfw::File(
      {grfw::RunSprite(2, {{{0, Bytes(40, 0xAB)}}}), grfw::SpriteRec(0, 1, 40, 0, 0, plain, 40),
       grfw::RunSprite(64, {{{0, Bytes(60, 0xCD)}}}), grfw::SpriteRec(8, 1, 40, 0, 0, rows, 34),
       grfw::ActionRecord(Bytes(40, 0))});
  ExpectSameAsReference(file, "distance 0");
  const Loaded l = Load(file);
  ASSERT_EQ(l.Count(), 5);
  const auto pixels = [&](int sprite, int from, int to) {
    const auto first = l.Store.SpriteData.begin() + l.At(sprite).DataOffset;
    return Bytes(first + from, first + to);
  };
  EXPECT_EQ(pixels(1, 1, 16), Bytes(15, 0xAB));
  EXPECT_EQ(pixels(3, 0, 30), Bytes(30, 0xCD));
}
