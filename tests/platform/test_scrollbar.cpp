// The scroll bar: a signed 16-bit value inside its range, change events on real changes only,
// scroll events during a thumb drag.
#include <gtest/gtest.h>

#include <vector>

#include <QStyle>
#include <QStyleOptionSlider>
#include <QTest>
#include <QWidget>

#include "scrollbar.h"

namespace {

// Records every event with the value it saw.
struct Recorder {
  std::vector<int> Changes, Scrolls;
  explicit Recorder(ScrollBar& bar) {
    bar.Change = [this, &bar] { Changes.push_back(bar.Value()); };
    bar.Scroll = [this, &bar] { Scrolls.push_back(bar.Value()); };
  }
};

QRect PartRect(ScrollBar& bar, QStyle::SubControl part) {
  QStyleOptionSlider option;
  option.initFrom(&bar);
  option.orientation = bar.orientation();
  option.minimum = bar.minimum();
  option.maximum = bar.maximum();
  option.sliderPosition = bar.sliderPosition();
  option.sliderValue = bar.value();
  option.singleStep = bar.singleStep();
  option.pageStep = bar.pageStep();
  option.upsideDown = bar.invertedAppearance();
  if (bar.orientation() == Qt::Horizontal) option.state |= QStyle::State_Horizontal;
  return bar.style()->subControlRect(QStyle::CC_ScrollBar, &option, part, &bar);
}

}  // namespace

TEST(ScrollBar, StartsAtZeroWithStepsOfOne) {
  ScrollBar bar(Qt::Vertical, nullptr);
  EXPECT_EQ(bar.Min(), 0);
  EXPECT_EQ(bar.Max(), 0);
  EXPECT_EQ(bar.Value(), 0);
  EXPECT_EQ(bar.singleStep(), 1);
  EXPECT_EQ(bar.pageStep(), 1);
}

TEST(ScrollBar, ChangeRunsOnlyForARealChangeAndValueStaysInRange) {
  ScrollBar bar(Qt::Vertical, nullptr);
  Recorder r(bar);
  bar.SetMax(10);
  bar.SetValue(5);
  bar.SetValue(5);
  bar.SetValue(20);
  bar.SetValue(-3);
  EXPECT_EQ(r.Changes, (std::vector<int>{5, 10, 0}));
  EXPECT_TRUE(r.Scrolls.empty());
}

TEST(ScrollBar, LowerMaximumPullsTheValueDownWithoutAnEvent) {
  ScrollBar bar(Qt::Vertical, nullptr);
  bar.SetMax(32766);
  bar.SetValue(32766);
  EXPECT_EQ(bar.Value(), 32766);
  Recorder r(bar);
  bar.SetMax(3);
  EXPECT_EQ(bar.Value(), 3);
  bar.SetMax(-1);  // below the minimum: taken as the minimum
  EXPECT_EQ(bar.Max(), 0);
  EXPECT_EQ(bar.Value(), 0);
  bar.SetMax(9);  // a higher maximum leaves the value where it is
  EXPECT_EQ(bar.Value(), 0);
  EXPECT_TRUE(r.Changes.empty());
  bar.SetMin(4);
  EXPECT_EQ(bar.Value(), 4);
  EXPECT_TRUE(r.Changes.empty());
}

TEST(ScrollBar, ThumbDragScrollsThroughEachPositionAndChangesOnceAtTheEnd) {
  ScrollBar bar(Qt::Vertical, nullptr);
  bar.SetMax(20);
  bar.SetValue(2);
  Recorder r(bar);
  bar.setSliderDown(true);
  for (int position : {3, 4, 5}) bar.setSliderPosition(position);
  EXPECT_EQ(r.Scrolls, (std::vector<int>{3, 4, 5}));
  EXPECT_TRUE(r.Changes.empty());
  bar.setSliderDown(false);
  EXPECT_EQ(r.Changes, (std::vector<int>{5}));
  // A drag that comes back to where it started changes nothing.
  bar.setSliderDown(true);
  bar.setSliderPosition(7);
  bar.setSliderPosition(5);
  bar.setSliderDown(false);
  EXPECT_EQ(r.Scrolls, (std::vector<int>{3, 4, 5, 7, 5}));
  EXPECT_EQ(r.Changes, (std::vector<int>{5}));
}

TEST(ScrollBar, MouseDragOfTheThumb) {
  QWidget window;
  ScrollBar bar(Qt::Vertical, &window);
  bar.setGeometry(0, 0, 17, 300);
  window.resize(17, 300);
  window.show();
  bar.SetMax(10);
  Recorder r(bar);
  const QPoint grab = PartRect(bar, QStyle::SC_ScrollBarSlider).center();
  QTest::mousePress(&bar, Qt::LeftButton, Qt::NoModifier, grab);
  for (int dy = 20; dy <= 140; dy += 20) QTest::mouseMove(&bar, grab + QPoint(0, dy));
  QTest::mouseRelease(&bar, Qt::LeftButton, Qt::NoModifier, grab + QPoint(0, 140));
  ASSERT_GE(r.Scrolls.size(), 3u);
  for (size_t i = 1; i < r.Scrolls.size(); ++i) EXPECT_GT(r.Scrolls[i], r.Scrolls[i - 1]);
  ASSERT_EQ(r.Changes.size(), 1u);
  EXPECT_EQ(r.Changes[0], r.Scrolls.back());
  EXPECT_EQ(bar.Value(), r.Scrolls.back());
}

TEST(ScrollBar, KeysAndArrowsStepByOneTowardsRightAndDown) {
  for (Qt::Orientation orientation : {Qt::Horizontal, Qt::Vertical}) {
    QWidget window;
    ScrollBar bar(orientation, &window);
    bar.setGeometry(0, 0, orientation == Qt::Horizontal ? 200 : 17,
                    orientation == Qt::Horizontal ? 17 : 200);
    window.show();
    bar.SetMax(5);
    Recorder r(bar);
    QTest::keyClick(&bar, Qt::Key_Right);
    QTest::mouseClick(&bar, Qt::LeftButton, Qt::NoModifier,
                      PartRect(bar, QStyle::SC_ScrollBarAddLine).center());
    QTest::keyClick(&bar, Qt::Key_Down);
    QTest::keyClick(&bar, Qt::Key_PageDown);
    QTest::keyClick(&bar, Qt::Key_Up);
    QTest::keyClick(&bar, Qt::Key_End);
    QTest::keyClick(&bar, Qt::Key_End);
    QTest::keyClick(&bar, Qt::Key_Left);
    QTest::keyClick(&bar, Qt::Key_PageUp);
    QTest::keyClick(&bar, Qt::Key_Home);
    EXPECT_EQ(r.Changes, (std::vector<int>{1, 2, 3, 4, 3, 5, 4, 3, 0}));
    EXPECT_TRUE(r.Scrolls.empty());
  }
}
