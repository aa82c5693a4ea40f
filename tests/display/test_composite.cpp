// Pictures magnified and placed, and 32-bit pixels over the checkerboard, against a whole picture
// magnified pixel by pixel and Qt's own painting, on random pictures.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <random>

#include <QPainter>

#include "composite.h"
#include "renderer.h"

namespace {

QImage RandomPicture(std::mt19937& rng, int width, int height, QImage::Format format) {
  QImage picture(width, height, format);
  if (format == QImage::Format_Indexed8) {
    QList<QRgb> table;
    for (int i = 0; i < 256; ++i) table.append(qRgb(i, 255 - i, (i * 37) & 255));
    picture.setColorTable(table);
  }
  const int bytes = width * picture.depth() / 8;
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < bytes; ++x) picture.scanLine(y)[x] = static_cast<uchar>(rng());
  return picture;
}

// The checkerboard square colour at a position of the pattern, counted independently.
QRgb CheckAt(int x, int y) {
  const int column = static_cast<int>(std::floor(x / 8.0)),
            row = static_cast<int>(std::floor(y / 8.0));
  return ((column + row) % 2 == 0) ? qRgb(0xCC, 0xCC, 0xCC) : qRgb(0x99, 0x99, 0x99);
}

// The whole picture magnified by the definition: pixel (x, y) is the picture's (x / m, y / m).
QImage Nearest(const QImage& picture, int m) {
  QImage whole(picture.width() * m, picture.height() * m, QImage::Format_ARGB32);
  for (int y = 0; y < whole.height(); ++y)
    for (int x = 0; x < whole.width(); ++x) whole.setPixel(x, y, picture.pixel(x / m, y / m));
  return whole;
}

}  // namespace

TEST(Composite, AlphaBlendsOverCheckersAlignedToTheOrigin) {
  std::mt19937 rng(32);
  QImage image = RandomPicture(rng, 37, 29, QImage::Format_ARGB32);
  image.setPixel(0, 0, qRgba(10, 20, 30, 0));
  image.setPixel(1, 0, qRgba(10, 20, 30, 255));
  for (const QPoint origin : {QPoint(0, 0), QPoint(5, 13), QPoint(-3, -11)}) {
    const QImage got = CompositeOverChecker(image, origin);
    ASSERT_EQ(got.format(), QImage::Format_RGB32);
    // Qt's painter over a board painted square by square, within its rounding.
    QImage board(image.size(), QImage::Format_ARGB32);
    for (int y = 0; y < board.height(); ++y)
      for (int x = 0; x < board.width(); ++x)
        board.setPixel(x, y, CheckAt(origin.x() + x, origin.y() + y));
    QPainter(&board).drawImage(0, 0, image);
    for (int y = 0; y < image.height(); ++y) {
      for (int x = 0; x < image.width(); ++x) {
        const QRgb a = got.pixel(x, y), b = board.pixel(x, y);
        ASSERT_LE(std::abs(qRed(a) - qRed(b)) + std::abs(qGreen(a) - qGreen(b)) +
                      std::abs(qBlue(a) - qBlue(b)),
                  3)
            << x << "," << y;
      }
    }
    EXPECT_EQ(got.pixel(0, 0), CheckAt(origin.x(), origin.y()));
    EXPECT_EQ(got.pixel(1, 0), qRgb(10, 20, 30));
  }
}

TEST(PaintPicture, MagnifiedPlacementScalesSizesAndOffsets) {
  std::mt19937 rng(16);
  for (QImage::Format format : {QImage::Format_Indexed8, QImage::Format_ARGB32}) {
    for (int m : {1, 2, 3, 5, 16}) {
      const QImage picture = RandomPicture(rng, 7, 5, format);
      QImage canvas(120, 90, QImage::Format_RGB32);
      PaintPicture(canvas, picture, -3, 4, 100, 90, Qt::white, m);
      // x = (100 - 7m - 3m) / 2, y = (90 - 5m + 4m) / 2, truncated toward zero.
      const int x0 = (100 - 10 * m) / 2, y0 = (90 - m) / 2;
      QImage whole = Nearest(picture, m);
      if (format == QImage::Format_ARGB32) whole = CompositeOverChecker(whole);
      for (int y = 0; y < canvas.height(); ++y) {
        for (int x = 0; x < canvas.width(); ++x) {
          const bool inside = x >= x0 && x < x0 + 7 * m && y >= y0 && y < y0 + 5 * m;
          ASSERT_EQ(canvas.pixel(x, y), inside ? whole.pixel(x - x0, y - y0) : qRgb(255, 255, 255))
              << m << "x at " << x << "," << y;
        }
      }
    }
  }
}
