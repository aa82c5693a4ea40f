#include "compare.h"

namespace vossel {
namespace {

std::string KindWord(SpriteKind kind) {
  switch (kind) {
    case SpriteKind::Picture:
      return "picture";
    case SpriteKind::Pseudo:
      return "pseudo-sprite";
    case SpriteKind::Data:
      return "data";
  }
  return "sprite";
}

std::string AlternativesText(const std::vector<AlternativeInfo>& list) {
  std::string out;
  for (const AlternativeInfo& a : list) out += (out.empty() ? "" : ", ") + AlternativeText(a);
  return out.empty() ? "none" : out;
}

std::string SizeText(const SpriteFacts& f) {
  return std::to_string(f.Width) + "x" + std::to_string(f.Height);
}

std::string OffsetText(const SpriteFacts& f) {
  return std::to_string(f.XOffset) + "," + std::to_string(f.YOffset);
}

// What a sprite is, for one that only one file has.
std::string SpriteShape(const SpriteFacts& f, const std::vector<AlternativeInfo>& alternatives) {
  if (f.Kind != SpriteKind::Picture)
    return KindWord(f.Kind) + " of " + std::to_string(f.Size) + " bytes";
  return SizeText(f) + " at " + OffsetText(f) + " (" + AlternativesText(alternatives) + ")";
}

std::string IdentityLine(const GrfIdentity& i) {
  if (!i.HasAction8) return "no GRF ID";
  std::string out = "GRF ID " + GrfIdText(i.Grf.Bytes);
  if (!i.Name.empty()) out += ", " + i.Name;
  if (i.HasInfo && i.Info.HasVersion) out += ", version " + std::to_string(i.Info.Version);
  return out;
}

}  // namespace

std::string ComparedFileLine(const char* side, const GrfFile& file, const GrfIdentity& identity) {
  return std::string(side) + ": " + file.Path + " (container " + std::to_string(file.Container) +
         ", " + std::to_string(SpriteCount(file)) + " sprites, " + IdentityLine(identity) + ")";
}

std::string SpriteDifferenceLine(const SpriteDifference& d) {
  return "Sprite " + std::to_string(d.Sprite + 1) + " (NFO " + std::to_string(d.Sprite) +
         "): " + SpriteChangeText(d);
}

const char* SpriteChangeKey(SpriteChange change) {
  switch (change) {
    case SpriteChange::Added:
      return "added";
    case SpriteChange::Removed:
      return "removed";
    case SpriteChange::Kind:
      return "kind";
    case SpriteChange::Bytes:
      return "bytes";
    case SpriteChange::Alternatives:
      return "alternatives";
    case SpriteChange::Size:
      return "size";
    case SpriteChange::Offsets:
      return "offsets";
    case SpriteChange::Pixels:
      return "pixels";
    case SpriteChange::Unreadable:
      return "unreadable";
  }
  return "";
}

const char* ItemChangeKey(ItemChange change) {
  switch (change) {
    case ItemChange::Added:
      return "added";
    case ItemChange::Removed:
      return "removed";
    case ItemChange::Property:
      return "property";
    case ItemChange::Graphics:
      return "graphics";
  }
  return "";
}

std::string ComparisonSummary(const GrfComparison& c) {
  if (IsEqual(c)) return "identical";
  std::string out;
  if (c.IdentityChanged) out = "the identity, ";
  // Several changes of one sprite count once.
  size_t sprites = 0;
  for (size_t i = 0; i < c.Sprites.size(); ++i)
    if (i == 0 || c.Sprites[i].Sprite != c.Sprites[i - 1].Sprite) ++sprites;
  size_t items = 0;
  for (size_t i = 0; i < c.Items.size(); ++i)
    if (i == 0 || c.Items[i].Feature != c.Items[i - 1].Feature ||
        c.Items[i].Id != c.Items[i - 1].Id)
      ++items;
  out += CountText(sprites, "sprite", "sprites") + " and " + CountText(items, "item", "items") +
         " differ";
  return out;
}

std::string SpriteChangeText(const SpriteDifference& d) {
  const std::string alt = " (" + AlternativeText(d.Alternative) + ")";
  switch (d.Change) {
    case SpriteChange::Added:
      return "added: " + SpriteShape(d.New, d.NewAlternatives);
    case SpriteChange::Removed:
      return "removed: " + SpriteShape(d.Old, d.OldAlternatives);
    case SpriteChange::Kind:
      return "was a " + KindWord(d.Old.Kind) + ", now a " + KindWord(d.New.Kind);
    case SpriteChange::Bytes:
      return "bytes differ (" + std::to_string(d.OldBytes.size()) + " -> " +
             std::to_string(d.NewBytes.size()) + " bytes)";
    case SpriteChange::Alternatives:
      return "alternatives " + AlternativesText(d.OldAlternatives) + " -> " +
             AlternativesText(d.NewAlternatives);
    case SpriteChange::Size:
      return "size " + SizeText(d.Old) + " -> " + SizeText(d.New) + alt;
    case SpriteChange::Offsets:
      return "offsets " + OffsetText(d.Old) + " -> " + OffsetText(d.New) + alt;
    case SpriteChange::Pixels:
      if (!d.Pixels.Counted) return "pixels differ" + alt;
      return CountText(static_cast<uint64_t>(d.Pixels.Count), "pixel", "pixels") + " differ in " +
             std::to_string(d.Pixels.Right - d.Pixels.Left) + "x" +
             std::to_string(d.Pixels.Bottom - d.Pixels.Top) + " at " +
             std::to_string(d.Pixels.Left) + "," + std::to_string(d.Pixels.Top) + alt;
    case SpriteChange::Unreadable:
      return "cannot be compared: a picture cannot be decoded" + alt;
  }
  return "";
}

std::string OldNfoLine(const SpriteDifference& d) {
  return NfoPseudoLine(d.Sprite, d.OldBytes.data(), d.OldBytes.size());
}

std::string NewNfoLine(const SpriteDifference& d) {
  return NfoPseudoLine(d.Sprite, d.NewBytes.data(), d.NewBytes.size());
}

std::string ItemDifferenceName(const ItemDifference& d) {
  std::string out = FeatureWord(d.Feature) + " 0x" + HexDigits(d.Id, 2);
  const std::string& name = d.NewName.empty() ? d.OldName : d.NewName;
  if (!name.empty()) out += " (" + name + ")";
  return out;
}

std::string ItemChangeText(const ItemDifference& d) {
  switch (d.Change) {
    case ItemChange::Added:
      return "added";
    case ItemChange::Removed:
      return "removed";
    case ItemChange::Property: {
      const std::string name = PropertyName(d.HasNew ? d.New : d.Old);
      if (!d.HasOld) return name + ": now given, " + PropertyValueText(d.New);
      if (!d.HasNew) return name + ": no longer given (was " + PropertyValueText(d.Old) + ")";
      return name + ": " + PropertyValueText(d.Old) + " -> " + PropertyValueText(d.New);
    }
    case ItemChange::Graphics:
      return "graphics reached " + SpriteRuns(d.OldSprites) + ", now " + SpriteRuns(d.NewSprites);
  }
  return "";
}

std::vector<std::string> IdentityChangeLines(const GrfComparison& c) {
  std::vector<std::string> lines;
  const GrfIdentity &a = c.OldIdentity, &b = c.NewIdentity;
  const auto add = [&](const char* what, const std::string& x, const std::string& y) {
    if (x != y) lines.push_back(std::string(what) + ": " + x + " -> " + y);
  };
  const auto id = [](const GrfIdentity& i) {
    return i.HasAction8 ? GrfIdText(i.Grf.Bytes) : std::string("none");
  };
  add("GRF ID", id(a), id(b));
  add("GRF version", std::to_string(a.GrfVersion), std::to_string(b.GrfVersion));
  add("Name", a.Name, b.Name);
  add("Description", a.Description, b.Description);
  add("Version", std::to_string(a.Info.Version), std::to_string(b.Info.Version));
  add("Minimum compatible version", std::to_string(a.Info.MinVersion),
      std::to_string(b.Info.MinVersion));
  add("Info name", a.Info.Name, b.Info.Name);
  add("Palette", PaletteName(a.Info.Palette), PaletteName(b.Info.Palette));
  add("Action 14", a.HasInfo ? "present" : "absent", b.HasInfo ? "present" : "absent");
  return lines;
}

}  // namespace vossel
