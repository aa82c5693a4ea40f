// Compositions: hand-made layouts of every form placed by the projection worked out here, the bits
// of a sprite word seen in the pixels, sprites that cannot be had as outlines; a real road
// vehicle's views and a real house tile against their sprites' own pictures and offsets.
#include <gtest/gtest.h>

#include <QImage>

#include "actions.h"
#include "compose.h"
#include "grf_writer.h"
#include "item_compose.h"
#include "items.h"
#include "open_grf.h"
#include "renderer.h"

using namespace vossel;
using grfw::Bytes;

namespace {

Bytes Dword(uint32_t v) {
  return {uint8_t(v), uint8_t(v >> 8), uint8_t(v >> 16), uint8_t(v >> 24)};
}

Bytes Cat(std::initializer_list<Bytes> parts) {
  Bytes out;
  for (const Bytes& p : parts) grfw::Append(out, p);
  return out;
}

// A 4 x 4 picture of one index with offsets (x, y).
Bytes Square(uint8_t index, int16_t x, int16_t y) {
  return grfw::PlainSprite(4, 4, Bytes(16, index), x, y);
}

// Palette index i is colour (i, 255 - i, 7): every index tells itself apart.
Look TestLook() {
  Look look;
  for (int i = 0; i < 256; ++i) {
    look.Palette[size_t(4 * i + 2)] = uint8_t(i);
    look.Palette[size_t(4 * i + 1)] = uint8_t(255 - i);
    look.Palette[size_t(4 * i)] = 7;
  }
  look.Company = true;
  for (int i = 0; i < 256; ++i) look.Map[size_t(i)] = uint8_t(i);
  look.Map[0xC6] = 0xD0;
  return look;
}
QRgb Colour(int index) {
  return qRgb(index, 255 - index, 7);
}

// An extended layout of one building sprite in a box at (x, y, z), ground set 0.
Bytes OneBuilding(uint8_t id, uint32_t word, int8_t x, int8_t y, int8_t z) {
  return Cat({{0x02, 0x07, id, 0x01},
              Dword(0x80000000u),
              Dword(word),
              {uint8_t(x), uint8_t(y), uint8_t(z), 4, 4, 4}});
}

// Sets 0-3 of one sprite each (indices 10, 11, C6, 13 with offsets of their own), then layouts:
// house 0 basic, 1 extended with a child, 3-9 one building each with a word to test; an
// Action 01 of one set of 4 (indices 20-23) and house 2 advanced, its sprite chosen by a register
// that a switch stores.
Bytes HandFile() {
  std::vector<Bytes> r = {grfw::ActionRecord({0x00, 0x00, 0x00, 0x00}),
                          grfw::ActionRecord({0x01, 0x07, 0x04, 0x01}),
                          Square(0x10, -2, -1),
                          Square(0x11, -3, -5),
                          Square(0xC6, 1, -2),
                          Square(0x13, 0, 0)};
  r.push_back(grfw::ActionRecord(
      Cat({{0x02, 0x07, 0x00, 0x00}, Dword(0x80000000u), Dword(0x80000001u), {3, 5, 4, 4, 4}})));
  r.push_back(grfw::ActionRecord(Cat({{0x02, 0x07, 0x01, 0x02},
                                      Dword(0x80000000u),
                                      Dword(0x80000001u),
                                      {2, 6, 3, 4, 4, 4},
                                      Dword(0x80000002u),
                                      {5, 0xFD, 0x80}})));
  const uint32_t words[] = {0x80000002u, 0x80008002u, 0x80018001u, 0x80014001u,
                            0x00000000u, 0x000003E7u, 0x80000009u};
  for (uint8_t k = 0; k < 7; ++k)
    r.push_back(grfw::ActionRecord(OneBuilding(uint8_t(3 + k), words[k], 1, 2, 0)));
  r.push_back(grfw::ActionRecord({0x01, 0x07, 0x01, 0x04}));
  for (uint8_t k = 0; k < 4; ++k) r.push_back(Square(uint8_t(0x20 + k), -1, -1));
  // Advanced: ground set 0 plain; a building of set 0 moved on by register 80, in a box at
  // (4, 0, 2). Then a switch storing 2 in register 80 and going to it whatever its value.
  r.push_back(grfw::ActionRecord(Cat({{0x02, 0x07, 0x02, 0x41},
                                      Dword(0x80000000u),
                                      {0x00, 0x00},
                                      Dword(0x80000000u),
                                      {0x02, 0x00, 4, 0, 2, 4, 4, 4, 0x80}})));
  r.push_back(grfw::ActionRecord(Cat({{0x02, 0x07, 0x0A, 0x89, 0x1A, 0x20},
                                      Dword(2),
                                      {0x0E, 0x1A, 0x00},
                                      Dword(0x80),
                                      {0x01, 0x02, 0x00},
                                      Dword(0),
                                      Dword(0xFFFFFFFFu),
                                      {0x02, 0x00}})));
  for (uint8_t id = 0; id < 10; ++id)
    r.push_back(grfw::ActionRecord({0x03, 0x07, 0x01, id, 0x00, uint8_t(id == 2 ? 0x0A : id), 0}));
  return grfw::FileOf(r);
}

// A base file: sprite 0 a square of index 30, sprite 1 the recolour map 11 -> 40.
std::string BaseFile() {
  Bytes map(257, 0);
  for (int i = 0; i < 256; ++i) map[size_t(i + 1)] = uint8_t(i);
  map[0x12] = 0x40;
  return grfw::WriteTemp("compose-base.grf",
                         grfw::File({Square(0x30, -2, -2), grfw::ActionRecord(map)}));
}

struct Hand {
  OpenedGrf Grf;
  GrfItems Items;
  BaseSprites Base;
};

std::unique_ptr<Hand> OpenHand() {
  auto h = std::make_unique<Hand>();
  OpenGrf(grfw::WriteTemp("compose-hand.grf", HandFile()), h->Grf);
  h->Items = ReadItems(h->Grf.Reading);
  h->Base = OpenBaseSprites(BaseFile());
  return h;
}

ComposedPicture Draw(const Hand& h, uint32_t house, const Look& look,
                     const ComposeOptions& options = {}) {
  const Item* item = FindItem(h.Items, 0x07, house);
  EXPECT_NE(item, nullptr) << house;
  const Composition c = Compose(h.Items, *item, {});
  EXPECT_EQ(c.End, ComposeEnd::Layout) << house;
  return DrawComposition(h.Grf.File, h.Items, c, look, &h.Base, options);
}

// The building's 4 x 4 square: its corner where the projection of (x, y, z) from the north
// corner, then the sprite's offsets, put it, every pixel `colour`; at `scale` pixels per pixel.
void ExpectSquare(const ComposedPicture& p, int x, int y, int z, QPoint offsets, QRgb colour,
                  int scale = 1) {
  const QPoint corner = p.Origin + scale * QPoint(2 * (y - x), x + y - z) + scale * offsets;
  for (int dy = 0; dy < 4 * scale; ++dy)
    for (int dx = 0; dx < 4 * scale; ++dx)
      ASSERT_EQ(p.Image.pixel(corner + QPoint(dx, dy)), colour)
          << "at " << corner.x() + dx << "," << corner.y() + dy;
}

}  // namespace

