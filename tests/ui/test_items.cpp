// The Items window on the real windows offscreen, with real NewGRFs: its tree and filter, an
// item's properties and graphics, a thumbnail driving the main window, the Details window naming
// a sprite's items, a reload keeping the item on view; its composed view against vossel-cli's.
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QMenu>
#include <QScrollArea>
#include <QSpinBox>
#include <QTest>
#include <QToolButton>
#include <QTreeWidget>

#include "frmItems.h"
#include "run_cli.h"
#include "scrollbar.h"
#include "ui_support.h"

using namespace vossel;

namespace {

int VisibleRows(QTreeWidget* tree) {
  int n = 0;
  for (int f = 0; f < tree->topLevelItemCount(); ++f) n += tree->topLevelItem(f)->childCount();
  return n;
}

// vossel-cli view's PNG of an item in the Windows palette, with `more` arguments.
QImage CliView(const std::string& path, const std::string& feature, int id,
               std::vector<std::string> more) {
  const std::string png = grfw::WriteTemp("view.png", {});
  std::vector<std::string> args{"view", path,      feature,     std::to_string(id),
                                png,    "--force", "--palette", "windows"};
  args.insert(args.end(), more.begin(), more.end());
  const CliRun run = RunCli(args);
  EXPECT_EQ(run.Status, 0) << run.Err;
  return QImage(QString::fromStdString(png)).convertToFormat(QImage::Format_RGB32);
}

// The window's picture, after checking that it shows it magnified.
QImage Shown(const frmItems& items) {
  const QImage& picture = items.Picture().Image;
  EXPECT_EQ(items.picView->pixmap().toImage().convertToFormat(QImage::Format_RGB32),
            picture.scaled(picture.size() * items.spnMagnify->value()));
  return picture.convertToFormat(QImage::Format_RGB32);
}

void Screenshot(frmItems& items, const char* name) {
  if (const char* folder = std::getenv("VOSSEL_ITEMS_SCREENSHOTS")) {
    QTest::qWait(100);  // the layout settles first
    items.grab().save(QString::fromLocal8Bit(folder) + "/" + name);
  }
}

}  // namespace

TEST(ItemsWindow, ShowsWhatTheFileMakesAndDrivesTheMainWindow) {
  uitest::StartedForm form;
  form.Load("ekranoplan.grf", uitest::DataFile("ekranoplan.grf"));
  form->mnuItems->trigger();
  ASSERT_TRUE(form->ItemsWindow);
  frmItems& items = *form->ItemsWindow;
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&items));

  // Ships and global settings, every item under its feature.
  ASSERT_EQ(items.tvwItems->topLevelItemCount(), 2);
  EXPECT_EQ(items.tvwItems->topLevelItem(0)->text(0).toStdString(), "02 Ships (11)");
  EXPECT_EQ(VisibleRows(items.tvwItems), 13);
  items.txtFilter->setText("alexeev");
  EXPECT_EQ(VisibleRows(items.tvwItems), 3);
  items.txtFilter->setText("0x0B");
  ASSERT_EQ(VisibleRows(items.tvwItems), 1);
  EXPECT_EQ(items.tvwItems->topLevelItem(0)->child(0)->text(1).toStdString(), "Antonov ESKA-1");
  items.txtFilter->clear();

  ASSERT_TRUE(items.SelectItem(0x02, 11));
  EXPECT_EQ(items.tvwProperties->topLevelItemCount(), 29);
  EXPECT_EQ(items.tvwProperties->topLevelItem(0)->text(1).toStdString(), "1960-01-01");
  EXPECT_EQ(items.tvwProperties->topLevelItem(0)->text(2).toStdString(), "63 EC 0A 00");
  const auto thumbnails = items.tvwGraphics->findChildren<QToolButton*>();
  ASSERT_EQ(thumbnails.size(), 16);  // the set under loaded and under loading
  if (const char* shot = std::getenv("VOSSEL_ITEMS_SCREENSHOT")) items.grab().save(shot);

  // A thumbnail shows its sprite in the main window; the Details window names its items.
  QToolButton* ninth = items.tvwGraphics->findChild<QToolButton*>("thumbnail9");
  ASSERT_NE(ninth, nullptr);
  ninth->click();
  EXPECT_EQ(form->scrSprite->Value(), 9);
  form->mnuDetails->trigger();
  EXPECT_NE(form->Details->Text().find("Items: ships 11 \"Antonov ESKA-1\"\n"), std::string::npos)
      << form->Details->Text();

  // A reload keeps the window filled and the item on view.
  form->mnuReload->trigger();
  EXPECT_EQ(VisibleRows(items.tvwItems), 13);
  EXPECT_EQ(items.tvwProperties->topLevelItemCount(), 29);
  EXPECT_NE(items.lblItem->text().toStdString().find("Antonov ESKA-1"), std::string::npos);

  // What cannot be drawn is said in words.
  ASSERT_TRUE(items.SelectItem(0x08, 0));
  EXPECT_TRUE(items.Picture().Image.isNull());
  EXPECT_EQ(items.lblView->text().toStdString(), "no graphics for this request: nothing to draw.");
}

