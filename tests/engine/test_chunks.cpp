#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <string>
#include <vector>

#include "chunks.h"
#include "grf_writer.h"

using grfw::Bytes;

namespace {

const char kOutOfBuffer[] = "Error! Out of buffer size!";
const char kTooSmall[] =
    "File is too small to be loaded. File must contain atleast one non-action sprite size of 1 "
    "pixel.";

// The worked example's record without its zero word: 15 bytes, stream at 10, decoded size 4.
Bytes WorkedRecord() {
  Bytes b = grfw::SeventeenByteFile();
  b.resize(15);
  return b;
}

// A copy whose allocation ends at its last byte, so that the sanitizer sees any read behind it.
std::vector<uint8_t> Exact(const Bytes& b) {
  return std::vector<uint8_t>(b.begin(), b.end());
}

ScanOutcome Scan(ChunkScan& scan, const Bytes& file) {
  return ScanBuffer(Exact(file), scan);
}

// A non-action sprite whose stream is `stream`, walked to `decoded` bytes.
Bytes Walked(const Bytes& stream, int32_t decoded, uint8_t flags = 0) {
  return grfw::RawSprite(static_cast<uint16_t>(8 + decoded), flags, 1,
                         static_cast<uint16_t>(decoded), 0, 0, stream);
}

// A sprite with the stored-size flag: the length word counts the stream's stored bytes.
Bytes Stored(uint16_t width, uint8_t height, const Bytes& stream, uint8_t flags = 2) {
  return grfw::RawSprite(static_cast<uint16_t>(8 + stream.size()), flags, height, width, 0, 0,
                         stream);
}

std::vector<std::string> Texts(const std::vector<ChunkLine>& lines) {
  std::vector<std::string> texts;
  for (const ChunkLine& l : lines) texts.push_back(l.Text);
  return texts;
}

std::string Pairs(uint8_t first, int count) {
  std::string s;
  for (int k = 0; k < count; ++k) s += " " + ByteToHex(static_cast<uint8_t>(first + k));
  return s;
}

Bytes Sequence(uint8_t first, int count) {
  Bytes b;
  for (int k = 0; k < count; ++k) b.push_back(static_cast<uint8_t>(first + k));
  return b;
}

void ExpectTables(const ChunkScan& scan, size_t entries) {
  EXPECT_EQ(scan.SpriteOffset.size(), entries);
  EXPECT_EQ(scan.SpriteSize.size(), entries);
  EXPECT_EQ(scan.SpriteFlags.size(), entries);
}

}  // namespace

// --- Hexadecimal text ----------------------------------------------------------------------------

TEST(ChunkText, ByteToHexGivesTwoUpperCaseDigits) {
  EXPECT_EQ(ByteToHex(0), "00");
  EXPECT_EQ(ByteToHex(10), "0A");
  EXPECT_EQ(ByteToHex(16), "10");
  EXPECT_EQ(ByteToHex(0xAB), "AB");
  EXPECT_EQ(ByteToHex(255), "FF");
  for (int v = 0; v < 256; ++v) {
    const std::string s = ByteToHex(static_cast<uint8_t>(v));
    ASSERT_EQ(s.size(), 2u) << v;
    EXPECT_EQ(std::stoi(s, nullptr, 16), v);
    for (char ch : s) EXPECT_TRUE((ch >= '0' && ch <= '9') || (ch >= 'A' && ch <= 'F')) << s;
  }
}

// --- The walk ------------------------------------------------------------------------------------

TEST(ChunkScan, WorkedExampleGivesOneSprite) {
  ChunkScan scan;
  const ScanOutcome out = Scan(scan, grfw::SeventeenByteFile());
  EXPECT_EQ(out.End, ScanEnd::Complete);
  EXPECT_EQ(out.Count, 1);
  EXPECT_EQ(out.Message, "");
  EXPECT_EQ(scan.FileLength, 17);
  EXPECT_EQ(scan.FileData, grfw::SeventeenByteFile());
  ExpectTables(scan, 1);
  EXPECT_EQ(scan.SpriteOffset[0], 10);
  EXPECT_EQ(scan.SpriteSize[0], 4);
  EXPECT_EQ(scan.SpriteFlags[0], 0);
}

