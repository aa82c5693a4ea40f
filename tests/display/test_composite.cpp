// Pictures magnified, placed and, with alpha, laid over the checkerboard: random pictures against
// the whole picture magnified pixel by pixel and blended by Qt's own painter.
#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

#include <QPainter>

#include "composite.h"
#include "renderer.h"

using namespace vossel;

TEST(PaintPicture, MagnifiedPlacementAndAlphaOverTheCheckerboard) {
  std::mt19937 rng(16);
  for (QImage::Format format : {QImage::Format_Indexed8, QImage::Format_ARGB32}) {
    for (int m : {1, 2, 3, 5, 16}) {
      QImage picture(7, 5, format);
      for (int i = 0; i < 256 && format == QImage::Format_Indexed8; ++i)
        picture.setColor(i, qRgb(i, 255 - i, (i * 37) & 255));
      for (int y = 0; y < 5; ++y)
        for (int x = 0; x < picture.bytesPerLine(); ++x) picture.scanLine(y)[x] = uchar(rng());
      QImage canvas(120, 90, QImage::Format_RGB32);
      PaintPicture(canvas, picture, -3, 4, 100, 90, Qt::white, m);

      // x = (100 - 7m - 3m) / 2, y = (90 - 5m + 4m) / 2, truncated toward zero. Checks of 8 x 8
      // from the picture's corner, light where column plus row is even.
      const int x0 = (100 - 10 * m) / 2, y0 = (90 - m) / 2;
      for (int y = 0; y < canvas.height(); ++y) {
        for (int x = 0; x < canvas.width(); ++x) {
          const int c = x - x0, r = y - y0;
          QRgb want = qRgb(255, 255, 255);
          if (c >= 0 && c < 7 * m && r >= 0 && r < 5 * m) {
            const QRgb check =
                (c / 8 + r / 8) % 2 == 0 ? qRgb(0xCC, 0xCC, 0xCC) : qRgb(0x99, 0x99, 0x99);
            QImage one(1, 1, QImage::Format_ARGB32);
            one.setPixel(0, 0, check);
            QPainter(&one).drawImage(0, 0, picture.copy(c / m, r / m, 1, 1));
            want = one.pixel(0, 0);
          }
          const QRgb got = canvas.pixel(x, y);
          ASSERT_LE(std::abs(qRed(got) - qRed(want)) + std::abs(qGreen(got) - qGreen(want)) +
                        std::abs(qBlue(got) - qBlue(want)),
                    format == QImage::Format_Indexed8 ? 0 : 3)
              << m << "x at " << x << "," << y;
        }
      }
    }
  }
}
