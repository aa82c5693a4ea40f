// The decompressor on its own: both chunk kinds, the copy rule, both routes and their limits.
#include <gtest/gtest.h>

#include <random>

#include "decode.h"
#include "load_helper.h"

using grfw::Bytes;

namespace {

struct StreamRun {
  DecodeResult Result;
  int32_t ReadPos, OutPos;
  Bytes Target;
};

// Decodes `stream` into a target of `capacity` bytes (prefilled) from `out` to `end`.
StreamRun Decode(const Bytes& stream, int32_t capacity, int32_t out, int32_t end,
                 const Bytes& prefill = {}, int32_t zeroFrom = INT32_MAX,
                 const uint8_t* before = nullptr) {
  const ExactBuffer file(stream);
  std::unique_ptr<uint8_t[]> target(new uint8_t[static_cast<size_t>(capacity)]());
  std::copy(prefill.begin(), prefill.end(), target.get());
  StreamRun run{};
  run.ReadPos = 0;
  run.OutPos = out;
  run.Result = DecodeStream(file.Data.get(), file.Size, run.ReadPos, target.get(), capacity,
                            run.OutPos, end, zeroFrom, before);
  run.Target.assign(target.get(), target.get() + capacity);
  return run;
}

Bytes Pattern(size_t n) {
  Bytes b(n);
  for (size_t i = 0; i < n; ++i) b[i] = static_cast<uint8_t>(i * 13 + 1);
  return b;
}

}  // namespace

TEST(DecodeStream, DataChunksAroundTheBlockMoveThresholdCopyTheSameBytes) {
  for (size_t n : {1u, 46u, 47u, 48u, 49u, 127u, 128u}) {
    const Bytes data = Pattern(n);
    Bytes stream;
    grfw::AddData(stream, data);
    const StreamRun run = Decode(stream, 200, 10, 10 + static_cast<int32_t>(n));
    EXPECT_EQ(run.Result, DecodeResult::Finished) << n;
    EXPECT_EQ(run.ReadPos, static_cast<int32_t>(n) + 1) << n;
    EXPECT_EQ(Bytes(run.Target.begin() + 10, run.Target.begin() + 10 + static_cast<long>(n)), data)
        << n;
    EXPECT_EQ(run.Target[9], 0) << n;
    EXPECT_EQ(run.Target[10 + n], 0) << n;
  }
}

TEST(DecodeStream, OverlappingOffsetChunksRepeatWhatTheyJustWrote) {
  // Distance 1 behind a single byte: sixteen copies of it.
  Bytes one;
  grfw::AddData(one, {0x42});
  grfw::AddOffset(one, 16, 1);
  StreamRun run = Decode(one, 17, 0, 17);
  EXPECT_EQ(run.Result, DecodeResult::Finished);
  EXPECT_EQ(run.Target, Bytes(17, 0x42));
  // Distance 2 repeats a pair.
  Bytes pair;
  grfw::AddData(pair, {1, 2});
  grfw::AddOffset(pair, 5, 2);
  run = Decode(pair, 7, 0, 7);
  EXPECT_EQ(run.Target, (Bytes{1, 2, 1, 2, 1, 2, 1}));
}

TEST(DecodeStream, DistanceZeroLeavesBytesAndStillAdvances) {
  Bytes stream;
  grfw::AddOffset(stream, 4, 0);
  StreamRun run = Decode(stream, 4, 0, 4);
  EXPECT_EQ(run.Result, DecodeResult::Finished);
  EXPECT_EQ(run.OutPos, 4);
  EXPECT_EQ(run.Target, Bytes(4, 0));
  run = Decode(stream, 4, 0, 4, {7, 8, 9, 10});
  EXPECT_EQ(run.Target, (Bytes{7, 8, 9, 10}));
}

TEST(DecodeStream, MustLandExactlyOnItsSize) {
  Bytes stream;
  grfw::AddData(stream, {1, 2, 3});
  StreamRun run = Decode(stream, 16, 0, 3);
  EXPECT_EQ(run.Result, DecodeResult::Finished);
  // One byte short of the chunk: the chunk is still written whole, positions stand behind it.
  run = Decode(stream, 16, 0, 2);
  EXPECT_EQ(run.Result, DecodeResult::Overrun);
  EXPECT_EQ(run.ReadPos, 4);
  EXPECT_EQ(run.OutPos, 3);
  EXPECT_EQ(run.Target[2], 3);
}

TEST(DecodeStream, AnEmptyStreamReadsNothing) {
  const StreamRun run = Decode({}, 4, 0, 0);
  EXPECT_EQ(run.Result, DecodeResult::Finished);
  EXPECT_EQ(run.ReadPos, 0);
}

