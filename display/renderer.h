// The sprite renderer: one stored sprite through the palette into a picture area's image.
#pragma once

#include <cstdint>
#include <vector>

#include <QColor>
#include <QImage>
#include <QPoint>

#include "grf.h"
#include "grffile.h"
#include "palette.h"

namespace vossel {

// How the picture area draws; everything off is the plain drawing.
struct PictureOptions {
  // Index 0 of an 8-bit picture shows the checkerboard that 32-bit pictures lie on.
  bool TransparentIndex0 = false;
  // Sprites stand at origin + offset x magnification, where a crosshair marks the origin: the
  // centre of the free area moved by OriginShift (the view's own movement). Without the origin,
  // OriginShift moves the picture from its usual place (panning).
  bool AlignToOrigin = false;
  QPoint OriginShift;
};

// The crosshair: arms of this many pixels each side of the origin, one pixel wide.
constexpr int32_t kCrosshairArm = 8;
constexpr QRgb kCrosshairColour = 0xFFFF00FF;

// The centre of the free area, halves truncated toward zero, moved by `shift`.
QPoint PictureOrigin(double freeWidth, double areaHeight, QPoint shift);

// Where a sprite's top left pixel lands: (freeWidth - Width + XOffset) / 2 and
// (areaHeight - Height + YOffset) / 2, truncated toward zero. Magnified m times, the sizes and the
// offsets count m times: (freeWidth - m x Width + m x XOffset) / 2.
struct SpritePlacement {
  int32_t X = 0;
  int32_t Y = 0;
};
SpritePlacement PlacePicture(int32_t width, int32_t height, int32_t xOffset, int32_t yOffset,
                             double freeWidth, double areaHeight, int32_t magnification);

// The sprite's Width x Height pixels as an 8-bit indexed image with the palette as its colour
// table, first stored row on top. A null image for Width or Height 0 (or below).
QImage SpriteBitmap(const SpriteRecord& r, const uint8_t* spriteData, int32_t dataSize,
                    const PaletteBuffer& palette);

// A decoded version-2 image as a picture of its own: an image with RGB as RGBA, the mask layer
// not applied; an 8-bit one as an indexed image with the palette as its colour table. A null
// image for Width or Height 0.
QImage ImageBitmap(const SpritePicture& image, const PaletteBuffer& palette);

// Paints sprite `index` of the store into `canvas`, the picture box's persistent image: the whole
// canvas is wiped to `background`, the picture box's own colour, then the sprite is copied unscaled
// and opaque at its placement, clipped by the canvas. `freeWidth` is scrSprite.Left, `areaHeight`
// picSprite.ScaleHeight. Returns false, with the canvas untouched, when the table holds no record
// at `index`.
bool DrawSprite(QImage& canvas, const SpriteStore& store, int16_t index,
                const PaletteBuffer& palette, double freeWidth, double areaHeight,
                QColor background = Qt::white, int32_t magnification = 1,
                const vossel::PictureOptions& options = {});

// Wipes `canvas` to `background` and paints `picture` at the placement its size and offsets give,
// magnified (nearest neighbour, clamped to 1..16) and clipped by the canvas. An 8-bit indexed
// picture is copied opaque through its colour table; a 32-bit one with alpha (ARGB32 or RGBA8888,
// not premultiplied) is laid over the checkerboard. A null picture leaves the canvas wiped (and,
// aligned to the origin, the crosshair drawn).
void PaintPicture(QImage& canvas, const QImage& picture, int32_t xOffset, int32_t yOffset,
                  double freeWidth, double areaHeight, QColor background, int32_t magnification,
                  const vossel::PictureOptions& options = {});

// width x height palette indices, row by row, as an 8-bit indexed image through the palette. A
// null image for an empty size or one above 64 MiB.
QImage IndexedPicture(const uint8_t* indices, int64_t width, int64_t height,
                      const PaletteBuffer& palette);

// Colour 0 of an 8-bit image made transparent, as the game leaves that index out.
void ClearIndex0(QImage& indexed);

// The palette as a colour table: colour i is red 4i+2, green 4i+1, blue 4i of the buffer.
QList<QRgb> PaletteColours(const PaletteBuffer& palette);

// A bitmap that would need more bytes than this is not drawn: no store can hold such a sprite.
constexpr int64_t kMaxBitmapBytes = 16 * 1024 * 1024;

// The sprite's rows at a stride of the next multiple of 4 (`stride` is set), zero-filled: a width
// that is a multiple of 4 takes one block of Size bytes, any other width one block of Width bytes
// a row, leaving the fill bytes zero. Only bytes inside `spriteData` are copied; those of a
// record reaching outside it stay zero. Empty for Width or Height 0 or below and above
// kMaxBitmapBytes.
std::vector<uint8_t> BitmapBuffer(const SpriteRecord& r, const uint8_t* spriteData,
                                  int32_t dataSize, int32_t& stride);

// A sprite that cannot be drawn (Width or Height 0 or below, or a bitmap above kMaxBitmapBytes)
// still wipes the canvas, so no earlier sprite stays beside its facts, and DrawSprite returns
// true. The canvas is expected in a format QPainter draws on (Format_RGB32 and the like).

}  // namespace vossel
