// The two passes over whole files: what each record gives, where the records end, and every input
// beyond the limits ending in order with the sprites before it.
#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "fileio.h"
#include "load_helper.h"
#include "text.h"

using grfw::Bytes;

namespace {

int16_t Count(const Bytes& bytes, std::vector<std::string>* messages = nullptr) {
  const ExactBuffer file(bytes);
  return CountSprites(file.Data.get(), file.Size, [messages](const std::string& m) {
    if (messages) messages->push_back(m);
  });
}

const std::vector<std::string> kOneOverrun{kMsgOutOfBuffer};

}  // namespace

TEST(Loader, RecordsEndAtAZeroWordOrAtTheEndOfTheFile) {
  const Bytes a = grfw::PlainSprite(2, 2, {1, 2, 3, 4});
  const Bytes b = grfw::ActionRecord({9, 9});
  EXPECT_EQ(Load(grfw::File({a, b}, false)).Count(), 2);
  Bytes behind = grfw::File({a, b});
  grfw::Append(behind, grfw::ActionRecord({1}));  // behind the zero word: never read
  const Loaded l = Load(behind);
  EXPECT_EQ(l.Count(), 2);
  EXPECT_TRUE(l.Messages.empty());
  EXPECT_EQ(l.Store.SpriteData.size(), 6u);
  // A zero length word ends the records whatever its flags byte holds.
  EXPECT_EQ(Load({0x00, 0x00, 0xFF, 0x05, 0x00, 0xFF}).Count(), 0);
}

TEST(Loader, CountingPassStepsOverEachKindOfRecord) {
  // A control byte 0 counts 128 and moves by 129; a stored-size record is stepped over unread.
  Bytes stream;
  grfw::AddData(stream, Bytes(128, 1));
  const Bytes stored = grfw::SpriteRec(2, 1, 4, 0, 0, grfw::Literal({1, 2, 3, 4}), 4);
  EXPECT_EQ(Count(grfw::File({grfw::SpriteRec(0, 1, 128, 0, 0, stream, 128), stored,
                              grfw::ActionRecord(Bytes(300, 7))})),
            3);
}

TEST(Loader, ActionSpritesLieInTheStoreLikePixels) {
  const Loaded l = Load(grfw::File(
      {grfw::ActionRecord({1, 2, 3, 4, 5, 6, 7, 8, 9, 10}), grfw::PlainSprite(1, 1, {0x33})}));
  ASSERT_EQ(l.Count(), 2);
  const SpriteRecord& r = l.At(0);
  EXPECT_EQ(r.Size, 10);
  EXPECT_EQ(r.CompressedSize, 10);
  EXPECT_EQ(r.Width, 10);
  EXPECT_EQ(r.Height, 1);
  EXPECT_EQ(r.Flags, 255);
  EXPECT_EQ(r.XOffset, 0);
  EXPECT_EQ(l.Bytes(0), (Bytes{1, 2, 3, 4, 5, 6, 7, 8, 9, 10}));
  EXPECT_EQ(l.At(1).DataOffset, 10);
  const SpriteRowTexts row = SpriteRow(0, r);
  EXPECT_EQ(row.Width, "010");
  EXPECT_EQ(row.Height, "001");
  EXPECT_EQ(row.Size, "00010");
  EXPECT_EQ(row.Flags, "11111111");
  // Both totals count an action sprite with its byte count.
  EXPECT_EQ(l.Outcome.Totals.DecodedTotal, 11);
  EXPECT_EQ(l.Outcome.Totals.CompressedTotal, 10 + l.At(1).CompressedSize);
}

TEST(Loader, OffsetsAreSigned16Bit) {
  const Loaded l = Load(grfw::File({grfw::PlainSprite(1, 1, {1}, -1, -32768)}));
  ASSERT_EQ(l.Count(), 1);
  EXPECT_EQ(l.At(0).XOffset, -1);
  EXPECT_EQ(l.At(0).YOffset, -32768);
}

