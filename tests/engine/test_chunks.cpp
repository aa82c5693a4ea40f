// The chunk viewer's walk over the records: where it ends, how many sprites it offers and how many
// entries its tables hold, for the table in scan_cases.txt and for length words made here.
#include <gtest/gtest.h>

#include "case_file.h"
#include "chunks.h"
#include "grf_writer.h"
#include "text.h"

using namespace vossel;

using grfw::Bytes;

TEST(ChunkScan, EndsAndTables) {
  const Bytes small = Hex("0C00 00 02 0200 FEFF 0100 020A0B F002");
  std::vector<std::vector<std::string>> cases;
  for (const std::string& line : CaseLines("engine/scan_cases.txt"))
    cases.push_back(Fields(line, 5));
  for (const auto& c : cases) {
    SCOPED_TRACE(c[0] + ": " + c[4]);
    ChunkScan scan;
    Bytes file = small;
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
