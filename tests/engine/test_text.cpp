// The texts of a load and of the browser: sizes, binary digits, number masks, the status lines,
// the messages and the row and labels of a sprite.
#include <gtest/gtest.h>

#include "text.h"

TEST(Text, Formats) {
  SpriteRecord r;
  r.Width = 64;
  r.Height = 31;
  r.Size = 100000;
  r.Flags = 8;
  r.XOffset = -31;
  const SpriteRowTexts row = SpriteRow(9999, r);
  const std::pair<std::string, std::string> cases[] = {
      {FormatSize(0), "0 bytes"},
      {FormatSize(921), "921 bytes"},
      {FormatSize(922), "0.90kB"},
      {FormatSize(1024), "1.00kB"},
      {FormatSize(943718), "921.60kB"},
      {FormatSize(943719), "0.90 MB"},
      {FormatSize(1048576), "1.00 MB"},
      {ByteToBinary(0, 0), "0"},
      {ByteToBinary(5, 0), "101"},
      {ByteToBinary(5, 8), "00000101"},
      {ByteToBinary(255, 4), "11111111"},
      {ByteToBinary(256, 8), "100000000"},
      {FormatFixed2(0.125), "0.13"},
      {FormatFixed2(-0.001), "0.00"},
      {FormatFixed2(-25), "-25.00"},
      {FormatFixed2(1234567.891), "1234567.89"},
      {FormatZeroFilled(12345, 4), "12345"},
      {FormatZeroFilled(-5, 3), "-005"},
      {StatusText("a.grf", 5, 4, 17),
       "a.grf\r\n- Compression ratio: -25.00 %\r\n- 5 bytes compressed of 4 bytes "
       "uncompressed\r\n- Filesize 17 bytes"},
      {StatusText("x", 500000, 2000000, 1048576),
       "x\r\n- Compression ratio: 75.00 %\r\n- 488.28kB compressed of 1.91 MB "
       "uncompressed\r\n- Filesize 1.00 MB"},
      {StatusText("x", 12, 0, 17).substr(3, 29), "- Compression ratio: 0.00 %\r\n"},
      {StatusText("x", 30000000, 6000000, 17).substr(3, 30), "- Compression ratio: -400.00 %"},
      {PreparedMessage(5), "Prepared memory in 0.01 seconds"},
      {LoadedMessage(2758, 1500), "Loaded 2758 sprites in 1.50 seconds"},
      {FileLoadedMessage("/g/a.grf"), "*** '/g/a.grf' loaded ***"},
      {ReadFailureText(2, "No such file or directory", "/x"),
       "Error 2: No such file or directory (/x)"},
      {row.Key + " " + row.Number + " " + row.Width + " " + row.Height + " " + row.Size + " " +
           row.Flags,
       "k9999 10000 064 031 100000 00001000"},
      {ViewingCaption(4, r), "Viewing sprite 5 (64 x 31)"},
      {FlagsText(r), "00001000 (8)"},
      {OffsetText(r), "-31 x 0"},
  };
  for (const auto& [got, want] : cases) EXPECT_EQ(got, want);
}
