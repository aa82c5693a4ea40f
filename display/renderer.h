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

// The crosshair: arms of this many pixels each side of the origin, one pixel wide, in
// kCrosshairColour, with an outline one pixel wide in kCrosshairOutline along them and across
// their ends (the four pixels diagonal to the origin are left to the sprite). Where the colour
// under a pixel lies within kCrosshairContrast of the pixel's colour (distance in RGB), the
// pixel takes the other colour of its pair instead, so that the crosshair stands out on any
// sprite.
constexpr int32_t kCrosshairArm = 8;
constexpr QRgb kCrosshairColour = 0xFFFF00FF;
constexpr QRgb kCrosshairOtherColour = 0xFF00FF00;
constexpr QRgb kCrosshairOutline = 0xFF000000;
constexpr QRgb kCrosshairOtherOutline = 0xFFFFFFFF;
constexpr int32_t kCrosshairContrast = 160;

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

// A decoded version-2 image as a picture of its own: an image with RGB as RGBA, the mask layer
// not applied; an 8-bit one as an indexed image with the palette as its colour table. A null
// image for Width or Height 0.
QImage ImageBitmap(const SpritePicture& image, const PaletteBuffer& palette);

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

// The palette as a colour table: colour i is red 4i+2, green 4i+1, blue 4i of the buffer.
QList<QRgb> PaletteColours(const PaletteBuffer& palette);

}  // namespace vossel