TEST(ChunkScan, FilesBelowSeventeenBytesAreTooSmall) {
  ChunkScan scan;
  Scan(scan, grfw::File({WorkedRecord(), grfw::ActionRecord({1, 2, 3})}));
  Bytes small = grfw::SeventeenByteFile();
  small.pop_back();
  const ScanOutcome out = Scan(scan, small);
  EXPECT_EQ(out.End, ScanEnd::TooSmall);
  EXPECT_EQ(out.Message, kTooSmall);
  // The new bytes are taken, the earlier tables stay.
  EXPECT_EQ(scan.FileLength, 16);
  EXPECT_EQ(scan.FileData, small);
  ExpectTables(scan, 2);
  EXPECT_EQ(scan.SpriteOffset[1], 18);

  EXPECT_EQ(Scan(scan, {}).End, ScanEnd::TooSmall);
}

TEST(ChunkScan, ActionSpriteMovesByItsWordPlusThree) {
  ChunkScan scan;
  const Bytes data = Sequence(1, 20);
  const ScanOutcome out = Scan(scan, grfw::File({grfw::ActionRecord(data), WorkedRecord()}));
  EXPECT_EQ(out.End, ScanEnd::Complete);
  ASSERT_EQ(out.Count, 2);
  EXPECT_EQ(scan.SpriteFlags[0], 255);
  EXPECT_EQ(scan.SpriteOffset[0], 3);
  EXPECT_EQ(scan.SpriteSize[0], 20);
  EXPECT_EQ(scan.SpriteOffset[1], 23 + 10);
  EXPECT_EQ(scan.SpriteSize[1], 4);
}

TEST(ChunkScan, StoredSizeSpriteStepsOverItsBytesAndTakesWidthTimesHeight) {
  ChunkScan scan;
  // Width 300 needs both width bytes; the stream is not walked, so its bytes may be anything.
  const Bytes stored = Stored(300, 3, {0xFF, 0x00, 0x80, 0x7F, 0x01});
  // Width 40,000 is positive here: high byte x 256 + low byte.
  const Bytes wide = Stored(40000, 2, {0x01, 0x00});
  const ScanOutcome out = Scan(scan, grfw::File({stored, wide, WorkedRecord()}));
  EXPECT_EQ(out.End, ScanEnd::Complete);
  ASSERT_EQ(out.Count, 3);
  EXPECT_EQ(scan.SpriteOffset[0], 10);
  EXPECT_EQ(scan.SpriteSize[0], 900);
  EXPECT_EQ(scan.SpriteFlags[0], 2);
  // L = 13 moves p by L + 2.
  EXPECT_EQ(scan.SpriteOffset[1], 15 + 10);
  EXPECT_EQ(scan.SpriteSize[1], 80000);
  EXPECT_EQ(scan.SpriteOffset[2], 15 + 12 + 10);
}

TEST(ChunkScan, WalkedStreamsCountControlBytes) {
  ChunkScan scan;
  Bytes stream;
  grfw::AddData(stream, Bytes(128, 0x11));  // control byte 0: 128 bytes, steps 129
  grfw::AddData(stream, Bytes(127, 0x22));
  grfw::AddOffset(stream, 16, 5);  // 0x80
  grfw::AddOffset(stream, 1, 0);   // 0xF8
  stream.push_back(0xFF);          // 0xFF: one byte
  stream.push_back(0x00);
  const int32_t decoded = 128 + 127 + 16 + 1 + 1;
  // The run-form flag is not looked at: the stream is walked to L - 8 all the same.
  const Bytes runForm = Walked({0x02, 0xAA, 0xBB}, 2, 8);
  const Bytes empty = Walked({}, 0);
  const ScanOutcome out =
      Scan(scan, grfw::File({Walked(stream, decoded), runForm, empty, WorkedRecord()}));
  EXPECT_EQ(out.End, ScanEnd::Complete);
  ASSERT_EQ(out.Count, 4);
  EXPECT_EQ(scan.SpriteSize[0], decoded);
  const int32_t second = 10 + static_cast<int32_t>(stream.size());
  EXPECT_EQ(scan.SpriteOffset[1], second + 10);
  EXPECT_EQ(scan.SpriteSize[1], 2);
  EXPECT_EQ(scan.SpriteFlags[1], 8);
  // Length word 8: decoded size 0, no chunk read, the next record right behind the header.
  EXPECT_EQ(scan.SpriteOffset[2], second + 13 + 10);
  EXPECT_EQ(scan.SpriteSize[2], 0);
  EXPECT_EQ(scan.SpriteOffset[3], second + 13 + 10 + 10);
}

