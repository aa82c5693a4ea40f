// The View menu and version-2 files in the windows: the magnifier through its shortcuts, the items
// a sprite offers, and frmMain and frmChunk on our own 32-bit files with zoom levels, a mask
// layer, a missing id, a damaged stream and more sprites than version 1 allows.
#include <gtest/gtest.h>

#include <map>
#include <random>

#include <QAction>
#include <QMenu>
#include <QTest>

#include "case_file.h"
#include "controls.h"
#include "frmChunk.h"
#include "grf2_chunks.h"
#include "listbox.h"
#include "picturebox.h"
#include "renderer.h"
#include "scrollbar.h"
#include "ui_support.h"

using namespace vossel;

namespace {

using grfw::Bytes;
using grfw::Image2;

// The Zoom Level and Colour Depth items in menu order, checked X, enabled +, disabled -, and
// whether the mask item is enabled.
std::string Items(const frmMain& form) {
  std::string s;
  for (const QMenu* menu : {form.mnuZoomLevel, form.mnuColourDepth}) {
    if (!s.empty()) s += '|';
    for (const QAction* item : menu->actions())
      s += item->isChecked() ? 'X' : item->isEnabled() ? '+' : '-';
  }
  return s + (form.mnuMaskLayer->isEnabled() ? " mask" : "");
}

// Whether the picture area shows the writer's pixels at the window's placement and magnification:
// 32-bit ones with their alpha, or the last layer (8-bit pixels or the mask) through the palette.
bool Shows(frmMain& form, const Image2& im, bool indexLayer) {
  const size_t ps = grfw::PixelBytes(im.info);
  QImage source(im.width, im.height, indexLayer ? QImage::Format_RGB32 : QImage::Format_ARGB32);
  for (int r = 0; r < im.height; ++r) {
    for (int c = 0; c < im.width; ++c) {
      const uint8_t* p = &im.pixels[(size_t(r) * im.width + c) * ps];
      source.setPixel(c, r,
                      indexLayer ? uitest::PaletteColour(form, p[ps - 1]).rgb()
                                 : qRgba(p[0], p[1], p[2], (im.info & 2) ? p[3] : 255));
    }
  }
  QImage canvas(form.picSprite->Image().size(), QImage::Format_RGB32);
  PaintPicture(canvas, source, im.x, im.y, Left(form.scrSprite), ScaleHeight(form.picSprite),
               Qt::white, form.Viewing().Magnification);
  return form.picSprite->Image() == canvas;
}

// Sprite 1: id 7 with 32-bit normal (alpha, tile form), 32-bit in 4x with a mask, 8-bit normal.
// Sprite 2: a pseudo-sprite. Sprite 3: id 8, 8-bit normal only. Sprite 4: a missing id.
// Sprite 5: id 9, 32-bit in 2x only. Sprite 6: id 10, 2 x 2 pixels from a stream of 2 + 3 bytes.
const Image2 kNormal32 = grfw::RandomImage(0x0B, 0, 9, 6, -4, -2, 1);
const Image2 kIn4Mask = grfw::RandomImage(0x07, 1, 20, 12, -10, -6, 2);
const Image2 kNormal8 = grfw::RandomImage(0x04, 0, 9, 6, -4, -2, 3);
const Image2 kOnly8 = grfw::RandomImage(0x04, 0, 5, 3, 0, 0, 4);
const Image2 kIn2 = grfw::RandomImage(0x03, 2, 7, 7, 1, 1, 5);

Bytes OwnFile() {
  return grfw::V2File(
      {grfw::V2Ref(7), grfw::V2Data(0xFF, {1, 2, 3}), grfw::V2Ref(8), grfw::V2Ref(99),
       grfw::V2Ref(9), grfw::V2Ref(10)},
      {grfw::V2Sprite(7, kNormal32), grfw::V2Sprite(7, kIn4Mask), grfw::V2Sprite(7, kNormal8),
       grfw::V2Sprite(8, kOnly8), grfw::V2Sprite(9, kIn2),
       grfw::V2Raw(10, {0x04, 0, 2, 0, 2, 0, 0, 0, 0, 0, 2, 1, 2, 0xE8, 1})});
}

}  // namespace