TEST(Loader, ThirtyTwoThousandSevenHundredSixtySevenSpritesLoad) {
  std::vector<Bytes> records(32767, grfw::ActionRecord({1}));
  Loaded l = Load(grfw::FileOf(records));
  EXPECT_EQ(l.Count(), 32767);
  EXPECT_TRUE(l.Messages.empty());
  // One more is beyond the 16-bit count: the message, and the first 32,767 load.
  records.push_back(grfw::ActionRecord({2}));
  l = Load(grfw::FileOf(records));
  EXPECT_EQ(l.Count(), 32767);
  EXPECT_EQ(l.Messages, kOneOverrun);
  EXPECT_EQ(l.Store.SpriteData.size(), 32767u);
}

TEST(Loader, CountingPassOverrunKeepsTheSpritesBefore) {
  // The second record's stream decodes 5 bytes where its length word says 4.
  Bytes bad;
  grfw::AddData(bad, {1, 2, 3, 4, 5});
  const Loaded l =
      Load(grfw::File({grfw::PlainSprite(1, 1, {7}), grfw::RawSprite(12, 0, 2, 2, 0, 0, bad),
                       grfw::PlainSprite(1, 1, {8})}));
  EXPECT_EQ(l.Count(), 1);
  EXPECT_EQ(l.Messages, kOneOverrun);  // one message: the decoding pass stops at the count
  EXPECT_EQ(l.Store.SpriteTable.size(), 1u);
}

TEST(Loader, DecodingPassOverrunEndsThePass) {
  // Stored-size set, so the counting pass trusts the length word; the stream decodes 3 bytes for a
  // 1 x 2 sprite.
  const Bytes bad = grfw::SpriteRec(2, 2, 1, 0, 0, grfw::Literal({1, 2, 3}), 0);
  const Loaded l =
      Load(grfw::File({grfw::PlainSprite(1, 1, {7}), bad, grfw::PlainSprite(1, 1, {8})}));
  EXPECT_EQ(l.Count(), 1);
  EXPECT_EQ(l.Messages, kOneOverrun);
  // Made at the counted size, then cut to the sprites decoded: the failed one is never shown.
  EXPECT_EQ(l.Store.SpriteTable.size(), 1u);
  EXPECT_EQ(l.Outcome.Totals.DecodedTotal, 1);
}