TEST(ChunkScan, StreamPassingItsSizeEndsWithTheSpritesBefore) {
  ChunkScan scan;
  // Lands exactly: no message.
  const Bytes exact = Walked({0x03, 1, 2, 3}, 3);
  // Passes 3 by one.
  const Bytes over = Walked({0x02, 1, 2, 0x02, 3, 4}, 3, 0x11);
  const ScanOutcome out = Scan(scan, grfw::File({exact, WorkedRecord(), over, WorkedRecord()}));
  EXPECT_EQ(out.End, ScanEnd::InvalidStream);
  EXPECT_EQ(out.Message, kOutOfBuffer);
  EXPECT_EQ(out.Count, 2);
  // The refused sprite has its entry, behind the ones that can be chosen.
  ExpectTables(scan, 3);
  EXPECT_EQ(scan.SpriteFlags[2], 0x11);
  EXPECT_EQ(scan.SpriteOffset[0], 10);
  EXPECT_EQ(scan.SpriteOffset[1], 14 + 10);
  EXPECT_EQ(ChunkList(scan, 1).size(), 2u);
}

TEST(ChunkScan, EndsAtTheFilesEndOrTheFirstZeroWord) {
  ChunkScan scan;
  // No zero word: the loop ends when p reaches the end.
  ScanOutcome out = Scan(scan, grfw::File({WorkedRecord(), WorkedRecord()}, false));
  EXPECT_EQ(out.End, ScanEnd::Complete);
  EXPECT_EQ(out.Count, 2);
  // Behind the zero word lies a record that would be refused: it is never read.
  Bytes f = grfw::File({WorkedRecord()});
  grfw::Append(f, Walked({0x7F}, 1));
  out = Scan(scan, f);
  EXPECT_EQ(out.End, ScanEnd::Complete);
  EXPECT_EQ(out.Count, 1);
  ExpectTables(scan, 1);
}

TEST(ChunkScan, ALaterFileCutsOrGrowsTheTables) {
  ChunkScan scan;
  std::vector<Bytes> five(5, WorkedRecord());
  ASSERT_EQ(Scan(scan, grfw::FileOf(five)).Count, 5);
  ExpectTables(scan, 5);
  const uint32_t before = scan.Generation;

  ASSERT_EQ(Scan(scan, grfw::File({grfw::ActionRecord({9, 9}), WorkedRecord()})).Count, 2);
  ExpectTables(scan, 2);
  EXPECT_EQ(scan.SpriteFlags[0], 255);
  EXPECT_EQ(scan.SpriteOffset[1], 15);
  EXPECT_NE(scan.Generation, before);

  std::vector<Bytes> seven(7, grfw::ActionRecord({1}));
  ASSERT_EQ(Scan(scan, grfw::FileOf(seven)).Count, 7);
  ExpectTables(scan, 7);
  EXPECT_EQ(scan.SpriteOffset[6], 6 * 4 + 3);
}

TEST(ChunkScan, ReadsFilesFromDisk) {
  ChunkScan scan;
  const std::string path = grfw::WriteTemp("chunks-disk.grf", grfw::SeventeenByteFile());
  ScanOutcome out = ScanGRF(path, scan);
  EXPECT_EQ(out.End, ScanEnd::Complete);
  EXPECT_EQ(out.Count, 1);
  EXPECT_EQ(scan.FileData, grfw::SeventeenByteFile());
  const uint32_t generation = scan.Generation;

  // A failure to read changes nothing and gives the window's title.
  const std::string missing = path + ".missing";
  out = ScanGRF(missing, scan);
  EXPECT_EQ(out.End, ScanEnd::ReadFailure);
  EXPECT_EQ(out.Message.rfind("Error " + std::to_string(ENOENT) + ": ", 0), 0u) << out.Message;
  const std::string tail = " (" + missing + ")";
  ASSERT_GE(out.Message.size(), tail.size());
  EXPECT_EQ(out.Message.substr(out.Message.size() - tail.size()), tail);
  EXPECT_EQ(scan.FileData, grfw::SeventeenByteFile());
  ExpectTables(scan, 1);
  EXPECT_EQ(scan.Generation, generation);

  // A file of no bytes fails to read; it does not reach the size test.
  out = ScanGRF(grfw::WriteTemp("chunks-empty.grf", {}), scan);
  EXPECT_EQ(out.End, ScanEnd::ReadFailure);
  EXPECT_EQ(scan.FileLength, 17);

  // A good file after the failure fills everything again.
  out = ScanGRF(grfw::WriteTemp("chunks-two.grf", grfw::File({WorkedRecord(), WorkedRecord()})),
                scan);
  EXPECT_EQ(out.Count, 2);
  ExpectTables(scan, 2);
}

