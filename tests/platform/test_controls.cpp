// Moves in twips and pixels, the resize event inside a move, captions, colours and fonts.
#include <gtest/gtest.h>

#include <QGroupBox>
#include <QLabel>
#include <QWidget>

#include "controls.h"
#include "line.h"
#include "picturebox.h"

TEST(Move, TwipsGoToTheNearestPixelAndReadBack) {
  QWidget container;
  container.resize(400, 300);
  QWidget child(&container);
  ASSERT_TRUE(Move(&child, 120, 360, 495, 255));
  EXPECT_EQ(child.geometry(), QRect(8, 24, 33, 17));
  EXPECT_EQ(Left(&child), 120);
  EXPECT_EQ(Top(&child), 360);
  EXPECT_EQ(Width(&child), 495);
  EXPECT_EQ(Height(&child), 255);
  // 22 twips are 1.47 pixels, 23 are 1.53; a negative left is allowed.
  ASSERT_TRUE(Move(&child, -15, 22, 23, 0));
  EXPECT_EQ(child.geometry().topLeft(), QPoint(-1, 1));
  EXPECT_EQ(child.width(), 2);
  EXPECT_EQ(Height(&child), 0);
  EXPECT_EQ(ScaleWidth(&container), 6000);
  EXPECT_EQ(ScaleHeight(&container), 4500);
}

TEST(Move, NegativeWidthOrHeightFailsAndChangesNothing) {
  QWidget container;
  PictureBox box(&container, false);
  int resizes = 0;
  ASSERT_TRUE(Move(&box, 150, 150, 300, 300));
  box.Resize = [&resizes] { ++resizes; };
  EXPECT_FALSE(Move(&box, 0, 0, -15, 300));
  EXPECT_FALSE(Move(&box, 0, 0, 300, -1));
  EXPECT_EQ(box.geometry(), QRect(10, 10, 20, 20));
  EXPECT_EQ(resizes, 0);
}

TEST(Move, ResizeEventRunsInsideTheMoveOnlyWhenTheSizeChanges) {
  QWidget container;
  container.resize(300, 300);
  PictureBox box(&container, false);
  box.setHidden(true);  // hidden or not, the event runs inside the move
  std::vector<QSize> seen;
  box.Resize = [&] { seen.push_back(box.size()); };
  ASSERT_TRUE(Move(&box, 0, 0, 600, 300));
  ASSERT_EQ(seen.size(), 1u);
  EXPECT_EQ(seen[0], QSize(40, 20));  // already the new size when the event runs
  Move(&box, 300, 300, 600, 300);     // a new place alone
  EXPECT_EQ(seen.size(), 1u);
  Move(&box, 300, 300, 600, 315);
  EXPECT_EQ(seen.size(), 2u);
  container.show();
  box.setHidden(false);  // showing is no size change
  EXPECT_EQ(seen.size(), 2u);
  box.resize(50, 50);  // a size that the window system gives raises it too
  EXPECT_EQ(seen.size(), 3u);
}

TEST(Move, PixelBoxMeasuresItsChildrenInPixelsInsideItsBorder) {
  QWidget container;
  PictureBox box(&container, true);
  box.Scale = ScaleMode::Pixels;
  ASSERT_TRUE(Move(&box, 3960, 1080, 3615, 2775));
  EXPECT_EQ(box.size(), QSize(241, 185));
  EXPECT_EQ(ScaleWidth(&box), 239);
  EXPECT_EQ(ScaleHeight(&box), 183);
  QWidget child(&box);
  ASSERT_TRUE(Move(&child, ScaleWidth(&box) - 17, 0, 17, ScaleHeight(&box)));
  EXPECT_EQ(child.geometry(), QRect(223, 1, 17, 183));  // the client area starts inside the border
  EXPECT_EQ(Left(&child), 222);
  EXPECT_EQ(Top(&child), 0);
  EXPECT_EQ(Width(&child), 17);
  // A box smaller than its border has an empty client area.
  Move(&box, 0, 0, 15, 0);
  EXPECT_EQ(ScaleWidth(&box), 0);
  EXPECT_EQ(ScaleHeight(&box), 0);
}

