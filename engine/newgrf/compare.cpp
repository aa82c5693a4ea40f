#include "compare.h"

#include <algorithm>
#include <map>
#include <tuple>
#include <utility>

namespace vossel {
namespace {

SpriteKind KindOf(const GrfFile& file, int32_t sprite) {
  if (FactsOf(file, sprite, -1).Kind == SpriteKind::Pseudo) return SpriteKind::Pseudo;
  const int32_t shown = DefaultAlternative(file, sprite);
  if (shown >= 0 && AlternativeOf(file, sprite, shown).Data) return SpriteKind::Data;
  return SpriteKind::Picture;
}

std::vector<AlternativeInfo> AlternativesOf(const GrfFile& file, int32_t sprite) {
  std::vector<AlternativeInfo> list;
  for (int32_t a = 0; a < AlternativeCount(file, sprite); ++a)
    list.push_back(AlternativeOf(file, sprite, a));
  return list;
}

// Alternatives are matched by what they are, not by where the container put them.
auto Key(const AlternativeInfo& a) {
  return std::make_tuple(a.Data, a.Zoom, a.Depth, a.Mask);
}

bool SameSet(std::vector<AlternativeInfo> a, std::vector<AlternativeInfo> b) {
  const auto less = [](const AlternativeInfo& x, const AlternativeInfo& y) {
    return Key(x) < Key(y);
  };
  std::sort(a.begin(), a.end(), less);
  std::sort(b.begin(), b.end(), less);
  return std::equal(
      a.begin(), a.end(), b.begin(), b.end(),
      [](const AlternativeInfo& x, const AlternativeInfo& y) { return Key(x) == Key(y); });
}

int32_t FindByKey(const GrfFile& file, int32_t sprite, const AlternativeInfo& wanted) {
  return MatchingAlternative(file, sprite, wanted);
}

const std::vector<uint8_t>& BytesOf(const FileReading& reading, int32_t sprite) {
  static const std::vector<uint8_t> kNone;
  const auto i = static_cast<size_t>(sprite);
  return i < reading.Bytes.size() ? reading.Bytes[i] : kNone;
}

struct Side {
  const GrfFile& File;
  const FileReading& Reading;
};

void CompareAlternative(const Side& a, const Side& b, int32_t sprite, const AlternativeInfo& alt,
                        const CompareOptions& options, std::vector<SpriteDifference>& out) {
  const int32_t ia = FindByKey(a.File, sprite, alt), ib = FindByKey(b.File, sprite, alt);
  SpriteDifference d;
  d.Sprite = sprite;
  d.Alternative = alt;
  d.Old = FactsOf(a.File, sprite, ia);
  d.New = FactsOf(b.File, sprite, ib);
  if (alt.Data) {
    std::vector<uint8_t> x, y;
    SpriteBytes(a.File, sprite, ia, x);
    SpriteBytes(b.File, sprite, ib, y);
    if (x != y) {
      d.Change = SpriteChange::Bytes;
      d.OldBytes = std::move(x);
      d.NewBytes = std::move(y);
      out.push_back(std::move(d));
    }
    return;
  }
  if (d.Old.XOffset != d.New.XOffset || d.Old.YOffset != d.New.YOffset) {
    d.Change = SpriteChange::Offsets;
    out.push_back(d);
  }
  if (d.Old.Width != d.New.Width || d.Old.Height != d.New.Height) {
    d.Change = SpriteChange::Size;
    out.push_back(d);
    return;  // pixels of pictures of other sizes do not line up
  }
  SpritePicture pa, pb;
  const GrfResult ra = PictureOf(a.File, sprite, ia, pa);
  const GrfResult rb = PictureOf(b.File, sprite, ib, pb);
  if (ra != GrfResult::Ok || rb != GrfResult::Ok) {
    // Broken alike on both sides is no change that the pictures can show.
    if (ra == rb) return;
    d.Change = SpriteChange::Unreadable;
    d.Result = ra != GrfResult::Ok ? ra : rb;
    out.push_back(d);
    return;
  }
  const PixelDifference pixels = ComparePictures(pa, pb, options.CountPixels);
  if (pixels.Counted ? pixels.Count > 0 : !(pa.Indices == pb.Indices && pa.Rgba == pb.Rgba)) {
    d.Change = SpriteChange::Pixels;
    d.Pixels = pixels;
    out.push_back(d);
  }
}

void CompareSprite(const Side& a, const Side& b, int32_t sprite, const CompareOptions& options,
                   std::vector<SpriteDifference>& out) {
  SpriteDifference d;
  d.Sprite = sprite;
  const SpriteKind ka = KindOf(a.File, sprite), kb = KindOf(b.File, sprite);
  d.Old = FactsOf(a.File, sprite, DefaultAlternative(a.File, sprite));
  d.New = FactsOf(b.File, sprite, DefaultAlternative(b.File, sprite));
  d.Old.Kind = ka;
  d.New.Kind = kb;
  if (ka != kb) {
    d.Change = SpriteChange::Kind;
    out.push_back(std::move(d));
    return;
  }
  if (ka == SpriteKind::Pseudo) {
    const std::vector<uint8_t>&x = BytesOf(a.Reading, sprite), &y = BytesOf(b.Reading, sprite);
    if (x != y) {
      d.Change = SpriteChange::Bytes;
      d.OldBytes = x;
      d.NewBytes = y;
      out.push_back(std::move(d));
    }
    return;
  }
  d.OldAlternatives = AlternativesOf(a.File, sprite);
  d.NewAlternatives = AlternativesOf(b.File, sprite);
  if (!SameSet(d.OldAlternatives, d.NewAlternatives)) {
    d.Change = SpriteChange::Alternatives;
    out.push_back(d);
  }
  // The alternatives both have are compared one by one.
  for (const AlternativeInfo& alt : d.OldAlternatives)
    if (FindByKey(b.File, sprite, alt) >= 0) CompareAlternative(a, b, sprite, alt, options, out);
}

SpriteDifference OneSided(const GrfFile& file, int32_t sprite, bool added) {
  SpriteDifference d;
  d.Sprite = sprite;
  d.Change = added ? SpriteChange::Added : SpriteChange::Removed;
  SpriteFacts& facts = added ? d.New : d.Old;
  facts = FactsOf(file, sprite, DefaultAlternative(file, sprite));
  facts.Kind = KindOf(file, sprite);
  (added ? d.NewAlternatives : d.OldAlternatives) = AlternativesOf(file, sprite);
  return d;
}

bool SameIdentity(const GrfIdentity& a, const GrfIdentity& b) {
  return a.HasAction8 == b.HasAction8 && std::equal(a.Grf.Bytes, a.Grf.Bytes + 4, b.Grf.Bytes) &&
         a.GrfVersion == b.GrfVersion && a.Name == b.Name && a.Description == b.Description &&
         a.HasInfo == b.HasInfo && a.Info.Version == b.Info.Version &&
         a.Info.MinVersion == b.Info.MinVersion && a.Info.Name == b.Info.Name &&
         a.Info.Palette == b.Info.Palette;
}

// The last value each property was given, by number.
std::map<uint8_t, const ItemProperty*> LastValues(const Item& item) {
  std::map<uint8_t, const ItemProperty*> values;
  for (const ItemProperty& p : item.Properties) values[p.Number] = &p;
  return values;
}

void CompareItem(const GrfItems& ia, const Item& a, const GrfItems& ib, const Item& b,
                 std::vector<ItemDifference>& out) {
  ItemDifference base;
  base.Feature = a.Feature;
  base.Id = a.Id;
  base.OldName = a.Name;
  base.NewName = b.Name;
  const auto va = LastValues(a), vb = LastValues(b);
  std::map<uint8_t, std::pair<const ItemProperty*, const ItemProperty*>> both;
  for (const auto& [n, p] : va) both[n].first = p;
  for (const auto& [n, p] : vb) both[n].second = p;
  for (const auto& [n, pair] : both) {
    const auto [pa, pb] = pair;
    if (pa != nullptr && pb != nullptr && pa->Raw == pb->Raw) continue;
    ItemDifference d = base;
    d.Change = ItemChange::Property;
    d.Property = n;
    d.HasOld = pa != nullptr;
    d.HasNew = pb != nullptr;
    if (pa != nullptr) d.Old = *pa;
    if (pb != nullptr) d.New = *pb;
    out.push_back(std::move(d));
  }
  std::vector<int32_t> sa = GraphOf(ia, a).Sprites, sb = GraphOf(ib, b).Sprites;
  if (sa != sb) {
    ItemDifference d = base;
    d.Change = ItemChange::Graphics;
    d.OldSprites = std::move(sa);
    d.NewSprites = std::move(sb);
    out.push_back(std::move(d));
  }
}

ItemDifference OneSidedItem(const Item& item, bool added) {
  ItemDifference d;
  d.Feature = item.Feature;
  d.Id = item.Id;
  (added ? d.NewName : d.OldName) = item.Name;
  d.Change = added ? ItemChange::Added : ItemChange::Removed;
  return d;
}

void CompareItems(const FileReading& ra, const FileReading& rb, std::vector<ItemDifference>& out) {
  const GrfItems ia = ReadItems(ra), ib = ReadItems(rb);
  // Both lists are sorted by feature, then ID: walk them side by side.
  const auto key = [](const Item& i) { return std::make_pair(i.Feature, i.Id); };
  size_t x = 0, y = 0;
  while (x < ia.Items.size() || y < ib.Items.size()) {
    if (y == ib.Items.size() || (x < ia.Items.size() && key(ia.Items[x]) < key(ib.Items[y]))) {
      out.push_back(OneSidedItem(ia.Items[x++], false));
    } else if (x == ia.Items.size() || key(ib.Items[y]) < key(ia.Items[x])) {
      out.push_back(OneSidedItem(ib.Items[y++], true));
    } else {
      CompareItem(ia, ia.Items[x++], ib, ib.Items[y++], out);
    }
  }
}

}  // namespace

int32_t MatchingAlternative(const GrfFile& file, int32_t sprite, const AlternativeInfo& wanted) {
  for (int32_t a = 0; a < AlternativeCount(file, sprite); ++a)
    if (Key(AlternativeOf(file, sprite, a)) == Key(wanted)) return a;
  return -1;
}

bool PixelDiffers(const SpritePicture& a, const SpritePicture& b, int64_t pixel) {
  const auto i = static_cast<size_t>(pixel);
  const bool ia = i < a.Indices.size(), ib = i < b.Indices.size();
  if (ia != ib || (ia && a.Indices[i] != b.Indices[i])) return true;
  const size_t r = i * 4;
  const bool ca = r + 4 <= a.Rgba.size(), cb = r + 4 <= b.Rgba.size();
  return ca != cb || (ca && !std::equal(&a.Rgba[r], &a.Rgba[r] + 4, &b.Rgba[r]));
}

PixelDifference ComparePictures(const SpritePicture& a, const SpritePicture& b, bool count) {
  PixelDifference d;
  d.Counted = count;
  if (!count) return d;
  const int64_t pixels = int64_t{a.Width} * a.Height;
  d.Left = a.Width;
  d.Top = a.Height;
  for (int64_t p = 0; p < pixels; ++p) {
    if (!PixelDiffers(a, b, p)) continue;
    const auto x = static_cast<int32_t>(p % a.Width), y = static_cast<int32_t>(p / a.Width);
    ++d.Count;
    d.Left = std::min(d.Left, x);
    d.Top = std::min(d.Top, y);
    d.Right = std::max(d.Right, x + 1);
    d.Bottom = std::max(d.Bottom, y + 1);
  }
  if (d.Count == 0) d.Left = d.Top = 0;
  return d;
}

GrfComparison CompareFiles(const GrfFile& oldFile, const FileReading& oldReading,
                           const GrfFile& newFile, const FileReading& newReading,
                           const CompareOptions& options) {
  GrfComparison c;
  c.OldIdentity = oldReading.Actions.Identity;
  c.NewIdentity = newReading.Actions.Identity;
  c.IdentityChanged = !SameIdentity(c.OldIdentity, c.NewIdentity);
  c.OldSprites = SpriteCount(oldFile);
  c.NewSprites = SpriteCount(newFile);
  const Side a{oldFile, oldReading}, b{newFile, newReading};
  const int32_t both = std::min(c.OldSprites, c.NewSprites);
  for (int32_t i = 0; i < both; ++i) CompareSprite(a, b, i, options, c.Sprites);
  for (int32_t i = both; i < c.OldSprites; ++i) c.Sprites.push_back(OneSided(oldFile, i, false));
  for (int32_t i = both; i < c.NewSprites; ++i) c.Sprites.push_back(OneSided(newFile, i, true));
  CompareItems(oldReading, newReading, c.Items);
  return c;
}

}  // namespace vossel