// --- The chunk list ------------------------------------------------------------------------------

TEST(ChunkList, WorkedExampleGivesTwoLines) {
  ChunkScan scan;
  Scan(scan, grfw::SeventeenByteFile());
  const std::vector<ChunkLine> lines = ChunkList(scan, 0);
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_EQ(lines[0].ItemData, 10);
  EXPECT_EQ(lines[0].Text, "Data chunk of 2 bytes, 0A 0B");
  EXPECT_EQ(lines[1].ItemData, 13);
  EXPECT_EQ(lines[1].Text, "Offset chunk, 2 bytes of data from position 0");
}

TEST(ChunkList, OffsetPositionIsCountLessDistance) {
  ChunkScan scan;
  // E8 01 at count 0: length 3, distance 1, so position -1.
  const Bytes first = Walked({0xE8, 0x01}, 3);
  // 83 10 at count 1,000: length 16, distance 784, so position 216.
  Bytes stream = grfw::Literal(Bytes(1000, 0x44));
  const int32_t at = 12 + 10 + static_cast<int32_t>(stream.size());
  stream.push_back(0x83);
  stream.push_back(0x10);
  Scan(scan, grfw::File({first, Walked(stream, 1016)}));
  ASSERT_EQ(scan.SpriteSize.size(), 2u);

  EXPECT_EQ(Texts(ChunkList(scan, 0)),
            std::vector<std::string>{"Offset chunk, 3 bytes of data from position -1"});
  const std::vector<ChunkLine> lines = ChunkList(scan, 1);
  ASSERT_EQ(lines.size(), 9u);
  std::string pairs;
  for (int k = 0; k < 104; ++k) pairs += " 44";
  EXPECT_EQ(lines[7].Text, "Data chunk of 104 bytes," + pairs);
  EXPECT_EQ(lines[8].ItemData, at);
  EXPECT_EQ(lines[8].Text, "Offset chunk, 16 bytes of data from position 216");
}

TEST(ChunkList, ControlBytesAtTheEdgesOfBothKinds) {
  ChunkScan scan;
  Bytes stream;
  grfw::AddData(stream, Sequence(0, 128));    // 0x00
  grfw::AddData(stream, Sequence(128, 127));  // 0x7F
  stream.push_back(0x80);                     // 16 bytes, distance 5
  stream.push_back(0x05);
  stream.push_back(0xFF);  // 1 byte, distance (7 << 8) | 0x10
  stream.push_back(0x10);
  Scan(scan, grfw::File({Walked(stream, 128 + 127 + 16 + 1)}));
  const std::vector<ChunkLine> lines = ChunkList(scan, 0);
  ASSERT_EQ(lines.size(), 4u);
  EXPECT_EQ(lines[0].ItemData, 10);
  EXPECT_EQ(lines[0].Text, "Data chunk of 128 bytes," + Pairs(0, 128));
  EXPECT_EQ(lines[0].Text.size(), 24u + 384u);
  EXPECT_EQ(lines[1].ItemData, 10 + 129);
  EXPECT_EQ(lines[1].Text, "Data chunk of 127 bytes," + Pairs(128, 127));
  EXPECT_EQ(lines[2].ItemData, 10 + 129 + 128);
  EXPECT_EQ(lines[2].Text, "Offset chunk, 16 bytes of data from position 250");
  EXPECT_EQ(lines[3].ItemData, 10 + 129 + 128 + 2);
  EXPECT_EQ(lines[3].Text, "Offset chunk, 1 bytes of data from position " +
                               std::to_string(128 + 127 + 16 - ((7 << 8) | 0x10)));
}

