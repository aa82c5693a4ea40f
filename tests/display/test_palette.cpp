#include <gtest/gtest.h>

#include <filesystem>
#include <initializer_list>
#include <string>

#include "grf_writer.h"
#include "palette.h"

namespace {

const std::string kHead = "JASC-PAL\r\n0100\r\n";

std::string WritePal(const std::string& text) {
  static int serial = 0;
  return grfw::WriteTemp("pal-" + std::to_string(++serial) + ".pal",
                         grfw::Bytes(text.begin(), text.end()));
}

// A buffer of 0xAA everywhere, so that every byte written shows.
PaletteBuffer Marked() {
  PaletteBuffer p;
  p.fill(0xAA);
  return p;
}

// Entry i of the test files: red i, green 255 - i, blue i xor 0x5A.
std::string EntryLine(int i) {
  return std::to_string(i) + " " + std::to_string(255 - i) + " " + std::to_string(i ^ 0x5A) +
         "\r\n";
}

std::string PalWithEntries(const std::string& count, int lines) {
  std::string text = kHead + count + "\r\n";
  for (int i = 0; i < lines; ++i) text += EntryLine(i);
  return text;
}

// The bytes of the buffer from `at` on.
void ExpectBytes(const PaletteBuffer& p, int at, std::initializer_list<int> bytes) {
  for (const int b : bytes) {
    EXPECT_EQ(p[at], b) << "byte " << at;
    ++at;
  }
}

void ExpectEntry(const PaletteBuffer& p, int i) {
  SCOPED_TRACE("entry " + std::to_string(i));
  ExpectBytes(p, 4 * i, {i ^ 0x5A, 255 - i, i, 0});
}

void ExpectMarkedFrom(const PaletteBuffer& p, int firstByte) {
  for (int b = firstByte; b < 1024; ++b) ASSERT_EQ(p[b], 0xAA) << "byte " << b;
}

int16_t Load(const std::string& text, PaletteBuffer& p) {
  return LoadPalette(WritePal(text), p);
}

}  // namespace

TEST(LoadPalette, ShippedFileBesideTheProgram) {
  PaletteBuffer p{};
  ASSERT_EQ(LoadPalette(JoinPath(ProgramFolder(), kPaletteFileName), p), -1);
  // Its first line is "0 0 255" and its last "255 255 255".
  ExpectBytes(p, 0, {255, 0, 0, 0});
  ExpectBytes(p, 1020, {255, 255, 255, 0});
}

TEST(LoadPalette, Count256FillsTheBufferExactly) {
  PaletteBuffer p = Marked();
  ASSERT_EQ(Load(PalWithEntries("256", 256), p), -1);
  for (int i = 0; i < 256; ++i) ExpectEntry(p, i);
}

TEST(LoadPalette, EntryLineFormsThatRead) {
  PaletteBuffer p = Marked();
  // Blue stands first in the buffer and last on the line.
  ASSERT_EQ(Load(kHead + "1\r\n0 0 255\r\n", p), -1);
  ExpectBytes(p, 0, {255, 0, 0, 0});

  // A fourth token and a trailing blank are ignored; whatever follows the last entry is not read.
  ASSERT_EQ(Load(kHead + "2\r\n1 2 3 4\r\n5 6 7 \r\nnot a palette line\r\n", p), -1);
  ExpectBytes(p, 0, {3, 2, 1, 0, 7, 6, 5, 0});
  ExpectMarkedFrom(p, 8);
}

TEST(LoadPalette, LineEnds) {
  PaletteBuffer p = Marked();
  // A lone CR ends a line; the last line needs no end at all.
  ASSERT_EQ(Load("JASC-PAL\r0100\r1\r9 8 7", p), -1);
  ExpectBytes(p, 0, {7, 8, 9, 0});

  // LF alone does not end a line: the whole file is line 1.
  p = Marked();
  EXPECT_EQ(Load("JASC-PAL\n0100\n1\n9 8 7\n", p), 0);
  ExpectMarkedFrom(p, 0);

  // CR CR LF: an empty line 2.
  EXPECT_EQ(Load("JASC-PAL\r\r\n0100\r\n1\r\n9 8 7\r\n", p), 0);
  ExpectMarkedFrom(p, 0);

  // An LF inside an entry line belongs to its last token.
  EXPECT_EQ(Load(kHead + "1\n\r\n9 8 7\r\n", p), 0);
  ExpectMarkedFrom(p, 0);
}

