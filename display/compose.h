// Compositions drawn as the game would place them: a vehicle's views side by side (or on one
// origin), a tile from its layout through the projection, in one look. The picture comes with
// the rectangle of every sprite placed, so that a window can tell which sprite a click hit.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <QImage>
#include <QPoint>
#include <QRect>

#include "grffile.h"
#include "item_compose.h"
#include "look.h"

namespace vossel {

// The base file of an installed base set, opened once for every composition that names base
// sprites. Open is false when none could be read.
struct BaseSprites {
  GrfFile File;
  bool Open = false;
  std::string Path;
};
// Opens `path`, or without one the base file of the first installed base set that loads. It reads
// the installed sets and a whole base file, so a window runs it off its thread, once.
BaseSprites OpenBaseSprites(const std::string& path = {});

struct ComposeOptions {
  bool Boxes = false;         // bounding boxes as wireframes
  bool Origins = false;       // each sprite's origin marked
  bool SharedOrigin = false;  // a vehicle's views all on one origin
};

// One sprite as placed in the picture.
struct PlacedSprite {
  SpriteSource Source = SpriteSource::File;
  int32_t Sprite = 0;    // from 0, in the file or the base file
  int32_t Part = -1;     // the layout part, or the view
  QRect Rect;            // its pixels in the picture
  QPoint Origin;         // where its offsets count from
  bool Outline = false;  // it could not be had: drawn as a marked outline
  std::string Problem;   // why, for an outline
};

struct ComposedPicture {
  QImage Image;  // opaque RGB32
  std::vector<PlacedSprite> Sprites;
  QPoint Origin;  // the tile's north corner (layouts) or the first view's origin
};

// Pixels per normal-zoom pixel of a zoom level, times 8: 32 at in4, 8 at normal, 1 at out8.
int32_t ZoomEighths(int32_t zoom);

// World point (x, y, z) from a tile's north corner as a pixel offset at the zoom of `eighths`:
// (2 (y - x), x + y - z) scaled, halves toward minus infinity.
QPoint Project(int32_t x, int32_t y, int32_t z, int32_t eighths);

// The composition drawn in the look (its zoom level and depth choose each sprite's alternative;
// a sprite without one at that zoom is scaled to it). Layout parts take their recolouring from
// their sprite word: none draws without company colours, a remap through the company colour (0)
// or the base set's recolour sprite, transparency as that remap at half opacity. Index 0 never
// draws. Base sprites come from `base` (null or not open: each is an outline).
ComposedPicture DrawComposition(const GrfFile& file, const GrfItems& items, const Composition& c,
                                const Look& look, const BaseSprites* base,
                                const ComposeOptions& options);

}  // namespace vossel
