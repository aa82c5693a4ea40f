#include "sheet.h"

#include <algorithm>
#include <cstdio>
#include <limits>
#include <string>

#include <QPainter>

#include "composite.h"
#include "renderer.h"

namespace vossel {

namespace {

// The margin around a cell's square, and between the square and the number.
constexpr int32_t kMargin = 2;
constexpr int32_t kGlyphWidth = 3;
constexpr int32_t kGlyphHeight = 5;

constexpr QRgb kFrameColour = 0xFFC0C0C0;
constexpr QRgb kTextColour = 0xFF404040;
constexpr QRgb kTileColour = 0xFFFFF0C8;
constexpr QRgb kTileBorder = 0xFFA08850;
constexpr QRgb kHighlightColour = 0xFF3070D0;

// The digits 0-9 and A-F, then #, five rows of three bits each, the top row first. Drawn from
// rectangles so that the window and the CLI give the same pixels whatever fonts the machine has.
constexpr uint8_t kGlyphs[17][kGlyphHeight] = {
    {7, 5, 5, 5, 7}, {2, 6, 2, 2, 7}, {7, 1, 7, 4, 7}, {7, 1, 3, 1, 7}, {5, 5, 7, 1, 1},
    {7, 4, 7, 1, 7}, {7, 4, 7, 5, 7}, {7, 1, 1, 2, 2}, {7, 5, 7, 5, 7}, {7, 5, 7, 1, 7},
    {2, 5, 7, 5, 5}, {6, 5, 6, 5, 6}, {3, 4, 4, 4, 3}, {6, 5, 5, 5, 6}, {7, 4, 6, 4, 7},
    {7, 4, 6, 4, 4}, {5, 7, 5, 7, 5}};
constexpr int kHashGlyph = 16;

int32_t TextWidth(const std::string& text, int32_t glyph) {
  const auto n = static_cast<int32_t>(text.size());
  return n == 0 ? 0 : (n * (kGlyphWidth + 1) - 1) * glyph;
}

// Hex digits (0-9, A-F) with their top left corner at `at`.
void PaintDigits(QPainter& painter, const std::string& text, QPoint at, int32_t glyph,
                 QRgb colour) {
  for (const char c : text) {
    const int digit = c == '#' ? kHashGlyph : c >= 'A' ? c - 'A' + 10 : c - '0';
    if (digit < 0 || digit > kHashGlyph) continue;
    for (int32_t row = 0; row < kGlyphHeight; ++row)
      for (int32_t column = 0; column < kGlyphWidth; ++column)
        if ((kGlyphs[digit][row] >> (kGlyphWidth - 1 - column)) & 1)
          painter.fillRect(at.x() + column * glyph, at.y() + row * glyph, glyph, glyph,
                           QColor::fromRgb(colour));
    at.rx() += (kGlyphWidth + 1) * glyph;
  }
}

int32_t Clamp32(int64_t value) {
  return static_cast<int32_t>(std::clamp<int64_t>(value, 0, std::numeric_limits<int32_t>::max()));
}

}  // namespace

std::vector<SheetEntry> SheetEntries(const GrfFile& file, const FileReading& reading, int32_t zoom,
                                     int32_t depth) {
  const int32_t count = SpriteCount(file);
  std::vector<SheetEntry> entries(static_cast<size_t>(count));
  for (int32_t i = 0; i < count; ++i) {
    SheetEntry& e = entries[static_cast<size_t>(i)];
    e.Alternative = ChosenAlternative(file, i, zoom, depth);
    const SpriteFacts f = FactsOf(file, i, e.Alternative);
    e.Kind = f.Kind;
    if (f.Kind == SpriteKind::Picture) {
      e.Width = Clamp32(f.Width);
      e.Height = Clamp32(f.Height);
    } else if (f.Kind == SpriteKind::Pseudo && static_cast<size_t>(i) < reading.Bytes.size() &&
               !reading.Bytes[static_cast<size_t>(i)].empty()) {
      e.Action = reading.Bytes[static_cast<size_t>(i)][0];
      e.Count = static_cast<size_t>(i) < reading.Actions.Sprites.size() &&
                reading.Actions.Sprites[static_cast<size_t>(i)].Kind == RoleKind::SpriteCount;
    }
  }
  return entries;
}

std::vector<int32_t> FilterSheet(const std::vector<SheetEntry>& entries,
                                 const std::vector<SheetRole>& roles, const SheetFilter& filter,
                                 int32_t first, int32_t last) {
  std::vector<int32_t> shown;
  last = std::min(last, static_cast<int32_t>(entries.size()) - 1);
  for (int32_t i = std::max(first, 0); i <= last; ++i) {
    const SheetEntry& e = entries[static_cast<size_t>(i)];
    const bool picture = e.Kind == SpriteKind::Picture;
    if ((filter.Kinds == SheetKinds::Pictures && !picture) ||
        (filter.Kinds == SheetKinds::PseudoSprites && picture))
      continue;
    const SheetRole role =
        static_cast<size_t>(i) < roles.size() ? roles[static_cast<size_t>(i)] : SheetRole::Unknown;
    if (filter.Role != SheetRole::Unknown && role != filter.Role) continue;
    if ((filter.MinWidth > 0 || filter.MinHeight > 0) &&
        (!picture || e.Width < filter.MinWidth || e.Height < filter.MinHeight))
      continue;
    shown.push_back(i);
  }
  return shown;
}

SheetLayout MakeSheetLayout(int32_t cell, int32_t columns) {
  SheetLayout layout;
  layout.Cell = std::clamp(cell, kMinSheetCell, kMaxSheetCell);
  layout.Columns = std::max(columns, 1);
  // Larger digits once a cell has room for six of them.
  layout.Glyph = layout.Cell >= 64 ? 2 : 1;
  layout.PitchX = layout.Cell + 2 * kMargin;
  layout.PitchY = layout.Cell + kGlyphHeight * layout.Glyph + 3 * kMargin + 1;
  return layout;
}

QPoint SheetCellOrigin(const SheetLayout& layout, int64_t slot) {
  return QPoint(static_cast<int>(layout.Left + slot % layout.Columns * layout.PitchX),
                static_cast<int>(slot / layout.Columns * layout.PitchY));
}

QRect SheetPictureSquare(const SheetLayout& layout, QPoint origin) {
  return QRect(origin.x() + kMargin, origin.y() + kMargin, layout.Cell, layout.Cell);
}

QSize CellPictureSize(int32_t width, int32_t height, int32_t cell) {
  if (width <= 0 || height <= 0 || cell <= 0) return QSize();
  if (width <= cell && height <= cell) {
    const int32_t m = std::min(cell / width, cell / height);
    return QSize(width * m, height * m);
  }
  const QSize fit = QSize(width, height).scaled(cell, cell, Qt::KeepAspectRatio);
  return QSize(std::max(fit.width(), 1), std::max(fit.height(), 1));
}

QImage CellPicture(const QImage& pixels, int32_t cell) {
  const QSize size = CellPictureSize(pixels.width(), pixels.height(), cell);
  if (pixels.isNull() || size.isEmpty()) return QImage();
  QImage scaled;
  if (size.width() >= pixels.width())
    scaled = MagnifiedPart(pixels, size.width() / pixels.width(), QRect(QPoint(0, 0), size));
  else
    scaled = pixels.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
  if (scaled.hasAlphaChannel()) return CompositeOverChecker(scaled);
  return scaled.convertToFormat(QImage::Format_RGB32);
}

QImage SheetPicture(const GrfFile& file, int32_t sprite, const SheetEntry& entry, const Look& look,
                    int32_t cell, GrfResult& result) {
  result = GrfResult::Ok;
  if (entry.Kind != SpriteKind::Picture || entry.Alternative < 0) return QImage();
  SpritePicture picture;
  result = PictureOf(file, sprite, entry.Alternative, picture);
  if (result != GrfResult::Ok) return QImage();
  // Index 0 left out: the cell lays the picture over the checkerboard.
  return CellPicture(LookPixelsCut(look, std::move(picture)), cell);
}

void PaintSheetCell(QPainter& painter, const SheetLayout& layout, QPoint origin, int32_t sprite,
                    const SheetEntry& entry, const QImage& picture, bool highlighted) {
  const QRect square = SheetPictureSquare(layout, origin);
  const QRect whole(origin, QSize(layout.PitchX, layout.PitchY));
  painter.save();
  painter.setClipRect(whole);
  if (highlighted) painter.fillRect(whole, QColor::fromRgb(kHighlightColour));
  const int32_t g = layout.Glyph;
  if (entry.Kind != SpriteKind::Picture) {
    // A tile of half the square, wide enough for two digits.
    char action[4] = "";
    if (entry.Count)
      std::snprintf(action, sizeof action, "#");
    else if (entry.Action >= 0)
      std::snprintf(action, sizeof action, "%02X", entry.Action & 0xFF);
    const int32_t side = std::max(layout.Cell / 2, TextWidth("00", g) + 4 * g);
    const QRect tile(square.x() + (layout.Cell - side) / 2, square.y() + (layout.Cell - side) / 2,
                     side, side);
    painter.fillRect(tile, QColor::fromRgb(kTileBorder));
    painter.fillRect(tile.adjusted(1, 1, -1, -1), QColor::fromRgb(kTileColour));
    PaintDigits(painter, action,
                QPoint(tile.x() + (side - TextWidth(action, g)) / 2,
                       tile.y() + (side - kGlyphHeight * g) / 2),
                g, kTextColour);
  } else if (picture.isNull()) {
    painter.fillRect(square, QColor::fromRgb(kFrameColour));
    painter.fillRect(square.adjusted(1, 1, -1, -1),
                     highlighted ? QColor::fromRgb(kHighlightColour) : QColor(Qt::white));
  } else {
    painter.drawImage(square.x() + (layout.Cell - picture.width()) / 2,
                      square.y() + (layout.Cell - picture.height()) / 2, picture);
  }
  const std::string number = std::to_string(int64_t{sprite} + 1);
  PaintDigits(painter, number,
              QPoint(origin.x() + (layout.PitchX - TextWidth(number, g)) / 2,
                     square.bottom() + 1 + kMargin),
              g, highlighted ? 0xFFFFFFFF : kTextColour);
  painter.restore();
}

}  // namespace vossel