// Basic, extended (with a child beside its parent) and advanced (a register filled by the switch
// before it) layouts: each sprite where the projection puts it, at normal zoom and at in2.
TEST(Compose, LayoutFormsPlaceSpritesByTheProjection) {
  const auto h = OpenHand();
  Look look = TestLook();
  for (const int32_t zoom : {int32_t(kZoomNormal), int32_t(kZoomIn2)}) {
    SCOPED_TRACE(zoom);
    look.Zoom = zoom;
    const int s = zoom == kZoomIn2 ? 2 : 1;
    const ComposedPicture basic = Draw(*h, 0, look);
    ExpectSquare(basic, 0, 0, 0, {-2, -1}, Colour(0x10), s);
    ExpectSquare(basic, 3, 5, 0, {-3, -5}, Colour(0x11), s);
    const ComposedPicture extended = Draw(*h, 1, look);
    ExpectSquare(extended, 2, 6, 3, {-3, -5}, Colour(0x11), s);
    // The child: the parent's point plus (5, -3) pixels, then its own offsets.
    ExpectSquare(extended, 2, 6, 3, QPoint(5, -3) + QPoint(1, -2), Colour(0xC6), s);
    ASSERT_EQ(extended.Sprites.size(), 3u);
    EXPECT_EQ(extended.Sprites[2].Origin - extended.Sprites[1].Origin, s * QPoint(5, -3));
    const ComposedPicture advanced = Draw(*h, 2, look);
    ExpectSquare(advanced, 4, 0, 2, {-1, -1}, Colour(0x22), s);
  }
  const Composition c = Compose(h->Items, *FindItem(h->Items, 0x07, 2), {});
  ASSERT_EQ(c.Branches.size(), 2u);
  EXPECT_TRUE(c.Branches[0].Computed);
  EXPECT_EQ(c.Branches[0].Value, 2u);
  EXPECT_FALSE(c.RegistersUnknown);
  // The layout's set of 4 is a branch too: its second sprite moves the register's pick on by one,
  // and its fourth runs past the set.
  EXPECT_EQ(c.Branches[1].Kind, BranchKind::SetSprite);
  const Item& house = *FindItem(h->Items, 0x07, 2);
  const int32_t layout = h->Items.Groups[size_t(c.Branches[1].Group)].Sprite;
  look.Zoom = -1;
  const Composition second = Compose(h->Items, house, {.Picks = {{layout, 1}}});
  ExpectSquare(DrawComposition(h->Grf.File, h->Items, second, look, &h->Base, {}), 4, 0, 2,
               {-1, -1}, Colour(0x23));
  const Composition past = Compose(h->Items, house, {.Picks = {{layout, 3}}});
  EXPECT_TRUE(past.Parts[1].OutsideSet);
}