TEST(ChunkList, BytesBelowSixteenKeepTheirLeadingZero) {
  ChunkScan scan;
  Scan(scan, grfw::File({Walked({0x05, 0x00, 0x05, 0x0F, 0x10, 0xA0}, 5)}));
  EXPECT_EQ(Texts(ChunkList(scan, 0)),
            std::vector<std::string>{"Data chunk of 5 bytes, 00 05 0F 10 A0"});
}

TEST(ChunkList, ActionSpriteGivesOneLineAndReadsNothing) {
  ChunkScan scan;
  Scan(scan, grfw::File({WorkedRecord(), grfw::ActionRecord({1, 2, 3})}));
  std::vector<ChunkLine> lines = ChunkList(scan, 1);
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_EQ(lines[0].ItemData, 18);
  EXPECT_EQ(lines[0].Text, "Action sprite, 3 bytes");
  // Its position is not used to read: one far behind the buffer gives the same line.
  scan.SpriteOffset[1] = 1 << 30;
  lines = ChunkList(scan, 1);
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_EQ(lines[0].ItemData, 1 << 30);
}

TEST(ChunkList, EndsAtTheSizeOrWithTheLineThatPassesIt) {
  ChunkScan scan;
  // Both flags set: the list ends at width x height (2), although the stream holds more.
  const Bytes both = Stored(2, 1, {0x02, 0x01, 0x02, 0x01, 0x03}, 2 | 8);
  // Width x height 3, the second chunk goes past it: listed, and nothing after it.
  const Bytes past = Stored(3, 1, {0x02, 0x01, 0x02, 0xF0, 0x02, 0x01, 0x09});
  const Bytes none = Walked({}, 0);
  Scan(scan, grfw::File({both, past, none}));
  ASSERT_EQ(scan.SpriteSize.size(), 3u);
  EXPECT_EQ(Texts(ChunkList(scan, 0)), std::vector<std::string>{"Data chunk of 2 bytes, 01 02"});
  EXPECT_EQ(Texts(ChunkList(scan, 1)),
            (std::vector<std::string>{"Data chunk of 2 bytes, 01 02",
                                      "Offset chunk, 2 bytes of data from position 0"}));
  EXPECT_TRUE(ChunkList(scan, 2).empty());
  EXPECT_TRUE(StartChunkList(scan, 2).Done);
}

TEST(ChunkList, CursorGivesTheSameLinesOneAtATime) {
  ChunkScan scan;
  Scan(scan, grfw::File({grfw::PlainSprite(20, 10, [] {
         Bytes px;
         for (int k = 0; k < 200; ++k) px.push_back(static_cast<uint8_t>(k / 7));
         return px;
       }())}));
  const std::vector<ChunkLine> all = ChunkList(scan, 0);
  ASSERT_GT(all.size(), 5u);
  ChunkCursor cursor = StartChunkList(scan, 0);
  EXPECT_FALSE(cursor.Action);
  size_t k = 0;
  ChunkLine line;
  while (!cursor.Done) {
    ASSERT_TRUE(NextChunkLine(scan, cursor, line));
    ASSERT_LT(k, all.size());
    EXPECT_EQ(line.ItemData, all[k].ItemData);
    EXPECT_EQ(line.Text, all[k].Text);
    ++k;
  }
  EXPECT_EQ(k, all.size());
  EXPECT_FALSE(NextChunkLine(scan, cursor, line));
}

TEST(ChunkList, AListStopsWhenItsFileIsReplacedOrErased) {
  ChunkScan scan;
  const Bytes file = grfw::File({Walked({0x01, 0xAA, 0x01, 0xBB, 0x01, 0xCC}, 3)});
  Scan(scan, file);
  ChunkCursor cursor = StartChunkList(scan, 0);
  ChunkLine line;
  ASSERT_TRUE(NextChunkLine(scan, cursor, line));
  EXPECT_EQ(line.Text, "Data chunk of 1 bytes, AA");
  // Another file opened while events ran: the rest of the old list is not read.
  Scan(scan, file);
  EXPECT_FALSE(cursor.Done);
  EXPECT_FALSE(NextChunkLine(scan, cursor, line));
  EXPECT_TRUE(cursor.Done);

  cursor = StartChunkList(scan, 0);
  ASSERT_TRUE(NextChunkLine(scan, cursor, line));
  EraseChunkScan(scan);
  EXPECT_FALSE(NextChunkLine(scan, cursor, line));
  EXPECT_TRUE(scan.FileData.empty());
  ExpectTables(scan, 0);
  EXPECT_TRUE(ChunkList(scan, 0).empty());
}

