// The Problems window on the real windows offscreen: the findings of a real NewGRF, a click
// showing a finding's sprite in the main window, and the list following a reload and a new file.
#include <gtest/gtest.h>

#include <QTest>
#include <QTreeWidget>

#include "frmProblems.h"
#include "scrollbar.h"
#include "ui_support.h"

using namespace vossel;

TEST(ProblemsWindow, ListsFindingsAndFollowsTheFile) {
  uitest::StartedForm form;
  form.Load("ekranoplan.grf", uitest::DataFile("ekranoplan.grf"));
  form->mnuProblems->trigger();
  ASSERT_TRUE(form->ProblemsWindow);
  frmProblems& problems = *form->ProblemsWindow;
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&problems));

  // The ship set's minimum version above its version, and its eleven groups nothing reaches.
  QTreeWidget* list = problems.tvwProblems;
  ASSERT_EQ(list->topLevelItemCount(), 12);
  EXPECT_EQ(problems.lblSummary->text().toStdString(), "0 errors, 12 warnings, 0 notes");
  EXPECT_EQ(list->topLevelItem(0)->text(0).toStdString(), "V303");
  EXPECT_EQ(list->topLevelItem(0)->text(2).toStdString(), "2");
  QTreeWidgetItem* group = list->topLevelItem(1);
  EXPECT_EQ(group->text(0).toStdString(), "V207");
  EXPECT_EQ(group->text(1).toStdString(), "warning");
  EXPECT_EQ(group->text(2).toStdString(), "100");
  if (const char* shot = std::getenv("VOSSEL_PROBLEMS_SCREENSHOT")) problems.grab().save(shot);

  // A click shows the finding's sprite (100, counted from 1) in the main window.
  list->setCurrentItem(group);
  EXPECT_EQ(form->scrSprite->Value(), 99);

  form->mnuReload->trigger();
  EXPECT_EQ(list->topLevelItemCount(), 12);
  form.Load("ogfx-mars-rv.grf", uitest::DataFile("ogfx-mars-rv.grf"));
  EXPECT_EQ(list->topLevelItemCount(), 0);
  EXPECT_EQ(problems.lblSummary->text().toStdString(), "No problems found.");
}