TEST(LoadPalette, ShortCountsLeaveTheRest) {
  PaletteBuffer zero{};
  ASSERT_EQ(Load(PalWithEntries("2", 2), zero), -1);
  ExpectEntry(zero, 0);
  ExpectEntry(zero, 1);
  for (int b = 8; b < 1024; ++b) ASSERT_EQ(zero[b], 0) << "byte " << b;

  PaletteBuffer p = Marked();
  ASSERT_EQ(Load(PalWithEntries("255", 255), p), -1);
  for (int i = 0; i < 255; ++i) ExpectEntry(p, i);
  ExpectMarkedFrom(p, 1020);

  // Zero or negative: no entry line is read, not even a broken one.
  for (const char* count : {"0", "-5", "-32767"}) {
    p = Marked();
    EXPECT_EQ(Load(kHead + count + "\r\nbroken\r\n", p), -1) << count;
    ExpectMarkedFrom(p, 0);
  }
}

TEST(LoadPalette, CountIsRoundedAfterTheSubtraction) {
  // count - 1 rounded half to even: 0.5 -> -0.5 -> 0 (one entry), 2.5 -> 1.5 -> 2 (three),
  // 1.5 -> 0.5 -> 0 (one), 3.5 -> 2.5 -> 2 (three).
  const struct {
    const char* count;
    int entries;
  } cases[] = {{"0.5", 1}, {"1.5", 1}, {"2.5", 3}, {"3.5", 3}, {"&H2", 2}, {" 2 ", 2}, {"2e0", 2}};
  for (const auto& c : cases) {
    PaletteBuffer p = Marked();
    ASSERT_EQ(Load(PalWithEntries(c.count, c.entries), p), -1) << c.count;
    for (int i = 0; i < c.entries; ++i) ExpectEntry(p, i);
    ExpectMarkedFrom(p, 4 * c.entries);
    // One entry line fewer than the count asks for is a refusal.
    EXPECT_EQ(Load(PalWithEntries(c.count, c.entries - 1), p), 0) << c.count;
  }
}

TEST(LoadPalette, RefusalsBeforeAnyEntryLeaveTheBufferUnchanged) {
  const std::string missing = grfw::WriteTemp("exists.pal", {}) + ".missing";
  const std::string folder = std::filesystem::path(missing).parent_path().string();
  PaletteBuffer p = Marked();
  EXPECT_EQ(LoadPalette(missing, p), 0);
  EXPECT_EQ(LoadPalette(folder, p), 0);
  EXPECT_EQ(LoadPalette("", p), 0);
  ExpectMarkedFrom(p, 0);

  const char* texts[] = {
      "",                                         // empty file
      "JASC-PAL\r\n",                             // ends before line 2
      "JASC-PAL\r\n0100\r\n",                     // ends before line 3
      "JASC-PAL\r\n0100",                         // the same, no final line end
      "jasc-pal\r\n0100\r\n1\r\n1 2 3\r\n",       // case differs
      "JASC-PAL \r\n0100\r\n1\r\n1 2 3\r\n",      // trailing blank
      " JASC-PAL\r\n0100\r\n1\r\n1 2 3\r\n",      // leading blank
      "JASC-PAL\r\n100\r\n1\r\n1 2 3\r\n",        // version
      "JASC-PAL\r\n0100 \r\n1\r\n1 2 3\r\n",      // version with a blank
      "JASC-PAL\r\n0100\r\nabc\r\n1 2 3\r\n",     // count not numeric
      "JASC-PAL\r\n0100\r\n\r\n1 2 3\r\n",        // count empty
      "JASC-PAL\r\n0100\r\n2 5\r\n1 2 3\r\n",     // count with an inner blank
      "JASC-PAL\r\n0100\r\n32769\r\n1 2 3\r\n",   // 32768 does not fit 16 bits
      "JASC-PAL\r\n0100\r\n-32768\r\n1 2 3\r\n",  // nor does -32769
      "JASC-PAL\r\n0100\r\n1e9\r\n1 2 3\r\n",
      "JASC-PAL\r\n0100\r\n1e999\r\n1 2 3\r\n",  // beyond double
  };
  for (const char* text : texts) {
    p = Marked();
    EXPECT_EQ(Load(text, p), 0) << text;
    ExpectMarkedFrom(p, 0);
  }
}

