#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "grf_writer.h"
#include "renderer.h"

namespace {

// Every entry a distinct colour, none of them white: blue i, green 7i, red 128.
PaletteBuffer TestPalette() {
  PaletteBuffer p{};
  for (int i = 0; i < 256; ++i) {
    p[4 * i] = static_cast<uint8_t>(i);
    p[4 * i + 1] = static_cast<uint8_t>(i * 7);
    p[4 * i + 2] = 128;
  }
  return p;
}

QRgb Colour(const PaletteBuffer& p, uint8_t index) {
  return qRgb(p[4 * index + 2], p[4 * index + 1], p[4 * index]);
}

SpriteRecord Record(int16_t width, int16_t height, int32_t dataOffset = 0, int32_t xOffset = 0,
                    int32_t yOffset = 0) {
  SpriteRecord r;
  r.DataOffset = dataOffset;
  r.Size = int32_t{width} * height;
  r.Width = width;
  r.Height = height;
  r.XOffset = xOffset;
  r.YOffset = yOffset;
  return r;
}

// A store of one sprite whose pixel (c, r) holds (c + 3r + seed) & 255, behind `lead` bytes.
SpriteStore OneSprite(int16_t width, int16_t height, int32_t xOffset = 0, int32_t yOffset = 0,
                      int seed = 1, int32_t lead = 0) {
  SpriteStore s;
  s.SpriteTable.push_back(Record(width, height, lead, xOffset, yOffset));
  s.SpriteData.assign(static_cast<size_t>(lead), 0xEE);
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x) s.SpriteData.push_back(static_cast<uint8_t>(x + 3 * y + seed));
  return s;
}

QImage Canvas(int width, int height, QRgb fill = qRgb(1, 2, 3)) {
  QImage c(width, height, QImage::Format_RGB32);
  c.fill(fill);
  return c;
}

// Every canvas pixel: the sprite's colour inside its rectangle at (x, y), white elsewhere.
void ExpectPicture(const QImage& canvas, const SpriteStore& s, int index, int x, int y,
                   const PaletteBuffer& p) {
  const SpriteRecord& r = s.SpriteTable[index];
  for (int cy = 0; cy < canvas.height(); ++cy) {
    for (int cx = 0; cx < canvas.width(); ++cx) {
      const int c = cx - x, row = cy - y;
      QRgb want = qRgb(255, 255, 255);
      if (c >= 0 && c < r.Width && row >= 0 && row < r.Height)
        want = Colour(p, s.SpriteData[r.DataOffset + r.Width * row + c]);
      ASSERT_EQ(canvas.pixel(cx, cy), want) << "at " << cx << "," << cy;
    }
  }
}

}  // namespace

TEST(PlaceSprite, Arithmetic) {
  SpritePlacement at = PlaceSprite(Record(64, 31, 0, -31, 0), 224, 183);
  EXPECT_EQ(at.X, 64);
  EXPECT_EQ(at.Y, 76);
  // An action sprite of 10 bytes: a strip of 10 x 1 without offsets.
  at = PlaceSprite(Record(10, 1), 224, 183);
  EXPECT_EQ(at.X, 107);
  EXPECT_EQ(at.Y, 91);
  // The division truncates toward zero: -3 gives -1.
  at = PlaceSprite(Record(10, 13), 7, 10);
  EXPECT_EQ(at.X, -1);
  EXPECT_EQ(at.Y, -1);
  at = PlaceSprite(Record(10, 10, 0, -7, 5), 0, 0);
  EXPECT_EQ(at.X, -8);  // -17 / 2
  EXPECT_EQ(at.Y, -2);  // -5 / 2
  // The bracket is rounded half to even before the division.
  EXPECT_EQ(PlaceSprite(Record(64, 1), 224.5, 1).X, 80);  // 160.5 -> 160
  EXPECT_EQ(PlaceSprite(Record(64, 1), 225.5, 1).X, 81);  // 161.5 -> 162
  EXPECT_EQ(PlaceSprite(Record(64, 1), 226.4, 1).X, 81);  // 162.4 -> 162
  EXPECT_EQ(PlaceSprite(Record(1, 1), 1.5, -0.5).Y, -1);  // -1.5 -> -2
  EXPECT_EQ(PlaceSprite(Record(1, 1), 1.5, 0.5).Y, 0);    // -0.5 -> 0
  // Hostile offsets stay defined.
  EXPECT_EQ(PlaceSprite(Record(1, 1, 0, INT32_MAX, INT32_MIN), 0, 0).X, (INT32_MAX - 1) / 2);
  EXPECT_EQ(PlaceSprite(Record(1, 1, 0, INT32_MAX, INT32_MIN), 0, 0).Y, -1073741824);
}

