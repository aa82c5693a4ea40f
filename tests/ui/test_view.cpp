// The View menu and version-2 files: the magnifier through its shortcuts, which alternative items
// a sprite offers, and frmMain and frmChunk on OpenGFX and on our own 32-bit files with zoom
// levels, a mask layer, a missing id, a damaged stream and more sprites than version 1 allows.
#include <gtest/gtest.h>

#include <functional>

#include <QAction>
#include <QMenu>
#include <QTest>

#include "controls.h"
#include "fileio.h"
#include "frmChunk.h"
#include "listbox.h"
#include "picturebox.h"
#include "renderer.h"
#include "scrollbar.h"
#include "text.h"
#include "ui_support.h"

namespace {

using grfw::Bytes;
using grfw::Image2;

// The picture area as it must look with a sprite of w x h whose pixel (c, r) is index(c, r),
// magnified m times, its top left corner at (x0, y0).
void ExpectPicture(frmMain& form, int w, int h, int m, int x0, int y0,
                   const std::function<int(int, int)>& index) {
  const QImage& image = form.picSprite->Image();
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      const bool inside = x >= x0 && x < x0 + w * m && y >= y0 && y < y0 + h * m;
      const QColor want = inside ? uitest::PaletteColour(form, index((x - x0) / m, (y - y0) / m))
                                 : QColor(Qt::white);
      ASSERT_EQ(image.pixelColor(x, y), want) << m << "x at " << x << "," << y;
    }
  }
}

// The items of the Zoom Level and Colour Depth menus in menu order, checked X, enabled +,
// disabled -, and whether the mask item is enabled.
std::string Items(const frmMain& form) {
  std::string s;
  for (const QMenu* menu : {form.mnuZoomLevel, form.mnuColourDepth}) {
    if (!s.empty()) s += '|';
    for (const QAction* item : menu->actions())
      s += item->isChecked() ? 'X' : item->isEnabled() ? '+' : '-';
  }
  return s + (form.mnuMaskLayer->isEnabled() ? " mask" : "");
}

// w x h pixels of the given layers, each byte (x * 37 + y * 11 + k * 5 + seed) & 255, alpha where
// present across its whole range; every fifth pixel all zero, which tile form leaves out.
Image2 Pixels(uint8_t info, uint8_t zoom, uint16_t w, uint16_t h, int16_t x, int16_t y, int seed) {
  Image2 im{info, zoom, w, h, x, y, {}};
  const size_t ps = grfw::PixelBytes(info);
  for (int r = 0; r < h; ++r)
    for (int c = 0; c < w; ++c)
      for (size_t k = 0; k < ps; ++k)
        im.pixels.push_back(
            (r * w + c) % 5 == 0 ? 0 : static_cast<uint8_t>(c * 37 + r * 11 + k * 5 + seed));
  return im;
}

// The writer's pixels as a picture: 32-bit ones as ARGB, or the palette-index layer (8-bit pixels
// or the mask) through the window's palette.
QImage Source(const Image2& im, const frmMain& form, bool indexLayer) {
  const size_t ps = grfw::PixelBytes(im.info);
  QImage picture(im.width, im.height, QImage::Format_ARGB32);
  for (int r = 0; r < im.height; ++r) {
    for (int c = 0; c < im.width; ++c) {
      const uint8_t* p = &im.pixels[(size_t(r) * im.width + c) * ps];
      if (indexLayer)
        picture.setPixel(c, r, uitest::PaletteColour(form, p[ps - 1]).rgb());
      else
        picture.setPixel(c, r, qRgba(p[0], p[1], p[2], (im.info & 2) ? p[3] : 255));
    }
  }
  return indexLayer ? picture.convertToFormat(QImage::Format_RGB32) : picture;
}

// What the picture area must show for a source picture at the window's placement and size.
QImage Expected(frmMain& form, const QImage& source, const Image2& im) {
  QImage canvas(form.picSprite->Image().size(), QImage::Format_RGB32);
  PaintPicture(canvas, source, im.x, im.y, Left(form.scrSprite), ScaleHeight(form.picSprite),
               Qt::white, form.Magnification);
  return canvas;
}

std::vector<std::string> Lines(const frmMain& form) {
  std::vector<std::string> lines;
  for (int32_t i = 0; i < form.Li->ListCount(); ++i) lines.push_back(form.Li->List(i));
  return lines;
}

