// The Sprite Sheet on the real windows offscreen: it follows the main window and drives it through
// the scroll bar, its cells hold the main window's pictures scaled, every filter and the Go To box,
// and a new file refills it.
#include <gtest/gtest.h>

#include <iterator>
#include <sstream>

#include <QAction>
#include <QComboBox>
#include <QLineEdit>
#include <QMenu>
#include <QSpinBox>
#include <QTest>

#include "case_file.h"
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
  grfw::Bytes map(257, 0x33);
  map[0] = 0;
  form.Load("recolour.grf", uitest::FiveSprites(grfw::ActionRecord(map)));
  frmSheet& sheet = OpenSheet(form);
  for (const std::string& line : CaseLines("ui/sheet_filter_cases.txt")) {
    const std::vector<std::string> f = Fields(line, 4);
    ASSERT_EQ(f.size(), f[0] == "go" ? 4u : 3u) << line;
    if (f[0] == "filter") {
      std::istringstream in(f[1] + " " + f[2]);
      int kinds = 0, role = 0, minWidth = 0, minHeight = 0;
      in >> kinds >> role >> minWidth >> minHeight;
      sheet.cboKinds->setCurrentIndex(kinds);
      sheet.cboRole->setCurrentIndex(role);
      sheet.spnMinWidth->setValue(minWidth);
      sheet.spnMinHeight->setValue(minHeight);
      const std::vector<int32_t> shown{std::istream_iterator<int32_t>(in), {}};
      EXPECT_EQ(sheet.Shown(), shown) << line;
    } else {
      sheet.txtGoTo->setText(QString::fromStdString(f[1]));
      QTest::keyClick(sheet.txtGoTo, Qt::Key_Return);
      EXPECT_EQ(form->scrSprite->Value(), std::stoi(f[2])) << line;
      EXPECT_EQ(sheet.lblStatus->text().toStdString(), f[3]);
    }
    if (line == "filter | 1 0 3 0 | 2 4") {  // the cells that stay close up
      EXPECT_EQ(sheet.CellRect(4).topLeft(), SheetCellOrigin(sheet.Layout(), 1));
    }
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
          // Yellow as the second colour where maps of two colours are found.
          const bool two = red && form->mnuCompany2->isEnabled();
          form->mnuCompany2Colour[two ? 1 + static_cast<int>(CompanyColour::Yellow) : 0]->trigger();
          if (form->Viewing().Transparent != transparent) form->mnuTransparent->trigger();
          std::vector<std::string> options = {"--palette", palette};
          if (red) options.insert(options.end(), {"--company", "red"});
          if (two) options.insert(options.end(), {"--company2", "yellow"});
          if (transparent) options.push_back("--transparent");
          ExpectSameCells(sheet, Settled(sheet), cli(options),
                          std::string(f.Name) + " " + palette + (red ? " red" : "") +
                              (two ? " yellow" : "") + (transparent ? " transparent" : ""));
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
