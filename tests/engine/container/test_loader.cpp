// Both passes over files whose result is known: the table in loader_cases.txt and files made here
// in bulk; and the store that one load leaves to the next. (Records cut at random places are in
// the fuzz replays, against the plain decoder.)
#include <gtest/gtest.h>

#include "case_file.h"
#include "load_helper.h"
#include "text.h"

using namespace vossel;

using grfw::Bytes;

TEST(Loader, KnownFiles) {
  struct Case {
    std::string Name;
    Bytes File;
    int Count;
    bool Message;
    Bytes Store;
  };
  std::vector<Case> cases;
  for (const std::string& line : CaseLines("engine/container/loader_cases.txt")) {
    const std::vector<std::string> f = Fields(line, 5);
    cases.push_back({f[0], Hex(f[4]), std::stoi(f[1]), f[2] == "overrun", Hex(f[3])});
  }
  // The count's limit; a store filled by sprites of 32,753 bytes (one byte and 2,047 offsets).
  const Bytes one = grfw::PlainSprite(1, 1, {7});
  std::vector<Bytes> records(32767, grfw::ActionRecord({1}));
  cases.push_back({"32,767 sprites", grfw::FileOf(records), 32767, false, Bytes(32767, 1)});
  records.push_back(one);
  cases.push_back({"a 32,768th sprite", grfw::FileOf(records), 32767, true, Bytes(32767, 1)});
  Bytes big = grfw::Literal({0x5A});
  for (int i = 0; i < 2047; ++i) grfw::AddOffset(big, 16, 1);
  cases.push_back(
      {"more decoded bytes than the store holds",
       grfw::FileOf(std::vector<Bytes>(200, grfw::SpriteRec(0, 1, 32753, 0, 0, big, 32753))), 192,
       true, Bytes(192 * 32753, 0x5A)});
  for (const Case& c : cases) {
    SCOPED_TRACE(c.Name);
    const Loaded l = Load(c.File);
    EXPECT_EQ(l.Count(), c.Count);
    EXPECT_EQ(l.Store.SpriteTable.size(), static_cast<size_t>(c.Count));  // nothing else to show
    EXPECT_EQ(l.Messages, std::vector<std::string>(c.Message ? 1 : 0, kMsgOutOfBuffer));
    EXPECT_TRUE(Bytes(l.Store.SpriteData.begin(), l.Store.SpriteData.end()) == c.Store);
  }
}

TEST(Loader, AKeptStoreStartsTheNextLoadFromZeros) {
  // The first file's last sprite spills a run of 127 pixels past the bytes written; the second
  // file's 100 x 50 sprite has no pixel at all and must read zero, as on a fresh store.
  const Bytes first = grfw::File({grfw::PlainSprite(100, 40, Bytes(4000, 0xCD)),
                                  grfw::RunSprite(2, {{{0, Bytes(127, 0xAB)}}})});
  const Bytes second = grfw::File({grfw::RunSprite(100, std::vector<std::vector<grfw::Run>>(50))});
  SpriteStore kept, fresh;
  for (const Bytes* file : {&first, &second, &first, &second})
    LoadSprites(file->data(), static_cast<int32_t>(file->size()), kept, nullptr);
  LoadSprites(second.data(), static_cast<int32_t>(second.size()), fresh, nullptr);
  EXPECT_EQ(kept.SpriteData, fresh.SpriteData);
  EXPECT_EQ(fresh.SpriteData.size(), 5000u);
}