// Bit 15 recolours (company colour with recolour 0, else the base set's map), bit 14 draws
// through the map at half opacity, no bit leaves company colours out, bit 31 clear names a base
// sprite; a base sprite past the base set and a set the file lacks are outlines.
TEST(Compose, SpriteWordBitsChangePixels) {
  const auto h = OpenHand();
  const Look look = TestLook();
  ExpectSquare(Draw(*h, 3, look), 1, 2, 0, {1, -2}, Colour(0xC6));
  ExpectSquare(Draw(*h, 4, look), 1, 2, 0, {1, -2}, Colour(0xD0));
  ExpectSquare(Draw(*h, 5, look), 1, 2, 0, {-3, -5}, Colour(0x40));
  const QColor under = QColor::fromRgb(Colour(0x40));
  const auto half = [](int c) { return (c + 255) / 2; };
  const ComposedPicture transparent = Draw(*h, 6, look);
  const QColor got =
      transparent.Image.pixelColor(transparent.Origin + QPoint(2 * 1, 3) + QPoint(-3, -5));
  EXPECT_NEAR(got.red(), half(under.red()), 2);
  EXPECT_NEAR(got.green(), half(under.green()), 2);
  ExpectSquare(Draw(*h, 7, look), 1, 2, 0, {-2, -2}, Colour(0x30));
  for (const uint32_t house : {8u, 9u}) {
    const ComposedPicture p = Draw(*h, house, look, {.Boxes = true, .Origins = true});
    ASSERT_EQ(p.Sprites.size(), 2u);
    EXPECT_TRUE(p.Sprites[1].Outline) << house;
    EXPECT_EQ(p.Sprites[1].Source, house == 8 ? SpriteSource::Base : SpriteSource::None);
    EXPECT_TRUE(p.Image.rect().contains(p.Sprites[1].Rect)) << house;
  }
  // Without a base set every base sprite is an outline; the file's sprites still draw.
  BaseSprites none;
  const Composition c = Compose(h->Items, *FindItem(h->Items, 0x07, 7), {});
  const ComposedPicture p = DrawComposition(h->Grf.File, h->Items, c, look, &none, {});
  EXPECT_FALSE(p.Sprites[0].Outline);
  EXPECT_TRUE(p.Sprites[1].Outline);
}

