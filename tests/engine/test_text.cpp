// The texts the load and the browser show: sizes, binary digits, masks, status and list rows.
#include <gtest/gtest.h>

#include "text.h"

TEST(Text, FormatSizeChoosesTheUnitAtTheSinglePrecisionEdges) {
  EXPECT_EQ(FormatSize(0), "0 bytes");
  EXPECT_EQ(FormatSize(921), "921 bytes");
  EXPECT_EQ(FormatSize(922), "0.90kB");
  EXPECT_EQ(FormatSize(1024), "1.00kB");
  EXPECT_EQ(FormatSize(943718), "921.60kB");
  EXPECT_EQ(FormatSize(943719), "0.90 MB");
  EXPECT_EQ(FormatSize(1048576), "1.00 MB");
  EXPECT_EQ(FormatSize(6291456), "6.00 MB");
}

TEST(Text, ByteToBinary) {
  EXPECT_EQ(ByteToBinary(0, 0), "0");
  EXPECT_EQ(ByteToBinary(5, 0), "101");
  EXPECT_EQ(ByteToBinary(5, 8), "00000101");
  EXPECT_EQ(ByteToBinary(255, 8), "11111111");
  EXPECT_EQ(ByteToBinary(255, 4), "11111111");
  EXPECT_EQ(ByteToBinary(8, 8), "00001000");
  EXPECT_EQ(ByteToBinary(256, 8), "100000000");
}

TEST(Text, NumberMasks) {
  EXPECT_EQ(FormatFixed2(0), "0.00");
  EXPECT_EQ(FormatFixed2(0.125), "0.13");  // halves away from zero
  EXPECT_EQ(FormatFixed2(12.345678), "12.35");
  EXPECT_EQ(FormatFixed2(-25), "-25.00");
  EXPECT_EQ(FormatFixed2(-0.001), "0.00");
  EXPECT_EQ(FormatFixed2(1234567.891), "1234567.89");
  EXPECT_EQ(SecondsText(0), "0.00");
  EXPECT_EQ(SecondsText(1234), "1.23");
  EXPECT_EQ(SecondsText(5), "0.01");
  EXPECT_EQ(FormatZeroFilled(1, 4), "0001");
  EXPECT_EQ(FormatZeroFilled(12345, 4), "12345");  // never cut
  EXPECT_EQ(FormatZeroFilled(0, 3), "000");
  EXPECT_EQ(FormatZeroFilled(-5, 3), "-005");
}

TEST(Text, StatusTextHasFourLinesJoinedByCrLf) {
  EXPECT_EQ(StatusText("/tmp/a.grf", 5, 4, 17),
            "/tmp/a.grf\r\n- Compression ratio: -25.00 %\r\n- 5 bytes compressed of 4 bytes "
            "uncompressed\r\n- Filesize 17 bytes");
  EXPECT_EQ(StatusText("x", 500000, 2000000, 1048576),
            "x\r\n- Compression ratio: 75.00 %\r\n- 488.28kB compressed of 1.91 MB "
            "uncompressed\r\n- Filesize 1.00 MB");
}

TEST(Text, StatusTextWithNothingDecodedReadsZeroRatio) {
  EXPECT_NE(StatusText("x", 0, 0, 17).find("- Compression ratio: 0.00 %\r\n"), std::string::npos);
  EXPECT_NE(StatusText("x", 12, 0, 17).find("- Compression ratio: 0.00 %\r\n"), std::string::npos);
  // A product that would pass 32 bits still gives the true ratio.
  EXPECT_NE(StatusText("x", 30000000, 6000000, 17).find("ratio: -400.00 %"), std::string::npos);
}

TEST(Text, MessagesOfALoad) {
  EXPECT_EQ(PreparedMessage(20), "Prepared memory in 0.02 seconds");
  EXPECT_EQ(LoadedMessage(2758, 1500), "Loaded 2758 sprites in 1.50 seconds");
  EXPECT_EQ(FileLoadedMessage("/g/a.grf"), "*** '/g/a.grf' loaded ***");
  EXPECT_EQ(ReadFailureText(2, "No such file or directory", "/x"),
            "Error 2: No such file or directory (/x)");
}

TEST(Text, ListRowAndSpriteLabels) {
  SpriteRecord r;
  r.Width = 64;
  r.Height = 31;
  r.Size = 64 * 31;
  r.Flags = 8;
  r.XOffset = -31;
  r.YOffset = 0;
  const SpriteRowTexts row = SpriteRow(4, r);
  EXPECT_EQ(row.Key, "k4");
  EXPECT_EQ(row.Number, "0005");
  EXPECT_EQ(row.Width, "064");
  EXPECT_EQ(row.Height, "031");
  EXPECT_EQ(row.Size, "01984");
  EXPECT_EQ(row.Flags, "00001000");
  EXPECT_EQ(ViewingCaption(4, r), "Viewing sprite 5 (64 x 31)");
  EXPECT_EQ(FlagsText(r), "00001000 (8)");
  EXPECT_EQ(OffsetText(r), "-31 x 0");
  r.Flags = 255;
  EXPECT_EQ(FlagsText(r), "11111111 (255)");
  r.Size = 100000;
  EXPECT_EQ(SpriteRow(9999, r).Size, "100000");
  EXPECT_EQ(SpriteRow(9999, r).Number, "10000");
}
