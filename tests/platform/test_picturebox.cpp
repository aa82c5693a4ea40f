// The picture box: client area inside the border, the persistent image, BackColor wiping it.
#include <gtest/gtest.h>

#include <QWidget>

#include "controls.h"
#include "picturebox.h"

namespace {

QColor ShownAt(QWidget& window, QPoint p) {
  return window.grab().toImage().pixelColor(p);
}

}  // namespace

TEST(PictureBox, ImageCoversTheClientAreaInsideTheBorder) {
  QWidget window;
  PictureBox framed(&window, true);
  framed.Scale = ScaleMode::Pixels;
  Move(&framed, 0, 0, 600, 450);  // twips of the window: 40 x 30 pixels
  EXPECT_EQ(framed.Image().size(), QSize(38, 28));
  EXPECT_EQ(ScaleWidth(&framed), 38);
  EXPECT_EQ(ScaleHeight(&framed), 28);
  PictureBox plain(&window, false);
  Move(&plain, 0, 0, 600, 450);
  EXPECT_EQ(plain.Image().size(), QSize(40, 30));
  EXPECT_EQ(ScaleWidth(&plain), 600);  // a box in twips
}

TEST(PictureBox, BackColorAssignmentWipesTheImageEvenWithItsOwnColour) {
  QWidget window;
  PictureBox box(&window, true);
  Move(&box, 0, 0, 300, 300);
  EXPECT_EQ(box.BackColor(), 0x00FFFFFFu);
  EXPECT_EQ(box.Image().pixelColor(5, 5), QColor(Qt::white));
  box.Image().setPixelColor(5, 5, Qt::red);
  box.SetBackColor(box.BackColor());
  EXPECT_EQ(box.Image().pixelColor(5, 5), QColor(Qt::white));
  box.SetBackColor(0x00DECCCD);
  EXPECT_EQ(box.Image().pixelColor(5, 5), QColor(205, 204, 222));
}

TEST(PictureBox, PictureStandsAtTheTopLeftUnstretched) {
  QWidget window;
  PictureBox box(&window, false);
  Move(&box, 0, 0, 150, 150);
  QImage picture(4, 3, QImage::Format_RGB32);
  picture.fill(Qt::blue);
  box.SetPicture(picture);
  EXPECT_EQ(box.Image().pixelColor(3, 2), QColor(Qt::blue));
  EXPECT_EQ(box.Image().pixelColor(4, 2), QColor(Qt::white));
  EXPECT_EQ(box.Image().pixelColor(3, 3), QColor(Qt::white));
  box.Image().fill(Qt::green);
  box.SetBackColor(0x00000000);  // the wipe brings the picture back
  EXPECT_EQ(box.Image().pixelColor(0, 0), QColor(Qt::blue));
  EXPECT_EQ(box.Image().pixelColor(9, 9), QColor(Qt::black));
}

TEST(PictureBox, ShownImageSurvivesBeingCoveredAndGrowing) {
  QWidget window;
  window.resize(100, 100);
  PictureBox box(&window, true);
  box.Scale = ScaleMode::Pixels;
  Move(&box, 0, 0, 600, 600);
  window.show();
  box.Image().setPixelColor(3, 4, Qt::red);
  box.Refresh();
  EXPECT_EQ(ShownAt(window, {4, 5}), QColor(Qt::red));  // one pixel of border before it
  EXPECT_EQ(ShownAt(window, {0, 0}), QColor(Qt::black));
  QWidget cover(&window);
  cover.setGeometry(0, 0, 100, 100);
  cover.show();
  cover.hide();
  EXPECT_EQ(ShownAt(window, {4, 5}), QColor(Qt::red));
  Move(&box, 0, 0, 900, 900);  // a grown box keeps its image and gets the background beside it
  EXPECT_EQ(box.Image().pixelColor(3, 4), QColor(Qt::red));
  EXPECT_EQ(box.Image().pixelColor(50, 50), QColor(Qt::white));
  Move(&box, 0, 0, 30, 30);  // an empty client area
  EXPECT_TRUE(box.Image().isNull());
  box.SetBackColor(0);
  box.Refresh();
}