TEST(LoadPalette, RefusalsInsideTheEntriesKeepWhatWasStored) {
  PaletteBuffer p = Marked();
  // The file ends before the last entry line.
  EXPECT_EQ(Load(PalWithEntries("3", 2), p), 0);
  ExpectEntry(p, 0);
  ExpectEntry(p, 1);
  ExpectMarkedFrom(p, 8);

  // Fewer than three tokens, an empty line, tabs (one token): nothing of the entry is stored.
  for (const char* bad : {"1 2", "", "1\t2\t3", "123"}) {
    p = Marked();
    EXPECT_EQ(Load(kHead + "3\r\n" + EntryLine(0) + bad + "\r\n" + EntryLine(2), p), 0) << bad;
    ExpectEntry(p, 0);
    ExpectMarkedFrom(p, 4);
  }

  // Tokens are converted blue, green, red: the bytes before the failing one stay.
  const struct {
    const char* line;
    int stored;  // bytes of entry 1 written before the refusal
    uint8_t blue, green;
  } partial[] = {
      {"1  2 3", 1, 2, 0},     // tokens 1, "", 2, 3: blue 2, then green is empty
      {"1 2 x", 0, 0, 0},      // blue not numeric
      {"1 2 256", 0, 0, 0},    // blue out of range
      {"1 -1 3", 1, 3, 0},     // green below 0
      {"300 2 3", 2, 3, 2},    // red out of range
      {"1 2 3\t9", 0, 0, 0},   // "3\t9" is one token
      {" 1 2 3", 2, 2, 1},     // leading blank: tokens "", 1, 2, 3
      {"1 2 255.5", 0, 0, 0},  // rounds to 256
  };
  for (const auto& c : partial) {
    p = Marked();
    EXPECT_EQ(Load(kHead + "2\r\n" + EntryLine(0) + c.line + "\r\n", p), 0) << c.line;
    ExpectEntry(p, 0);
    if (c.stored >= 1) {
      EXPECT_EQ(p[4], c.blue) << c.line;
    }
    if (c.stored >= 2) {
      EXPECT_EQ(p[5], c.green) << c.line;
    }
    ExpectMarkedFrom(p, 4 + c.stored);
  }
}

TEST(LoadPalette, CountAbove256WritesAll256Entries) {
  for (int lines : {257, 256, 300}) {
    PaletteBuffer p = Marked();
    EXPECT_EQ(Load(PalWithEntries("300", lines), p), 0) << lines;
    for (int i = 0; i < 256; ++i) ExpectEntry(p, i);
  }
  PaletteBuffer p = Marked();
  EXPECT_EQ(Load(PalWithEntries("257", 257), p), 0);
  for (int i = 0; i < 256; ++i) ExpectEntry(p, i);
  // The largest count that fits: still refused at the 257th entry.
  EXPECT_EQ(Load(PalWithEntries("32768", 300), p), 0);
}

