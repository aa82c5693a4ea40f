// The colours the game draws in, in the window: every choice of palette, company colour and
// transparency on a file of each container, against the CLI's PNG for the same choices; and
// sprites of different sizes kept in register at the origin.
#include <gtest/gtest.h>

#include <QAction>
#include <QMenu>

#include "companymaps.h"
#include "picturebox.h"
#include "renderer.h"
#include "run_cli.h"
#include "scrollbar.h"
#include "ui_support.h"

using namespace vossel;

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
        const QImage picture(QString::fromStdString(png));
        PictureOptions options;
        options.TransparentIndex0 = form->Viewing().Transparent;
        QImage canvas(form->picSprite->Image().size(), QImage::Format_RGB32);
        PaintPicture(canvas, picture, picture.text("XOffset").toInt(),
                     picture.text("YOffset").toInt(), Left(form->scrSprite),
                     ScaleHeight(form->picSprite), Qt::white, 1, options);
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
