// The loader against the plain decoder, and the chunk walk against the loader: on the real files,
// and on random files that reach every corner of the format.
#include <gtest/gtest.h>

#include <cstdio>
#include <random>

#include "case_file.h"
#include "chunks.h"
#include "fileio.h"
#include "load_helper.h"
#include "reference.h"

using namespace vossel;

using grfw::Bytes;

namespace {

uint32_t Fnv1a(const uint8_t* p, size_t n) {
  uint32_t h = 2166136261u;
  for (size_t i = 0; i < n; ++i) h = (h ^ p[i]) * 16777619u;
  return h;
}

// The same sprites and bytes from the loader and the plain decoder; the same records, flags and
// stream sizes from the chunk walk. Gives the loader's result.
Loaded ExpectAgreement(const Bytes& file, const std::string& what) {
  SCOPED_TRACE(what);
  Loaded l = Load(file);
  const ReferenceLoad ref = ReferenceDecode(file.data(), static_cast<int32_t>(file.size()));
  EXPECT_FALSE(ref.Failed);
  EXPECT_TRUE(l.Messages.empty());
  EXPECT_EQ(l.Count(), ref.Count);
  for (int i = 0; i < std::min(l.Count(), ref.Count); ++i)
    EXPECT_EQ(Facts(l.At(i)), Facts(ref.Table[static_cast<size_t>(i)])) << "sprite " << i;
  EXPECT_EQ(l.Store.SpriteData.size(), ref.Data.size());
  const auto [at, _] = std::mismatch(ref.Data.begin(), ref.Data.end(), l.Store.SpriteData.begin(),
                                     l.Store.SpriteData.end());
  EXPECT_TRUE(at == ref.Data.end()) << "first different byte at " << at - ref.Data.begin();

  ChunkScan scan;
  const ScanOutcome walk = ScanBuffer(file, scan);
  EXPECT_EQ(walk.End, ScanEnd::Complete);
  EXPECT_EQ(walk.Count, l.Count());
  for (int i = 0; i < std::min<int>(walk.Count, l.Count()); ++i) {
    const SpriteRecord& r = l.At(i);
    EXPECT_EQ(scan.SpriteFlags[i], r.Flags) << "sprite " << i;
    const std::vector<ChunkLine> lines = ChunkList(scan, i);
    int32_t span = 0;  // stream bytes from the first control byte to the end of the last chunk
    if (r.Flags == kActionFlags) {
      span = scan.SpriteSize[i];
    } else if (!lines.empty()) {
      const uint8_t c = scan.FileData[static_cast<size_t>(lines.back().ItemData)];
      span = lines.back().ItemData + (c >= 128 ? 2 : (c == 0 ? 128 : c) + 1) - scan.SpriteOffset[i];
    }
    EXPECT_EQ(span, r.CompressedSize) << "sprite " << i;
  }
  return l;
}

struct Rng {
  std::mt19937 engine;
  int operator()(int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(engine); }
  Bytes Fill(int n) {
    Bytes b(static_cast<size_t>(n));
    for (uint8_t& x : b) x = static_cast<uint8_t>((*this)(0, 255));
    return b;
  }
};

// `n` decoded bytes: data chunks of 1 to 128 random bytes and offset chunks of 1 to 16 bytes from
// every distance from 0 to 2047, short distances most often.
void AddRandomChunks(Rng& rng, Bytes& s, int n) {
  while (n > 0) {
    const int k = std::min(n, rng(0, 2) == 0 ? rng(1, 128) : rng(1, 16));
    if (k > 16 || rng(0, 2) == 0)
      grfw::AddData(s, rng.Fill(k));
    else
      grfw::AddOffset(s, k, rng(0, 1) == 0 ? rng(0, 17) : rng(0, 2047));
    n -= k;
  }
}

// Flag bits that change nothing, a few at a time.
uint8_t SpareBits(Rng& rng) {
  return static_cast<uint8_t>(rng(0, 255) & rng(0, 255) & 0xF5);
}

// A run-form sprite whose runs start anywhere from 0 to 255 cells into their row, in it, past it
// and past the sprite (the sprite's last cell and the one behind it most of all), with 0 to 127
// pixels that may run on into the next rows and the next sprite. Its pixels come from chunks of
// both kinds.
Bytes RandomRunSprite(Rng& rng) {
  const int width = rng(0, 4) == 0 ? rng(0, 3) : rng(1, 60);
  const int height = rng(0, 6) == 0 ? rng(0, 1) : rng(1, 24);
  std::vector<std::vector<grfw::Run>> rows(static_cast<size_t>(height));
  for (int r = 0; r < height; ++r) {
    for (int k = rng(0, 3); k > 0; --k) {
      const int toEnd = width * (height - r);
      const int near[] = {0, width - 1, width, toEnd - 1, toEnd, toEnd + 1};
      const int skip = rng(0, 1) == 0 ? rng(0, 255) : std::clamp(near[rng(0, 5)], 0, 255);
      rows[static_cast<size_t>(r)].push_back(
          {static_cast<uint8_t>(skip),
           Bytes(static_cast<size_t>(rng(0, 3) ? rng(0, 12) : rng(0, 127)))});
    }
  }
  // The row table, headers and skips go as data chunks; each run's pixels as chunks of either kind.
  const Bytes decoded = grfw::RunFormStream(rows);
  Bytes stream, literal;
  size_t at = 2 * rows.size();
  literal.assign(decoded.begin(), decoded.begin() + static_cast<long>(at));
  for (auto& row : rows) {
    for (size_t k = 0; k < std::max<size_t>(row.size(), 1); ++k) {
      const int n = row.empty() ? 0 : static_cast<int>(row[k].pixels.size());
      literal.insert(literal.end(), decoded.begin() + static_cast<long>(at),
                     decoded.begin() + static_cast<long>(at) + 2);
      at += 2 + static_cast<size_t>(n);
      if (rng(0, 1) == 0) {
        grfw::Append(literal, rng.Fill(n));
        continue;
      }
      grfw::Append(stream, grfw::Literal(literal, static_cast<size_t>(rng(1, 128))));
      literal.clear();
      AddRandomChunks(rng, stream, n);
    }
  }
  grfw::Append(stream, grfw::Literal(literal, static_cast<size_t>(rng(1, 128))));
  return grfw::SpriteRec(8 | SpareBits(rng), static_cast<uint8_t>(height),
                         static_cast<uint16_t>(width), static_cast<int16_t>(rng(-300, 300)),
                         static_cast<int16_t>(rng(-300, 300)), stream,
                         static_cast<int32_t>(decoded.size()));
}

// Plain sprites walked or stepped over, run-form sprites and action sprites, mixed; some files
// all run form, so that one sprite's stray pixels meet the next one's empty cells.
Bytes RandomFile(Rng& rng) {
  std::vector<Bytes> records;
  const int runShare = rng(0, 3) == 0 ? 10 : rng(2, 6);
  for (int i = rng(1, 40); i > 0; --i) {
    const int kind = rng(0, 9);
    if (kind < runShare) {
      records.push_back(RandomRunSprite(rng));
    } else if (kind == 9) {
      records.push_back(grfw::ActionRecord(rng.Fill(rng(0, 300))));
    } else {
      const int width = rng(0, 5) == 0 ? rng(0, 2) : rng(1, 200);
      const int height = rng(0, 5) == 0 ? rng(0, 2) : rng(1, 80);
      Bytes stream;
      AddRandomChunks(rng, stream, width * height);
      records.push_back(grfw::SpriteRec(static_cast<uint8_t>(SpareBits(rng) | (kind & 2)),
                                        static_cast<uint8_t>(height), static_cast<uint16_t>(width),
                                        static_cast<int16_t>(rng(-32768, 32767)), 0, stream,
                                        width * height));
    }
  }
  return grfw::FileOf(records, rng(0, 1) == 0);
}

}  // namespace

