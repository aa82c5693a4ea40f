// The colours the game draws in, in the window: every choice of palette, company colour and
// transparency on a file of each container, and of two company colours, against the CLI's PNG for
// the same choices; and sprites of different sizes kept in register at the origin.
#include <gtest/gtest.h>

#include <QAction>
#include <QMenu>

#include "companymaps.h"
#include "picturebox.h"
#include "renderer.h"
#include "run_cli.h"
#include "scrollbar.h"
#include "sheet_files.h"
#include "ui_support.h"

using namespace vossel;

namespace {

// The CLI's PNG painted as the window paints its picture.
QImage AsTheWindowPaints(frmMain& form, const std::string& png) {
  const QImage picture(QString::fromStdString(png));
  PictureOptions options;
  options.TransparentIndex0 = form.Viewing().Transparent;
  QImage canvas(form.picSprite->Image().size(), QImage::Format_RGB32);
  PaintPicture(canvas, picture, picture.text("XOffset").toInt(), picture.text("YOffset").toInt(),
               Left(form.scrSprite), ScaleHeight(form.picSprite), Qt::white, 1, options);
  return canvas;
}

// The two colour menus set to `first` and `second` (-1: None).
void Choose(frmMain& form, int first, int second) {
  form.mnuCompanyColour[static_cast<size_t>(first + 1)]->trigger();
  form.mnuCompany2Colour[static_cast<size_t>(second + 1)]->trigger();
}

// vossel-cli's `sprite` of the sprite on view (from 0) as PNG, in the colours given (-1: none).
QImage CliSprite(const std::string& path, int sprite, int first, int second,
                 const std::string& png) {
  std::vector<std::string> args{"sprite", path, std::to_string(sprite + 1),
                                "--png",  png,  "--force"};
  if (first >= 0)
    args.insert(args.end(), {"--company", std::string(CompanyColourToken(CompanyColour(first)))});
  if (second >= 0)
    args.insert(args.end(), {"--company2", std::string(CompanyColourToken(CompanyColour(second)))});
  EXPECT_EQ(RunCli(args).Status, 0);
  return QImage(QString::fromStdString(png));
}

}  // namespace

TEST(Colours, TheWindowDrawsAsTheCliForEveryChoiceOnBothContainers) {
  const std::string base = VOSSEL_BASESET_DIR;
  // Sprites with company-colour pixels in each.
  const std::pair<std::string, int> files[] = {{base + "/openttd.grf", 1310},
                                               {base + "/opengfx/ogfx1_base.grf", 678}};
  for (const auto& [path, n] : files) {
    if (!uitest::fs::exists(path)) GTEST_SKIP() << path << " is not installed";
    uitest::StartedForm form;
    form->FileName = path;
    form->LoadGRF();
    form->scrSprite->SetValue(n - 1);
    ASSERT_TRUE(form->mnuCompany->isEnabled()) << "OpenGFX brings the maps";
    const std::pair<QAction*, const char*> palettes[] = {{form->mnuPaletteWindows, "windows"},
                                                         {form->mnuPaletteDos, "dos"},
                                                         {form->mnuPaletteDeclared, "declared"}};
    for (const auto& [paletteItem, palette] : palettes) {
      for (const bool red : {false, true}) {
        paletteItem->trigger();
        form->mnuCompanyColour[red ? 1 + static_cast<int>(CompanyColour::Red) : 0]->trigger();
        form->mnuTransparent->trigger();
        const std::string png = grfw::WriteTemp("colours.png", {});
        std::vector<std::string> args{"sprite", path,      std::to_string(n), "--png",
                                      png,      "--force", "--palette",       palette};
        if (red) args.insert(args.end(), {"--company", "red"});
        ASSERT_EQ(RunCli(args).Status, 0);
        const QImage canvas = AsTheWindowPaints(*form, png);
        EXPECT_EQ(form->picSprite->Image(), canvas) << path << " " << palette << " " << red;
      }
    }
    EXPECT_EQ(form->mnuPaletteDeclared->text().toStdString(), "As the file declares (DOS)");
  }
}