TEST(BitmapBuffer, StrideAndFillBytes) {
  // Width 64: stride 64, one block of Size bytes.
  SpriteStore s = OneSprite(64, 31);
  int32_t stride = -1;
  std::vector<uint8_t> b =
      BitmapBuffer(s.SpriteTable[0], s.SpriteData.data(), int32_t(s.SpriteData.size()), stride);
  EXPECT_EQ(stride, 64);
  EXPECT_EQ(b, std::vector<uint8_t>(s.SpriteData.begin(), s.SpriteData.end()));

  // Width 5, height 2: stride 8, rows at 0 and 8, bytes 5..7 and 13..15 zero.
  s = OneSprite(5, 2, 0, 0, 10);
  b = BitmapBuffer(s.SpriteTable[0], s.SpriteData.data(), int32_t(s.SpriteData.size()), stride);
  EXPECT_EQ(stride, 8);
  EXPECT_EQ(b, (std::vector<uint8_t>{10, 11, 12, 13, 14, 0, 0, 0, 13, 14, 15, 16, 17, 0, 0, 0}));

  s = OneSprite(3, 2, 0, 0, 1, 7);
  b = BitmapBuffer(s.SpriteTable[0], s.SpriteData.data(), int32_t(s.SpriteData.size()), stride);
  EXPECT_EQ(stride, 4);
  EXPECT_EQ(b, (std::vector<uint8_t>{1, 2, 3, 0, 4, 5, 6, 0}));

  s = OneSprite(4, 2, 0, 0, 1, 3);
  b = BitmapBuffer(s.SpriteTable[0], s.SpriteData.data(), int32_t(s.SpriteData.size()), stride);
  EXPECT_EQ(stride, 4);
  EXPECT_EQ(b, (std::vector<uint8_t>{1, 2, 3, 4, 4, 5, 6, 7}));
}

TEST(BitmapBuffer, WidestSpritesAndEmptyOnes) {
  for (int16_t w : {32765, 32766, 32767}) {
    SpriteStore s = OneSprite(w, 1);
    int32_t stride = 0;
    std::vector<uint8_t> b =
        BitmapBuffer(s.SpriteTable[0], s.SpriteData.data(), int32_t(s.SpriteData.size()), stride);
    EXPECT_EQ(stride, 32768) << w;
    ASSERT_EQ(b.size(), 32768u);
    EXPECT_TRUE(std::equal(s.SpriteData.begin(), s.SpriteData.end(), b.begin()));
    for (int i = w; i < 32768; ++i) EXPECT_EQ(b[i], 0) << w;
  }
  const uint8_t data[4] = {1, 2, 3, 4};
  for (SpriteRecord r : {Record(0, 5), Record(5, 0), Record(0, 0), Record(-4, 1), Record(4, -1),
                         Record(-32768, -32768), Record(32767, 32767)}) {
    int32_t stride = -1;
    EXPECT_TRUE(BitmapBuffer(r, data, 4, stride).empty()) << r.Width << " x " << r.Height;
    EXPECT_EQ(stride, 0);
    EXPECT_TRUE(SpriteBitmap(r, data, 4, TestPalette()).isNull());
  }
}

