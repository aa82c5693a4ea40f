// The Sprite Sheet on the real windows offscreen: it follows the main window and drives it through
// the scroll bar, its cells hold the main window's pictures scaled, every filter and the Go To box,
// and a new file refills it.
#include <gtest/gtest.h>

#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QScrollBar>
#include <QSlider>
#include <QSpinBox>
#include <QTest>

#include "companymaps.h"
#include "controls.h"
#include "frmSheet.h"
#include "picturebox.h"
#include "renderer.h"
#include "run_cli.h"
#include "scrollbar.h"
#include "sheet_files.h"
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

namespace {

// The cells of sheet `png`, drawn by vossel-cli with `layout`, against the window's grid: every
// shown sprite whose cell is wholly in sight, but the highlighted one.
void ExpectSameCells(const frmSheet& sheet, const QImage& grid, const QImage& png,
                     const std::string& what) {
  const SheetLayout layout = MakeSheetLayout(sheet.Layout().Cell, sheet.Layout().Columns);
  int compared = 0;
  for (size_t slot = 0; slot < sheet.Shown().size(); ++slot) {
    const int32_t sprite = sheet.Shown()[slot];
    const QRect cell = sheet.CellRect(sprite);
    if (!grid.rect().contains(cell) || sprite == sheet.Highlighted()) continue;
    const QImage drawn =
        png.copy(QRect(SheetCellOrigin(layout, static_cast<int64_t>(slot)), cell.size()));
    ASSERT_EQ(grid.copy(cell), drawn) << what << ", sprite " << sprite + 1;
    ++compared;
  }
  EXPECT_GT(compared, 20) << what;
}

}  // namespace

// The window's sheet and vossel-cli's, for the same choices, cell for cell: a version-1 file that
// declares DOS and holds its own company colour maps, and a version-2 file, in every palette, with
// and without a company colour and the transparent background. Before any palette is chosen the
// window draws the version-1 file in the palette file, the CLI in the declared one: the rule that
// tells them apart, FirstPalette.
TEST(SpriteSheet, TheWindowAndTheCliDrawTheSameCells) {
  const struct {
    const char* Name;
    grfw::Bytes Bytes;
    const char* FirstPalette;  // the CLI's palette that matches the window's before a choice
  } files[] = {{"dos-v1.grf", sheetfiles::DosVersion1(), "windows"},
               {"mixed-v2.grf", sheetfiles::Version2(), "declared"}};
  for (const auto& f : files) {
    uitest::StartedForm form;
    const std::string path = form.Load(f.Name, f.Bytes);
    frmSheet& sheet = OpenSheet(form);
    const std::string png = grfw::WriteTemp("same-cells.png", {});
    const auto cli = [&](std::vector<std::string> options) {
      std::vector<std::string> args = {"sheet",     path,
                                       png,         "--force",
                                       "--columns", std::to_string(sheet.Layout().Columns),
                                       "--cell",    std::to_string(sheet.Layout().Cell)};
      args.insert(args.end(), options.begin(), options.end());
      const CliRun run = RunCli(args);
      EXPECT_EQ(run.Status, 0) << run.Err;
      return QImage(QString::fromStdString(png)).convertToFormat(QImage::Format_RGB32);
    };
    ExpectSameCells(sheet, Settled(sheet), cli({"--palette", f.FirstPalette}),
                    std::string(f.Name) + " before a choice");
    const std::pair<QAction*, const char*> palettes[] = {{form->mnuPaletteWindows, "windows"},
                                                         {form->mnuPaletteDos, "dos"},
                                                         {form->mnuPaletteDeclared, "declared"}};
    // The version-1 file holds its maps; the version-2 one takes an installed base set's, where
    // there is one, in the window and the CLI alike.
    const bool maps = form->mnuCompany->isEnabled();
    if (std::string(f.Name) == "dos-v1.grf") {
      EXPECT_TRUE(maps);
    }
    for (const auto& [item, palette] : palettes) {
      for (const bool red : {false, true}) {
        if (red && !maps) continue;
        for (const bool transparent : {false, true}) {
          item->trigger();
          form->mnuCompanyColour[red ? 1 + static_cast<int>(CompanyColour::Red) : 0]->trigger();
          if (form->Viewing().Transparent != transparent) form->mnuTransparent->trigger();
          std::vector<std::string> options = {"--palette", palette};
          if (red) options.insert(options.end(), {"--company", "red"});
          if (transparent) options.push_back("--transparent");
          ExpectSameCells(sheet, Settled(sheet), cli(options),
                          std::string(f.Name) + " " + palette + (red ? " red" : "") +
                              (transparent ? " transparent" : ""));
        }
      }
    }
  }
}

// A click picks the sprite under it wherever the grid is scrolled to; the place is worked out
// here from the layout and the scroll bar alone.
TEST(SpriteSheet, AClickWhenScrolledPicksTheSpriteUnderIt) {
  uitest::StartedForm form;
  form.Load("scrolled.grf", sheetfiles::DosVersion1());
  frmSheet& sheet = OpenSheet(form);
  for (const int part : {1, 2, 4}) {
    sheet.scrGrid->setValue(sheet.scrGrid->maximum() * part / 5);
    const SheetLayout& layout = sheet.Layout();
    const int64_t firstRow = (sheet.scrGrid->value() + layout.PitchY - 1) / layout.PitchY;
    ASSERT_GT(firstRow, 0);
    // The third cell of the second row wholly in sight.
    const int64_t slot = (firstRow + 1) * layout.Columns + 2;
    const QPoint at = SheetCellOrigin(layout, slot) - QPoint(0, sheet.scrGrid->value()) +
                      QPoint(layout.PitchX / 2, layout.PitchY / 2);
    QTest::mouseClick(sheet.Grid, Qt::LeftButton, {}, at);
    EXPECT_EQ(form->scrSprite->Value(), sheet.Shown()[static_cast<size_t>(slot)]) << part;
  }
}

// At 590 pixels wide every control keeps a usable size, and the columns stand in the middle.
TEST(SpriteSheet, ANarrowWindowKeepsEveryControlWhole) {
  uitest::StartedForm form;
  form.Load("narrow.grf", sheetfiles::DosVersion1());
  frmSheet& sheet = OpenSheet(form);
  sheet.resize(590, 400);
  QTest::qWait(50);
  EXPECT_GE(sheet.sldCell->width(), 100);
  EXPECT_GE(sheet.txtGoTo->width(), sheet.txtGoTo->sizeHint().width() / 2);
  for (QWidget* w :
       std::initializer_list<QWidget*>{sheet.sldCell, sheet.lblCell, sheet.cboKinds, sheet.cboRole,
                                       sheet.spnMinWidth, sheet.spnMinHeight, sheet.txtGoTo})
    EXPECT_TRUE(sheet.rect().contains(QRect(w->mapTo(&sheet, QPoint(0, 0)), w->size())))
        << w->metaObject()->className();
  const SheetLayout& layout = sheet.Layout();
  const int32_t right = sheet.Grid->width() - layout.Left - layout.Columns * layout.PitchX;
  EXPECT_LE(std::abs(right - layout.Left), 1);
}