// Sprite 1: id 7 with 32-bit normal (alpha, tile form), 32-bit in 4x with a mask, 8-bit normal.
// Sprite 2: a pseudo-sprite. Sprite 3: id 8, 8-bit normal only. Sprite 4: a missing id.
// Sprite 5: id 9, 32-bit in 2x only. Sprite 6: id 10, a stream that decompresses past its size.
const Image2 kNormal32 = Pixels(0x0B, 0, 9, 6, -4, -2, 1);
const Image2 kIn4Mask = Pixels(0x05 | 0x02, 1, 20, 12, -10, -6, 2);
const Image2 kNormal8 = Pixels(0x04, 0, 9, 6, -4, -2, 3);
const Image2 kOnly8 = Pixels(0x04, 0, 5, 3, 0, 0, 4);
const Image2 kIn2 = Pixels(0x03, 2, 7, 7, 1, 1, 5);

Bytes OwnFile() {
  // 2 x 2 pixels from a stream of 2 + 3 bytes.
  Bytes overrun = {0x04, 0};
  for (uint16_t word : {2, 2, 0, 0}) grfw::PutWord(overrun, word);
  grfw::AddData(overrun, {1, 2});
  grfw::AddOffset(overrun, 3, 1);
  return grfw::V2File(
      {grfw::V2Ref(7), grfw::V2Data(0xFF, {1, 2, 3}), grfw::V2Ref(8), grfw::V2Ref(99),
       grfw::V2Ref(9), grfw::V2Ref(10)},
      {grfw::V2Sprite(7, kNormal32), grfw::V2Sprite(7, kIn4Mask), grfw::V2Sprite(7, kNormal8),
       grfw::V2Sprite(8, kOnly8), grfw::V2Sprite(9, kIn2), grfw::V2Raw(10, overrun)});
}

}  // namespace

TEST(Magnifier, ShortcutsScaleThePlacementAndActualSizeGivesBackTheSamePicture) {
  uitest::StartedForm form;
  form.Load("five.grf", uitest::FiveSprites());
  form->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(form.Form.get()));
  const QImage actual = form->picSprite->Image().copy();
  EXPECT_FALSE(form->mnuZoomOut->isEnabled());
  EXPECT_FALSE(form->mnuActualSize->isEnabled());

  // 2 x 2 at -2, 1 in an area of 333 x 318: x = (333 - 2m - 2m) / 2, y = (318 - 2m + m) / 2.
  const int pixels[2][2] = {{0x40, 0x50}, {0xA0, 0xC5}};
  const auto sprite0 = [&](int c, int r) { return pixels[r][c]; };
  QTest::keyClick(form.Form.get(), Qt::Key_Plus, Qt::ControlModifier);
  ASSERT_EQ(form->Magnification, 2);
  ExpectPicture(*form, 2, 2, 2, 162, 158, sprite0);
  QTest::keyClick(form.Form.get(), Qt::Key_Equal, Qt::ControlModifier);
  ASSERT_EQ(form->Magnification, 3);
  ExpectPicture(*form, 2, 2, 3, 160, 157, sprite0);

  // The magnification stays while browsing: the run-form 64 x 31 at -31, 0, row r a run of eight
  // pixels 0x20 + r from column r.
  form->scrSprite->SetValue(4);
  ExpectPicture(*form, 64, 31, 3, 24, 112,
                [](int c, int r) { return c >= r && c < r + 8 ? 0x20 + r : 0; });

  for (int i = 0; i < 10; ++i) form->mnuZoomIn->trigger();
  EXPECT_EQ(form->Magnification, 16);
  EXPECT_FALSE(form->mnuZoomIn->isEnabled());
  QTest::keyClick(form.Form.get(), Qt::Key_Minus, Qt::ControlModifier);
  EXPECT_EQ(form->Magnification, 12);
  form->scrSprite->SetValue(0);
  QTest::keyClick(form.Form.get(), Qt::Key_0, Qt::ControlModifier);
  EXPECT_EQ(form->Magnification, 1);
  EXPECT_EQ(form->picSprite->Image(), actual);
  EXPECT_TRUE(form->mnuZoomIn->isEnabled());
  EXPECT_FALSE(form->mnuZoomOut->isEnabled());
}

