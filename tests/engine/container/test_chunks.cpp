// The chunk viewer's walk over the records: where it ends, how many sprites it offers and how many
// entries its tables hold, for the table in scan_cases.txt and for length words made here.
#include <gtest/gtest.h>

#include "case_file.h"
#include "chunks.h"
#include "grf_writer.h"
#include "records.h"
#include "text.h"

using namespace vossel;

using grfw::Bytes;

TEST(ChunkScan, EndsAndTables) {
  const Bytes small = Hex("0C00 00 02 0200 FEFF 0100 020A0B F002");
  std::vector<std::vector<std::string>> cases;
  for (const std::string& line : CaseLines("engine/container/scan_cases.txt"))
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

// Where the loader and the chunk viewer read the same bytes differently, each difference is one
// rule: the walk with the loader's rules and that one rule turned takes the viewer's way.
TEST(ChunkScan, EachDifferenceFromTheLoaderIsOneRule) {
  const struct {
    bool WalkRules::*Rule;
    const char* Behind;  // bytes behind one good record
    int32_t LoaderCount, ViewerCount;
    bool LoaderRefuses, ViewerRefuses;
  } cases[] = {
      {&WalkRules::LoneZeroEnds, "00", 1, 1, true, false},
      {&WalkRules::StepShortStoredSize, "0100 02  0C00 00 02 0200 FEFF 0100 020A0B F002", 1, 3,
       true, false},
      {&WalkRules::RefusePastEnd, "0C00 00 02 0200 0000 0000 040A0B", 2, 1, false, true},
      {&WalkRules::RefusePastEnd, "0C00 02 02 0200 0000", 2, 1, false, true},
  };
  for (const auto& c : cases) {
    const Bytes file = Hex(std::string("0C00 00 02 0200 FEFF 0100 020A0B F002 ") + c.Behind);
    const Reader bytes{file.data(), static_cast<int64_t>(file.size())};
    const auto walk = [&](const WalkRules& rules) {
      return WalkRecords(bytes, rules, kMaxSprites, [](const WalkedRecord&) {});
    };
    WalkRules turned = kLoaderRules;
    turned.*c.Rule = !(turned.*c.Rule);
    const WalkOutcome loader = walk(kLoaderRules), viewer = walk(kScannerRules), one = walk(turned);
    EXPECT_EQ(loader.Count, c.LoaderCount) << c.Behind;
    EXPECT_EQ(loader.Refused, c.LoaderRefuses) << c.Behind;
    EXPECT_EQ(viewer.Count, c.ViewerCount) << c.Behind;
    EXPECT_EQ(viewer.Refused, c.ViewerRefuses) << c.Behind;
    EXPECT_EQ(one.Count, viewer.Count) << c.Behind;
    EXPECT_EQ(one.Refused, viewer.Refused) << c.Behind;
  }
}
