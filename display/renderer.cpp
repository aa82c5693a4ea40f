#include "renderer.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include <QColor>
#include <QPainter>

#include "composite.h"

namespace vossel {

namespace {

// Rounds the bracket half to even, then halves it truncating toward zero.
int32_t HalfOfRounded(double sum) {
  double rounded = std::nearbyint(sum);
  if (std::isnan(rounded)) rounded = 0;
  // Clamped well outside any canvas, so that the conversions below stay defined.
  rounded = std::clamp(rounded, -4294967296.0, 4294967296.0);
  const int64_t half = static_cast<int64_t>(rounded) / 2;
  return static_cast<int32_t>(std::clamp<int64_t>(half, INT32_MIN, INT32_MAX));
}

}  // namespace

SpritePlacement PlacePicture(int32_t width, int32_t height, int32_t xOffset, int32_t yOffset,
                             double freeWidth, double areaHeight, int32_t magnification) {
  const double m = magnification;
  SpritePlacement p;
  p.X = HalfOfRounded(freeWidth - m * width + m * xOffset);
  p.Y = HalfOfRounded(areaHeight - m * height + m * yOffset);
  return p;
}

QList<QRgb> PaletteColours(const PaletteBuffer& palette) {
  QList<QRgb> colours(256);
  for (int i = 0; i < 256; ++i)
    colours[i] = qRgb(palette[4 * i + 2], palette[4 * i + 1], palette[4 * i]);
  return colours;
}

QPoint PictureOrigin(double freeWidth, double areaHeight, QPoint shift) {
  return QPoint(HalfOfRounded(freeWidth), HalfOfRounded(areaHeight)) + shift;
}

namespace {

SpritePlacement PlaceAtOrigin(QPoint origin, int32_t xOffset, int32_t yOffset, int32_t m) {
  const auto at = [m](int32_t o, int32_t offset) {
    return static_cast<int32_t>(
        std::clamp<int64_t>(int64_t{o} + int64_t{offset} * m, INT32_MIN, INT32_MAX));
  };
  return SpritePlacement{at(origin.x(), xOffset), at(origin.y(), yOffset)};
}

bool CloseColours(QRgb a, QRgb b) {
  const int32_t r = qRed(a) - qRed(b), g = qGreen(a) - qGreen(b), bl = qBlue(a) - qBlue(b);
  return r * r + g * g + bl * bl < vossel::kCrosshairContrast * vossel::kCrosshairContrast;
}

// Paints the pixels of `area` that fall on the canvas in `colour`, or in `other` where the
// sprite's pixel there, as kept in `under` (whose top left is `corner`), is too close to `colour`.
void PaintTwoTone(QImage& canvas, const QImage& under, QPoint corner, const QRect& area,
                  QRgb colour, QRgb other) {
  const QRect inside = area.intersected(canvas.rect());
  for (int y = inside.top(); y <= inside.bottom(); ++y)
    for (int x = inside.left(); x <= inside.right(); ++x)
      canvas.setPixel(x, y,
                      CloseColours(under.pixel(QPoint(x, y) - corner), colour) ? other : colour);
}

void PaintCrosshair(QImage& canvas, QPoint origin) {
  const int32_t arm = vossel::kCrosshairArm;
  const int32_t x = origin.x(), y = origin.y();
  // What lies under the crosshair, read before the outline covers part of it.
  const QPoint corner(x - arm - 1, y - arm - 1);
  const QImage under = canvas.copy(QRect(corner, QSize(2 * arm + 3, 2 * arm + 3)));
  // The outline: 3 pixels wide along each arm from its second pixel out, across its end.
  for (const QRect& side : {QRect(x - arm - 1, y - 1, arm, 3), QRect(x + 2, y - 1, arm, 3),
                            QRect(x - 1, y - arm - 1, 3, arm), QRect(x - 1, y + 2, 3, arm)})
    PaintTwoTone(canvas, under, corner, side, vossel::kCrosshairOutline,
                 vossel::kCrosshairOtherOutline);
  for (const QRect& line : {QRect(x - arm, y, 2 * arm + 1, 1), QRect(x, y - arm, 1, 2 * arm + 1)})
    PaintTwoTone(canvas, under, corner, line, vossel::kCrosshairColour,
                 vossel::kCrosshairOtherColour);
}

// The magnified part as it will be seen: an 8-bit part with index 0 transparent, and any part
// with alpha, over the checkerboard whose squares start at the picture's top left corner.
QImage Shown(const QImage& picture, int32_t m, const QRect& part, bool transparentIndex0) {
  QImage shown = MagnifiedPart(picture, m, part);
  if (transparentIndex0 && shown.format() == QImage::Format_Indexed8 && shown.colorCount() > 0) {
    shown.setColor(0, qRgba(0, 0, 0, 0));
    return CompositeOverChecker(shown, part.topLeft());
  }
  if (picture.hasAlphaChannel()) return CompositeOverChecker(shown, part.topLeft());
  return shown;
}

// Copies the magnified part of `picture` that falls on the canvas to its place.
void PaintPlaced(QImage& canvas, const QImage& picture, SpritePlacement at, int32_t m,
                 bool transparentIndex0) {
  const int64_t left = std::max<int64_t>(at.X, 0);
  const int64_t top = std::max<int64_t>(at.Y, 0);
  const int64_t right =
      std::min<int64_t>(int64_t{at.X} + int64_t{picture.width()} * m, canvas.width());
  const int64_t bottom =
      std::min<int64_t>(int64_t{at.Y} + int64_t{picture.height()} * m, canvas.height());
  if (left >= right || top >= bottom) return;

  const QRect part(static_cast<int>(left - at.X), static_cast<int>(top - at.Y),
                   static_cast<int>(right - left), static_cast<int>(bottom - top));
  QPainter painter(&canvas);
  painter.setCompositionMode(QPainter::CompositionMode_Source);
  painter.drawImage(QPoint(static_cast<int>(left), static_cast<int>(top)),
                    Shown(picture, m, part, transparentIndex0));
}

}  // namespace

void PaintPicture(QImage& canvas, const QImage& picture, int32_t xOffset, int32_t yOffset,
                  double freeWidth, double areaHeight, QColor background, int32_t magnification,
                  const vossel::PictureOptions& options) {
  canvas.fill(background);
  if (canvas.isNull()) return;
  const int32_t m = std::clamp(magnification, kMinMagnification, kMaxMagnification);
  const QPoint origin = vossel::PictureOrigin(freeWidth, areaHeight, options.OriginShift);
  if (!picture.isNull()) {
    SpritePlacement at = options.AlignToOrigin
                             ? PlaceAtOrigin(origin, xOffset, yOffset, m)
                             : PlacePicture(picture.width(), picture.height(), xOffset, yOffset,
                                            freeWidth, areaHeight, m);
    // Without the origin the shift pans the picture itself.
    if (!options.AlignToOrigin) {
      at.X = static_cast<int32_t>(
          std::clamp<int64_t>(int64_t{at.X} + options.OriginShift.x(), INT32_MIN, INT32_MAX));
      at.Y = static_cast<int32_t>(
          std::clamp<int64_t>(int64_t{at.Y} + options.OriginShift.y(), INT32_MIN, INT32_MAX));
    }
    PaintPlaced(canvas, picture, at, m, options.TransparentIndex0);
  }
  if (options.AlignToOrigin) PaintCrosshair(canvas, origin);
}

QImage IndexedPicture(const uint8_t* indices, int64_t width, int64_t height,
                      const PaletteBuffer& palette) {
  if (width <= 0 || height <= 0 || width * height > kMaxPictureBytes) return QImage();
  QImage picture(static_cast<int>(width), static_cast<int>(height), QImage::Format_Indexed8);
  picture.setColorTable(PaletteColours(palette));
  for (int64_t y = 0; y < height; ++y)
    std::memcpy(picture.scanLine(static_cast<int>(y)), indices + y * width,
                static_cast<size_t>(width));
  return picture;
}

QImage ImageBitmap(const SpritePicture& image, const PaletteBuffer& palette) {
  const size_t cells = static_cast<size_t>(std::max(image.Width, 0)) * std::max(image.Height, 0);
  if (image.Rgba.empty()) {
    if (image.Indices.size() != cells) return QImage();
    return IndexedPicture(image.Indices.data(), image.Width, image.Height, palette);
  }
  if (cells == 0 || image.Rgba.size() != 4 * cells) return QImage();
  QImage bitmap(image.Width, image.Height, QImage::Format_RGBA8888);
  if (bitmap.isNull()) return bitmap;
  const size_t row = 4 * static_cast<size_t>(image.Width);
  for (int32_t y = 0; y < image.Height; ++y)
    std::memcpy(bitmap.scanLine(y), image.Rgba.data() + row * static_cast<size_t>(y), row);
  return bitmap;
}

}  // namespace vossel
