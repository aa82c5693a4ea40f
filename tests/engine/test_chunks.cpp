// The chunk viewer's walk over the records: where it ends, how many sprites it offers and how many
// entries its tables hold, for every input beyond the limits.
#include <gtest/gtest.h>

#include "chunks.h"
#include "grf_writer.h"
#include "text.h"

using grfw::Bytes;

namespace {

// The worked example's record without its zero word: stream at 10, decoded size 4.
Bytes Worked() {
  const Bytes b = grfw::SeventeenByteFile();
  return Bytes(b.begin(), b.end() - 2);
}

// A non-action head with L 12 (four bytes to walk) and then `stream`.
Bytes Walked(const Bytes& stream, uint16_t word = 12, uint8_t flags = 0) {
  return grfw::RawSprite(word, flags, 2, 2, 0, 0, stream);
}

struct Case {
  const char* Name;
  Bytes Tail;  // behind the worked record and an action sprite of two bytes
  ScanEnd End;
  int Count;
  size_t Entries;
};

}  // namespace

TEST(ChunkScan, EndsAndTables) {
  const Bytes worked = Worked();
  std::vector<Case> cases = {
      {"zero word", {0, 0}, ScanEnd::Complete, 2, 2},
      {"end of the file", {}, ScanEnd::Complete, 2, 2},
      {"lone zero byte", {0}, ScanEnd::Complete, 2, 2},
      {"a record behind the zero word", grfw::File({{0, 0}, Walked({0x7F})}, false),
       ScanEnd::Complete, 2, 2},
      {"more records", grfw::File({worked, grfw::ActionRecord(Bytes(300, 1)), worked}, false),
       ScanEnd::Complete, 5, 5},
      {"length word 8 walks nothing", Walked({}, 8), ScanEnd::Complete, 3, 3},
      {"a stream passing its size", Walked({3, 1, 2, 3, 2, 4, 5}, 12, 0x11), ScanEnd::InvalidStream,
       2, 3},
      {"one byte of a length word", {0x05}, ScanEnd::InvalidStream, 2, 2},
      {"a word without its flags byte", {0x05, 0x00}, ScanEnd::InvalidStream, 2, 2},
      {"a header cut", {0x0C, 0x00, 0x00, 0x02, 0x02, 0x00}, ScanEnd::InvalidStream, 2, 3},
      {"action data cut", {0x0A, 0x00, 0xFF, 0x01, 0x02}, ScanEnd::InvalidStream, 2, 3},
      {"stored bytes cut", Walked({2, 0x0A}, 12, 2), ScanEnd::InvalidStream, 2, 3},
      {"no control byte left", Walked({2, 0x0A, 0x0B}), ScanEnd::InvalidStream, 2, 3},
      {"a data chunk cut", Walked({4, 0x0A, 0x0B}), ScanEnd::InvalidStream, 2, 3},
      {"an offset chunk cut", Walked({0xE0}), ScanEnd::InvalidStream, 2, 3},
  };
  // Length words that would step back or cannot count the header, whatever lies behind.
  for (const uint16_t word : {0xFFFF, 0xFFFC, 0x8000})
    cases.push_back(
        {"action word",
         grfw::File(
             {{static_cast<uint8_t>(word), static_cast<uint8_t>(word >> 8), 0xFF}, worked, worked}),
         ScanEnd::InvalidStream, 2, 3});
  for (const uint16_t word : {0xFFFF, 0x8008, 0x8007, 0x8000, 1, 7})
    for (const uint8_t flags : {0x00, 0x02, 0x08, 0x0A})
      cases.push_back({"sprite word",
                       grfw::File({Walked({2, 0x0A, 0x0B, 0xF0, 2}, word, flags), worked}),
                       ScanEnd::InvalidStream, 2, 3});
  for (const Case& c : cases) {
    SCOPED_TRACE(c.Name);
    ChunkScan scan;
    Bytes file = grfw::File({worked, grfw::ActionRecord({7, 8})}, false);
    grfw::Append(file, c.Tail);
    file.resize(std::max<size_t>(file.size(), 17), 0);
    const ScanOutcome out = ScanBuffer(file, scan);
    EXPECT_EQ(out.End, c.End);
    EXPECT_EQ(out.Count, c.Count);
    EXPECT_EQ(out.Message, c.End == ScanEnd::Complete ? "" : kMsgOutOfBuffer);
    EXPECT_EQ(scan.SpriteOffset.size(), c.Entries);
    EXPECT_EQ(scan.SpriteSize.size(), c.Entries);
    EXPECT_EQ(scan.SpriteFlags.size(), c.Entries);
  }
}

TEST(ChunkScan, FilesWithoutAChoice) {
  // A first word of 0 leaves no tables of an earlier file; a refused first record its own entry.
  ChunkScan scan;
  ScanBuffer(grfw::FileOf(std::vector<Bytes>(3, Worked())), scan);
  ScanOutcome out = ScanBuffer(Bytes(17, 0), scan);
  EXPECT_EQ(out.End, ScanEnd::Complete);
  EXPECT_EQ(out.Count, 0);
  EXPECT_TRUE(scan.SpriteOffset.empty());
  out = ScanBuffer(grfw::File({Walked({5, 1, 2, 3, 4, 5}), Worked()}), scan);
  EXPECT_EQ(out.End, ScanEnd::InvalidStream);
  EXPECT_EQ(out.Count, 0);
  EXPECT_EQ(scan.SpriteFlags.size(), 1u);
  // 32,767 sprites are offered; a 32,768th ends the walk.
  std::vector<Bytes> records(32767, grfw::ActionRecord({0x42}));
  EXPECT_EQ(ScanBuffer(grfw::FileOf(records), scan).Count, 32767);
  records.push_back(Worked());
  out = ScanBuffer(grfw::FileOf(records), scan);
  EXPECT_EQ(out.End, ScanEnd::InvalidStream);
  EXPECT_EQ(out.Count, 32767);
  EXPECT_EQ(scan.SpriteOffset.size(), 32767u);
  // Below 17 bytes: too small.
  EXPECT_EQ(ScanBuffer(Bytes(16, 1), scan).End, ScanEnd::TooSmall);
}