TEST(BitmapBuffer, ReadsOnlyInsideSpriteData) {
  const std::vector<uint8_t> data = {1, 2, 3, 4, 5, 6};
  int32_t stride = 0;
  // Rows of width 3 from offset 4: row 0 has two bytes inside, row 1 none.
  EXPECT_EQ(BitmapBuffer(Record(3, 2, 4), data.data(), 6, stride),
            (std::vector<uint8_t>{5, 6, 0, 0, 0, 0, 0, 0}));
  // One block from offset 4, and from before the start.
  EXPECT_EQ(BitmapBuffer(Record(4, 1, 4), data.data(), 6, stride),
            (std::vector<uint8_t>{5, 6, 0, 0}));
  EXPECT_EQ(BitmapBuffer(Record(4, 1, -2), data.data(), 6, stride),
            (std::vector<uint8_t>{0, 0, 1, 2}));
  EXPECT_EQ(BitmapBuffer(Record(3, 1, -2), data.data(), 6, stride),
            (std::vector<uint8_t>{0, 0, 1, 0}));
  EXPECT_EQ(BitmapBuffer(Record(4, 1, INT32_MAX), data.data(), 6, stride),
            (std::vector<uint8_t>{0, 0, 0, 0}));
  EXPECT_EQ(BitmapBuffer(Record(3, 1, INT32_MIN), data.data(), 6, stride),
            (std::vector<uint8_t>{0, 0, 0, 0}));
  EXPECT_EQ(BitmapBuffer(Record(3, 1), nullptr, 0, stride), (std::vector<uint8_t>{0, 0, 0, 0}));

  // A width that is a multiple of 4 copies Size bytes: fewer leave zeros, more are cut off.
  SpriteRecord r = Record(4, 1);
  r.Size = 2;
  EXPECT_EQ(BitmapBuffer(r, data.data(), 6, stride), (std::vector<uint8_t>{1, 2, 0, 0}));
  r.Size = 6;
  EXPECT_EQ(BitmapBuffer(r, data.data(), 6, stride), (std::vector<uint8_t>{1, 2, 3, 4}));
  r.Size = -1;
  EXPECT_EQ(BitmapBuffer(r, data.data(), 6, stride), (std::vector<uint8_t>{0, 0, 0, 0}));
}

TEST(SpriteBitmap, IndexedWithThePaletteFirstRowOnTop) {
  const PaletteBuffer p = TestPalette();
  SpriteStore s = OneSprite(5, 3, 0, 0, 40, 2);
  const QImage img =
      SpriteBitmap(s.SpriteTable[0], s.SpriteData.data(), int32_t(s.SpriteData.size()), p);
  ASSERT_FALSE(img.isNull());
  EXPECT_EQ(img.format(), QImage::Format_Indexed8);
  EXPECT_EQ(img.width(), 5);
  EXPECT_EQ(img.height(), 3);
  EXPECT_EQ(img.bytesPerLine(), 8);
  ASSERT_EQ(img.colorCount(), 256);
  for (int i = 0; i < 256; ++i) EXPECT_EQ(img.color(i), Colour(p, uint8_t(i)));
  for (int y = 0; y < 3; ++y)
    for (int x = 0; x < 5; ++x) EXPECT_EQ(img.pixelIndex(x, y), 40 + x + 3 * y);
}

TEST(DrawSprite, PlacesTheSpriteOnWhite) {
  const PaletteBuffer p = TestPalette();
  const SpriteStore s = OneSprite(64, 31, -31, 0);
  QImage canvas = Canvas(240, 183);
  ASSERT_TRUE(DrawSprite(canvas, s, 0, p, 224, 183));
  ExpectPicture(canvas, s, 0, 64, 76, p);

  // The same sprite again gives the same picture.
  const QImage first = canvas.copy();
  ASSERT_TRUE(DrawSprite(canvas, s, 0, p, 224, 183));
  EXPECT_EQ(canvas, first);

  // An action sprite of 10 bytes: a strip 10 x 1 without offsets.
  SpriteStore action;
  action.SpriteTable.push_back(Record(10, 1));
  action.SpriteTable[0].Flags = kActionFlags;
  action.SpriteData = {5, 6, 7, 8, 9, 10, 11, 12, 13, 14};
  ASSERT_TRUE(DrawSprite(canvas, action, 0, p, 224, 183));
  ExpectPicture(canvas, action, 0, 107, 91, p);
}