TEST(ChunkList, IndexOutsideTheTablesGivesNothing) {
  ChunkScan scan;
  EXPECT_TRUE(ChunkList(scan, 0).empty());
  Scan(scan, grfw::SeventeenByteFile());
  EXPECT_TRUE(ChunkList(scan, -1).empty());
  EXPECT_TRUE(ChunkList(scan, 1).empty());
  EXPECT_TRUE(StartChunkList(scan, 32767).Done);
}

// --- Never past the buffer -----------------------------------------------------------------------

TEST(ChunkBounds, UnwalkedStreamStopsAtTheEndOfTheFile) {
  ChunkScan scan;
  // Stored size 3 bytes, but 10 bytes to list: the list runs to the end of the file and stops.
  const Bytes f =
      grfw::File({grfw::ActionRecord({1, 2, 3, 4}), Stored(5, 2, {0x02, 0x0A, 0x0B})}, false);
  ASSERT_EQ(Scan(scan, f).Count, 2);
  const std::vector<ChunkLine> lines = ChunkList(scan, 1);
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_EQ(lines[0].ItemData, 17);
  EXPECT_EQ(lines[0].Text, "Data chunk of 2 bytes, 0A 0B");
}

TEST(ChunkBounds, DataChunkCutByTheEndShowsTheBytesThatAreThere) {
  ChunkScan scan;
  const Bytes f =
      grfw::File({grfw::ActionRecord({1, 2, 3, 4}), Stored(5, 1, {0x05, 0x01, 0x02})}, false);
  ASSERT_EQ(Scan(scan, f).Count, 2);
  EXPECT_EQ(Texts(ChunkList(scan, 1)), std::vector<std::string>{"Data chunk of 5 bytes, 01 02"});
  // Cut right behind the control byte: the line has no pairs.
  const Bytes g = grfw::File({grfw::ActionRecord({1, 2, 3, 4}), Stored(5, 1, {0x05})}, false);
  ASSERT_EQ(Scan(scan, g).Count, 2);
  EXPECT_EQ(Texts(ChunkList(scan, 1)), std::vector<std::string>{"Data chunk of 5 bytes,"});
}

TEST(ChunkBounds, OffsetChunkWithoutItsSecondByteGivesNoLine) {
  ChunkScan scan;
  const Bytes f =
      grfw::File({grfw::ActionRecord({1, 2, 3, 4}), Stored(5, 1, {0x02, 0x01, 0x02, 0xF0})}, false);
  ASSERT_EQ(Scan(scan, f).Count, 2);
  EXPECT_EQ(Texts(ChunkList(scan, 1)), std::vector<std::string>{"Data chunk of 2 bytes, 01 02"});
}

TEST(ChunkBounds, TablesOfAnEarlierFileReadOnlyTheNewBytes) {
  ChunkScan scan;
  Scan(scan, grfw::File({WorkedRecord(), grfw::ActionRecord({1, 2}), WorkedRecord()}));
  ASSERT_EQ(scan.SpriteOffset[2], 30);
  // Too small: the tables stay and now stand beside 12 other bytes.
  Bytes small(12, 0);
  small[10] = 0x03;
  small[11] = 0xAA;
  ASSERT_EQ(Scan(scan, small).End, ScanEnd::TooSmall);
  std::vector<ChunkLine> lines = ChunkList(scan, 0);
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_EQ(lines[0].ItemData, 10);
  EXPECT_EQ(lines[0].Text, "Data chunk of 3 bytes, AA");
  EXPECT_TRUE(ChunkList(scan, 2).empty());
  EXPECT_EQ(Texts(ChunkList(scan, 1)), std::vector<std::string>{"Action sprite, 2 bytes"});
  ASSERT_EQ(Scan(scan, Bytes(3, 0x80)).End, ScanEnd::TooSmall);
  EXPECT_TRUE(ChunkList(scan, 0).empty());
}

