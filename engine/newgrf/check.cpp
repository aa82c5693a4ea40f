#include "check.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <utility>

#include "companymaps.h"

namespace vossel {
namespace {

Severity LevelOf(CheckCode code) {
  for (const CodeRow& row : CheckCodes())
    if (row.Code == code) return row.Level;
  return Severity::Error;
}

Finding Make(CheckCode code, int32_t sprite, int64_t a = 0, int64_t b = 0, int64_t c = 0,
             int64_t d = 0, int64_t e = 0, int64_t g = 0) {
  Finding f;
  f.Code = code;
  f.Level = LevelOf(code);
  f.Sprite = sprite;
  const int64_t values[] = {a, b, c, d, e, g};
  std::copy(std::begin(values), std::end(values), f.Values);
  return f;
}

// Features whose items exist only through their properties and show only through their graphics:
// one without the other is never seen in the game. Vehicles and the like may change an original
// item's properties alone, or draw it anew alone.
bool NeedsBoth(uint8_t feature) {
  switch (feature) {
    case 0x04:  // stations
    case 0x07:  // houses
    case 0x09:  // industry tiles
    case 0x0F:  // objects
    case 0x11:  // airport tiles
    case 0x14:  // road stops
      return true;
    default:
      return false;
  }
}

// Whether the member of a block at `role` is a recolour map by its place: Action 05 type 0A, or
// an Action 0A replacing base sprites 775 to 790.
bool RecolourPlace(const SpriteRole& role, const ActionRecord& owner) {
  if (owner.Action == 0x05) return (owner.Type & 0x7F) == 0x0A;
  if (owner.Action == 0x0A) return role.Number >= 775 && role.Number <= 790;
  return false;
}

void CheckFileEnd(const GrfFile& file, const FileReading& reading, std::vector<Finding>& out,
                  bool& cut) {
  const int32_t count = SpriteCount(file);
  const std::vector<ActionRecord>& actions = reading.Actions.Actions;
  const bool hasCount = !actions.empty() && actions[0].IsSpriteCount;
  const int64_t declared = hasCount ? int64_t{actions[0].Value} : -1;
  // Ids the cut sprite section lacks are its lost sprites, said once with the cut.
  const bool sectionCut =
      std::any_of(file.Problems.begin(), file.Problems.end(),
                  [](const GrfProblem& p) { return p.Kind == GrfResult::SpriteSectionCut; });
  for (const GrfProblem& p : file.Problems) {
    if (sectionCut && p.Kind == GrfResult::MissingId) continue;
    int64_t lost = -1;
    if (p.Kind == GrfResult::OutOfBuffer || p.Kind == GrfResult::DataSectionCut) {
      if (declared >= 0) lost = std::max<int64_t>(declared + 1 - count, 0);
      out.push_back(Make(CheckCode::FileCut, -1, p.Position, lost));
      cut = true;
    } else if (p.Kind == GrfResult::SpriteSectionCut) {
      // The pictures of the sprites that name an id the cut section lacks are lost.
      lost = 0;
      if (const auto* v2 = std::get_if<GrfV2File>(&file.Contents))
        for (const GrfV2Sprite& s : v2->Index.Sprites)
          lost += s.Info == kV2Reference && s.AlternativeCount == 0;
      out.push_back(Make(CheckCode::FileCut, -1, file.FileLength, lost));
      cut = true;
    } else {
      Finding f = Make(CheckCode::ContainerProblem, p.Sprite > 0 ? p.Sprite - 1 : -1);
      f.Problem = p;
      out.push_back(f);
    }
  }
  if (hasCount && !cut && declared != count - 1)
    out.push_back(Make(CheckCode::SpriteCountDiffers, 0, declared, count - 1));
}

void CheckBlocks(const GrfFile& file, const FileReading& reading, std::vector<Finding>& out) {
  const std::vector<ActionRecord>& actions = reading.Actions.Actions;
  const std::vector<SpriteRole>& roles = reading.Actions.Sprites;
  std::vector<uint64_t> present(actions.size(), 0);
  for (size_t i = 0; i < roles.size(); ++i) {
    const SpriteRole& role = roles[i];
    if (role.Kind == RoleKind::Action || role.Kind == RoleKind::SpriteCount || role.ActionIndex < 0)
      continue;
    const auto sprite = static_cast<int32_t>(i);
    const ActionRecord& owner = actions[static_cast<size_t>(role.ActionIndex)];
    ++present[static_cast<size_t>(role.ActionIndex)];
    const SpriteKind kind = FactsOf(file, sprite, -1).Kind;
    Finding f;
    bool found = false;
    if (owner.Action == 0x11) {
      if (kind == SpriteKind::Picture || role.Sound == SoundForm::None) {
        f = Make(CheckCode::NotASound, sprite, kind == SpriteKind::Picture ? 0 : 1);
        found = true;
      }
    } else if (RecolourPlace(role, owner)) {
      if (!role.Recolour) f = Make(CheckCode::PictureForRecolour, sprite), found = true;
    } else if (kind != SpriteKind::Picture && !role.Recolour) {
      // Recolour maps stand among pictures in several blocks' types, so only other bytes count.
      const int64_t what = kind == SpriteKind::Data ? 1 : 0;
      f = Make(CheckCode::NotAPicture, sprite, what);
      found = true;
    }
    if (found) {
      f.Action = owner.Action;
      out.push_back(f);
    }
  }
  for (size_t k = 0; k < actions.size(); ++k) {
    const ActionRecord& a = actions[k];
    if (a.IsSpriteCount) continue;
    if (IsCut(a)) {
      Finding f = Make(CheckCode::CutPseudo, a.Sprite, static_cast<int64_t>(a.Have),
                       static_cast<int64_t>(a.Need));
      f.Action = a.Action;
      out.push_back(f);
      continue;
    }
    const uint64_t claimed = BlockSize(a);
    if (present[k] < claimed) {
      Finding f = Make(CheckCode::BlockShort, a.Sprite, static_cast<int64_t>(claimed),
                       static_cast<int64_t>(present[k]));
      f.Action = a.Action;
      out.push_back(f);
    }
  }
}

void CheckItemProblems(const GrfItems& items, const FileReading& reading,
                       std::vector<Finding>& out) {
  for (const ItemProblem& p : items.Problems) {
    Finding f;
    switch (p.Kind) {
      case ItemProblemKind::CutAction: {
        // Said already when the action's own head was cut.
        const SpriteRole& role = reading.Actions.Sprites[static_cast<size_t>(p.Sprite)];
        if (role.ActionIndex >= 0 &&
            IsCut(reading.Actions.Actions[static_cast<size_t>(role.ActionIndex)]))
          continue;
        f = Make(CheckCode::CutPseudo, p.Sprite, p.Value, p.Need);
        f.Action = role.Action;
        break;
      }
      case ItemProblemKind::UnknownProperty:
        f = Make(CheckCode::UnknownProperty, p.Sprite, p.Value);
        break;
      case ItemProblemKind::UnknownGroupType:
        f = Make(CheckCode::UnknownGroupType, p.Sprite, p.Value);
        break;
      case ItemProblemKind::UndefinedGroup:
        f = Make(CheckCode::UndefinedGroup, p.Sprite, p.Value);
        break;
      case ItemProblemKind::UndefinedSet:
        f = Make(CheckCode::UndefinedSet, p.Sprite, p.Value, 0);
        break;
      case ItemProblemKind::NoSets:
        f = Make(CheckCode::UndefinedSet, p.Sprite, p.Value, 1);
        break;
      case ItemProblemKind::SetOutsideFile:
        f = Make(CheckCode::SetOutsideFile, p.Sprite, p.Value);
        break;
      case ItemProblemKind::Loop:
        f = Make(CheckCode::GroupLoop, p.Sprite, p.Value);
        break;
    }
    f.Feature = p.Feature;
    out.push_back(f);
  }
}

void CheckItems(const GrfItems& items, std::vector<Finding>& out) {
  for (const Item& item : items.Items) {
    if (!NeedsBoth(item.Feature)) continue;
    const bool props = !item.Properties.empty(), graphics = !item.Graphics.empty();
    if (props == graphics) continue;
    Finding f = props ? Make(CheckCode::PropertiesNoGraphics, item.Properties[0].Sprite)
                      : Make(CheckCode::GraphicsNoProperties, item.Graphics[0].Sprite);
    f.HasItem = true;
    f.Feature = item.Feature;
    f.Id = item.Id;
    out.push_back(f);
  }
}

// Groups and sets reached from any Action 03, by a walk over the graph.
void CheckReach(const GrfItems& items, std::vector<Finding>& out) {
  std::vector<bool> groupSeen(items.Groups.size(), false), setSeen(items.Sets.size(), false);
  std::vector<int32_t> todo;
  auto visit = [&](const GroupRef& r) {
    if (r.Kind == RefKind::Group && r.Group >= 0 &&
        static_cast<size_t>(r.Group) < groupSeen.size() && !groupSeen[static_cast<size_t>(r.Group)])
      groupSeen[static_cast<size_t>(r.Group)] = true, todo.push_back(r.Group);
    if (r.Kind == RefKind::Set && r.Set >= 0 && static_cast<size_t>(r.Set) < setSeen.size())
      setSeen[static_cast<size_t>(r.Set)] = true;
  };
  auto visitSet = [&](int32_t set) {
    if (set >= 0 && static_cast<size_t>(set) < setSeen.size())
      setSeen[static_cast<size_t>(set)] = true;
  };
  for (const Item& item : items.Items)
    for (const GraphicsEntry& e : item.Graphics) visit(e.Target);
  for (const GraphicsEntry& e : items.Generic) visit(e.Target);
  while (!todo.empty()) {
    const SpriteGroup& g = items.Groups[static_cast<size_t>(todo.back())];
    todo.pop_back();
    for (const GroupRef& r : g.Loaded) visit(r);
    for (const GroupRef& r : g.Loading) visit(r);
    for (const GroupRef& r : g.Choices) visit(r);
    for (const VarRange& r : g.Ranges) visit(r.Target);
    if (g.HasDefault) visit(g.Default);
    visitSet(g.Ground.Set);
    for (const LayoutSprite& s : g.Sprites) visitSet(s.Set);
  }
  for (size_t i = 0; i < items.Groups.size(); ++i) {
    if (groupSeen[i]) continue;
    Finding f = Make(CheckCode::GroupUnreached, items.Groups[i].Sprite, items.Groups[i].Id);
    f.Feature = items.Groups[i].Feature;
    f.Action = 0x02;
    out.push_back(f);
  }
  for (size_t i = 0; i < items.Sets.size(); ++i) {
    if (setSeen[i]) continue;
    Finding f = Make(CheckCode::SetUnreached, items.Sets[i].Action, items.Sets[i].Number);
    f.Feature = items.Sets[i].Feature;
    f.Action = 0x01;
    out.push_back(f);
  }
}

// A range is tried only when no earlier one matched: one that earlier ones cover whole is never
// taken, one that shares values with an earlier one loses those values.
void CheckRanges(const GrfItems& items, std::vector<Finding>& out) {
  for (const SpriteGroup& g : items.Groups) {
    if (g.Kind != GroupKind::Variational) continue;
    for (size_t k = 0; k < g.Ranges.size(); ++k) {
      const VarRange& r = g.Ranges[k];
      Finding f;
      bool found = false;
      if (r.Low > r.High) {
        f = Make(CheckCode::RangeUnreachable, g.Sprite, r.Low, r.High), found = true;
      } else {
        std::vector<std::pair<uint32_t, uint32_t>> earlier;
        int64_t first = -1;
        for (size_t j = 0; j < k; ++j) {
          const VarRange& e = g.Ranges[j];
          if (e.Low > e.High || e.High < r.Low || e.Low > r.High) continue;
          if (first < 0) first = static_cast<int64_t>(j);
          earlier.emplace_back(std::max(e.Low, r.Low), std::min(e.High, r.High));
        }
        std::sort(earlier.begin(), earlier.end());
        uint64_t next = r.Low;  // the first value not yet covered
        for (const auto& [low, high] : earlier)
          if (low <= next) next = std::max<uint64_t>(next, uint64_t{high} + 1);
        if (first >= 0 && next > r.High)
          f = Make(CheckCode::RangeUnreachable, g.Sprite, r.Low, r.High), found = true;
        else if (first >= 0)
          f = Make(CheckCode::RangeOverlaps, g.Sprite, r.Low, r.High, first), found = true;
      }
      if (found) {
        f.Feature = g.Feature;
        f.Action = 0x02;
        out.push_back(f);
      }
    }
  }
}

bool NeedsIdentity(uint8_t action) {
  switch (action) {
    case 0x00:
    case 0x01:
    case 0x02:
    case 0x03:
    case 0x04:
      return true;
    default:
      return false;
  }
}

void CheckIdentity(const FileReading& reading, std::vector<Finding>& out) {
  const GrfIdentity& id = reading.Actions.Identity;
  int32_t firstNeed = -1;
  for (const ActionRecord& a : reading.Actions.Actions)
    if (!a.IsSpriteCount && NeedsIdentity(a.Action)) {
      firstNeed = a.Sprite;
      break;
    }
  if (!id.HasAction8 && firstNeed >= 0) out.push_back(Make(CheckCode::NoAction8, -1));
  if (id.HasAction8 && firstNeed >= 0 && firstNeed < id.Action8Sprite) {
    Finding f = Make(CheckCode::Action8Late, id.Action8Sprite, firstNeed);
    f.Action = 0x08;
    out.push_back(f);
  }
  if (id.HasInfo && id.Info.HasVersion && id.Info.HasMinVersion &&
      id.Info.MinVersion > id.Info.Version) {
    Finding f =
        Make(CheckCode::MinAboveVersion, id.InfoSprite, id.Info.Version, id.Info.MinVersion);
    f.Action = 0x14;
    out.push_back(f);
  }
}

void CheckRecolourCounts(const FileReading& reading, std::vector<Finding>& out) {
  for (const ActionRecord& a : reading.Actions.Actions) {
    if (a.IsSpriteCount || a.Action != 0x05 || IsCut(a) || (a.Type & 0x7F) != 0x0A) continue;
    const int64_t offset = a.HasOffset ? int64_t{a.First} : 0;
    if (a.HasOffset ? offset + a.Count <= kTwoColourMapCount
                    : a.Count == int64_t{kTwoColourMapCount})
      continue;
    Finding f = Make(CheckCode::RecolourCount, a.Sprite, a.Count, a.HasOffset ? offset : -1,
                     int64_t{kTwoColourMapCount});
    f.Action = 0x05;
    out.push_back(f);
  }
}

// The first byte of a text that breaks UTF-8 (overlong forms, surrogates and values past
// U+10FFFF included), or -1.
int64_t FirstBadUtf8(const uint8_t* t, size_t n) {
  size_t i = 0;
  while (i < n) {
    const uint8_t c = t[i];
    if (c < 0x80) {
      ++i;
      continue;
    }
    size_t length = 0;
    uint32_t cp = 0, least = 0;
    if ((c & 0xE0) == 0xC0)
      length = 2, cp = c & 0x1Fu, least = 0x80;
    else if ((c & 0xF0) == 0xE0)
      length = 3, cp = c & 0x0Fu, least = 0x800;
    else if ((c & 0xF8) == 0xF0)
      length = 4, cp = c & 0x07u, least = 0x10000;
    else
      return static_cast<int64_t>(i);
    if (n - i < length) return static_cast<int64_t>(i);
    for (size_t k = 1; k < length; ++k) {
      if ((t[i + k] & 0xC0) != 0x80) return static_cast<int64_t>(i);
      cp = cp << 6 | (t[i + k] & 0x3Fu);
    }
    if (cp < least || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF))
      return static_cast<int64_t>(i);
    i += length;
  }
  return -1;
}

// A text from `at` to its NUL (or the end): one finding when it is marked UTF-8 and is not.
// Gives where the next text starts.
size_t CheckText(const std::vector<uint8_t>& b, size_t at, int64_t id, const ActionRecord& a,
                 uint8_t feature, std::vector<Finding>& out) {
  const auto nul = std::find(b.begin() + static_cast<std::ptrdiff_t>(at), b.end(), uint8_t{0});
  const size_t end = static_cast<size_t>(nul - b.begin());
  if (end - at >= 2 && b[at] == 0xC3 && b[at + 1] == 0x9E) {
    const int64_t bad = FirstBadUtf8(b.data() + at + 2, end - at - 2);
    if (bad >= 0) {
      Finding f =
          Make(CheckCode::BadUtf8, a.Sprite, id, bad + 2, b[at + 2 + static_cast<size_t>(bad)]);
      f.Action = a.Action;
      f.Feature = feature;
      out.push_back(f);
    }
  }
  return end + 1;
}

// Texts in actions are Latin-1, which any bytes are, unless they open with the UTF-8 form of
// "Þ": from there on UTF-8. Action 04's texts and Action 08's name and description.
void CheckTexts(const FileReading& reading, std::vector<Finding>& out) {
  for (const ActionRecord& a : reading.Actions.Actions) {
    if (a.IsSpriteCount || IsCut(a) || a.ChangedAtLoad || (a.Action != 0x04 && a.Action != 0x08))
      continue;
    const auto i = static_cast<size_t>(a.Sprite);
    if (i >= reading.Bytes.size()) continue;
    const std::vector<uint8_t>& b = reading.Bytes[i];
    if (a.Action == 0x08) {
      if (b.size() < 6) continue;
      const size_t next = CheckText(b, 6, -1, a, 0, out);
      if (next < b.size()) CheckText(b, next, -2, a, 0, out);
      continue;
    }
    if (b.size() < 5) continue;
    size_t at = 4;
    uint32_t id = b[4];
    if (b[2] & 0x80) {  // a word
      if (b.size() < 6) continue;
      id = b[4] | uint32_t{b[5]} << 8;
      at = 6;
    } else if (b[4] == 0xFF) {  // an extended byte
      if (b.size() < 7) continue;
      id = b[5] | uint32_t{b[6]} << 8;
      at = 7;
    } else {
      at = 5;
    }
    for (uint32_t k = 0; k < b[3] && at < b.size(); ++k)
      at = CheckText(b, at, int64_t{id} + k, a, b[1], out);
  }
}

bool WhollyTransparent(const SpritePicture& p) {
  if (p.Width <= 0 || p.Height <= 0) return false;
  if (!p.Rgba.empty()) {
    for (size_t i = 3; i < p.Rgba.size(); i += 4)
      if (p.Rgba[i] != 0) return false;
    return true;
  }
  return std::all_of(p.Indices.begin(), p.Indices.end(), [](uint8_t v) { return v == 0; });
}

void CheckPictures(const GrfFile& file, const FileReading& reading, std::vector<Finding>& out) {
  const int32_t count = SpriteCount(file);
  SpritePicture picture;
  for (int32_t i = 0; i < count; ++i) {
    // A blank glyph is a character drawn as space.
    if (reading.Actions.Sprites[static_cast<size_t>(i)].Kind == RoleKind::Glyph) continue;
    const int32_t shown = DefaultAlternative(file, i);
    if (shown < 0 || FactsOf(file, i, shown).Kind != SpriteKind::Picture) continue;
    if (const GrfResult r = PictureOf(file, i, shown, picture); r != GrfResult::Ok) {
      Finding f = Make(CheckCode::PictureUnreadable, i);
      f.Problem = {r, 0, i + 1, 0, 0};
      if (const auto* v2 = std::get_if<GrfV2File>(&file.Contents)) {
        const GrfV2Sprite& s = v2->Index.Sprites[static_cast<size_t>(i)];
        const GrfV2Alternative& a =
            v2->Index.Alternatives[static_cast<size_t>(s.FirstAlternative + shown)];
        f.Problem.Position = a.StreamOffset;
        f.Problem.Id = a.Id;
      }
      out.push_back(f);
      continue;
    }
    // One transparent pixel is the usual deliberate blank.
    if (int64_t{picture.Width} * picture.Height > 1 && WhollyTransparent(picture))
      out.push_back(Make(CheckCode::Transparent, i, picture.Width, picture.Height));
  }
}

// The zoom levels of a sprite's pictures, one bit each; 0 for a pseudo-sprite or data.
uint32_t ZoomMask(const GrfFile& file, int32_t sprite, bool* only32 = nullptr) {
  uint32_t mask = 0;
  bool has8 = false, has32 = false;
  for (int32_t k = 0; k < AlternativeCount(file, sprite); ++k) {
    const AlternativeInfo a = AlternativeOf(file, sprite, k);
    if (a.Data) continue;
    mask |= 1u << (a.Zoom & 31);
    (a.Depth == 32 ? has32 : has8) = true;
  }
  if (only32 != nullptr) *only32 = has32 && !has8;
  return mask;
}

// A file that declares the 8-bit blitter in Action 14 has nothing to show for a sprite whose
// pictures are all 32-bit. Said once, at the first such sprite.
void CheckDepths(const GrfFile& file, const FileReading& reading, std::vector<Finding>& out) {
  const GrfIdentity& id = reading.Actions.Identity;
  if (!file.HasAlternatives || !id.HasInfo || !id.Info.HasDepth || id.Info.Depth != '8') return;
  int32_t first = -1;
  int64_t count = 0;
  for (int32_t i = 0; i < SpriteCount(file); ++i) {
    bool only32 = false;
    ZoomMask(file, i, &only32);
    if (!only32) continue;
    if (first < 0) first = i;
    ++count;
  }
  if (count > 0) out.push_back(Make(CheckCode::No8Bit, first, count));
}

// The pictures an item's graphics reach should come in the same zoom levels: one that lacks a
// level the others have is drawn from another level there. Said once an item.
void CheckZooms(const GrfFile& file, const GrfItems& items, std::vector<Finding>& out) {
  if (!file.HasAlternatives) return;
  std::vector<uint32_t> masks(static_cast<size_t>(SpriteCount(file)));
  for (size_t i = 0; i < masks.size(); ++i) masks[i] = ZoomMask(file, static_cast<int32_t>(i));
  for (const Item& item : items.Items) {
    if (item.Graphics.empty()) continue;
    const ItemGraph graph = GraphOf(items, item);
    uint32_t all = 0;
    int64_t pictures = 0;
    for (int32_t s : graph.Sprites)
      if (s >= 0 && static_cast<size_t>(s) < masks.size() && masks[static_cast<size_t>(s)] != 0)
        all |= masks[static_cast<size_t>(s)], ++pictures;
    int32_t first = -1;
    int64_t lacking = 0;
    for (int32_t s : graph.Sprites) {
      if (s < 0 || static_cast<size_t>(s) >= masks.size()) continue;
      const uint32_t m = masks[static_cast<size_t>(s)];
      if (m == 0 || m == all) continue;
      if (first < 0 || s < first) first = s;
      ++lacking;
    }
    if (lacking == 0) continue;
    const uint32_t missing = all & ~masks[static_cast<size_t>(first)];
    int64_t zoom = 0;
    while (!(missing >> zoom & 1u)) ++zoom;
    Finding f = Make(CheckCode::ZoomGaps, first, zoom, lacking, pictures);
    f.HasItem = true;
    f.Feature = item.Feature;
    f.Id = item.Id;
    out.push_back(f);
  }
}

// A vehicle turned round stands on the same ground: the pictures of opposite views k and k + 4
// should put the middle of their bottom edge at the same place from the shared origin. Which
// view is which is inferred, so this is a note. One a set of eight views.
void CheckViews(const GrfFile& file, const GrfItems& items, std::vector<Finding>& out) {
  for (const SpriteSetRef& set : items.Sets) {
    if (set.Feature > 0x03 || set.Count != 8) continue;
    for (int32_t k = 0; k < 4; ++k) {
      const int32_t a = set.First + k, b = a + 4;
      const int32_t da = DefaultAlternative(file, a), db = DefaultAlternative(file, b);
      if (da < 0 || db < 0) continue;
      const SpriteFacts fa = FactsOf(file, a, da), fb = FactsOf(file, b, db);
      if (fa.Kind != SpriteKind::Picture || fb.Kind != SpriteKind::Picture ||
          AlternativeOf(file, a, da).Zoom != AlternativeOf(file, b, db).Zoom)
        continue;
      // Twice the middle, so that odd widths stay whole; a pixel either way is rounding.
      const int64_t ma = 2 * int64_t{fa.XOffset} + fa.Width,
                    mb = 2 * int64_t{fb.XOffset} + fb.Width;
      const int64_t ba = int64_t{fa.YOffset} + fa.Height, bb = int64_t{fb.YOffset} + fb.Height;
      if (std::abs(ma - mb) <= 2 && std::abs(ba - bb) <= 1) continue;
      Finding f = Make(CheckCode::ViewsAsymmetric, a, set.Number, k, ma, ba, mb, bb);
      f.Feature = set.Feature;
      f.Action = 0x01;
      out.push_back(f);
      break;
    }
  }
}

// A building sprite's bounding box belongs inside its 16 x 16 tile; one reaching out is sorted
// against the neighbours' sprites wrongly. Boxes placed through registers are not known here.
// Said once a layout, at its first such sprite.
void CheckBoxes(const GrfItems& items, std::vector<Finding>& out) {
  constexpr int kTile = 16;
  for (const SpriteGroup& g : items.Groups) {
    if (g.Kind != GroupKind::Layout) continue;
    Finding f;
    int64_t count = 0;
    for (size_t k = 0; k < g.Sprites.size(); ++k) {
      const LayoutSprite& s = g.Sprites[k];
      if (!s.HasBox || s.Child || (s.Flags & 0x10)) continue;
      if (s.X >= 0 && s.Y >= 0 && s.X + s.XExtent <= kTile && s.Y + s.YExtent <= kTile) continue;
      if (count++ == 0)
        f = Make(CheckCode::BoxOutsideTile, g.Sprite, static_cast<int64_t>(k), s.X, s.Y, s.XExtent,
                 s.YExtent);
    }
    if (count == 0) continue;
    f.Values[5] = count;
    f.Feature = g.Feature;
    f.Action = 0x02;
    out.push_back(f);
  }
}

}  // namespace

std::vector<Finding> CheckGrf(const GrfFile& file, const FileReading& reading,
                              const GrfItems& items) {
  std::vector<Finding> out;
  bool cut = false;
  CheckFileEnd(file, reading, out, cut);
  CheckBlocks(file, reading, out);
  CheckItemProblems(items, reading, out);
  CheckItems(items, out);
  CheckReach(items, out);
  CheckRanges(items, out);
  CheckIdentity(reading, out);
  CheckRecolourCounts(reading, out);
  CheckTexts(reading, out);
  CheckPictures(file, reading, out);
  CheckDepths(file, reading, out);
  CheckZooms(file, items, out);
  CheckViews(file, items, out);
  CheckBoxes(items, out);
  std::stable_sort(out.begin(), out.end(),
                   [](const Finding& a, const Finding& b) { return a.Sprite < b.Sprite; });
  return out;
}

}  // namespace vossel
