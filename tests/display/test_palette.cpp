// The palette reader against the case list in palette_cases.txt, and the palette shipped beside
// the program. (Where the window finds it is in its start-up test.)
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>

#include "case_file.h"
#include "grf_writer.h"
#include "palette.h"

using namespace vossel;

namespace {

// {N}: N entry lines "i 255-i i^0x5A" in a file text, or those N entries in hex.
std::string Expand(const std::string& text, bool hex) {
  std::string out;
  for (size_t i = 0; i < text.size(); ++i) {
    const size_t close = text.find('}', i);
    if (text[i] != '{' || close == std::string::npos) {
      out += text[i];
      continue;
    }
    char entry[32];
    for (int e = 0, n = std::stoi(text.substr(i + 1)); e < n; ++e) {
      std::snprintf(entry, sizeof entry, hex ? "%02X%02X%02X00 " : "%3$d %2$d %1$d\r\n", e ^ 0x5A,
                    255 - e, e);
      out += entry;
    }
    i = close;
  }
  return out;
}

}  // namespace

TEST(LoadPalette, CaseList) {
  int serial = 0;
  for (const std::string& line : CaseLines("display/palette_cases.txt")) {
    SCOPED_TRACE(line);
    const std::vector<std::string> f = Fields(line, 3);
    ASSERT_EQ(f.size(), 3u);
    std::string text = Expand(Unescape(f[2]), false);
    if (!text.empty() && text[0] == 'H') text.replace(0, 1, "JASC-PAL\r\n0100\r\n");
    const std::string path = grfw::WriteTemp("case" + std::to_string(++serial) + ".pal",
                                             grfw::Bytes(text.begin(), text.end()));
    PaletteBuffer p;
    p.fill(0xAA);
    EXPECT_EQ(LoadPalette(path, p), f[0] == "ok" ? -1 : 0);
    const std::vector<uint8_t> bytes = Hex(Expand(f[1], true));
    const std::string want(bytes.begin(), bytes.end());
    std::string got(p.begin(), p.end());
    EXPECT_EQ(got.substr(0, want.size()), want);
    EXPECT_EQ(got.substr(want.size()), std::string(1024 - want.size(), '\xAA'));
  }
  PaletteBuffer p{};
  for (const std::string& path : {std::string(), grfw::WriteTemp("x", {}) + ".missing",
                                  std::filesystem::temp_directory_path().string()})
    EXPECT_EQ(LoadPalette(path, p), 0) << path;
}

TEST(LoadPalette, ShippedBesideTheProgram) {
  PaletteBuffer p{};
  ASSERT_EQ(LoadPalette(JoinPath(ProgramFolder(), kPaletteFileName), p), -1);
  // Its first line is "0 0 255" and its last "255 255 255".
  EXPECT_EQ(std::string(p.begin(), p.begin() + 4), std::string("\xFF\0\0\0", 4));
  EXPECT_EQ(std::string(p.end() - 4, p.end()), std::string("\xFF\xFF\xFF\0", 4));
  EXPECT_EQ(ProgramFolder(), std::filesystem::canonical("/proc/self/exe").parent_path().string());
}
