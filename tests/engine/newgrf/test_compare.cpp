// Two files compared: a small NewGRF written here, and copies of it with one thing changed each,
// must give exactly that change; the same sprites in both containers compare equal.
#include <gtest/gtest.h>

#include <random>

#include "compare.h"
#include "grf_writer.h"
#include "open_grf.h"

using namespace vossel;
using grfw::Bytes;

namespace {

constexpr uint16_t kW = 8;
constexpr uint8_t kH = 6;

// What the test file is made of; each copy changes one field.
struct Parts {
  uint8_t Speed = 0x40;
  uint8_t Group = 0x00;  // the group the Action 03 names
  Bytes Comment = {0x0C, 'h', 'e', 'l', 'l', 'o'};
  Bytes Pixels;  // the last picture's
  int16_t X = -3, Y = 2;
  int Extra = 0;  // pictures added at the end
};

Parts BaseParts() {
  Parts p;
  std::mt19937 rng(29);
  for (int i = 0; i < kW * kH; ++i) p.Pixels.push_back(uint8_t(rng()));
  return p;
}

// Sprite 0 the count, 1 Action 08, 2 a road vehicle's speed, 3 Action 01 of one set of two
// pictures (4, 5), 6 a group, 7 the Action 03, 8 a comment, 9 the picture the copies change.
std::vector<Bytes> Pseudo(const Parts& p) {
  return {{0x00, 0x00, 0x00, 0x00},
          {0x08, 0x08, 'T', 'S', 'T', 0x01, 'T', 'e', 's', 't', 0x00, 0x00},
          {0x00, 0x01, 0x01, 0x01, 0xFF, 0x05, 0x00, 0x08, p.Speed},
          {0x01, 0x01, 0x01, 0x02},
          {0x02, 0x01, 0x00, 0x01, 0x00, 0x00, 0x00},
          {0x03, 0x01, 0x01, 0xFF, 0x05, 0x00, 0x00, p.Group, 0x00},
          p.Comment};
}

Bytes Flat(uint8_t v) {
  return Bytes(size_t{4} * 4, v);
}

Bytes Version1(const Parts& p) {
  const std::vector<Bytes> a = Pseudo(p);
  std::vector<Bytes> records = {
      grfw::ActionRecord(a[0]),         grfw::ActionRecord(a[1]),
      grfw::ActionRecord(a[2]),         grfw::ActionRecord(a[3]),
      grfw::PlainSprite(4, 4, Flat(1)), grfw::PlainSprite(4, 4, Flat(2)),
      grfw::ActionRecord(a[4]),         grfw::ActionRecord(a[5]),
      grfw::ActionRecord(a[6]),         grfw::PlainSprite(kW, kH, p.Pixels, p.X, p.Y)};
  for (int i = 0; i < p.Extra; ++i)
    records.push_back(grfw::PlainSprite(4, 4, Flat(uint8_t(9 + i))));
  return grfw::FileOf(records);
}

grfw::Image2 Image(uint16_t w, uint16_t h, const Bytes& pixels, int16_t x = 0, int16_t y = 0) {
  return {4, 0, w, h, x, y, pixels};
}

Bytes Version2(const Parts& p) {
  const std::vector<Bytes> a = Pseudo(p);
  std::vector<Bytes> data = {grfw::V2Data(0xFF, a[0]), grfw::V2Data(0xFF, a[1]),
                             grfw::V2Data(0xFF, a[2]), grfw::V2Data(0xFF, a[3]),
                             grfw::V2Ref(1),           grfw::V2Ref(2),
                             grfw::V2Data(0xFF, a[4]), grfw::V2Data(0xFF, a[5]),
                             grfw::V2Data(0xFF, a[6]), grfw::V2Ref(3)};
  std::vector<Bytes> sprites = {grfw::V2Sprite(1, Image(4, 4, Flat(1))),
                                grfw::V2Sprite(2, Image(4, 4, Flat(2))),
                                grfw::V2Sprite(3, Image(kW, kH, p.Pixels, p.X, p.Y))};
  return grfw::V2File(data, sprites);
}

GrfComparison Compare(const Bytes& a, const Bytes& b, bool count = true) {
  const auto x = OpenGrf(grfw::WriteTemp("compare-a.grf", a));
  const auto y = OpenGrf(grfw::WriteTemp("compare-b.grf", b));
  CompareOptions options;
  options.CountPixels = count;
  return CompareFiles(x->File, x->Reading, y->File, y->Reading, options);
}

// One sprite change and no other.
void ExpectOnly(const GrfComparison& c, int32_t sprite, SpriteChange change) {
  std::string all;
  for (const SpriteDifference& d : c.Sprites)
    all += std::to_string(d.Sprite) + ": " + SpriteChangeText(d) + "\n";
  ASSERT_EQ(c.Sprites.size(), 1u) << all;
  EXPECT_EQ(c.Sprites[0].Sprite, sprite);
  EXPECT_EQ(c.Sprites[0].Change, change) << SpriteChangeText(c.Sprites[0]);
}

}  // namespace

TEST(Compare, AFileAgainstItselfAndAgainstItsOtherContainer) {
  const Parts p = BaseParts();
  for (const Bytes& file : {Version1(p), Version2(p)}) {
    const GrfComparison c = Compare(file, file);
    EXPECT_TRUE(IsEqual(c)) << ComparisonSummary(c);
    EXPECT_EQ(ComparisonSummary(c), "identical");
  }
  // The same sprites stored in either container are the same pictures.
  for (bool count : {false, true}) {
    const GrfComparison c = Compare(Version1(p), Version2(p), count);
    for (const SpriteDifference& d : c.Sprites)
      ADD_FAILURE() << d.Sprite << ": " << SpriteChangeText(d);
    EXPECT_TRUE(IsEqual(c));
  }
}