// A real road vehicle's 8 views: each placed by its own offsets from its cell's origin, and its
// pixels those of its picture; on one shared origin, every view counts from the same point.
TEST(Compose, RealRoadVehicleViewsStandOnTheirOffsets) {
  const auto grf = OpenGrf(NewGrfPath("ogfx-mars-rv.grf"));
  const GrfItems items = ReadItems(grf->Reading);
  const Composition c = Compose(items, *FindItem(items, 0x01, 88), {});
  ASSERT_EQ(c.End, ComposeEnd::Views);
  ASSERT_EQ(c.Views.size(), 8u);
  Look look = TestLook();
  look.Company = false;
  for (const bool shared : {false, true}) {
    const ComposedPicture p =
        DrawComposition(grf->File, items, c, look, nullptr, {.SharedOrigin = shared});
    ASSERT_EQ(p.Sprites.size(), 8u);
    for (size_t k = 0; k < 8; ++k) {
      const PlacedSprite& s = p.Sprites[k];
      const int32_t alternative = DefaultAlternative(grf->File, c.Views[k]);
      const SpriteFacts facts = FactsOf(grf->File, c.Views[k], alternative);
      EXPECT_EQ(s.Rect.topLeft() - s.Origin, QPoint(facts.XOffset, facts.YOffset)) << k;
      if (shared) {
        EXPECT_EQ(s.Origin, p.Origin) << k;
        continue;
      }
      SpritePicture picture;
      ASSERT_EQ(PictureOf(grf->File, c.Views[k], alternative, picture), GrfResult::Ok);
      const QImage own =
          IndexedPicture(picture.Indices.data(), picture.Width, picture.Height, look.Palette);
      for (int y = 0; y < own.height(); ++y)
        for (int x = 0; x < own.width(); ++x)
          if (own.pixelIndex(x, y) != 0) {
            ASSERT_EQ(p.Image.pixel(s.Rect.topLeft() + QPoint(x, y)), own.pixel(x, y)) << k;
          }
    }
  }
}

// A real house tile: its ground is the grass the layout's register picks (computed from its
// stores with the terrain read as 0), from the installed base set, at the north corner by its
// offsets; the building at the projection of its box.
TEST(Compose, RealHouseTileOnItsBaseGround) {
  const BaseSprites base = OpenBaseSprites();
  if (!base.Open) GTEST_SKIP() << "no base set installed";
  const auto grf = OpenGrf(NewGrfPath("ogfx-mars-houses.grf"));
  const GrfItems items = ReadItems(grf->Reading);
  const Composition c = Compose(items, *FindItem(items, 0x07, 0), {});
  ASSERT_EQ(c.End, ComposeEnd::Layout);
  const ComposedPicture p = DrawComposition(grf->File, items, c, TestLook(), &base, {});
  ASSERT_EQ(p.Sprites.size(), 2u);
  const PlacedSprite& ground = p.Sprites[0];
  EXPECT_EQ(ground.Source, SpriteSource::Base);
  EXPECT_EQ(ground.Sprite, 3981);
  EXPECT_FALSE(ground.Outline);
  const SpriteFacts g = FactsOf(base.File, 3981, DefaultAlternative(base.File, 3981));
  EXPECT_EQ(ground.Rect, QRect(p.Origin + QPoint(g.XOffset, g.YOffset), QSize(g.Width, g.Height)));
  const PlacedSprite& building = p.Sprites[1];
  EXPECT_EQ(building.Source, SpriteSource::File);
  const ComposedPart& part = c.Parts[1];
  EXPECT_EQ(building.Origin, p.Origin + Project(part.X, part.Y, part.Z, 8));
}