TEST(DecodeStream, StaysInsideTheFileAndTheTarget) {
  // A data chunk whose bytes are cut by the end of the file.
  StreamRun run = Decode({0x05, 1, 2}, 16, 0, 5);
  EXPECT_EQ(run.Result, DecodeResult::Truncated);
  // An offset chunk missing its second byte.
  run = Decode({0x01, 7, 0xF8}, 16, 0, 2);
  EXPECT_EQ(run.Result, DecodeResult::Truncated);
  // A stream that wants more bytes than the file has.
  run = Decode({0x01, 7}, 16, 0, 2);
  EXPECT_EQ(run.Result, DecodeResult::Truncated);
  // A chunk that would write past the target's end is refused before writing.
  Bytes big;
  grfw::AddData(big, Pattern(100));
  run = Decode(big, 50, 0, 40);
  EXPECT_EQ(run.Result, DecodeResult::Overrun);
  Bytes far;
  grfw::AddOffset(far, 16, 1);
  run = Decode(far, 8, 0, 8);
  EXPECT_EQ(run.Result, DecodeResult::Overrun);
}

TEST(DecodeStream, BlocksThatWriteAheadGiveTheSameBytesAndStopAtTheEnd) {
  // Short chunks of both kinds, distance 0 among them, over a target full of other bytes. With a
  // copy of those bytes the blocks may write zeros ahead of each chunk; the result must still be
  // that of blocks that write back what they keep, and nothing from the end position on changes.
  std::mt19937 rng(7);
  const Bytes prefill = Pattern(400);
  for (int round = 0; round < 20; ++round) {
    Bytes stream;
    int32_t made = 0;
    while (made < 300) {
      const int32_t n = std::min<int32_t>(300 - made, 1 + static_cast<int32_t>(rng() % 16));
      if (n < 3 || rng() % 2 == 0) {
        grfw::AddData(stream, Bytes(static_cast<size_t>(n), static_cast<uint8_t>(rng())));
      } else {
        grfw::AddOffset(stream, n, static_cast<int>(rng() % 40));
      }
      made += n;
    }
    grfw::Append(stream, Bytes(32, 0));  // room behind the stream for blocks
    const StreamRun kept = Decode(stream, 400, 0, 300, prefill);
    const StreamRun ahead = Decode(stream, 400, 0, 300, prefill, 400, prefill.data());
    ASSERT_EQ(kept.Result, DecodeResult::Finished);
    EXPECT_EQ(ahead.Result, DecodeResult::Finished);
    EXPECT_EQ(ahead.Target, kept.Target) << "round " << round;
    EXPECT_TRUE(std::equal(prefill.begin() + 300, prefill.end(), kept.Target.begin() + 300));
  }
}

TEST(DecodeStream, DistanceBeforeTheTargetsStartCopiesZeros) {
  Bytes stream;
  grfw::AddData(stream, {5, 6});
  grfw::AddOffset(stream, 4, 3);  // one byte before index 0, then 5, 6, and the 0 just written
  const StreamRun run = Decode(stream, 6, 0, 6, {});
  EXPECT_EQ(run.Result, DecodeResult::Finished);
  EXPECT_EQ(run.Target, (Bytes{5, 6, 0, 5, 6, 0}));
}

// --- Through the loader: the plain route between sprites, and the run route ---------------------

TEST(PlainRoute, OffsetChunkReachesIntoTheSpriteBefore) {
  Bytes second;
  grfw::AddOffset(second, 2, 2);
  const Loaded l = Load(grfw::File({grfw::PlainSprite(3, 1, {4, 5, 6}, 0, 0, 0, false),
                                    grfw::SpriteRec(0, 1, 2, 0, 0, second, 2)}));
  ASSERT_EQ(l.Count(), 2);
  EXPECT_TRUE(l.Messages.empty());
  EXPECT_EQ(l.Bytes(1), (Bytes{5, 6}));
}

TEST(PlainRoute, SizeZeroReadsNoChunk) {
  // Width 0: no chunk, CompressedSize 0, and the next record starts right behind the head.
  const Loaded l =
      Load(grfw::File({grfw::RawSprite(8, 0, 5, 0, 0, 0, {}), grfw::PlainSprite(1, 1, {9})}));
  ASSERT_EQ(l.Count(), 2);
  EXPECT_EQ(l.At(0).Size, 0);
  EXPECT_EQ(l.At(0).CompressedSize, 0);
  EXPECT_EQ(l.At(1).DataOffset, 0);
  EXPECT_EQ(l.Bytes(1), (Bytes{9}));
}