TEST(DrawSprite, WipesThePreviousSprite) {
  const PaletteBuffer p = TestPalette();
  SpriteStore s = OneSprite(40, 30);
  const SpriteStore small = OneSprite(2, 2, 0, 0, 9);
  s.SpriteTable.push_back(Record(2, 2, int32_t(s.SpriteData.size())));
  s.SpriteData.insert(s.SpriteData.end(), small.SpriteData.begin(), small.SpriteData.end());
  QImage canvas = Canvas(50, 40);
  ASSERT_TRUE(DrawSprite(canvas, s, 0, p, 50, 40));
  ASSERT_TRUE(DrawSprite(canvas, s, 1, p, 50, 40));
  ExpectPicture(canvas, s, 1, 24, 19, p);
}

TEST(DrawSprite, IndexZeroIsAColourAndShortPalettesShowBlack) {
  // Entry 0 a colour of its own; a palette file of two entries leaves the rest black.
  const std::string text = "JASC-PAL\r\n0100\r\n2\r\n10 20 30\r\n40 50 60\r\n";
  PaletteBuffer p{};
  ASSERT_EQ(LoadPalette(grfw::WriteTemp("two.pal", grfw::Bytes(text.begin(), text.end())), p), -1);
  SpriteStore s;
  s.SpriteTable.push_back(Record(4, 1));
  s.SpriteData = {0, 1, 2, 255};
  QImage canvas = Canvas(4, 1);
  ASSERT_TRUE(DrawSprite(canvas, s, 0, p, 4, 1));
  EXPECT_EQ(canvas.pixel(0, 0), qRgb(10, 20, 30));
  EXPECT_EQ(canvas.pixel(1, 0), qRgb(40, 50, 60));
  EXPECT_EQ(canvas.pixel(2, 0), qRgb(0, 0, 0));
  EXPECT_EQ(canvas.pixel(3, 0), qRgb(0, 0, 0));
}

TEST(DrawSprite, ClipsAtTheCanvasEdges) {
  const PaletteBuffer p = TestPalette();
  // Larger than the area: negative x and y, clipped on all sides.
  const SpriteStore s = OneSprite(40, 30);
  QImage canvas = Canvas(20, 10);
  ASSERT_TRUE(DrawSprite(canvas, s, 0, p, 20, 10));
  ExpectPicture(canvas, s, 0, -10, -10, p);

  // Wider than the free width: it runs under the scroll bar up to the canvas edge.
  const SpriteStore wide = OneSprite(90, 2);
  canvas = Canvas(100, 4);
  ASSERT_TRUE(DrawSprite(canvas, wide, 0, p, 80, 4));
  ExpectPicture(canvas, wide, 0, -5, 1, p);

  // Wholly outside: only the wipe.
  const SpriteStore far = OneSprite(4, 4, 1000, 1000);
  canvas = Canvas(10, 10);
  ASSERT_TRUE(DrawSprite(canvas, far, 0, p, 10, 10));
  ExpectPicture(canvas, far, 0, 503, 503, p);
  const SpriteStore before = OneSprite(4, 4, -1000, -1000);
  ASSERT_TRUE(DrawSprite(canvas, before, 0, p, 10, 10));
  ExpectPicture(canvas, before, 0, -497, -497, p);
}

TEST(DrawSprite, NoRecordLeavesTheCanvasAlone) {
  const PaletteBuffer p = TestPalette();
  const SpriteStore s = OneSprite(3, 3);
  const SpriteStore empty;
  QImage canvas = Canvas(8, 8, qRgb(9, 9, 9));
  const QImage before = canvas.copy();
  EXPECT_FALSE(DrawSprite(canvas, s, 1, p, 8, 8));
  EXPECT_FALSE(DrawSprite(canvas, s, -1, p, 8, 8));
  EXPECT_FALSE(DrawSprite(canvas, empty, 0, p, 8, 8));
  EXPECT_EQ(canvas, before);
}