TEST(ViewItems, AVersionOneSpriteOffersNormalEightBitsAndAnActionSpriteNothing) {
  uitest::StartedForm form;
  EXPECT_EQ(Items(*form), "------|--");
  form.Load("five.grf", uitest::FiveSprites());
  EXPECT_EQ(Items(*form), "--X---|X-");
  form->scrSprite->SetValue(1);
  EXPECT_EQ(Items(*form), "------|--");
  form->mnuNew->trigger();
  EXPECT_EQ(Items(*form), "------|--");
}

TEST(Version2, OpenGfxRowsTitlesAndEveryTilePicture) {
  const std::string path = "/usr/share/games/openttd/baseset/opengfx/ogfx1_base.grf";
  uitest::StartedForm form;
  form->FileName = path;
  uitest::WindowLog log(form.Form.get());
  form->LoadGRF();
  const FileReadResult file = ReadWholeFile(path);
  GrfV2Index index;
  ASSERT_EQ(IndexGrfV2(file.Bytes.data(), file.Bytes.size(), index, nullptr), GrfV2Result::Ok);
  const int32_t count = static_cast<int32_t>(index.Sprites.size());
  EXPECT_EQ(form->lvwSprite->ItemCount(), count);
  EXPECT_EQ(form->scrSprite->Max(), count - 1);
  EXPECT_EQ(log.Captions().front(), "Loading GRF file to memory...");
  EXPECT_EQ(Caption(form.Form.get()).rfind("Viewing sprite 1 (", 0), 0u);
  EXPECT_EQ(Lines(*form).size(), 3u);  // no problem in a real file
  EXPECT_EQ(Lines(*form)[1].rfind("Loaded " + std::to_string(count) + " sprites in ", 0), 0u);

  // Every tile-form sprite's picture against its decoded indices through the palette.
  int tiles = 0;
  for (int32_t v = 0; v < count && tiles < 50; ++v) {
    const GrfV2Sprite& s = index.Sprites[size_t(v)];
    if (s.Default < 0 || !(index.Alternatives[size_t(s.Default)].Info & kV2Tile)) continue;
    ++tiles;
    form->scrSprite->SetValue(v);
    ASSERT_EQ(Items(*form), "--X---|X-");
    GrfV2Image image;
    DecodeAlternative(file.Bytes.data(), file.Bytes.size(), index.Alternatives[size_t(s.Default)],
                      image);
    Image2 im{4,
              0,
              uint16_t(image.Width),
              uint16_t(image.Height),
              int16_t(image.XOffset),
              int16_t(image.YOffset),
              image.Indices};
    ASSERT_EQ(form->picSprite->Image(), Expected(*form, Source(im, *form, true), im)) << v;
    ASSERT_EQ(form->lvwSprite->Item(v + 1).Texts[1], FormatZeroFilled(image.Width, 3));
  }
  EXPECT_EQ(tiles, 50);
}

TEST(Version2, AlternativesFollowTheChoiceAndFallBackToTheDefault) {
  uitest::StartedForm form;
  form.Load("own2.grf", OwnFile());
  EXPECT_EQ(uitest::ColumnTexts(*form, 1),
            (std::vector<std::string>{"009", "003", "005", "000", "007", "002"}));
  EXPECT_EQ(uitest::ColumnTexts(*form, 4)[0], "00001011");
  EXPECT_EQ(Lines(*form)[3], "Sprite 4 refers to id 99, which the file lacks");

  // Sprite 1 shows its default: 32-bit normal, composited over the checkerboard.
  EXPECT_EQ(Caption(form.Form.get()), "Viewing sprite 1 (9 x 6)");
  EXPECT_EQ(Caption(form->lblSize), "216");
  EXPECT_EQ(Items(*form), "+-X---|+X");
  EXPECT_EQ(form->picSprite->Image(), Expected(*form, Source(kNormal32, *form, false), kNormal32));

  // Zoomed in 4x by its shortcut: the 32-bit picture with a mask, and the mask through the palette.
  form->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(form.Form.get()));
  QTest::keyClick(form.Form.get(), Qt::Key_1, Qt::ControlModifier);
  EXPECT_EQ(Caption(form.Form.get()), "Viewing sprite 1 (20 x 12)");
  EXPECT_EQ(Caption(form->lblOffset), "-10 x -6");
  EXPECT_EQ(Items(*form), "X-+---|+X mask");
  EXPECT_EQ(form->picSprite->Image(), Expected(*form, Source(kIn4Mask, *form, false), kIn4Mask));
  QTest::keyClick(form.Form.get(), Qt::Key_M, Qt::ControlModifier);
  EXPECT_EQ(form->picSprite->Image(), Expected(*form, Source(kIn4Mask, *form, true), kIn4Mask));

  // Sprites without that picture show their default; the choice comes back with sprite 1.
  form->scrSprite->SetValue(2);
  EXPECT_EQ(Items(*form), "--X---|X-");
  EXPECT_EQ(form->picSprite->Image(), Expected(*form, Source(kOnly8, *form, true), kOnly8));
  form->scrSprite->SetValue(4);
  EXPECT_EQ(Caption(form.Form.get()), "Viewing sprite 5 (7 x 7)");
  EXPECT_EQ(Items(*form), "-X----|-X");
  form->scrSprite->SetValue(1);
  EXPECT_EQ(Caption(form.Form.get()), "Viewing sprite 2 (3 x 1)");
  EXPECT_EQ(Items(*form), "------|--");
  form->scrSprite->SetValue(0);
  EXPECT_EQ(Caption(form.Form.get()), "Viewing sprite 1 (20 x 12)");

  // 8 bpp where zoomed in 4x has none: the 8-bit picture at normal zoom.
  QTest::keyClick(form.Form.get(), Qt::Key_7, Qt::ControlModifier);
  EXPECT_EQ(Items(*form), "+-X---|X+");
  EXPECT_EQ(form->picSprite->Image(), Expected(*form, Source(kNormal8, *form, true), kNormal8));
}

