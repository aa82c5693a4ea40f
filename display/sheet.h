// A grid of sprite cells, as the Sprite Sheet window and `vossel-cli sheet` draw it: which sprites
// it holds, where each cell stands, how a picture is scaled into its cell and how a cell is
// painted. Both share this piece so that their pixels agree.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include <QImage>
#include <QPoint>
#include <QRect>

#include "grffile.h"
#include "look.h"
#include "palette.h"
#include "roles.h"

class QPainter;

namespace vossel {

constexpr int32_t kMinSheetCell = 16;
constexpr int32_t kMaxSheetCell = 256;
constexpr int32_t kDefaultSheetCell = 64;

// What the grid needs of a sprite, worked out once: the alternative the choices show, its size
// (0 x 0 for anything but a picture) and a pseudo-sprite's action byte, or whether it is the
// sprite count that opens the file.
struct SheetEntry {
  int32_t Alternative = -1;
  int32_t Width = 0;
  int32_t Height = 0;
  SpriteKind Kind = SpriteKind::Picture;
  int16_t Action = -1;
  bool Count = false;
};
// A pseudo-sprite's action is its first byte, as the file's reading holds it.
std::vector<SheetEntry> SheetEntries(const GrfFile& file, const FileReading& reading, int32_t zoom,
                                     int32_t depth);

enum class SheetKinds : uint8_t { All, Pictures, PseudoSprites };

// The roles a sheet is filtered by: the window's captions and the CLI's words for them.
struct SheetRoleName {
  SheetRole Role;
  const char* Caption;
  const char* Word;
};
inline constexpr SheetRoleName kSheetRoleNames[] = {
    {SheetRole::Unknown, "Any role", "any"},
    {SheetRole::ActionSprite, "Action sprites", "action-sprites"},
    {SheetRole::BaseSprite, "Base sprites", "base-sprites"},
    {SheetRole::RecolourMap, "Recolour maps", "recolour-maps"},
    {SheetRole::Glyph, "Glyphs", "glyphs"}};
struct SheetFilter {
  SheetKinds Kinds = SheetKinds::All;
  SheetRole Role = SheetRole::Unknown;  // Unknown: any role
  int32_t MinWidth = 0;                 // above 0 only pictures pass
  int32_t MinHeight = 0;
};
// The sprites from `first` to `last` (from 0, inclusive) that pass, in file order. A sprite
// beyond `roles` has role Unknown.
std::vector<int32_t> FilterSheet(const std::vector<SheetEntry>& entries,
                                 const std::vector<SheetRole>& roles, const SheetFilter& filter,
                                 int32_t first, int32_t last);

// The measures of the grid: cells of `Cell` pixels square with the number under them, `Columns`
// across. The number's digits are 3 x 5 squares of `Glyph` pixels.
struct SheetLayout {
  int32_t Cell = kDefaultSheetCell;
  int32_t Columns = 1;
  int32_t Glyph = 1;
  int32_t PitchX = 0;  // from one cell to the next, across and down
  int32_t PitchY = 0;
  int32_t Left = 0;  // where the first column starts: a window centres its columns
};
// The cell size is held to 16..256, the columns to at least 1.
SheetLayout MakeSheetLayout(int32_t cell, int32_t columns);
// The top left corner of the cell at `slot` (0 top left, then across).
QPoint SheetCellOrigin(const SheetLayout& layout, int64_t slot);
// The picture square of a cell whose corner is `origin`.
QRect SheetPictureSquare(const SheetLayout& layout, QPoint origin);

// The size of a width x height picture in a cell: enlarged by the largest whole number that still
// fits, or reduced to fit keeping its proportions (at least 1 pixel). Empty for no pixels.
QSize CellPictureSize(int32_t width, int32_t height, int32_t cell);
// The pixels scaled by that rule: enlarged as the magnifier does (nearest neighbour), reduced
// smoothly; alpha laid over the checkerboard. An opaque RGB32 image, null for a null picture.
QImage CellPicture(const QImage& pixels, int32_t cell);
// Sprite `sprite` decoded through its entry, drawn in the look and scaled: null for anything but
// a picture, and for a picture that cannot be made (`result` then says why). Safe to call from
// several threads at once.
QImage SheetPicture(const GrfFile& file, int32_t sprite, const SheetEntry& entry, const Look& look,
                    int32_t cell, GrfResult& result);

// Paints one cell at `origin`: a picture centred in its square (an empty frame while `picture`
// is null), a pseudo-sprite as a small tile with its action in hex (the sprite count with #),
// and the number under it
// (counted from 1). The highlight marks the sprite on view in the window.
void PaintSheetCell(QPainter& painter, const SheetLayout& layout, QPoint origin, int32_t sprite,
                    const SheetEntry& entry, const QImage& picture, bool highlighted);

}  // namespace vossel
