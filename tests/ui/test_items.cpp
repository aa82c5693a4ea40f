// The Items window on the real windows offscreen, with a real NewGRF: its tree and filter, an
// item's properties and graphics, a thumbnail driving the main window, the Details window naming
// a sprite's items, and a reload keeping the item on view.
#include <gtest/gtest.h>

#include <QLineEdit>
#include <QTest>
#include <QToolButton>
#include <QTreeWidget>

#include "frmItems.h"
#include "scrollbar.h"
#include "ui_support.h"

using namespace vossel;

namespace {

int VisibleRows(QTreeWidget* tree) {
  int n = 0;
  for (int f = 0; f < tree->topLevelItemCount(); ++f) n += tree->topLevelItem(f)->childCount();
  return n;
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
}