TEST(LoadPalette, NumberRuleForEntryTokens) {
  const struct {
    const char* token;
    int value;  // -1: refused
  } cases[] = {
      {"0", 0},        {"255", 255},        {"007", 7},
      {"+5", 5},       {"-0", 0},           {"-0.4", 0},
      {"2.5", 2},      {"3.5", 4},          {"254.5", 254},
      {"0.5", 0},      {"1.5", 2},          {".5", 0},
      {"5.", 5},       {"1e2", 100},        {"1E+2", 100},
      {"2.55e2", 255}, {"25500e-2", 255},   {"&HFF", 255},
      {"&hff", 255},   {"&H0A", 10},        {"&O17", 15},
      {"&o377", 255},  {"-1", -1},          {"256", -1},
      {"255.5", -1},   {"-0.6", -1},        {"", -1},
      {"-", -1},       {"+", -1},           {".", -1},
      {"e5", -1},      {"1e", -1},          {"1e+", -1},
      {"1.2.3", -1},   {"0x10", -1},        {"&H", -1},
      {"&H100", -1},   {"&HG", -1},         {"&O8", -1},
      {"-&H1", -1},    {"&H123456789", -1}, {"inf", -1},
      {"nan", -1},     {"1,5", -1},         {"12a", -1},
      {"\t7", 7},      {"7\t", 7},          {"1e999", -1},
      {"--1", -1},     {"1d2", -1},
  };
  for (const auto& c : cases) {
    uint8_t b = 77;
    if (c.value < 0) {
      EXPECT_FALSE(TextToByte(c.token, b)) << c.token;
      PaletteBuffer p = Marked();
      EXPECT_EQ(Load(kHead + "1\r\n0 0 " + c.token + "\r\n", p), 0) << c.token;
      ExpectMarkedFrom(p, 0);
    } else {
      EXPECT_TRUE(TextToByte(c.token, b)) << c.token;
      EXPECT_EQ(b, c.value) << c.token;
      PaletteBuffer p = Marked();
      EXPECT_EQ(Load(kHead + "1\r\n0 0 " + c.token + "\r\n", p), -1) << c.token;
      EXPECT_EQ(p[0], c.value) << c.token;
    }
  }
}

TEST(TextToNumber, ValuesAndBlanks) {
  double v = 0;
  ASSERT_TRUE(TextToNumber("  -12.25e1 ", v));
  EXPECT_DOUBLE_EQ(v, -122.5);
  ASSERT_TRUE(TextToNumber("&HFFFFFFFF", v));
  EXPECT_DOUBLE_EQ(v, 4294967295.0);
  ASSERT_TRUE(TextToNumber("40000", v));
  EXPECT_DOUBLE_EQ(v, 40000);
  EXPECT_FALSE(TextToNumber("   ", v));
  EXPECT_FALSE(TextToNumber("1 2", v));
  EXPECT_FALSE(TextToNumber(std::string("1\0", 2), v));
}

TEST(JoinPath, OneSeparator) {
  EXPECT_EQ(JoinPath("/", "ttdw-jasc.pal"), "/ttdw-jasc.pal");
  EXPECT_EQ(JoinPath("/opt/game", "ttdw-jasc.pal"), "/opt/game/ttdw-jasc.pal");
  EXPECT_EQ(JoinPath("/opt/game/", "ttdw-jasc.pal"), "/opt/game/ttdw-jasc.pal");
  EXPECT_EQ(JoinPath("", "ttdw-jasc.pal"), "/ttdw-jasc.pal");
  // Only the last character counts, and the backslash is a plain character here.
  EXPECT_EQ(JoinPath("a//", "b"), "a//b");
  EXPECT_EQ(JoinPath("C:\\", "b"), "C:\\/b");
  EXPECT_EQ(JoinPath("dir", ""), "dir/");
}

TEST(ProgramFolder, IsTheFolderOfTheRunningFile) {
  const std::string folder = ProgramFolder();
  ASSERT_FALSE(folder.empty());
  EXPECT_EQ(folder.front(), '/');
  EXPECT_NE(folder.back(), '/');
  EXPECT_EQ(folder, std::filesystem::canonical("/proc/self/exe").parent_path().string());
  EXPECT_TRUE(std::filesystem::exists(JoinPath(folder, "test_display")));
}
