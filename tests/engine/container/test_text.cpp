// The texts of a load at their edges: sizes and their units, binary digits, the number masks and
// the ratio of the status text. The texts of whole loads are in the CLI's transcript.
#include <gtest/gtest.h>

#include "text.h"

using namespace vossel;

TEST(Text, AtTheEdges) {
  const std::pair<std::string, std::string> cases[] = {
      {FormatSize(921), "921 bytes"},
      {FormatSize(922), "0.90kB"},
      {FormatSize(1024), "1.00kB"},
      {FormatSize(943718), "921.60kB"},
      {FormatSize(943719), "0.90 MB"},
      {FormatSize(1048576), "1.00 MB"},
      {ByteToBinary(5, 0), "101"},
      {ByteToBinary(255, 4), "11111111"},
      {ByteToBinary(256, 8), "100000000"},
      {FormatFixed2(0.125), "0.13"},
      {FormatFixed2(-0.001), "0.00"},
      {FormatZeroFilled(12345, 4), "12345"},
      {FormatZeroFilled(-5, 3), "-005"},
      {StatusText("x", 12, 0, 17).substr(3, 27), "- Compression ratio: 0.00 %"},
      {StatusText("x", 30000000, 6000000, 17).substr(3, 30), "- Compression ratio: -400.00 %"},
  };
  for (const auto& [got, want] : cases) EXPECT_EQ(got, want);
}