TEST(Reference, RandomFilesAgree) {
  Rng rng{std::mt19937(20261122)};
  for (int round = 0; round < 150; ++round)
    ExpectAgreement(RandomFile(rng), "round " + std::to_string(round));
}

// The real files agree, and give the checked-in facts and pixel hashes of every sprite.
TEST(Reference, RealFilesAgreeAndMatchTheirGoldenLists) {
  for (const char* name : {"openttd.grf", "orig_extra.grf"}) {
    const Bytes file = ReadWholeFile(std::string(VOSSEL_BASESET_DIR) + "/" + name).Bytes;
    if (file.empty()) GTEST_SKIP() << name << " is not installed";
    const Loaded l = ExpectAgreement(file, name);
    std::string list = std::to_string(file.size()) + " bytes, hash " +
                       std::to_string(Fnv1a(file.data(), file.size())) + "\n";
    char line[128];
    for (int i = 0; i < l.Count(); ++i) {
      const SpriteRecord& r = l.At(i);
      std::snprintf(line, sizeof line, "%d %d %d %d %d %d %d %d %d %u\n", i, r.DataOffset, r.Size,
                    r.Flags, r.CompressedSize, r.XOffset, r.YOffset, r.Width, r.Height,
                    Fnv1a(l.Store.SpriteData.data() + r.DataOffset, static_cast<size_t>(r.Size)));
      list += line;
    }
    ExpectGolden(std::string(name) + ".txt", list);
  }
}