TEST(Compare, OneChangeNamesItselfAndNothingElse) {
  const Parts base = BaseParts();
  {
    Parts p = base;
    p.X = 5;
    const GrfComparison c = Compare(Version1(base), Version2(p));
    ExpectOnly(c, 9, SpriteChange::Offsets);
    EXPECT_EQ(SpriteChangeText(c.Sprites[0]), "offsets -3,2 -> 5,2 (8bpp normal)");
    EXPECT_TRUE(c.Items.empty());
  }
  {
    Parts p = base;
    p.Comment[3] = 'L';
    const GrfComparison c = Compare(Version1(base), Version1(p));
    ExpectOnly(c, 8, SpriteChange::Bytes);
    EXPECT_EQ(OldNfoLine(c.Sprites[0]), "8 * 6 0C \"hello\"");
    EXPECT_EQ(NewNfoLine(c.Sprites[0]), "8 * 6 0C \"heLlo\"");
    EXPECT_TRUE(c.Items.empty());
    EXPECT_FALSE(c.IdentityChanged);
  }
  {
    // A property's byte changes its pseudo-sprite and the item, both.
    Parts p = base;
    p.Speed = 0x50;
    const GrfComparison c = Compare(Version1(base), Version1(p));
    ExpectOnly(c, 2, SpriteChange::Bytes);
    ASSERT_EQ(c.Items.size(), 1u);
    const ItemDifference& d = c.Items[0];
    EXPECT_EQ(d.Change, ItemChange::Property);
    EXPECT_EQ(d.Feature, 0x01);
    EXPECT_EQ(d.Id, 5u);
    EXPECT_EQ(d.Property, 0x08);
    EXPECT_EQ(d.Old.Raw, Bytes{0x40});
    EXPECT_EQ(d.New.Raw, Bytes{0x50});
    EXPECT_EQ(ComparisonSummary(c), "1 sprite and 1 item differ");
  }
  {
    // An Action 03 that names another group: the item's graphics reach nothing now.
    Parts p = base;
    p.Group = 0x01;
    const GrfComparison c = Compare(Version1(base), Version1(p));
    ExpectOnly(c, 7, SpriteChange::Bytes);
    ASSERT_EQ(c.Items.size(), 1u);
    EXPECT_EQ(c.Items[0].Change, ItemChange::Graphics);
    EXPECT_EQ(c.Items[0].OldSprites, (std::vector<int32_t>{4, 5}));
    EXPECT_TRUE(c.Items[0].NewSprites.empty());
    EXPECT_EQ(ItemChangeText(c.Items[0]), "graphics reached 5-6, now none");
  }
  {
    Parts p = base;
    p.Extra = 2;
    const GrfComparison added = Compare(Version1(base), Version1(p));
    ASSERT_EQ(added.Sprites.size(), 2u);
    EXPECT_EQ(added.Sprites[0].Sprite, 10);
    EXPECT_EQ(added.Sprites[1].Sprite, 11);
    EXPECT_EQ(added.Sprites[1].Change, SpriteChange::Added);
    EXPECT_EQ(SpriteChangeText(added.Sprites[0]), "added: 4x4 at 0,0 (8bpp normal)");
    const GrfComparison removed = Compare(Version1(p), Version1(base));
    ASSERT_EQ(removed.Sprites.size(), 2u);
    EXPECT_EQ(removed.Sprites[0].Change, SpriteChange::Removed);
    EXPECT_TRUE(added.Items.empty() && removed.Items.empty());
  }
}

TEST(Compare, ChangedPixelsAreCountedAndBoxed) {
  const Parts base = BaseParts();
  std::mt19937 rng(7);
  for (int round = 0; round < 20; ++round) {
    SCOPED_TRACE(round);
    Parts p = base;
    // A few random pixels changed; the count and box are worked out here from the changes.
    int64_t count = 0;
    int32_t left = kW, top = kH, right = 0, bottom = 0;
    const int changes = 1 + int(rng() % 5);
    for (int k = 0; k < changes; ++k) {
      const int x = int(rng() % kW), y = int(rng() % kH);
      uint8_t& px = p.Pixels[size_t(y * kW + x)];
      if (px != base.Pixels[size_t(y * kW + x)]) continue;  // changed already
      px = uint8_t(px + 1 + rng() % 255);
      ++count;
      left = std::min(left, x);
      top = std::min(top, y);
      right = std::max(right, x + 1);
      bottom = std::max(bottom, y + 1);
    }
    // Across containers too: what is compared is the picture, not its bytes.
    const GrfComparison c = Compare(Version1(base), round % 2 ? Version2(p) : Version1(p));
    ExpectOnly(c, 9, SpriteChange::Pixels);
    const PixelDifference& d = c.Sprites[0].Pixels;
    EXPECT_EQ(d.Count, count);
    EXPECT_EQ(d.Left, left);
    EXPECT_EQ(d.Top, top);
    EXPECT_EQ(d.Right, right);
    EXPECT_EQ(d.Bottom, bottom);
    // Without counting, the change is still found.
    const GrfComparison quick = Compare(Version1(base), Version1(p), false);
    ExpectOnly(quick, 9, SpriteChange::Pixels);
    EXPECT_EQ(SpriteChangeText(quick.Sprites[0]), "pixels differ (8bpp normal)");
  }
}
