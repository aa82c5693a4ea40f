#include "compose.h"

#include <algorithm>
#include <array>

#include <QPainter>

#include "baseset.h"
#include "colours.h"
#include "renderer.h"

namespace vossel {
namespace {

constexpr QRgb kBackground = 0xFFFFFFFF;
constexpr QRgb kGuideColour = 0xFFB0B0B0;
constexpr QRgb kBoxColour = 0xFF0060FF;
constexpr QRgb kOriginColour = 0xFFFF00FF;
constexpr QRgb kOutlineColour = 0xFFE00000;
constexpr QRgb kTextColour = 0xFF404040;
constexpr int32_t kMissingSide = 16;  // an outline's side at normal zoom
constexpr int32_t kMargin = 4;
// No composition is larger than this across or down, nor a view's cell, whatever offsets a file
// gives; what lies further out is cut.
constexpr int32_t kMaxSide = 8192;
constexpr int32_t kMaxCell = 2048;

// Digits, the four compass letters, '?' and '#', five rows of three bits, drawn from rectangles
// so that every machine gives the same pixels.
constexpr int32_t kGlyphWidth = 3;
constexpr int32_t kGlyphHeight = 5;
constexpr char kGlyphChars[] = "0123456789NESW?#";
constexpr uint8_t kGlyphs[16][kGlyphHeight] = {
    {7, 5, 5, 5, 7}, {2, 6, 2, 2, 7}, {7, 1, 7, 4, 7}, {7, 1, 3, 1, 7},
    {5, 5, 7, 1, 1}, {7, 4, 7, 1, 7}, {7, 4, 7, 5, 7}, {7, 1, 1, 2, 2},
    {7, 5, 7, 5, 7}, {7, 5, 7, 1, 7}, {5, 7, 7, 7, 5}, {7, 4, 6, 4, 7},
    {3, 4, 2, 1, 6}, {5, 5, 7, 7, 5}, {6, 1, 2, 0, 2}, {5, 7, 5, 7, 5}};

int32_t TextWidth(const std::string& text, int32_t glyph) {
  const auto n = static_cast<int32_t>(text.size());
  return n == 0 ? 0 : (n * (kGlyphWidth + 1) - 1) * glyph;
}

void PaintText(QPainter& painter, const std::string& text, QPoint at, int32_t glyph, QRgb colour) {
  for (const char c : text) {
    const char* found = std::find(kGlyphChars, kGlyphChars + 16, c);
    const auto g = static_cast<size_t>(found - kGlyphChars);
    if (g < 16)
      for (int32_t row = 0; row < kGlyphHeight; ++row)
        for (int32_t column = 0; column < kGlyphWidth; ++column)
          if ((kGlyphs[g][row] >> (kGlyphWidth - 1 - column)) & 1)
            painter.fillRect(at.x() + column * glyph, at.y() + row * glyph, glyph, glyph,
                             QColor::fromRgb(colour));
    at.rx() += (kGlyphWidth + 1) * glyph;
  }
}

int32_t FloorDiv(int64_t a, int64_t b) {
  const int64_t q = a / b;
  return static_cast<int32_t>((a % b != 0 && (a < 0) != (b < 0)) ? q - 1 : q);
}

// One sprite ready to paint: its pixels at the composition's zoom and where its top left goes,
// relative to the composition's origin.
struct Ready {
  PlacedSprite Placed;
  QImage Pixels;  // ARGB32, null for an outline
  double Opacity = 1.0;
};

// The recolour map of base sprite `n`: a 257-byte pseudo-sprite starting 00.
bool BaseRecolour(const BaseSprites* base, int32_t n, RecolourMap& map) {
  if (base == nullptr || !base->Open || n < 0 || n >= SpriteCount(base->File)) return false;
  std::vector<uint8_t> bytes;
  if (SpriteBytes(base->File, n, -1, bytes) != GrfResult::Ok ||
      bytes.size() != kRecolourSpriteSize || bytes[0] != 0)
    return false;
  std::copy(bytes.begin() + 1, bytes.end(), map.begin());
  return true;
}

int32_t PickAlternative(const GrfFile& file, int32_t sprite, const Look& look) {
  for (const auto& [zoom, depth] :
       {std::pair{look.Zoom, look.Depth}, std::pair{look.Zoom, 0}, std::pair{-1, look.Depth}})
    if (zoom >= 0 || depth != 0)
      if (const int32_t a = FindAlternative(file, sprite, zoom, depth); a >= 0) return a;
  return DefaultAlternative(file, sprite);
}

// Sprite `sprite` of `file` in `look`, scaled to `eighths`; `placed` gets its rectangle relative
// to `at` (its origin), or the reason it is an outline.
Ready Prepare(const GrfFile* file, SpriteSource source, int32_t sprite, const Look& look,
              int32_t eighths, QPoint at) {
  Ready r;
  r.Placed.Source = source;
  r.Placed.Sprite = sprite;
  r.Placed.Origin = at;
  const int32_t side = std::max(1, kMissingSide * eighths / 8);
  r.Placed.Rect = QRect(at.x() - side / 2, at.y() - side, side, side);
  r.Placed.Outline = true;
  if (source == SpriteSource::None) {
    r.Placed.Problem = "a sprite set the file does not have";
    return r;
  }
  if (file == nullptr) {
    r.Placed.Problem = "no base set";
    return r;
  }
  if (sprite < 0 || sprite >= SpriteCount(*file)) {
    r.Placed.Problem = source == SpriteSource::Base ? "past the base set" : "past the file";
    return r;
  }
  const int32_t alternative = PickAlternative(*file, sprite, look);
  SpritePicture picture;
  const GrfResult read =
      alternative < 0 ? GrfResult::Ok : PictureOf(*file, sprite, alternative, picture);
  if (alternative < 0 || read != GrfResult::Ok || picture.Width <= 0 || picture.Height <= 0) {
    r.Placed.Problem =
        alternative < 0 ? "not a picture" : PictureProblem(*file, sprite, alternative, read);
    return r;
  }
  const int32_t own = ZoomEighths(AlternativeOf(*file, sprite, alternative).Zoom);
  int32_t x = picture.XOffset, y = picture.YOffset;
  Look drawn = look;
  drawn.Transparent = true;  // index 0 is never drawn
  drawn.Mask = false;
  QImage pixels = LookPixelsCut(drawn, std::move(picture)).convertToFormat(QImage::Format_ARGB32);
  if (own != eighths) {
    const int32_t w = std::max(1, pixels.width() * eighths / own);
    const int32_t h = std::max(1, pixels.height() * eighths / own);
    if (w > kMaxSide || h > kMaxSide) {
      r.Placed.Problem = "too large to scale";
      return r;
    }
    pixels = pixels.scaled(w, h, Qt::IgnoreAspectRatio, Qt::FastTransformation);
    x = FloorDiv(int64_t{x} * eighths, own);
    y = FloorDiv(int64_t{y} * eighths, own);
  }
  r.Placed.Outline = false;
  r.Placed.Rect = QRect(at.x() + x, at.y() + y, pixels.width(), pixels.height());
  r.Pixels = std::move(pixels);
  return r;
}

void PaintOutline(QPainter& p, const PlacedSprite& s, int32_t glyph) {
  p.setPen(QPen(QColor::fromRgb(kOutlineColour), 1, Qt::DashLine));
  p.setBrush(Qt::NoBrush);
  const QRect& r = s.Rect;
  p.drawRect(r.adjusted(0, 0, -1, -1));
  p.drawLine(r.topLeft(), r.bottomRight());
  const std::string number = "#" + std::to_string(s.Sprite + (s.Source == SpriteSource::File));
  PaintText(p, number, QPoint(r.left() + 1, r.bottom() + 2), glyph, kOutlineColour);
}

void PaintCross(QPainter& p, QPoint at, int32_t arm) {
  p.setPen(QPen(QColor::fromRgb(kOriginColour), 1));
  p.drawLine(at - QPoint(arm, 0), at + QPoint(arm, 0));
  p.drawLine(at - QPoint(0, arm), at + QPoint(0, arm));
}

// The tile's outline with its north corner at `north`.
std::array<QPoint, 4> Diamond(QPoint north, int32_t eighths) {
  return {north, north + Project(0, 16, 0, eighths), north + Project(16, 16, 0, eighths),
          north + Project(16, 0, 0, eighths)};
}

void PaintDiamond(QPainter& p, QPoint north, int32_t eighths) {
  const std::array<QPoint, 4> d = Diamond(north, eighths);
  p.setPen(QPen(QColor::fromRgb(kGuideColour), 1));
  p.setBrush(Qt::NoBrush);
  p.drawPolygon(d.data(), 4);
}

// The 12 edges of a box from (x, y, z) with extents (w, d, h) from the tile's north corner.
void PaintBox(QPainter& p, QPoint north, const ComposedPart& part, int32_t eighths) {
  std::array<QPoint, 8> c;
  for (int i = 0; i < 8; ++i)
    c[static_cast<size_t>(i)] = north + Project(part.X + ((i & 1) ? part.XExtent : 0),
                                                part.Y + ((i & 2) ? part.YExtent : 0),
                                                part.Z + ((i & 4) ? part.ZExtent : 0), eighths);
  p.setPen(QPen(QColor::fromRgb(kBoxColour), 1));
  for (int i = 0; i < 8; ++i)
    for (int bit : {1, 2, 4})
      if (!(i & bit)) p.drawLine(c[static_cast<size_t>(i)], c[static_cast<size_t>(i | bit)]);
}

QRect BoundsOf(const std::vector<Ready>& ready, QRect bounds) {
  for (const Ready& r : ready) {
    bounds |= r.Placed.Rect;
    if (r.Placed.Outline)  // the number under it
      bounds |= QRect(r.Placed.Rect.left(), r.Placed.Rect.bottom(), 48, 16);
  }
  return bounds;
}

void PaintReady(QPainter& p, const Ready& r, QPoint shift, int32_t glyph) {
  if (r.Placed.Outline) {
    PlacedSprite s = r.Placed;
    s.Rect.translate(shift);
    PaintOutline(p, s, glyph);
    return;
  }
  p.setOpacity(r.Opacity);
  p.drawImage(r.Placed.Rect.topLeft() + shift, r.Pixels);
  p.setOpacity(1.0);
}

ComposedPicture DrawViews(const GrfFile& file, const Composition& c, const Look& look,
                          const ComposeOptions& options, int32_t eighths) {
  ComposedPicture out;
  const int32_t glyph = std::max(1, eighths / 8);
  std::vector<Ready> ready;
  for (size_t k = 0; k < c.Views.size(); ++k) {
    ready.push_back(Prepare(&file, SpriteSource::File, c.Views[k], look, eighths, QPoint()));
    ready.back().Placed.Part = static_cast<int32_t>(k);
  }
  // Every view shares one cell size: the union of the views and the tile under the origin, whose
  // centre the vehicle stands on.
  const QPoint north = -Project(8, 8, 0, eighths);
  const std::array<QPoint, 4> d = Diamond(north, eighths);
  QRect cell = QRect(d[3].x(), d[0].y(), d[1].x() - d[3].x() + 1, d[2].y() - d[0].y() + 1);
  cell = BoundsOf(ready, cell).adjusted(-kMargin, -kMargin, kMargin, kMargin) &
         QRect(-kMaxCell / 2, -kMaxCell / 2, kMaxCell, kMaxCell);
  const int32_t label = (kGlyphHeight + 4) * glyph;
  // A set of many sprites shows as many as fit a picture of twice the largest side.
  if (!options.SharedOrigin)
    ready.resize(std::min<size_t>(ready.size(), static_cast<size_t>(2 * kMaxSide / cell.width())));
  const int32_t cells =
      options.SharedOrigin || ready.empty() ? 1 : static_cast<int32_t>(ready.size());
  out.Image = QImage(cells * cell.width(), cell.height() + label, QImage::Format_RGB32);
  out.Image.fill(kBackground);
  QPainter p(&out.Image);
  for (int32_t i = 0; i < cells; ++i) {
    const QPoint origin(i * cell.width() - cell.left(), -cell.top());
    PaintDiamond(p, origin + north, eighths);
    const std::string text = options.SharedOrigin ? std::to_string(ready.size())
                             : c.End == ComposeEnd::Views
                                 ? std::to_string(i) + " " + ViewDirection(i) + "?"
                                 : std::to_string(i);
    PaintText(p, text,
              QPoint(i * cell.width() + (cell.width() - TextWidth(text, glyph)) / 2,
                     cell.height() + 2 * glyph),
              glyph, kTextColour);
  }
  for (size_t k = 0; k < ready.size(); ++k) {
    const int32_t i = options.SharedOrigin ? 0 : static_cast<int32_t>(k);
    const QPoint origin(i * cell.width() - cell.left(), -cell.top());
    PaintReady(p, ready[k], origin, glyph);
    PlacedSprite s = ready[k].Placed;
    s.Rect.translate(origin);
    s.Origin += origin;
    out.Sprites.push_back(s);
  }
  if (options.Origins)
    for (int32_t i = 0; i < cells; ++i)
      PaintCross(p, QPoint(i * cell.width() - cell.left(), -cell.top()), 3 * glyph);
  out.Origin = QPoint(-cell.left(), -cell.top());
  return out;
}

ComposedPicture DrawLayout(const GrfFile& file, const Composition& c, const Look& look,
                           const BaseSprites* base, const ComposeOptions& options,
                           int32_t eighths) {
  ComposedPicture out;
  const int32_t glyph = std::max(1, eighths / 8);
  const GrfFile* baseFile = base != nullptr && base->Open ? &base->File : nullptr;
  std::vector<Ready> ready;
  std::vector<QPoint> at(c.Parts.size());  // each part's drawing position from the north corner
  for (size_t i = 0; i < c.Parts.size(); ++i) {
    const ComposedPart& part = c.Parts[i];
    if (part.Role == PartRole::Child) {
      const QPoint parent = part.Parent >= 0 ? at[static_cast<size_t>(part.Parent)] : QPoint();
      at[i] = parent + QPoint(FloorDiv(int64_t{part.X} * eighths, 8),
                              FloorDiv(int64_t{part.Y} * eighths, 8));
    } else if (part.Role == PartRole::Building) {
      at[i] = Project(part.X, part.Y, part.Z, eighths);
    }
    if (part.Hidden) continue;
    Look drawn = look;
    double opacity = 1.0;
    bool recolourMissing = false;
    if (part.Mode == RecolourMode::None) {
      drawn.Company = false;
    } else if (part.Recolour != 0 || part.Mode == RecolourMode::Transparent) {
      RecolourMap map{};
      if (part.RecolourFrom == SpriteSource::Base && BaseRecolour(base, part.Recolour, map)) {
        drawn.Company = true;
        drawn.Map = map;
      } else {
        recolourMissing = part.Recolour != 0;
      }
      if (part.Mode == RecolourMode::Transparent) opacity = 0.5;
    }
    const bool ofFile = part.Source == SpriteSource::File;
    Ready r = Prepare(ofFile ? &file : baseFile, part.Source, part.Sprite, drawn, eighths, at[i]);
    if (part.OutsideSet && !r.Placed.Outline) {
      r.Placed.Outline = true;
      r.Placed.Problem = "past its set";
    }
    if (recolourMissing && r.Placed.Problem.empty())
      r.Placed.Problem = "recolour sprite not found; drawn without it";
    r.Opacity = opacity;
    r.Placed.Part = part.Index;
    ready.push_back(std::move(r));
  }
  const std::array<QPoint, 4> d = Diamond(QPoint(), eighths);
  QRect bounds(d[3].x(), d[0].y(), d[1].x() - d[3].x() + 1, d[2].y() - d[0].y() + 1);
  bounds = BoundsOf(ready, bounds);
  if (options.Boxes)
    for (const ComposedPart& part : c.Parts)
      if (part.Role == PartRole::Building)
        bounds |= QRect(Project(part.X + part.XExtent, part.Y, part.Z + part.ZExtent, eighths),
                        Project(part.X, part.Y + part.YExtent, part.Z, eighths))
                      .normalized();
  bounds = bounds.adjusted(-kMargin, -kMargin, kMargin, kMargin) &
           QRect(-kMaxSide / 2, -kMaxSide / 2, kMaxSide, kMaxSide);
  out.Image = QImage(bounds.size(), QImage::Format_RGB32);
  out.Image.fill(kBackground);
  out.Origin = -bounds.topLeft();
  QPainter p(&out.Image);
  PaintDiamond(p, out.Origin, eighths);
  for (const Ready& r : ready) {
    PaintReady(p, r, out.Origin, glyph);
    PlacedSprite s = r.Placed;
    s.Rect.translate(out.Origin);
    s.Origin += out.Origin;
    out.Sprites.push_back(s);
  }
  if (options.Boxes)
    for (const ComposedPart& part : c.Parts)
      if (part.Role == PartRole::Building && !part.Hidden) PaintBox(p, out.Origin, part, eighths);
  if (options.Origins)
    for (const PlacedSprite& s : out.Sprites) PaintCross(p, s.Origin, 2 * glyph);
  return out;
}

}  // namespace

BaseSprites OpenBaseSprites(const std::string& path) {
  BaseSprites base;
  const MessageFn quiet = [](const std::string&) {};
  std::vector<std::string> paths;
  if (!path.empty())
    paths.push_back(path);
  else
    for (const InstalledBaseSet& set : FindInstalledBaseSets())
      if (!set.BasePath.empty()) paths.push_back(set.BasePath);
  for (const std::string& p : paths) {
    if (LoadGrfFile(p, base.File, quiet, quiet).End == OpenEnd::Ok && SpriteCount(base.File) > 0) {
      base.Open = true;
      base.Path = p;
      return base;
    }
    CloseGrfFile(base.File);
  }
  return base;
}

int32_t ZoomEighths(int32_t zoom) {
  switch (zoom) {
    case kZoomIn4:
      return 32;
    case kZoomIn2:
      return 16;
    case kZoomOut2:
      return 4;
    case kZoomOut4:
      return 2;
    case kZoomOut8:
      return 1;
    default:
      return 8;
  }
}

QPoint Project(int32_t x, int32_t y, int32_t z, int32_t eighths) {
  return QPoint(FloorDiv(int64_t{2} * (y - x) * eighths, 8),
                FloorDiv(int64_t{x + y - z} * eighths, 8));
}

ComposedPicture DrawComposition(const GrfFile& file, const GrfItems& items, const Composition& c,
                                const Look& look, const BaseSprites* base,
                                const ComposeOptions& options) {
  (void)items;
  const int32_t eighths = ZoomEighths(look.Zoom);
  if (c.End == ComposeEnd::Layout) return DrawLayout(file, c, look, base, options, eighths);
  return DrawViews(file, c, look, options, eighths);
}

}  // namespace vossel