TEST(Version2,
     TheChosenPictureAndMagnificationStayWhileBrowsingAndEachSpriteFallsBackToItsDefault) {
  uitest::StartedForm form;
  form.Load("own2.grf", OwnFile());
  std::string widths;  // and the first one's flags
  for (int32_t i = 1; i <= 6; ++i) widths += form->lvwSprite->Item(i).Texts[1] + " ";
  EXPECT_EQ(widths + form->lvwSprite->Item(1).Texts[4], "009 003 005 000 007 002 00001011");
  EXPECT_EQ(form->Li->List(3), "Sprite 4 refers to id 99, which the file lacks");

  // The steps in view_cases.txt: the picture with its alpha or through the palette.
  form->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(form.Form.get()));
  const std::map<std::string, const Image2*> pictures = {
      {"normal32", &kNormal32}, {"in4mask", &kIn4Mask}, {"normal8", &kNormal8},
      {"only8", &kOnly8},       {"in2", &kIn2},         {"-", nullptr}};
  for (const std::string& line : CaseLines("ui/view_cases.txt")) {
    const std::vector<std::string> s = Fields(line, 7);
    ASSERT_EQ(s.size(), 7u) << line;
    form->scrSprite->SetValue(std::stoi(s[0]));
    if (s[1] != "-")
      QTest::keySequence(form.Form.get(), QKeySequence(QString::fromStdString(s[1])));
    SCOPED_TRACE(line);
    EXPECT_EQ(Caption(form.Form.get()),
              "Viewing sprite " + std::to_string(std::stoi(s[0]) + 1) + " (" + s[2] + ")");
    EXPECT_EQ(Items(*form), s[3]);
    EXPECT_EQ(form->Viewing().Magnification, std::stoi(s[6]));
    EXPECT_EQ(form->mnuActualSize->isEnabled(), s[6] != "1");
    const Image2* picture = pictures.at(s[4]);
    EXPECT_TRUE(picture == nullptr || Shows(*form, *picture, s[5] == "1"));
  }
  for (int i = 0; i < 10; ++i) QTest::keyClick(form.Form.get(), Qt::Key_Equal, Qt::ControlModifier);
  EXPECT_EQ(form->Viewing().Magnification, 16);
  EXPECT_FALSE(form->mnuZoomIn->isEnabled());

  // A stream that cannot be decoded is told once however often it is shown, and the area stays
  // blank beside its facts.
  const int32_t before = form->Li->ListCount();
  for (int32_t v : {5, 2, 5, 0, 5}) form->scrSprite->SetValue(v);
  EXPECT_EQ(Caption(form.Form.get()), "Viewing sprite 6 (2 x 2)");
  ASSERT_EQ(form->Li->ListCount(), before + 1);
  EXPECT_EQ(form->Li->List(0).rfind("Sprite 6: The image stream of id 10 ", 0), 0u);
  EXPECT_EQ(form->picSprite->Image().pixelColor(165, 159), QColor(Qt::white));
  EXPECT_TRUE(form.Boxes.Boxes.empty());
  form.Load("five.grf", uitest::FiveSprites());
  EXPECT_EQ(Items(*form), "--X---|X-");  // a version-1 sprite: normal zoom, 8 bpp
}

TEST(Version2, MoreSpritesThanVersionOneCanHold) {
  uitest::StartedForm form;
  form.Load("many2.grf",
            grfw::V2File(std::vector<Bytes>(40000, grfw::V2Ref(1)), {grfw::V2Sprite(1, kOnly8)}));
  EXPECT_EQ(form->lvwSprite->ItemCount(), 40000);
  EXPECT_EQ(form->scrSprite->Max(), 39999);
  form->lvwSprite_ItemClick(form->lvwSprite->Item(40000));
  EXPECT_EQ(Caption(form.Form.get()), "Viewing sprite 40000 (5 x 3)");
}

// Damaged copies of our own file, the first one whole: what the index finds wrong is in the
// messages, every sprite is browsed with every choice in both windows, and the chunk viewer lists
// the chunk walk of each sprite's default picture. The sanitizer build sees any read outside a
// buffer.
TEST(Version2, DamagedFilesSayWhatAndStayBrowsableAndTheChunkViewerListsTheChunkWalk) {
  uitest::StartedForm form;
  std::mt19937 rng(7);
  const Bytes good = OwnFile();
  for (int round = 0; round < 60; ++round) {
    Bytes b = good;
    for (uint32_t i = 0, flips = round == 0 ? 0 : 1 + rng() % 6; i < flips; ++i)
      b[15 + rng() % (b.size() - 15)] = uint8_t(rng());
    if (round > 0 && rng() % 4 == 0) b.resize(17 + rng() % (b.size() - 17));
    form.Load("damaged.grf", b);
    GrfV2Index index;  // what the index says is in the messages
    IndexGrfV2(b.data(), b.size(), index, [&form](const std::string& m) {
      bool shown = false;
      for (int32_t i = 0; i < form->Li->ListCount(); ++i) shown |= form->Li->List(i) == m;
      EXPECT_TRUE(shown) << m;
    });
    for (int32_t v = 0; v <= form->scrSprite->Max(); ++v) {
      form->scrSprite->SetValue(v);
      form->mnuLevel_Click(int32_t(rng() % 6));
      form->mnuDepth_Click(rng() % 2 ? 8 : 32);
      form->mnuMaskLayer->trigger();
      form->mnuZoomIn_Click();
    }
    frmChunk chunk;
    chunk.FileName = grfw::WriteTemp("damaged-chunks.grf", b);
    chunk.ScanGRF();
    for (int32_t v = 0; v < int32_t(index.Sprites.size()); ++v) {
      chunk.scrSprite->SetValue(v);
      const GrfV2Sprite& s = index.Sprites[size_t(v)];
      const std::vector<ChunkLine> want = V2ChunkList(b.data(), b.size(), index, s, s.Default);
      ASSERT_EQ(chunk.Li->ListCount(), int32_t(want.size())) << round << " " << v;
      for (size_t i = 0; i < want.size(); ++i) EXPECT_EQ(chunk.Li->List(int32_t(i)), want[i].Text);
    }
  }
}