TEST(Colours, SpritesOfDifferentSizeMeetAtTheOriginInBothContainers) {
  // Index 200 marks where each sprite's offsets point: pixel (2, 2) of the first, (5, 1) of the
  // second.
  grfw::Bytes small(16, 1), large(48, 3);
  small[2 * 4 + 2] = 200;
  large[1 * 8 + 5] = 200;
  const grfw::Bytes files[] = {
      grfw::File({grfw::PlainSprite(4, 4, small, -2, -2), grfw::PlainSprite(8, 6, large, -5, -1)}),
      grfw::V2File({grfw::V2Ref(1), grfw::V2Ref(2)},
                   {grfw::V2Sprite(1, {0x04, 0, 4, 4, -2, -2, small}),
                    grfw::V2Sprite(2, {0x04, 0, 8, 6, -5, -1, large})})};
  for (const grfw::Bytes& file : files) {
    uitest::StartedForm form;
    form.Load("origin.grf", file);
    form->mnuAlignOrigin->trigger();
    form->mnuZoomIn->trigger();
    form->mnuZoomIn->trigger();  // 3x: the marked pixel is a block around the crosshair
    const QPoint origin = PictureOrigin(Left(form->scrSprite), ScaleHeight(form->picSprite), {});
    for (int sprite : {0, 1}) {
      form->scrSprite->SetValue(sprite);
      EXPECT_EQ(QColor(form->picSprite->Image().pixel(origin + QPoint(1, 1))),
                uitest::PaletteColour(*form, 200))
          << sprite;
    }
  }
}

TEST(Colours, TwoCompanyColoursDrawAsTheCliThroughThePairsMap) {
  uitest::StartedForm form;
  const std::string path = form.Load("pairs.grf", sheetfiles::DosVersion1(true));
  ASSERT_TRUE(form->mnuCompany2->isEnabled());
  EXPECT_EQ(form->mnuCompany2->menuAction()->toolTip().toStdString(),
            "Two-colour maps from " + path + "; map first + 16 x second draws the pair");
  // The last sprite holds both ranges among other indices.
  const int sprite = SpriteCount(form->File) - 1;
  form->scrSprite->SetValue(sprite);
  form->mnuPaletteDeclared->trigger();  // as the CLI draws
  const QImage plain = form->picSprite->Image();
  const int red = static_cast<int>(CompanyColour::Red),
            yellow = static_cast<int>(CompanyColour::Yellow);
  const std::pair<int, int> pairs[] = {{red, yellow}, {-1, yellow}, {red, -1}, {yellow, red}};
  for (const auto& [first, second] : pairs) {
    Choose(*form, first, second);
    const std::string png = grfw::WriteTemp("pair.png", {});
    CliSprite(path, sprite, first, second, png);
    EXPECT_EQ(form->picSprite->Image(), AsTheWindowPaints(*form, png)) << first << " " << second;
    EXPECT_NE(form->picSprite->Image(), plain) << first << " " << second;
  }
}

// The real ship set advertises two company colours; its second range was drawn green as stored.
// With a second colour the CLI sends each index of that range where the installed base set's map
// of that colour sends the first range, and the window shows the same.
TEST(Colours, TheShipSetsSecondColourIsNoLongerGreen) {
  uitest::StartedForm form;
  const std::string path = form.Load("ekranoplan.grf", uitest::DataFile("ekranoplan.grf"));
  CompanyMaps one;
  if (!form->mnuCompany2->isEnabled() ||
      FindInstalledCompanyMaps(FindInstalledBaseSets(), one).empty())
    GTEST_SKIP() << "no base set with the maps is installed";
  const int sprite = 26;  // sprite 27, a side view with a stripe in the second range
  form->scrSprite->SetValue(sprite);
  const int red = static_cast<int>(CompanyColour::Red),
            blue = static_cast<int>(CompanyColour::Blue);
  const QImage stored = CliSprite(path, sprite, -1, -1, grfw::WriteTemp("ship-stored.png", {}));
  const QImage second = CliSprite(path, sprite, -1, red, grfw::WriteTemp("ship-second.png", {}));
  ASSERT_EQ(second.size(), stored.size());
  int inSecond = 0, wrong = 0;
  for (int y = 0; y < stored.height(); ++y) {
    for (int x = 0; x < stored.width(); ++x) {
      const int i = stored.pixelIndex(x, y);
      const bool range = i >= 0x50 && i <= 0x57;
      inSecond += range;
      wrong +=
          second.pixelIndex(x, y) != (range ? MapOf(one, CompanyColour::Red)[0xC6 + i - 0x50] : i);
    }
  }
  EXPECT_GT(inSecond, 0) << "the sprite has pixels of the second range";
  EXPECT_EQ(wrong, 0);
  Choose(*form, blue, red);
  const std::string png = grfw::WriteTemp("ship.png", {});
  CliSprite(path, sprite, blue, red, png);
  EXPECT_EQ(form->picSprite->Image(), AsTheWindowPaints(*form, png));
  if (const char* shot = std::getenv("VOSSEL_COLOURS_SCREENSHOT")) {
    for (int i = 0; i < 3; ++i) form->mnuZoomIn->trigger();
    form->grab().save(shot);
  }
}
