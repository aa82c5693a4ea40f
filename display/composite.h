// Pictures on their way to the screen: a nearest-neighbour magnification of the part that will be
// seen, and 32-bit pixels with alpha laid over a checkerboard, as image viewers show them.
#pragma once

#include <cstdint>

#include <QImage>
#include <QPoint>
#include <QRect>

namespace vossel {

// Whole-number magnifications from actual size to sixteen times.
constexpr int32_t kMinMagnification = 1;
constexpr int32_t kMaxMagnification = 16;

// The checkerboard behind 32-bit pixels: squares of 8 screen pixels, light where the square's
// column plus row is even.
constexpr int32_t kCheckerSquare = 8;
constexpr QRgb kCheckerLight = 0xFFCCCCCC;
constexpr QRgb kCheckerDark = 0xFF999999;

// The pixels of `part` of `picture` magnified `magnification` times, each pixel of the picture
// becoming a square of magnification x magnification. `part` is given in magnified pixels and must
// lie inside the magnified picture. An 8-bit indexed picture gives an indexed part with the same
// colour table; a 32-bit one (ARGB32, RGB32, RGBA8888) a part of its own format. Any other format
// gives a null image.
QImage MagnifiedPart(const QImage& picture, int32_t magnification, const QRect& part);

// `image` (with its alpha not premultiplied) laid over the checkerboard as an opaque RGB32 image of
// the same size. `origin` is where the image's top left pixel stands in the checkerboard's pattern.
// Each channel is (pixel x alpha + check x (255 - alpha) + 127) / 255.
QImage CompositeOverChecker(const QImage& image, QPoint origin = QPoint(0, 0));

}  // namespace vossel