TEST(Move, FrameChildrenMeasureFromTheFramesOuterCorner) {
  QWidget window;
  QGroupBox frame(&window);
  SetCaption(&frame, "Sprite:");
  Move(&frame, 120, 120, 3615, 1095);
  QWidget label(&frame);
  Move(&label, 120, 360, 495, 255);
  EXPECT_EQ(label.geometry(), QRect(8, 24, 33, 17));
  EXPECT_EQ(Top(&label), 360);
  EXPECT_EQ(ScaleHeight(&frame), 1095);
}

TEST(Caption, LabelsFramesAndWindowsKeepTheTextAsGiven) {
  QWidget window;
  QLabel label(&window);
  SetCaption(&label, "a.grf\r\n- <b>Filesize</b> & more");
  EXPECT_EQ(Caption(&label), "a.grf\r\n- <b>Filesize</b> & more");
  EXPECT_EQ(label.text(), "a.grf\n- <b>Filesize</b> & more");
  EXPECT_EQ(label.textFormat(), Qt::PlainText);
  QGroupBox frame(&window);
  SetCaption(&frame, "Sprite:");
  EXPECT_EQ(Caption(&frame), "Sprite:");
  EXPECT_EQ(frame.title(), "Sprite:");
  SetCaption(&window, "Viewing sprite 1 (2 x 2)");
  EXPECT_EQ(window.windowTitle(), "Viewing sprite 1 (2 x 2)");
  EXPECT_EQ(Caption(&window), "Viewing sprite 1 (2 x 2)");
}

TEST(Caption, AutoSizedLabelTakesTheSizeOfItsText) {
  QWidget window;
  QLabel label(&window);
  SetAutoSize(&label, true);
  SetCaption(&label, "No file loaded");
  const QSize one = label.size();
  SetCaption(&label, "No file loaded\r\nsecond line, which is longer than the first");
  EXPECT_GT(label.width(), one.width());
  EXPECT_GT(label.height(), one.height());
  QLabel fixed(&window);
  fixed.resize(20, 10);
  SetCaption(&fixed, "a long text that does not fit");
  EXPECT_EQ(fixed.size(), QSize(20, 10));
}

TEST(Colours, WindowsColoursHoldBlueInTheHighByte) {
  const QColor c = ColourOfBgr(0x00DECCCD);
  EXPECT_EQ(c.red(), 205);
  EXPECT_EQ(c.green(), 204);
  EXPECT_EQ(c.blue(), 222);
  EXPECT_EQ(BgrOfColour(c), 0x00DECCCDu);
  EXPECT_EQ(BgrOfColour(ColourOfBgr(0xFFFFFFFF)), 0x00FFFFFFu);
}

TEST(Fonts, WindowsFontKeepsSizeAndWeight) {
  const QFont f = WindowsFont("Tahoma", 8.25, true);
  EXPECT_DOUBLE_EQ(f.pointSizeF(), 8.25);
  EXPECT_TRUE(f.bold());
  EXPECT_EQ(f.families().front(), "Tahoma");
  EXPECT_FALSE(WindowsFont("MS Sans Serif", 8.25).bold());
}

TEST(Line, CoversTheBoxBetweenItsEndsAndFollowsX1) {
  QWidget window;
  window.resize(609, 385);
  LineControl line(&window);
  line.SetEnds(7695, 960, -15, 960);
  EXPECT_EQ(line.geometry(), QRect(-1, 64, 515, 1));
  line.SetX1(9135);
  EXPECT_EQ(line.X1(), 9135);
  EXPECT_EQ(line.Y1(), 960);
  EXPECT_EQ(line.X2(), -15);
  EXPECT_EQ(line.geometry(), QRect(-1, 64, 611, 1));
  line.SetBorderColor(0x00808080);
  const QImage shot = window.grab().toImage();
  EXPECT_EQ(shot.pixelColor(300, 64), QColor(128, 128, 128));
  EXPECT_TRUE(line.testAttribute(Qt::WA_TransparentForMouseEvents));
}
