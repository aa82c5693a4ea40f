// The format's worked examples, end to end through both passes.
#include <gtest/gtest.h>

#include "load_helper.h"

using grfw::Bytes;

TEST(Format, SeventeenByteFileHoldsOneSprite) {
  const Loaded l = Load(grfw::SeventeenByteFile());
  ASSERT_EQ(l.Count(), 1);
  EXPECT_TRUE(l.Messages.empty());
  const SpriteRecord& r = l.At(0);
  EXPECT_EQ(r.Width, 2);
  EXPECT_EQ(r.Height, 2);
  EXPECT_EQ(r.XOffset, -2);
  EXPECT_EQ(r.YOffset, 1);
  EXPECT_EQ(r.Flags, 0);
  EXPECT_EQ(r.Size, 4);
  EXPECT_EQ(r.CompressedSize, 5);
  EXPECT_EQ(l.Bytes(0), (Bytes{0x0A, 0x0B, 0x0A, 0x0B}));
  EXPECT_EQ(l.Store.SpriteData.size(), 4u);
}

TEST(Format, OffsetChunkOfDistanceOneRepeatsTheByte) {
  // Stream 01 07 E8 01 decodes to 07 07 07 07.
  const Bytes file = grfw::File({grfw::RawSprite(12, 0, 1, 4, 0, 0, {0x01, 0x07, 0xE8, 0x01})});
  const Loaded l = Load(file);
  ASSERT_EQ(l.Count(), 1);
  EXPECT_EQ(l.Bytes(0), (Bytes{7, 7, 7, 7}));
  EXPECT_EQ(l.At(0).CompressedSize, 4);
}

TEST(Format, OffsetChunkDistanceUsesLowBitsOfControlByte) {
  // 83 10: length 16, distance 784. 800 literal bytes, then 16 copied from 784 back.
  Bytes pixels(800);
  for (size_t i = 0; i < pixels.size(); ++i) pixels[i] = static_cast<uint8_t>(i * 7 + 3);
  Bytes stream = grfw::Literal(pixels);
  stream.push_back(0x83);
  stream.push_back(0x10);
  const Bytes file = grfw::File({grfw::SpriteRec(0, 1, 816, 0, 0, stream, 816)});
  const Loaded l = Load(file);
  ASSERT_EQ(l.Count(), 1);
  const Bytes out = l.Bytes(0);
  for (int i = 0; i < 16; ++i) EXPECT_EQ(out[800 + i], pixels[16 + i]) << i;
}

TEST(Format, RunFormExamplePlacesTwoPixels) {
  // Height 2, width 4, decoded stream 04 00 08 00 82 01 11 22 80 00, L 18.
  const Bytes decoded{0x04, 0x00, 0x08, 0x00, 0x82, 0x01, 0x11, 0x22, 0x80, 0x00};
  const Bytes file = grfw::File({grfw::RawSprite(18, 8, 2, 4, 0, 0, grfw::Literal(decoded))});
  const Loaded l = Load(file);
  ASSERT_EQ(l.Count(), 1);
  EXPECT_EQ(l.At(0).Size, 8);
  EXPECT_EQ(l.Bytes(0), (Bytes{0, 0x11, 0x22, 0, 0, 0, 0, 0}));
  EXPECT_EQ(l.Outcome.Totals.WritePosition, 8);
}

TEST(Format, ControlBytesAtTheEdgesOfBothKinds) {
  // 0x7F: 127 data bytes; 0x00: 128; 0x80: offset of 16 from 1 back; 0xFF: offset of 1 from
  // 1,793 back, before the store's first byte, which reads as zero.
  Bytes a(127, 5), b(128, 6);
  Bytes stream;
  grfw::AddData(stream, a);
  grfw::AddData(stream, b);
  stream.push_back(0x80);
  stream.push_back(0x01);
  stream.push_back(0xFF);
  stream.push_back(0x01);
  ASSERT_EQ(stream[0], 0x7F);
  ASSERT_EQ(stream[128], 0x00);
  const int32_t decoded = 127 + 128 + 16 + 1;
  const Loaded l = Load(grfw::File({grfw::SpriteRec(0, 1, decoded, 0, 0, stream, decoded)}));
  ASSERT_EQ(l.Count(), 1);
  EXPECT_TRUE(l.Messages.empty());
  EXPECT_EQ(l.At(0).CompressedSize, 1 + 127 + 1 + 128 + 2 + 2);
  const Bytes out = l.Bytes(0);
  EXPECT_EQ(out[126], 5);
  EXPECT_EQ(out[127], 6);
  EXPECT_EQ(out[254], 6);
  for (int i = 255; i < 271; ++i) EXPECT_EQ(out[i], 6) << i;
  EXPECT_EQ(out[271], 0);
}

TEST(Format, FlagsByte255IsActionAnd254IsASpriteWithBothFlags) {
  // 254 holds the stored-size and run-form flags. The stream below takes exactly as many bytes as
  // it decodes to (8), so both passes agree on where the record ends.
  const Bytes stream{0x05, 0x02, 0x00, 0x84, 0x00, 0x09, 0xE8, 0x01};
  const Bytes rec = grfw::RawSprite(16, 254, 1, 4, 0, 0, stream);
  const Loaded l = Load(grfw::File({grfw::ActionRecord({1, 2, 3}), rec}));
  ASSERT_EQ(l.Count(), 2);
  EXPECT_TRUE(l.Messages.empty());
  EXPECT_EQ(l.At(0).Flags, 255);
  EXPECT_EQ(l.At(1).Flags, 254);
  EXPECT_EQ(l.Bytes(1), (Bytes{9, 9, 9, 9}));
}
