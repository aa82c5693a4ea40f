// The Sprite Sheet on the real windows offscreen: it follows the main window and drives it through
// the scroll bar, its cells hold the main window's pictures scaled, every filter and the Go To box,
// and a new file refills it.
#include <gtest/gtest.h>

#include <QComboBox>
#include <QLineEdit>
#include <QSlider>
#include <QSpinBox>
#include <QTest>

#include "controls.h"
#include "frmSheet.h"
#include "picturebox.h"
#include "renderer.h"
#include "scrollbar.h"
#include "ui_support.h"

using namespace vossel;

namespace {

// FiveSprites with a recolour map in place of the 1 x 1 sprite.
grfw::Bytes WithRecolourMap() {
  std::vector<std::vector<grfw::Run>> rows(31);
  for (size_t r = 0; r < rows.size(); ++r)
    rows[r] = {{static_cast<uint8_t>(r), grfw::Bytes(8, static_cast<uint8_t>(0x20 + r))}};
  grfw::Bytes map(257, 0x33);
  map[0] = 0;
  return grfw::File({grfw::PlainSprite(2, 2, {0x40, 0x50, 0xA0, 0xC5}, -2, 1),
                     grfw::ActionRecord(grfw::Bytes(10, 1)),
                     grfw::PlainSprite(3, 1, {7, 7, 7}, 0, 0, 2), grfw::ActionRecord(map),
                     grfw::RunSprite(64, rows, -31, 0)});
}

frmSheet& OpenSheet(uitest::StartedForm& form) {
  form->mnuSheet->trigger();
  frmSheet& sheet = *form->SpriteSheet;
  sheet.resize(640, 480);
  EXPECT_TRUE(QTest::qWaitForWindowExposed(&sheet));
  return sheet;
}

// The grid as it is painted once every picture in sight is ready.
QImage Settled(frmSheet& sheet) {
  sheet.Grid->grab();
  EXPECT_TRUE(QTest::qWaitFor([&] { return sheet.Waiting() == 0; }, 20000));
  return sheet.Grid->grab().toImage().convertToFormat(QImage::Format_RGB32);
}

}  // namespace

TEST(SpriteSheet, FollowsAndDrivesTheMainWindowAndShowsItsPicturesScaled) {
  uitest::StartedForm form;
  form.Load("five.grf", uitest::FiveSprites());
  frmSheet& sheet = OpenSheet(form);
  EXPECT_EQ(sheet.Shown(), (std::vector<int32_t>{0, 1, 2, 3, 4}));
  EXPECT_EQ(sheet.Highlighted(), 0);

  // A click shows that sprite in the main window; browsing there moves the highlight.
  QTest::mouseClick(sheet.Grid, Qt::LeftButton, {}, sheet.CellRect(4).center());
  EXPECT_EQ(form->scrSprite->Value(), 4);
  EXPECT_EQ(Caption(form.Form.get()), "Viewing sprite 5 (64 x 31)");
  EXPECT_EQ(sheet.Highlighted(), 4);
  form->scrSprite->SetValue(2);
  EXPECT_EQ(sheet.Highlighted(), 2);

  // Each cell holds the picture the main window draws, cut out of its picture area and scaled:
  // enlarged at 64 pixels, the 64 x 31 sprite reduced at 32.
  for (const int32_t cell : {64, 32}) {
    sheet.sldCell->setValue(cell);
    const QImage grid = Settled(sheet);
    for (const int32_t sprite : {0, 2, 3, 4}) {
      form->scrSprite->SetValue(sprite);
      const SpriteFacts f = FactsOf(form->File, sprite, 0);
      const auto w = static_cast<int32_t>(f.Width), h = static_cast<int32_t>(f.Height);
      const SpritePlacement at = PlacePicture(w, h, f.XOffset, f.YOffset, Left(form->scrSprite),
                                              ScaleHeight(form->picSprite), 1);
      const QImage expected = CellPicture(form->picSprite->Image().copy(at.X, at.Y, w, h), cell);
      const QRect square = SheetPictureSquare(sheet.Layout(), sheet.CellRect(sprite).topLeft());
      const QImage shown = grid.copy(square.x() + (cell - expected.width()) / 2,
                                     square.y() + (cell - expected.height()) / 2, expected.width(),
                                     expected.height());
      EXPECT_EQ(shown, expected.convertToFormat(QImage::Format_RGB32))
          << "sprite " << sprite << " in " << cell;
    }
  }

  // Another file refills the sheet; New empties it.
  form.Load("two.grf", grfw::File({grfw::PlainSprite(1, 1, {9}), grfw::PlainSprite(1, 1, {8})}));
  EXPECT_EQ(sheet.Shown(), (std::vector<int32_t>{0, 1}));
  EXPECT_EQ(sheet.Highlighted(), form->scrSprite->Value());
  EXPECT_TRUE(sheet.windowTitle().endsWith(QStringLiteral("two.grf")));
  form->mnuNew_Click();
  EXPECT_TRUE(sheet.Shown().empty());
}

