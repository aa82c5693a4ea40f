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

// Copies `count` bytes from src[from] to dst[to], leaving out those that lie outside src.
void CopyInside(uint8_t* dst, int64_t to, const uint8_t* src, int32_t srcSize, int64_t from,
                int64_t count) {
  const int64_t first = std::max<int64_t>(from, 0);
  const int64_t last = std::min<int64_t>(from + count, srcSize);
  if (!src || first >= last) return;
  std::memcpy(dst + to + (first - from), src + first, static_cast<size_t>(last - first));
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

std::vector<uint8_t> BitmapBuffer(const SpriteRecord& r, const uint8_t* spriteData,
                                  int32_t dataSize, int32_t& stride) {
  stride = 0;
  if (r.Width <= 0 || r.Height <= 0) return {};
  // 32 bits: widths 32,765 to 32,767 need the stride 32,768.
  const int32_t width = r.Width;
  const int32_t rowStride = width % 4 == 0 ? width : width + 4 - width % 4;
  const int64_t length = int64_t{rowStride} * r.Height;
  if (length > kMaxBitmapBytes) return {};

  std::vector<uint8_t> buffer(static_cast<size_t>(length), 0);
  if (width % 4 == 0) {
    CopyInside(buffer.data(), 0, spriteData, dataSize, r.DataOffset,
               std::clamp<int64_t>(r.Size, 0, length));
  } else {
    for (int32_t y = 0; y < r.Height; ++y)
      CopyInside(buffer.data(), int64_t{rowStride} * y, spriteData, dataSize,
                 int64_t{r.DataOffset} + int64_t{width} * y, width);
  }
  stride = rowStride;
  return buffer;
}

QImage SpriteBitmap(const SpriteRecord& r, const uint8_t* spriteData, int32_t dataSize,
                    const PaletteBuffer& palette) {
  int32_t stride = 0;
  std::vector<uint8_t> buffer = BitmapBuffer(r, spriteData, dataSize, stride);
  if (buffer.empty()) return QImage();
  // A view of the buffer, then a copy of its own, so that the buffer goes with this call.
  QImage view(buffer.data(), r.Width, r.Height, stride, QImage::Format_Indexed8);
  view.setColorTable(PaletteColours(palette));
  return view.copy();
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

void PaintCrosshair(QImage& canvas, QPoint origin) {
  QPainter painter(&canvas);
  const QColor colour = QColor::fromRgba(vossel::kCrosshairColour);
  const int32_t arm = vossel::kCrosshairArm;
  painter.fillRect(QRect(origin.x() - arm, origin.y(), 2 * arm + 1, 1), colour);
  painter.fillRect(QRect(origin.x(), origin.y() - arm, 1, 2 * arm + 1), colour);
}

// The magnified part as it will be seen: an 8-bit part with index 0 transparent, and any part
// with alpha, over the checkerboard whose squares start at the picture's top left corner.
QImage Shown(const QImage& picture, int32_t m, const QRect& part, bool transparentIndex0) {
  QImage shown = MagnifiedPart(picture, m, part);
  if (transparentIndex0 && shown.format() == QImage::Format_Indexed8 && shown.colorCount() > 0) {
    ClearIndex0(shown);
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

void ClearIndex0(QImage& indexed) {
  if (indexed.format() == QImage::Format_Indexed8 && indexed.colorCount() > 0)
    indexed.setColor(0, qRgba(0, 0, 0, 0));
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

bool DrawSprite(QImage& canvas, const SpriteStore& store, int16_t index,
                const PaletteBuffer& palette, double freeWidth, double areaHeight,
                QColor background, int32_t magnification, const vossel::PictureOptions& options) {
  if (index < 0 || static_cast<size_t>(index) >= store.SpriteTable.size()) return false;
  const SpriteRecord& r = store.SpriteTable[static_cast<size_t>(index)];
  const int32_t dataSize =
      static_cast<int32_t>(std::min<size_t>(store.SpriteData.size(), INT32_MAX));
  const QImage bitmap = SpriteBitmap(r, store.SpriteData.data(), dataSize, palette);
  PaintPicture(canvas, bitmap, r.XOffset, r.YOffset, freeWidth, areaHeight, background,
               magnification, options);
  return true;
}

}  // namespace vossel
