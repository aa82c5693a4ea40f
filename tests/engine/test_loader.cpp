// Both passes over whole files with known results: the format's readings of each kind of record
// and chunk, and every input beyond the limits ending in order with the sprites before it.
#include <gtest/gtest.h>

#include "load_helper.h"
#include "text.h"

using grfw::Bytes;

namespace {

Bytes Concat(std::initializer_list<Bytes> parts) {
  Bytes all;
  for (const Bytes& p : parts) grfw::Append(all, p);
  return all;
}

Bytes Pattern(size_t n) {
  Bytes b(n);
  for (size_t i = 0; i < n; ++i) b[i] = static_cast<uint8_t>(i * 7 + 3);
  return b;
}

Bytes Chunks(std::initializer_list<Bytes> data,
             std::initializer_list<std::pair<int, int>> offsets) {
  Bytes s;
  for (const Bytes& d : data) grfw::AddData(s, d);
  for (const auto& [length, distance] : offsets) grfw::AddOffset(s, length, distance);
  return s;
}

struct Case {
  const char* Name;
  Bytes File;
  int Count;
  bool Message;  // "Error! Out of buffer size!", once
  Bytes Store;   // SpriteData after the load
};

std::vector<Case> Cases() {
  const Bytes one = grfw::PlainSprite(1, 1, {7});
  const Bytes twelve{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
  const Bytes runExample{0x04, 0x00, 0x08, 0x00, 0x82, 0x01, 0x11, 0x22, 0x80, 0x00};
  const Bytes p800 = Pattern(800);
  Bytes big = grfw::Literal({0x5A});  // 32,753 bytes: one data byte and 2,047 offsets of 16
  for (int i = 0; i < 2047; ++i) grfw::AddOffset(big, 16, 1);
  std::vector<Case> cases = {
      {"seventeen bytes", grfw::SeventeenByteFile(), 1, false, {0x0A, 0x0B, 0x0A, 0x0B}},
      {"distance 1 repeats", grfw::File({grfw::RawSprite(12, 0, 1, 4, 0, 0, {1, 7, 0xE8, 1})}), 1,
       false, Bytes(4, 7)},
      {"distance 2 repeats a pair",
       grfw::File({grfw::SpriteRec(0, 1, 7, 0, 0, Chunks({{1, 2}}, {{5, 2}}), 7)}),
       1,
       false,
       {1, 2, 1, 2, 1, 2, 1}},
      {"83 10: 16 bytes from 784 back",
       grfw::File(
           {grfw::SpriteRec(0, 1, 816, 0, 0, Concat({grfw::Literal(p800), {0x83, 0x10}}), 816)}),
       1, false, Concat({p800, Bytes(p800.begin() + 16, p800.begin() + 32)})},
      {"control bytes 7F 00 80 FF",
       grfw::File({grfw::SpriteRec(
           0, 1, 272, 0, 0,
           Concat({Chunks({Bytes(127, 5), Bytes(128, 6)}, {}), {0x80, 0x01, 0xFF, 0x01}}), 272)}),
       1, false, Concat({Bytes(127, 5), Bytes(144, 6), {0}})},
      {"distance 0 keeps zeros",
       grfw::File({grfw::SpriteRec(0, 1, 4, 0, 0, Chunks({}, {{4, 0}}), 4)}), 1, false,
       Bytes(4, 0)},
      {"offset into the sprite before",
       grfw::File({grfw::PlainSprite(3, 1, {4, 5, 6}, 0, 0, 0, false),
                   grfw::SpriteRec(0, 1, 2, 0, 0, Chunks({}, {{2, 2}}), 2)}),
       2,
       false,
       {4, 5, 6, 5, 6}},
      {"size 0 reads no chunk",
       grfw::File({grfw::RawSprite(8, 0, 5, 0, 0, 0, {}), one}),
       2,
       false,
       {7}},
      {"no zero word", grfw::File({one, grfw::ActionRecord({9, 9})}, false), 2, false, {7, 9, 9}},
      {"bytes behind the zero word",
       Concat({grfw::File({one}), grfw::ActionRecord({1})}),
       1,
       false,
       {7}},
      {"zero word with flags 255",
       {0x00, 0x00, 0xFF, 0x05, 0x00, 0xFF, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0},
       0,
       false,
       {}},
      {"control byte 0 in the counting pass",
       grfw::File({grfw::SpriteRec(0, 1, 128, 0, 0, grfw::Literal(Bytes(128, 1)), 128), one}), 2,
       false, Concat({Bytes(128, 1), {7}})},
      {"action sprite", grfw::File({grfw::ActionRecord({1, 2, 3}), one}), 2, false, {1, 2, 3, 7}},
      {"flags 254: both flags",
       grfw::File({grfw::ActionRecord({1, 2, 3}),
                   grfw::RawSprite(16, 254, 1, 4, 0, 0, {5, 2, 0, 0x84, 0, 9, 0xE8, 1})}),
       2,
       false,
       {1, 2, 3, 9, 9, 9, 9}},
      {"run form example",
       grfw::File({grfw::RawSprite(18, 8, 2, 4, 0, 0, grfw::Literal(runExample)),
                   grfw::ActionRecord({0xAA})}),
       2,
       false,
       {0, 0x11, 0x22, 0, 0, 0, 0, 0, 0xAA}},
      {"run into the next row",
       grfw::File({grfw::RunSprite(2, {{{0, {1, 2, 3, 4}}}, {}, {{1, {9}}}})}),
       1,
       false,
       {1, 2, 3, 4, 0, 9}},
      {"run starting on the cell behind the sprite",
       grfw::File({grfw::RunSprite(2, {{{4, {7}}}, {{0, {8, 8}}}}), grfw::RunSprite(2, {{}})}), 2,
       false, Bytes(6, 0)},
      {"height 0 places nothing",
       grfw::File({grfw::RawSprite(13, 8, 0, 4, 0, 0, grfw::Literal({2, 0, 0x81, 0, 0x55})), one}),
       2,
       false,
       {7}},
      {"row table entry with the high bit",
       grfw::File({grfw::RawSprite(15, 8, 1, 1, 0, 0, grfw::Literal({4, 0x80, 0, 0, 0x81, 0, 6}))}),
       1,
       false,
       {0}},
      {"empty runs to the end of the row buffer",
       grfw::File({grfw::RawSprite(10, 8, 1, 200, 0, 0, grfw::Literal({0xFF, 0x7F}))}), 1, false,
       Bytes(200, 0)},
      {"32,767 sprites", grfw::FileOf(std::vector<Bytes>(32767, grfw::ActionRecord({1}))), 32767,
       false, Bytes(32767, 1)},
      {"a 32,768th sprite", grfw::FileOf(std::vector<Bytes>(32768, grfw::ActionRecord({1}))), 32767,
       true, Bytes(32767, 1)},
      {"counting pass overrun",
       grfw::File({one, grfw::RawSprite(12, 0, 2, 2, 0, 0, {5, 1, 2, 3, 4, 5}), one}),
       1,
       true,
       {7}},
      {"decoding pass overrun",
       grfw::File({one, grfw::SpriteRec(2, 2, 1, 0, 0, grfw::Literal({1, 2, 3}), 0), one}),
       1,
       true,
       {7, 1, 2, 3}},
      {"no sprite", Bytes(17, 0), 0, false, {}},
      {"first sprite fails",
       grfw::File({grfw::RawSprite(12, 0, 1, 1, 0, 0, {5, 1, 2, 3, 4, 5})}),
       0,
       true,
       {}},
      {"lone trailing byte", Concat({grfw::File({one}, false), {0x07}}), 1, true, {7}},
      {"width 32,768 with pixels",
       grfw::File({one, grfw::RawSprite(10, 2, 1, 0x8000, 0, 0, {1, 5})}),
       1,
       true,
       {7}},
      {"width 65,535 and height 0",
       grfw::File({grfw::RawSprite(8, 0, 0, 0xFFFF, 0, 0, {}), one}),
       2,
       false,
       {7}},
      {"a sprite larger than the store",
       grfw::File({grfw::RawSprite(12, 2, 255, 32767, 0, 0, {1, 2, 3, 4})}),
       0,
       true,
       {}},
      {"more decoded bytes than the store holds",
       grfw::FileOf(std::vector<Bytes>(200, grfw::SpriteRec(0, 1, 32753, 0, 0, big, 32753))), 192,
       true, Bytes(192 * 32753, 0x5A)},
  };
  // Length words that would move the read position backwards, or cannot count the header.
  for (const auto& [word, flags] :
       std::initializer_list<std::pair<uint16_t, uint8_t>>{{0x8000, 0xFF},
                                                           {0xFFFF, 0xFF},
                                                           {0x8000, 0},
                                                           {0x8007, 0},
                                                           {0xFFFF, 0},
                                                           {7, 0},
                                                           {1, 0},
                                                           {0x8000, 2},
                                                           {7, 2},
                                                           {0x8003, 8}})
    cases.push_back({"length word",
                     grfw::File({one, grfw::RawSprite(word, flags, 1, 1, 0, 0, twelve), one}),
                     1,
                     true,
                     {7}});
  // Records cut by the end of the file at every byte.
  for (const Bytes& last :
       {grfw::ActionRecord(Bytes(40, 1)), grfw::PlainSprite(40, 1, Bytes(40, 3), 0, 0, 0, false),
        grfw::PlainSprite(40, 1, Bytes(40, 3), 0, 0, 2, false)})
    for (size_t keep = 1; keep < last.size(); ++keep)
      cases.push_back({"cut record",
                       Concat({one, Bytes(last.begin(), last.begin() + static_cast<long>(keep))}),
                       1,
                       true,
                       {7}});
  return cases;
}

}  // namespace

TEST(Loader, KnownFiles) {
  for (const Case& c : Cases()) {
    SCOPED_TRACE(c.Name);
    const Loaded l = Load(c.File);
    EXPECT_EQ(l.Count(), c.Count);
    EXPECT_EQ(l.Messages,
              c.Message ? std::vector<std::string>{kMsgOutOfBuffer} : std::vector<std::string>{});
    EXPECT_TRUE(Bytes(l.Store.SpriteData.begin(), l.Store.SpriteData.end()) == c.Store);
  }
}

TEST(Loader, FieldsOfEachKindOfRecord) {
  const Bytes worked = grfw::SeventeenByteFile();
  const Loaded l =
      Load(grfw::File({Bytes(worked.begin(), worked.end() - 2), grfw::ActionRecord(Bytes(10, 1)),
                       grfw::PlainSprite(1, 1, {1}, -1, -32768, 0x41)}));
  ASSERT_EQ(l.Count(), 3);
  EXPECT_EQ(Facts(l.At(0)), std::make_tuple(0, 4, uint8_t{0}, 5, -2, 1, int16_t{2}, int16_t{2}));
  EXPECT_EQ(Facts(l.At(1)),
            std::make_tuple(4, 10, uint8_t{255}, 10, 0, 0, int16_t{10}, int16_t{1}));
  EXPECT_EQ(Facts(l.At(2)),
            std::make_tuple(14, 1, uint8_t{0x41}, 2, -1, -32768, int16_t{1}, int16_t{1}));
  EXPECT_EQ(l.Outcome.Totals.CompressedTotal, 5 + 10 + 2);
  EXPECT_EQ(l.Outcome.Totals.DecodedTotal, 4 + 10 + 1);
}

TEST(Loader, AKeptStoreStartsTheNextLoadFromZeros) {
  // The first file's last sprite spills a run of 127 pixels past the bytes written; the second
  // file's 100 x 50 sprite has no pixel at all and must read zero, as on a fresh store.
  const Bytes first = grfw::File({grfw::PlainSprite(100, 40, Bytes(4000, 0xCD)),
                                  grfw::RunSprite(2, {{{0, Bytes(127, 0xAB)}}})});
  const Bytes second = grfw::File({grfw::RunSprite(100, std::vector<std::vector<grfw::Run>>(50))});
  SpriteStore kept, fresh;
  for (const Bytes* file : {&first, &second, &first, &second})
    LoadSprites(file->data(), static_cast<int32_t>(file->size()), kept, nullptr);
  LoadSprites(second.data(), static_cast<int32_t>(second.size()), fresh, nullptr);
  EXPECT_EQ(kept.SpriteData, fresh.SpriteData);
  EXPECT_EQ(fresh.SpriteData.size(), 5000u);
}