TEST(SpriteSheet, EveryFilterAndTheGoToBox) {
  uitest::StartedForm form;
  form.Load("recolour.grf", WithRecolourMap());
  frmSheet& sheet = OpenSheet(form);
  // Kinds: all, pictures, pseudo-sprites; roles: any, action sprites, base, recolour maps, glyphs.
  const struct {
    int Kinds, Role, MinWidth, MinHeight;
    std::vector<int32_t> Shown;
  } filters[] = {
      {0, 0, 0, 0, {0, 1, 2, 3, 4}},
      {1, 0, 0, 0, {0, 2, 4}},
      {2, 0, 0, 0, {1, 3}},
      {0, 3, 0, 0, {3}},
      {0, 1, 0, 0, {2}},  // sprite 1 is an Action 01 of one set of one sprite
      {0, 2, 0, 0, {0, 4}},
      {0, 0, 3, 0, {2, 4}},
      {0, 0, 0, 2, {0, 4}},
      {1, 0, 3, 2, {4}},
      {2, 4, 0, 0, {}},
  };
  for (const auto& f : filters) {
    sheet.cboKinds->setCurrentIndex(f.Kinds);
    sheet.cboRole->setCurrentIndex(f.Role);
    sheet.spnMinWidth->setValue(f.MinWidth);
    sheet.spnMinHeight->setValue(f.MinHeight);
    EXPECT_EQ(sheet.Shown(), f.Shown) << f.Kinds << f.Role << f.MinWidth << f.MinHeight;
  }
  // The cells that stay close up: sprite 5 takes the second place.
  sheet.cboKinds->setCurrentIndex(1);
  sheet.cboRole->setCurrentIndex(0);
  sheet.spnMinWidth->setValue(3);
  sheet.spnMinHeight->setValue(0);
  EXPECT_EQ(sheet.CellRect(4).topLeft(), SheetCellOrigin(sheet.Layout(), 1));

  // Go To shows the sprite in the main window, filtered out or not, and refuses what is none.
  const struct {
    const char* Text;
    int32_t Value;
    const char* Status;
  } goes[] = {{"5", 4, "5 sprites, 2 shown."},
              {" 2 ", 1, "5 sprites, 2 shown. Sprite 2, on view, is hidden by the filters."},
              {"6", 1, "There is no sprite 6: give a number from 1 to 5."},
              {"x", 1, "There is no sprite x: give a number from 1 to 5."}};
  for (const auto& g : goes) {
    sheet.txtGoTo->setText(QString::fromLatin1(g.Text));
    QTest::keyClick(sheet.txtGoTo, Qt::Key_Return);
    EXPECT_EQ(form->scrSprite->Value(), g.Value) << g.Text;
    EXPECT_EQ(sheet.lblStatus->text().toStdString(), g.Status);
  }

  // Without pseudo-sprites every picture is a base sprite.
  sheet.cboKinds->setCurrentIndex(0);
  sheet.spnMinWidth->setValue(0);
  sheet.cboRole->setCurrentIndex(2);
  form.Load("five.grf", grfw::File({grfw::PlainSprite(1, 1, {9}), grfw::PlainSprite(1, 1, {8})}));
  EXPECT_EQ(sheet.Shown(), (std::vector<int32_t>{0, 1}));
}