TEST(DrawSprite, UndrawableSpritesOnlyWipe) {
  const PaletteBuffer p = TestPalette();
  SpriteStore s;
  s.SpriteData = {1, 2, 3, 4};
  for (SpriteRecord r : {Record(0, 3), Record(3, 0), Record(-5, 2), Record(2, -5)})
    s.SpriteTable.push_back(r);
  QImage canvas = Canvas(6, 6);
  for (int16_t i = 0; i < 4; ++i) {
    canvas.fill(qRgb(1, 2, 3));
    EXPECT_TRUE(DrawSprite(canvas, s, i, p, 6, 6));
    for (int y = 0; y < 6; ++y)
      for (int x = 0; x < 6; ++x) ASSERT_EQ(canvas.pixel(x, y), qRgb(255, 255, 255));
  }
  // An empty canvas is wiped and painted without harm.
  QImage none;
  EXPECT_TRUE(DrawSprite(none, OneSprite(2, 2), 0, p, 0, 0));
}

TEST(DrawSprite, WidestStripAndRecordsReachingOutOfTheStore) {
  const PaletteBuffer p = TestPalette();
  // 32,767 wide: x = (100 - 32767) / 2 = -16333; canvas column c shows byte 16333 + c.
  const SpriteStore wide = OneSprite(32767, 1);
  QImage canvas = Canvas(100, 1);
  ASSERT_TRUE(DrawSprite(canvas, wide, 0, p, 100, 1));
  ExpectPicture(canvas, wide, 0, -16333, 0, p);

  // The last two bytes of the store and two beyond it: the two beyond show entry 0.
  SpriteStore s;
  s.SpriteData = {7, 8, 9, 10};
  s.SpriteTable.push_back(Record(4, 1, 2));
  canvas = Canvas(4, 1);
  ASSERT_TRUE(DrawSprite(canvas, s, 0, p, 4, 1));
  EXPECT_EQ(canvas.pixel(0, 0), Colour(p, 9));
  EXPECT_EQ(canvas.pixel(1, 0), Colour(p, 10));
  EXPECT_EQ(canvas.pixel(2, 0), Colour(p, 0));
  EXPECT_EQ(canvas.pixel(3, 0), Colour(p, 0));
}

TEST(DrawSprite, RunFormSpriteLoadedFromAFile) {
  using grfw::Run;
  // An action sprite and a plain sprite in front, so that the run-form sprite lies further on.
  const grfw::Bytes file = grfw::File({
      grfw::ActionRecord({1, 2, 3}),
      grfw::PlainSprite(2, 2, {9, 9, 9, 9}),
      grfw::RunSprite(6, {{Run{1, {11, 22}}, Run{4, {33}}}, {}, {Run{0, {44, 55, 66, 77, 88, 99}}}},
                      3, -2),
  });
  SpriteStore store;
  const LoadOutcome out = LoadSprites(file.data(), int32_t(file.size()), store,
                                      [](const std::string& m) { ADD_FAILURE() << m; });
  ASSERT_EQ(out.Totals.Count, 3);
  const SpriteRecord& r = store.SpriteTable[2];
  ASSERT_EQ(r.Width, 6);
  ASSERT_EQ(r.Height, 3);
  EXPECT_EQ(r.DataOffset, 7);

  const PaletteBuffer p = TestPalette();
  QImage canvas = Canvas(40, 20);
  ASSERT_TRUE(DrawSprite(canvas, store, 2, p, 30, 20));
  // x = (30 - 6 + 3) / 2 = 13, y = (20 - 3 - 2) / 2 = 7.
  const uint8_t picture[3][6] = {
      {0, 11, 22, 0, 33, 0}, {0, 0, 0, 0, 0, 0}, {44, 55, 66, 77, 88, 99}};
  for (int y = 0; y < 20; ++y) {
    for (int x = 0; x < 40; ++x) {
      const bool inside = x >= 13 && x < 19 && y >= 7 && y < 10;
      const QRgb want = inside ? Colour(p, picture[y - 7][x - 13]) : qRgb(255, 255, 255);
      ASSERT_EQ(canvas.pixel(x, y), want) << x << "," << y;
    }
  }
}