TEST(RunRoute, RowsRunsAndGaps) {
  // Row 0: a run at 1 and one at 5; row 1: empty (header 0x80); row 2: a full row of 127 pixels.
  const Bytes wide = Pattern(127);
  const Loaded l =
      Load(grfw::File({grfw::RunSprite(127, {{{1, {1, 2}}, {5, {3}}}, {}, {{0, wide}}}, 3, -4)}));
  ASSERT_EQ(l.Count(), 1);
  EXPECT_TRUE(l.Messages.empty());
  const SpriteRecord& r = l.At(0);
  EXPECT_EQ(r.Size, 127 * 3);
  EXPECT_EQ(r.XOffset, 3);
  EXPECT_EQ(r.YOffset, -4);
  const Bytes out = l.Bytes(0);
  EXPECT_EQ(out[0], 0);
  EXPECT_EQ(out[1], 1);
  EXPECT_EQ(out[2], 2);
  EXPECT_EQ(out[3], 0);
  EXPECT_EQ(out[5], 3);
  for (int c = 0; c < 127; ++c) EXPECT_EQ(out[127 + c], 0) << c;
  EXPECT_EQ(Bytes(out.begin() + 254, out.end()), wide);
}

TEST(RunRoute, TheSpriteTakesExactlySizeBytes) {
  // The example's stream has 10 bytes and two pixels; the write position moves by 4 x 2.
  const Bytes decoded{0x04, 0x00, 0x08, 0x00, 0x82, 0x01, 0x11, 0x22, 0x80, 0x00};
  const Loaded l = Load(grfw::File(
      {grfw::RawSprite(18, 8, 2, 4, 0, 0, grfw::Literal(decoded)), grfw::ActionRecord({0xAA})}));
  ASSERT_EQ(l.Count(), 2);
  EXPECT_EQ(l.At(1).DataOffset, 8);
}

TEST(RunRoute, LongRunGoesOnIntoTheNextRow) {
  // Width 2, three rows; row 0 holds a run of 4 pixels, which also fills row 1.
  const Loaded l = Load(grfw::File({grfw::RunSprite(2, {{{0, {1, 2, 3, 4}}}, {}, {{1, {9}}}})}));
  ASSERT_EQ(l.Count(), 1);
  EXPECT_EQ(l.Bytes(0), (Bytes{1, 2, 3, 4, 0, 9}));
}

TEST(RunRoute, RunStartingPastTheLastCellEndsThePlacement) {
  // Row 0's run starts at column 5 of a 2 x 2 sprite (cell 5 > 3): nothing is placed after it.
  const Loaded l = Load(grfw::File({grfw::RunSprite(2, {{{5, {7}}}, {{0, {8, 8}}}})}));
  ASSERT_EQ(l.Count(), 1);
  EXPECT_TRUE(l.Messages.empty());
  EXPECT_EQ(l.Bytes(0), Bytes(4, 0));
}

TEST(RunRoute, HeightZeroPlacesNothing) {
  // The stream still decodes (L - 8 bytes) and is stepped over.
  const Bytes decoded{0x02, 0x00, 0x81, 0x00, 0x55};
  const Loaded l = Load(grfw::File({grfw::RawSprite(8 + 5, 8, 0, 4, 0, 0, grfw::Literal(decoded)),
                                    grfw::PlainSprite(1, 1, {3})}));
  ASSERT_EQ(l.Count(), 2);
  EXPECT_EQ(l.At(0).Size, 0);
  EXPECT_EQ(l.At(0).CompressedSize, 6);
  EXPECT_EQ(l.At(1).DataOffset, 0);
}

TEST(RunRoute, RowTableEntryWithHighBitEndsThePlacement) {
  // Entry 0 reads as 0x8004: negative in 16 bits.
  const Bytes decoded{0x04, 0x80, 0x00, 0x00, 0x81, 0x00, 0x66};
  const Loaded l =
      Load(grfw::File({grfw::RawSprite(8 + 7, 8, 1, 1, 0, 0, grfw::Literal(decoded))}));
  ASSERT_EQ(l.Count(), 1);
  EXPECT_TRUE(l.Messages.empty());
  EXPECT_EQ(l.Bytes(0), Bytes{0});
}

TEST(RunRoute, EmptyRunsWalkToTheEndOfTheRowBufferAndStop) {
  // Row 0 starts at 32,766 or 32,767, in the zeros behind the stream: every header there is an
  // empty run that is not the last, so the walk reaches the buffer's end and stops there.
  for (const uint16_t at : {0x7FFE, 0x7FFF}) {
    const Bytes decoded{static_cast<uint8_t>(at & 0xFF), static_cast<uint8_t>(at >> 8)};
    const Loaded l =
        Load(grfw::File({grfw::RawSprite(8 + 2, 8, 1, 200, 0, 0, grfw::Literal(decoded))}));
    ASSERT_EQ(l.Count(), 1) << at;
    EXPECT_EQ(l.Bytes(0), Bytes(200, 0)) << at;
  }
}