TEST(Version2, ABadStreamIsToldOnceAndTheRestStaysBrowsable) {
  uitest::StartedForm form;
  form.Load("own2.grf", OwnFile());
  const size_t before = Lines(*form).size();
  for (int round = 0; round < 3; ++round) {
    form->scrSprite->SetValue(5);
    EXPECT_EQ(Caption(form.Form.get()), "Viewing sprite 6 (2 x 2)");
    form->scrSprite->SetValue(2);
  }
  const std::vector<std::string> lines = Lines(*form);
  ASSERT_EQ(lines.size(), before + 1);
  EXPECT_EQ(lines[0].rfind("Sprite 6: The image stream of id 10 ", 0), 0u) << lines[0];
  form->scrSprite->SetValue(5);
  EXPECT_EQ(form->picSprite->Image().pixelColor(100, 100), QColor(Qt::white));
  EXPECT_TRUE(form.Boxes.Boxes.empty());
}

TEST(Version2, MoreSpritesThanVersionOneCanHold) {
  // 40,000 references to one 8-bit sprite.
  std::vector<Bytes> refs(40000, grfw::V2Ref(1));
  uitest::StartedForm form;
  form.Load("many2.grf", grfw::V2File(refs, {grfw::V2Sprite(1, kOnly8)}));
  EXPECT_EQ(form->lvwSprite->ItemCount(), 40000);
  EXPECT_EQ(form->lvwSprite->Item(40000).Texts[0], "40000");
  EXPECT_EQ(form->scrSprite->Max(), 39999);
  form->scrSprite->SetValue(39999);
  EXPECT_EQ(Caption(form.Form.get()), "Viewing sprite 40000 (5 x 3)");
  form->lvwSprite_ItemClick(form->lvwSprite->Item(35001));
  EXPECT_EQ(form->scrSprite->Value(), 35000);
}

TEST(Version2, ChunkViewerListsTheDefaultPicturesChunks) {
  uitest::MsgBoxRecorder boxes;
  const Bytes bytes = OwnFile();
  frmChunk chunk;
  chunk.FileName = grfw::WriteTemp("chunks2.grf", bytes);
  chunk.ScanGRF();
  EXPECT_EQ(chunk.scrSprite->Max(), 5);
  GrfV2Index index;
  IndexGrfV2(bytes.data(), bytes.size(), index, nullptr);
  for (int32_t v : {0, 4, 1}) {
    chunk.scrSprite->SetValue(v);
    const GrfV2Sprite& s = index.Sprites[size_t(v)];
    const std::vector<ChunkLine> want =
        V2ChunkList(bytes.data(), bytes.size(), index, s, s.Default);
    ASSERT_EQ(chunk.Li->ListCount(), int32_t(want.size())) << v;
    for (size_t i = 0; i < want.size(); ++i) EXPECT_EQ(chunk.Li->List(int32_t(i)), want[i].Text);
  }
  EXPECT_EQ(chunk.Li->List(0), "Action sprite, 3 bytes");
}