// --- Records that cannot be taken in -------------------------------------------------------------

namespace {

// Two good sprites, then `tail`. The walk must end in order with just the two.
void ExpectRefusedAfterTwo(const Bytes& tail, size_t entries = 3) {
  SCOPED_TRACE(::testing::PrintToString(tail));
  ChunkScan scan;
  Bytes f = grfw::File({WorkedRecord(), grfw::ActionRecord({7, 8})}, false);
  grfw::Append(f, tail);
  const ScanOutcome out = Scan(scan, f);
  EXPECT_EQ(out.End, ScanEnd::InvalidStream);
  EXPECT_EQ(out.Message, kOutOfBuffer);
  EXPECT_EQ(out.Count, 2);
  ExpectTables(scan, entries);
  ASSERT_GE(scan.SpriteOffset.size(), 2u);
  EXPECT_EQ(scan.SpriteOffset[0], 10);
  EXPECT_EQ(scan.SpriteSize[0], 4);
  EXPECT_EQ(scan.SpriteOffset[1], 18);
  EXPECT_EQ(scan.SpriteFlags[1], 255);
  EXPECT_EQ(ChunkList(scan, 0).size(), 2u);
}

}  // namespace

TEST(ChunkHostile, RecordCutByTheEndOfTheFile) {
  ExpectRefusedAfterTwo({0x05}, 2);                             // one byte of a length word
  ExpectRefusedAfterTwo({0x05, 0x00}, 2);                       // a word without its flags byte
  ExpectRefusedAfterTwo({0x0C, 0x00, 0x00, 0x02, 0x02, 0x00});  // header cut
  ExpectRefusedAfterTwo({0x08, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00});
  // A walked stream whose next control byte lies behind the end.
  ExpectRefusedAfterTwo({0x0C, 0x00, 0x00, 0x02, 0x02, 0x00, 0, 0, 0, 0, 0x02, 0x0A, 0x0B});
  // A walked stream whose last data chunk runs past the end.
  ExpectRefusedAfterTwo({0x0C, 0x00, 0x00, 0x02, 0x02, 0x00, 0, 0, 0, 0, 0x04, 0x0A, 0x0B});
  // An offset chunk without its second byte.
  ExpectRefusedAfterTwo({0x0C, 0x00, 0x00, 0x02, 0x02, 0x00, 0, 0, 0, 0, 0xE0});
}

// Records whose bytes are stepped over, not walked, end the walk at the end of the file with
// that sprite counted; a stored-size word of 1 to 7 steps by L + 2 like any other.
TEST(ChunkHostile, SteppedOverRecordsPastTheEndAndShortStoredWordsAreTakenIn) {
  Bytes stored = Stored(4, 4, {0x01, 0x02, 0x03});
  stored.pop_back();
  for (const Bytes& tail : {Bytes{0x0A, 0x00, 0xFF, 0x01, 0x02}, stored}) {
    ChunkScan scan;
    Bytes f = grfw::File({WorkedRecord(), grfw::ActionRecord({7, 8})}, false);
    grfw::Append(f, tail);
    const ScanOutcome out = Scan(scan, f);
    EXPECT_EQ(out.End, ScanEnd::Complete);
    EXPECT_EQ(out.Count, 3);
    ExpectTables(scan, 3);
    EXPECT_EQ(scan.SpriteOffset[2], tail[2] == 0xFF ? 23 : 30);
    EXPECT_FALSE(ChunkList(scan, 2).empty());
  }
  ChunkScan cut;
  Scan(cut, grfw::File({WorkedRecord(), Bytes{0x0A, 0x00, 0xFF, 1}}, false));
  EXPECT_EQ(Texts(ChunkList(cut, 1)), std::vector<std::string>{"Action sprite, 10 bytes"});
  for (uint16_t word : {1, 7}) {
    // L + 2 bytes on from its head the next record starts: here a copy of the worked sprite.
    Bytes head = grfw::RawSprite(word, 0x02, 2, 2, 0, 0, {});
    head.resize(word + 2);
    grfw::Append(head, WorkedRecord());
    ChunkScan scan;
    const ScanOutcome out = Scan(scan, grfw::File({WorkedRecord(), head}));
    EXPECT_EQ(out.End, ScanEnd::Complete) << word;
    EXPECT_EQ(out.Count, 3) << word;
  }
}

