// The renderer against pictures worked out pixel by pixel, for random pictures, magnifications and
// picture areas, and the crosshair against every colour.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <random>
#include <vector>

#include <QPainter>

#include "composite.h"
#include "renderer.h"

using namespace vossel;

namespace {

enum class CrosshairPart { None, Line, Outline };

// Where (dx, dy) from the origin falls: on an arm, on the outline one pixel around the arms from
// their second pixel out and across their ends, or on neither.
CrosshairPart PartOfCrosshair(int dx, int dy) {
  const int arm = vossel::kCrosshairArm;
  const int along = std::max(std::abs(dx), std::abs(dy)),
            across = std::min(std::abs(dx), std::abs(dy));
  if (across == 0 && along <= arm) return CrosshairPart::Line;
  if (across <= 1 && along >= 2 && along <= arm + 1) return CrosshairPart::Outline;
  return CrosshairPart::None;
}

double Distance(QRgb a, QRgb b) {
  return std::hypot(qRed(a) - qRed(b), qGreen(a) - qGreen(b), qBlue(a) - qBlue(b));
}

}  // namespace

// Random 8-bit and 32-bit pictures, magnified and placed, against the picture worked out pixel by
// pixel: 32-bit ones blended over the checkerboard by Qt's own painter, 8-bit ones with index 0
// on the checks when it is transparent, and the crosshair at the origin.
TEST(PaintPicture, PlacementMagnificationAlphaIndexZeroAndTheOrigin) {
  std::mt19937 rng(9);
  const auto R = [&rng](int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(rng); };
  for (int round = 0; round < 90; ++round) {
    const bool indexed = round % 3 != 0;
    QImage picture(R(1, 12), R(1, 12), indexed ? QImage::Format_Indexed8 : QImage::Format_ARGB32);
    for (int i = 0; i < 256 && indexed; ++i) picture.setColor(i, qRgb(i, R(0, 255), 7));
    for (int y = 0; y < picture.height(); ++y)
      for (int x = 0; x < picture.bytesPerLine(); ++x)
        picture.scanLine(y)[x] = uchar(R(0, 2) == 0 ? 0 : R(0, 255));
    vossel::PictureOptions options;
    options.TransparentIndex0 = R(0, 1) == 1;
    options.AlignToOrigin = indexed && R(0, 1) == 1;
    options.OriginShift = QPoint(R(-20, 20), R(-20, 20));
    const int m = std::array{1, 2, 3, 4, 5, 16}[R(0, 5)], xOffset = R(-15, 5), yOffset = R(-15, 5),
              free = R(20, 100);
    QImage canvas(120, 90, QImage::Format_RGB32);
    PaintPicture(canvas, picture, xOffset, yOffset, free, 90, Qt::white, m, options);

    // Aligned: origin + offset x m, the origin the free area's centre moved by the shift; else
    // half of (area - size + offset), truncated toward zero, moved by the shift (panning).
    const int ox = free / 2 + options.OriginShift.x(), oy = 45 + options.OriginShift.y();
    const QPoint shift = options.OriginShift;
    const int x0 = options.AlignToOrigin
                       ? ox + xOffset * m
                       : (free - picture.width() * m + xOffset * m) / 2 + shift.x();
    const int y0 = options.AlignToOrigin
                       ? oy + yOffset * m
                       : (90 - picture.height() * m + yOffset * m) / 2 + shift.y();
    for (int y = 0; y < canvas.height(); ++y) {
      for (int x = 0; x < canvas.width(); ++x) {
        const int c = x - x0, r = y - y0;
        QRgb want = qRgb(255, 255, 255);
        if (c >= 0 && c < picture.width() * m && r >= 0 && r < picture.height() * m) {
          // Checks of 8 x 8 from the picture's corner, light where column plus row is even.
          const QRgb check = (c / 8 + r / 8) % 2 == 0 ? kCheckerLight : kCheckerDark;
          const int i = indexed ? picture.pixelIndex(c / m, r / m) : 0;
          want = i != 0 || (indexed && !options.TransparentIndex0) ? picture.color(i) : check;
          if (!indexed) {
            QImage one(1, 1, QImage::Format_ARGB32);
            one.setPixel(0, 0, check);
            QPainter(&one).drawImage(0, 0, picture.copy(c / m, r / m, 1, 1));
            want = one.pixel(0, 0);
          }
        }
        const CrosshairPart part =
            options.AlignToOrigin ? PartOfCrosshair(x - ox, y - oy) : CrosshairPart::None;
        if (part == CrosshairPart::Line) want = vossel::kCrosshairColour;
        if (part == CrosshairPart::Outline) {
          // Its colour follows the picture under it; the picture's own test is below.
          ASSERT_TRUE(canvas.pixel(x, y) == vossel::kCrosshairOutline ||
                      canvas.pixel(x, y) == vossel::kCrosshairOtherOutline);
          ASSERT_GE(Distance(canvas.pixel(x, y), want), vossel::kCrosshairContrast);
          continue;
        }
        const QRgb got = canvas.pixel(x, y);
        ASSERT_LE(std::abs(qRed(got) - qRed(want)) + std::abs(qGreen(got) - qGreen(want)) +
                      std::abs(qBlue(got) - qBlue(want)),
                  indexed ? 0 : 3)
            << "round " << round << ", " << m << "x at " << x << "," << y;
      }
    }
  }
}

TEST(PaintPicture, TheCrosshairStandsOutOnAnyColour) {
  // Sprites of one colour each, over the origin at every magnification: the corners and the
  // middle of the colour cube, the crosshair's own colours and random ones.
  std::vector<QRgb> colours;
  for (int c = 0; c < 8; ++c)
    colours.push_back(qRgb(c & 1 ? 255 : 0, c & 2 ? 255 : 0, c & 4 ? 255 : 0));
  for (int v : {64, 128, 192}) colours.push_back(qRgb(v, v, v));
  colours.insert(colours.end(),
                 {vossel::kCrosshairColour, vossel::kCrosshairOtherColour, qRgb(200, 40, 210),
                  qRgb(128, 0, 128), qRgb(30, 20, 60), kCheckerLight, kCheckerDark});
  std::mt19937 rng(11);
  for (int i = 0; i < 200; ++i) colours.push_back(static_cast<QRgb>(rng()) | 0xFF000000u);

  const int arm = vossel::kCrosshairArm;
  for (size_t i = 0; i < colours.size(); ++i) {
    const QRgb colour = colours[i];
    const int m = static_cast<int>(i % 3) + 1;
    QImage picture(2 * arm + 6, 2 * arm + 6, QImage::Format_ARGB32);
    picture.fill(colour);
    vossel::PictureOptions options;
    options.AlignToOrigin = true;
    QImage canvas(100, 80, QImage::Format_RGB32);
    const int half = (arm + 3) * m;
    PaintPicture(canvas, picture, -(arm + 3), -(arm + 3), 100, 80, Qt::white, m, options);
    const QPoint origin(50, 40);
    for (int dy = -half; dy < half; ++dy) {
      for (int dx = -half; dx < half; ++dx) {
        const QRgb shown = canvas.pixel(origin + QPoint(dx, dy));
        if (PartOfCrosshair(dx, dy) == CrosshairPart::None)
          ASSERT_EQ(shown, colour) << std::hex << colour << " at " << dx << "," << dy;
        else
          ASSERT_GE(Distance(shown, colour), vossel::kCrosshairContrast)
              << std::hex << colour << " at " << std::dec << dx << "," << dy;
      }
    }
  }
}