TEST(Loader, LengthWordsThatWouldMoveBackwardsEndInOrder) {
  const Bytes good = grfw::PlainSprite(1, 1, {7});
  const Bytes payload{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
  struct Case {
    const char* name;
    Bytes record;
  } cases[] = {
      {"action 0x8000", grfw::RawSprite(0x8000, 0xFF, 1, 1, 0, 0, payload)},
      {"action 0xFFFF", grfw::RawSprite(0xFFFF, 0xFF, 1, 1, 0, 0, payload)},
      {"plain 0x8000", grfw::RawSprite(0x8000, 0, 1, 1, 0, 0, payload)},
      {"plain 0x8007", grfw::RawSprite(0x8007, 0, 1, 1, 0, 0, payload)},
      {"plain 0xFFFF", grfw::RawSprite(0xFFFF, 0, 1, 1, 0, 0, payload)},
      {"plain 7", grfw::RawSprite(7, 0, 1, 1, 0, 0, payload)},
      {"plain 1", grfw::RawSprite(1, 0, 1, 1, 0, 0, payload)},
      {"stored 0x8000", grfw::RawSprite(0x8000, 2, 1, 1, 0, 0, payload)},
      {"stored 7", grfw::RawSprite(7, 2, 1, 1, 0, 0, payload)},
      {"run 0x8003", grfw::RawSprite(0x8003, 8, 1, 1, 0, 0, payload)},
  };
  for (const Case& c : cases) {
    const Loaded l = Load(grfw::File({good, c.record, good}));
    EXPECT_EQ(l.Count(), 1) << c.name;
    EXPECT_EQ(l.Messages, kOneOverrun) << c.name;
  }
}

TEST(Loader, WidthsOf32768AndMore) {
  // With pixels to place the size is negative: not taken in. With height 0 the size is 0 and the
  // sprite loads with its width as stored.
  const Loaded wide = Load(grfw::File(
      {grfw::PlainSprite(1, 1, {7}), grfw::RawSprite(8 + 2, 2, 1, 0x8000, 0, 0, {0x01, 0x05})}));
  EXPECT_EQ(wide.Count(), 1);
  EXPECT_EQ(wide.Messages, kOneOverrun);
  const Loaded flat = Load(grfw::File({grfw::RawSprite(8, 0, 0, 0xFFFF, 0, 0, {})}));
  ASSERT_EQ(flat.Count(), 1);
  EXPECT_EQ(flat.At(0).Width, -1);
  EXPECT_EQ(flat.At(0).Size, 0);
  EXPECT_EQ(SpriteRow(0, flat.At(0)).Width, "-001");
}

TEST(Loader, RecordsRunningPastTheEndOfTheFile) {
  const Bytes good = grfw::PlainSprite(2, 1, {7, 8});
  const Bytes action = grfw::ActionRecord(Bytes(40, 1));
  const Bytes plain = grfw::PlainSprite(40, 1, Bytes(40, 3), 0, 0, 0, false);
  const Bytes stored = grfw::PlainSprite(40, 1, Bytes(40, 3), 0, 0, 2, false);
  for (const Bytes& last : {action, plain, stored}) {
    for (size_t keep = 1; keep < last.size(); ++keep) {
      Bytes file = good;
      file.insert(file.end(), last.begin(), last.begin() + static_cast<long>(keep));
      const Loaded l = Load(file);
      EXPECT_EQ(l.Count(), 1) << keep;
      EXPECT_EQ(l.Messages, kOneOverrun) << keep;
      EXPECT_EQ(l.Bytes(0), (Bytes{7, 8})) << keep;
    }
  }
}

TEST(Loader, MoreDecodedBytesThanTheStoreHolds) {
  // Sprites of 32,753 bytes: one data byte and 2,047 offset chunks of 16. 192 fit in 6 MiB.
  Bytes stream;
  grfw::AddData(stream, {0x5A});
  for (int i = 0; i < 2047; ++i) grfw::AddOffset(stream, 16, 1);
  const Bytes big = grfw::SpriteRec(0, 1, 32753, 0, 0, stream, 32753);
  const Loaded l = Load(grfw::FileOf(std::vector<Bytes>(200, big)));
  EXPECT_EQ(l.Count(), 192);
  EXPECT_EQ(l.Messages, kOneOverrun);
  EXPECT_EQ(l.Outcome.Totals.WritePosition, 192 * 32753);
  EXPECT_EQ(l.Store.SpriteData.size(), 192u * 32753u);
  EXPECT_EQ(l.Store.SpriteData.back(), 0x5A);
  // A single sprite larger than the whole store: stored-size set, 255 rows of 32,767.
  const Loaded huge = Load(grfw::File({grfw::RawSprite(8 + 4, 2, 255, 32767, 0, 0, {1, 2, 3, 4})}));
  EXPECT_EQ(huge.Count(), 0);
  EXPECT_EQ(huge.Messages, kOneOverrun);
}

TEST(Loader, FilesWithoutASprite) {
  // A first length word of 0, or a first sprite that fails: an empty table and an empty store.
  Loaded l = Load(Bytes(17, 0));
  EXPECT_EQ(l.Count(), 0);
  EXPECT_TRUE(l.Messages.empty());
  EXPECT_TRUE(l.Store.SpriteTable.empty());
  EXPECT_TRUE(l.Store.SpriteData.empty());
  l = Load(grfw::File({grfw::RawSprite(12, 0, 1, 1, 0, 0, {0x05, 1, 2, 3, 4, 5})}));
  EXPECT_EQ(l.Count(), 0);
  EXPECT_EQ(l.Messages, kOneOverrun);
}

TEST(Loader, ALoneTrailingByteIsACutRecord) {
  Bytes file = grfw::File({grfw::PlainSprite(1, 1, {4})}, false);
  file.push_back(0x07);
  const Loaded l = Load(file);
  EXPECT_EQ(l.Count(), 1);
  EXPECT_EQ(l.Messages, kOneOverrun);
}

TEST(Loader, StoreIsMadeAnewAndCutToTheBytesWritten) {
  SpriteStore store;
  const Bytes first = grfw::File({grfw::PlainSprite(2, 2, {1, 2, 3, 4}), grfw::ActionRecord({5})});
  LoadSprites(first.data(), static_cast<int32_t>(first.size()), store, nullptr);
  EXPECT_EQ(Bytes(store.SpriteData.begin(), store.SpriteData.end()), (Bytes{1, 2, 3, 4, 5}));
  const Bytes second = grfw::SeventeenByteFile();
  LoadSprites(second.data(), static_cast<int32_t>(second.size()), store, nullptr);
  EXPECT_EQ(store.SpriteTable.size(), 1u);
  EXPECT_EQ(Bytes(store.SpriteData.begin(), store.SpriteData.end()),
            (Bytes{0x0A, 0x0B, 0x0A, 0x0B}));
}

TEST(ReadWholeFile, FailuresCarryTheFileLayersNumberAndText) {
  FileReadResult r = ReadWholeFile("/nonexistent/vossel/a.grf");
  EXPECT_FALSE(r.Ok);
  EXPECT_EQ(r.ErrorNumber, ENOENT);
  EXPECT_EQ(r.Description, std::strerror(ENOENT));
  // No buffer can be made for a file of no bytes, nor for a folder.
  r = ReadWholeFile(grfw::WriteTemp("empty.grf", {}));
  EXPECT_FALSE(r.Ok);
  EXPECT_NE(r.ErrorNumber, 0);
  r = ReadWholeFile(std::filesystem::temp_directory_path().string());
  EXPECT_FALSE(r.Ok);
  r = ReadWholeFile(grfw::WriteTemp("seventeen.grf", grfw::SeventeenByteFile()));
  ASSERT_TRUE(r.Ok);
  EXPECT_EQ(r.Bytes, grfw::SeventeenByteFile());
}

TEST(Loader, AKeptStoreStartsTheNextLoadFromZeros) {
  // The first file's last sprite is a 2 x 1 run-form sprite whose one run of 127 pixels spills far
  // past the bytes written; its first sprite fills 4,000 bytes. The second file's sprite, 100 x 50,
  // has no pixel at all: every cell must read zero, as on a fresh store.
  const Bytes spill = grfw::RunSprite(2, {{{0, Bytes(127, 0xAB)}}});
  const Bytes first = grfw::File({grfw::PlainSprite(100, 40, Bytes(4000, 0xCD)), spill});
  const Bytes second = grfw::File(
      {grfw::RunSprite(100, std::vector<std::vector<grfw::Run>>(50, std::vector<grfw::Run>{}))});
  SpriteStore kept;
  LoadSprites(first.data(), static_cast<int32_t>(first.size()), kept, nullptr);
  ASSERT_EQ(kept.SpriteData.size(), 4002u);
  LoadSprites(second.data(), static_cast<int32_t>(second.size()), kept, nullptr);
  SpriteStore fresh;
  LoadSprites(second.data(), static_cast<int32_t>(second.size()), fresh, nullptr);
  EXPECT_EQ(kept.SpriteData, fresh.SpriteData);
  EXPECT_EQ(std::count(kept.SpriteData.begin(), kept.SpriteData.end(), 0), 5000);
  // And a third load of the first file gives its bytes again.
  LoadSprites(first.data(), static_cast<int32_t>(first.size()), kept, nullptr);
  EXPECT_EQ(kept.SpriteData[4000], 0xAB);
  EXPECT_EQ(kept.SpriteData[4001], 0xAB);
}