TEST(ChunkHostile, LoneZeroByteAtTheEndIsAnEnd) {
  ChunkScan scan;
  Bytes f = grfw::File({WorkedRecord(), WorkedRecord()}, false);
  f.push_back(0x00);
  const ScanOutcome out = Scan(scan, f);
  EXPECT_EQ(out.End, ScanEnd::Complete);
  EXPECT_EQ(out.Count, 2);
  ExpectTables(scan, 2);
}

TEST(ChunkHostile, NegativeLengthWordsNeverStepBack) {
  for (uint16_t word : {0xFFFF, 0xFFFE, 0xFFFD, 0xFFFC, 0x8000}) {
    // Behind the action head stand records a backward step would land among again.
    Bytes action = {static_cast<uint8_t>(word & 0xFF), static_cast<uint8_t>(word >> 8), 0xFF};
    grfw::Append(action, grfw::File({WorkedRecord(), WorkedRecord()}));
    ExpectRefusedAfterTwo(action);
  }
  for (uint16_t word : {0xFFFF, 0x8008, 0x8007, 0x8000, 1, 7}) {
    for (uint8_t flags : {0x02, 0x00, 0x0A, 0x08}) {
      if (word < 8 && (flags & 0x02)) continue;  // stepped over: taken in above
      SCOPED_TRACE(std::to_string(word) + " flags " + std::to_string(flags));
      Bytes head = grfw::RawSprite(word, flags, 2, 2, 0, 0, {0x02, 0x0A, 0x0B, 0xF0, 0x02});
      grfw::Append(head, grfw::File({WorkedRecord()}));
      ExpectRefusedAfterTwo(head);
    }
  }
}

TEST(ChunkHostile, FileWithNoSpriteLeavesNoTables) {
  ChunkScan scan;
  Scan(scan, grfw::File({WorkedRecord(), WorkedRecord(), WorkedRecord()}));
  ExpectTables(scan, 3);
  // A first word of 0: a clean end with nothing in it, and no tables of the earlier file.
  ScanOutcome out = Scan(scan, Bytes(17, 0));
  EXPECT_EQ(out.End, ScanEnd::Complete);
  EXPECT_EQ(out.Count, 0);
  ExpectTables(scan, 0);
  EXPECT_TRUE(ChunkList(scan, 0).empty());
  EXPECT_TRUE(ChunkList(scan, -1).empty());

  // An invalid first sprite: nothing to choose; its own entry is all the tables hold.
  Scan(scan, grfw::File({WorkedRecord(), WorkedRecord(), WorkedRecord()}));
  Bytes bad = Walked({0x05, 1, 2, 3, 4, 5}, 4);
  grfw::Append(bad, grfw::File({WorkedRecord()}));
  out = Scan(scan, bad);
  EXPECT_EQ(out.End, ScanEnd::InvalidStream);
  EXPECT_EQ(out.Message, kOutOfBuffer);
  EXPECT_EQ(out.Count, 0);
  ExpectTables(scan, 1);
  EXPECT_TRUE(ChunkList(scan, out.Count - 1).empty());
}

TEST(ChunkHostile, AtMost32767Sprites) {
  ChunkScan scan;
  std::vector<Bytes> records(32767, grfw::ActionRecord({0x42}));
  ScanOutcome out = Scan(scan, grfw::FileOf(records));
  EXPECT_EQ(out.End, ScanEnd::Complete);
  EXPECT_EQ(out.Count, 32767);
  ExpectTables(scan, 32767);

  records.push_back(WorkedRecord());
  records.push_back(WorkedRecord());
  out = Scan(scan, grfw::FileOf(records));
  EXPECT_EQ(out.End, ScanEnd::InvalidStream);
  EXPECT_EQ(out.Message, kOutOfBuffer);
  EXPECT_EQ(out.Count, 32767);
  ExpectTables(scan, 32767);
  EXPECT_EQ(scan.SpriteOffset[32766], 32766 * 4 + 3);
  EXPECT_EQ(Texts(ChunkList(scan, 32766)), std::vector<std::string>{"Action sprite, 1 bytes"});
}
