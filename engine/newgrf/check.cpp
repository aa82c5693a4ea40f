#include "check.h"

#include <algorithm>
#include <utility>

namespace vossel {
namespace {

Severity LevelOf(CheckCode code) {
  for (const CodeRow& row : CheckCodes())
    if (row.Code == code) return row.Level;
  return Severity::Error;
}

Finding Make(CheckCode code, int32_t sprite, int64_t a = 0, int64_t b = 0, int64_t c = 0) {
  Finding f;
  f.Code = code;
  f.Level = LevelOf(code);
  f.Sprite = sprite;
  f.Values[0] = a;
  f.Values[1] = b;
  f.Values[2] = c;
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
  CheckPictures(file, reading, out);
  std::stable_sort(out.begin(), out.end(),
                   [](const Finding& a, const Finding& b) { return a.Sprite < b.Sprite; });
  return out;
}

}  // namespace vossel
