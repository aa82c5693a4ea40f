// A version-1 record drawn straight from a sprite store, as the window once drew it: for tests and
// benchmarks that compare the product's drawing with it. The product draws through PictureOf.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

#include <QColor>
#include <QImage>

#include "grf.h"
#include "palette.h"
#include "renderer.h"

namespace vossel {

// A bitmap that would need more bytes than this is not drawn: no store can hold such a sprite.
constexpr int64_t kMaxBitmapBytes = 16 * 1024 * 1024;

// Copies `count` bytes from src[from] to dst[to], leaving out those that lie outside src.
inline void CopyInside(uint8_t* dst, int64_t to, const uint8_t* src, int32_t srcSize, int64_t from,
                       int64_t count) {
  const int64_t first = std::max<int64_t>(from, 0);
  const int64_t last = std::min<int64_t>(from + count, srcSize);
  if (!src || first >= last) return;
  std::memcpy(dst + to + (first - from), src + first, static_cast<size_t>(last - first));
}

// The sprite's rows at a stride of the next multiple of 4 (`stride` is set), zero-filled: a width
// that is a multiple of 4 takes one block of Size bytes, any other width one block of Width bytes
// a row, leaving the fill bytes zero. Only bytes inside `spriteData` are copied; those of a
// record reaching outside it stay zero. Empty for Width or Height 0 or below and above
// kMaxBitmapBytes.
inline std::vector<uint8_t> BitmapBuffer(const SpriteRecord& r, const uint8_t* spriteData,
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

// The sprite's Width x Height pixels as an 8-bit indexed image with the palette as its colour
// table, first stored row on top. A null image for Width or Height 0 (or below).
inline QImage SpriteBitmap(const SpriteRecord& r, const uint8_t* spriteData, int32_t dataSize,
                           const PaletteBuffer& palette) {
  int32_t stride = 0;
  std::vector<uint8_t> buffer = BitmapBuffer(r, spriteData, dataSize, stride);
  if (buffer.empty()) return QImage();
  // A view of the buffer, then a copy of its own, so that the buffer goes with this call.
  QImage view(buffer.data(), r.Width, r.Height, stride, QImage::Format_Indexed8);
  view.setColorTable(PaletteColours(palette));
  return view.copy();
}

// Paints sprite `index` of the store into `canvas`, the picture box's persistent image: the whole
// canvas is wiped to `background`, the picture box's own colour, then the sprite is copied unscaled
// and opaque at its placement, clipped by the canvas. `freeWidth` is scrSprite.Left, `areaHeight`
// picSprite.ScaleHeight. Returns false, with the canvas untouched, when the table holds no record
// at `index`.
// A sprite that cannot be drawn (Width or Height 0 or below, or a bitmap above kMaxBitmapBytes)
// still wipes the canvas, so no earlier sprite stays beside its facts, and DrawSprite returns
// true. The canvas is expected in a format QPainter draws on (Format_RGB32 and the like).

inline bool DrawSprite(QImage& canvas, const SpriteStore& store, int16_t index,
                       const PaletteBuffer& palette, double freeWidth, double areaHeight,
                       QColor background = Qt::white, int32_t magnification = 1,
                       const PictureOptions& options = {}) {
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
