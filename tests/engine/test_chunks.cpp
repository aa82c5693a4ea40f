// The chunk viewer's walk over the records: where it ends, how many sprites it offers and how many
// entries its tables hold, for the table in scan_cases.txt and for length words made here.
#include <gtest/gtest.h>

#include "case_file.h"
#include "chunks.h"
#include "grf_writer.h"
#include "text.h"

using grfw::Bytes;

TEST(ChunkScan, EndsAndTables) {
  const Bytes worked = Hex("0C00 00 02 0200 FEFF 0100 020A0B F002");
  std::vector<std::vector<std::string>> cases;
  for (const std::string& line : CaseLines("engine/scan_cases.txt"))
    cases.push_back(Fields(line, 5));
  // Length words that would step back or cannot count the header, whatever lies behind.
  std::string rest = " 0C0000020200FEFF0100020A0BF002 0000";
  for (const char* word : {"FFFF", "FCFF", "0080"})
    cases.push_back({"action word", "invalid", "2", "3", word + std::string("FF") + rest});
  for (const char* word : {"FFFF", "0880", "0780", "0080", "0100", "0700"})
    for (const char* flags : {"00", "02", "08", "0A"})
      if (word[2] != '0' || flags[1] == '0' || flags[1] == '8')  // stored 1 and 7: in the table
        cases.push_back({"sprite word", "invalid", "2", "3",
                         word + std::string(flags) + "02020000000000 020A0BF002" + rest});
  for (const auto& c : cases) {
    SCOPED_TRACE(c[0] + ": " + c[4]);
    ChunkScan scan;
    Bytes file = worked;
    grfw::Append(file, Hex("0200 FF 0708"));
    grfw::Append(file, Hex(c[4]));
    const ScanOutcome out = ScanBuffer(file, scan);
    EXPECT_EQ(out.End, c[1] == "complete" ? ScanEnd::Complete : ScanEnd::InvalidStream);
    EXPECT_EQ(out.Count, std::stoi(c[2]));
    EXPECT_EQ(out.Message, c[1] == "complete" ? "" : kMsgOutOfBuffer);
    const size_t entries = std::stoul(c[3]);
    EXPECT_EQ(std::vector<size_t>(
                  {scan.SpriteOffset.size(), scan.SpriteSize.size(), scan.SpriteFlags.size()}),
              std::vector<size_t>(3, entries));
  }
}

TEST(ChunkScan, AtMost32767Sprites) {
  ChunkScan scan;
  std::vector<Bytes> records(32767, grfw::ActionRecord({0x42}));
  EXPECT_EQ(ScanBuffer(grfw::FileOf(records), scan).Count, 32767);
  records.push_back(grfw::ActionRecord({0x42}));
  const ScanOutcome out = ScanBuffer(grfw::FileOf(records), scan);
  EXPECT_EQ(out.End, ScanEnd::InvalidStream);
  EXPECT_EQ(out.Count, 32767);
}
