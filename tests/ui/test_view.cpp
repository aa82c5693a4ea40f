// The View menu: the magnifier through its shortcuts, and which alternative items a sprite offers.
#include <gtest/gtest.h>

#include <functional>

#include <QAction>
#include <QMenu>
#include <QTest>

#include "picturebox.h"
#include "scrollbar.h"
#include "ui_support.h"

namespace {

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