TEST(ItemsWindow, ComposesAsTheCliInTheMainWindowsLookAndAClickShowsTheSprite) {
  uitest::StartedForm form;
  const std::string vehicles = form.Load("ogfx-mars-rv.grf", uitest::DataFile("ogfx-mars-rv.grf"));
  form->mnuItems->trigger();
  frmItems& items = *form->ItemsWindow;
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&items));
  ASSERT_TRUE(items.SelectItem(0x01, 88));
  ASSERT_EQ(items.Composed().End, ComposeEnd::Views);
  // The window follows the main window's look as it changes.
  form->mnuPaletteWindows->trigger();
  ASSERT_TRUE(form->mnuCompany2->isEnabled()) << "OpenGFX brings the maps of two colours";
  form->mnuCompanyColour[1 + static_cast<int>(CompanyColour::Red)]->trigger();
  form->mnuCompany2Colour[1 + static_cast<int>(CompanyColour::Blue)]->trigger();
  const std::vector<std::string> colours{"--company", "red", "--company2", "blue"};
  EXPECT_EQ(Shown(items), CliView(vehicles, "01", 88, colours));
  Screenshot(items, "items-vehicle.png");

  // A click on a view shows its sprite in the main window.
  ASSERT_EQ(items.Picture().Sprites.size(), 8u);
  const PlacedSprite third = items.Picture().Sprites[2];
  QTest::mouseClick(items.picView, Qt::LeftButton, {},
                    third.Rect.center() * items.spnMagnify->value());
  EXPECT_EQ(form->scrSprite->Value(), third.Sprite);
  items.chkSharedOrigin->click();
  std::vector<std::string> shared = colours;
  shared.push_back("--shared-origin");
  EXPECT_EQ(Shown(items), CliView(vehicles, "01", 88, shared));

  // A house tile from its layout, the ground from the base set opened off the window's thread.
  const std::string houses =
      form.Load("ogfx-mars-houses.grf", uitest::DataFile("ogfx-mars-houses.grf"));
  form->mnuCompanyColour[0]->trigger();
  form->mnuCompany2Colour[0]->trigger();
  ASSERT_TRUE(items.SelectItem(0x07, 0));
  items.chkBoxes->click();
  ASSERT_TRUE(QTest::qWaitFor([&] { return items.BaseArrived(); }, 30000));
  EXPECT_EQ(Shown(items), CliView(houses, "houses", 0, {"--boxes"}));
  // A pick recomposes at once, as --pick does; the pickers are those of the new way.
  auto* stage = items.findChild<QComboBox*>("pick97");
  ASSERT_NE(stage, nullptr);
  EXPECT_EQ(stage->currentText().toStdString(), "sprite 1 of 3 in each set");
  const QImage first = Shown(items);
  stage->setCurrentIndex(2);
  EXPECT_NE(Shown(items), first);
  EXPECT_EQ(Shown(items), CliView(houses, "houses", 0, {"--boxes", "--pick", "97=3"}));
  EXPECT_EQ(items.findChild<QComboBox*>("pick97")->currentIndex(), 2);
  Screenshot(items, "items-house.png");

  // A reload keeps the pick; a click on the building shows it, on the base ground says so.
  form->mnuReload->trigger();
  EXPECT_EQ(Shown(items), CliView(houses, "houses", 0, {"--boxes", "--pick", "97=3"}));
  const auto& placed = items.Picture().Sprites;
  const auto building = std::find_if(placed.rbegin(), placed.rend(), [](const PlacedSprite& s) {
    return s.Source == SpriteSource::File;
  });
  ASSERT_NE(building, placed.rend());
  QTest::mouseClick(items.picView, Qt::LeftButton, {},
                    building->Rect.center() * items.spnMagnify->value());
  EXPECT_EQ(form->scrSprite->Value(), building->Sprite);
  ASSERT_EQ(placed.front().Source, SpriteSource::Base);
  form->scrSprite->SetValue(0);
  QTest::mouseClick(items.picView, Qt::LeftButton, {},
                    (placed.front().Rect.bottomLeft() + QPoint(2, -2)) * items.spnMagnify->value());
  EXPECT_EQ(form->scrSprite->Value(), 0);
  EXPECT_TRUE(items.lblView->text().startsWith("Base sprite"))
      << items.lblView->text().toStdString();
}
