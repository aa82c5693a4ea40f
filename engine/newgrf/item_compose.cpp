// Following an item's graphics to what it draws, and the parts of a sprite layout with the bits of
// their sprite words worked out.
#include "item_compose.h"

#include <algorithm>
#include <optional>

namespace vossel {
namespace {

// Temporary registers stored on the way; unset until a store fills them.
using Registers = std::array<std::optional<uint32_t>, 256>;

struct Walk {
  const GrfItems& Items;
  Registers Temp{};
  bool Assumed = false;
};

int32_t PickFor(const ComposeRequest& request, const SpriteGroup& g, int32_t fallback) {
  for (const BranchPick& p : request.Picks)
    if (p.Sprite == g.Sprite) return p.Pick;
  return fallback;
}

// One adjusted value: a game variable reads as 0, a temporary register as stored (unknown: 0),
// the constant variable 1A as all bits. Empty when it cannot be known.
std::optional<uint32_t> Adjusted(Walk& w, const VarAdjust& a, uint32_t sizeMask) {
  uint32_t v = 0;
  if (a.Variable == 0x1A) {
    v = 0xFFFFFFFFu;
  } else if (a.Variable == 0x7D) {
    if (!w.Temp[a.Parameter]) return std::nullopt;
    v = *w.Temp[a.Parameter];
  } else if (a.Variable == 0x7B || a.Variable == 0x7E) {
    return std::nullopt;  // indirect reads and procedure calls are not followed
  } else {
    w.Assumed = true;
  }
  v = (a.Shift >= 32 ? 0 : v >> a.Shift) & a.Mask & sizeMask;
  if (a.HasDivide) v = a.Divisor == 0 ? 0 : (v + a.Add) / a.Divisor;
  if (a.HasModulo) v = a.Divisor == 0 ? 0 : (v + a.Add) % a.Divisor;
  return v & sizeMask;
}

// val1 op val2 for the operators whose meaning is confirmed; empty for the others.
std::optional<uint32_t> Operate(Walk& w, uint8_t op, uint32_t a, uint32_t b) {
  const auto sa = static_cast<int32_t>(a), sb = static_cast<int32_t>(b);
  switch (op) {
    case 0x00:
      return a + b;
    case 0x01:
      return a - b;
    case 0x02:
      return static_cast<uint32_t>(sa < sb ? sa : sb);
    case 0x03:
      return static_cast<uint32_t>(sa > sb ? sa : sb);
    case 0x04:
      return a < b ? a : b;
    case 0x06:
      if (sb == 0 || (sa == INT32_MIN && sb == -1)) return 0u;
      return static_cast<uint32_t>(sa / sb);
    case 0x07:
      if (sb == 0 || (sa == INT32_MIN && sb == -1)) return 0u;
      return static_cast<uint32_t>(sa % sb);
    case 0x0A:
      return a * b;
    case 0x0B:
      return a & b;
    case 0x0C:
      return a | b;
    case 0x0D:
      return a ^ b;
    case 0x0E:
      w.Temp[b & 0xFF] = a;
      return a;
    case 0x0F:
      return b;
    case 0x10:
      return a;  // persistent registers are not kept
    case 0x11:
      return (a >> (b & 31)) | (a << ((32 - (b & 31)) & 31));
    case 0x12:
      return sa < sb ? 0u : sa == sb ? 1u : 2u;
    case 0x14:
      return (b & 31) == b ? a << b : 0u;
    case 0x15:
      return (b & 31) == b ? a >> b : 0u;
    case 0x16:
      return static_cast<uint32_t>(sa >> (b & 31));
    default:
      return std::nullopt;
  }
}

// The value of a variational group; empty when a part of it cannot be known. Stores it makes fill
// the registers, those after an unknown value are dropped.
std::optional<uint32_t> Evaluate(Walk& w, const SpriteGroup& g) {
  const uint32_t sizeMask = g.ValueSize == 1 ? 0xFFu : g.ValueSize == 2 ? 0xFFFFu : 0xFFFFFFFFu;
  std::optional<uint32_t> value;
  for (size_t i = 0; i < g.Adjusts.size(); ++i) {
    const std::optional<uint32_t> v = Adjusted(w, g.Adjusts[i], sizeMask);
    if (i == 0) {
      value = v;
    } else if (value && v) {
      value = Operate(w, g.Adjusts[i].Op, *value, *v);
      if (value) *value &= sizeMask;
    } else {
      // A store of an unknown value leaves its register unknown.
      if (g.Adjusts[i].Op == 0x0E && v) w.Temp[*v & 0xFF].reset();
      value.reset();
    }
  }
  return value;
}

const GraphicsEntry* FindEntry(const Item& item, const ComposeRequest& r, int32_t& index) {
  for (size_t i = 0; i < item.Graphics.size(); ++i) {
    const GraphicsEntry& e = item.Graphics[i];
    const bool fits = r.Entry == EntryKind::Cargo ? e.Kind == EntryKind::Cargo && e.Cargo == r.Cargo
                                                  : e.Kind == r.Entry;
    if (fits) {
      index = static_cast<int32_t>(i);
      return &e;
    }
  }
  return nullptr;
}

// The registers a layout sprite's flags take, in bit order, by flag bit (-1 where none).
std::array<int32_t, 8> RegisterSlots(const LayoutSprite& s) {
  std::array<int32_t, 8> slots{};
  slots.fill(-1);
  int32_t at = 0;
  for (int bit = 0; bit < 8; ++bit) {
    if (!(s.Flags & (1u << bit)) || bit == 3) continue;
    slots[static_cast<size_t>(bit)] = at;
    at += bit == 4 && s.HasBox ? 2 : 1;
  }
  return slots;
}

ComposedPart MakePart(Walk& w, const LayoutSprite& s, int32_t index, uint32_t within,
                      bool& unknown) {
  ComposedPart p;
  p.Role = index < 0 ? PartRole::Ground : s.Child ? PartRole::Child : PartRole::Building;
  p.Index = index;
  p.Word = s.Word;
  p.Flags = s.Flags;
  const std::array<int32_t, 8> slots = RegisterSlots(s);
  // The register of a flag bit (and the one after it), 0 where it is not known.
  const auto reg = [&](int bit, int32_t second = 0) -> uint32_t {
    const int32_t at = slots[static_cast<size_t>(bit)] + second;
    if (slots[static_cast<size_t>(bit)] < 0 || at >= static_cast<int32_t>(s.Registers.size()))
      return 0;
    p.RegisterUsed = true;
    const std::optional<uint32_t>& v = w.Temp[s.Registers[static_cast<size_t>(at)]];
    if (!v) p.RegisterKnown = false;
    return v.value_or(0);
  };
  if (slots[0] >= 0) p.Hidden = reg(0) == 0;
  const uint32_t add = (slots[1] >= 0 ? reg(1) : 0) + ((s.Word & 0x80000000u) ? within : 0);
  const uint32_t number = s.Word & 0x3FFF;
  if (s.Word & 0x80000000u) {
    if (s.Set >= 0 && static_cast<size_t>(s.Set) < w.Items.Sets.size()) {
      const SpriteSetRef& set = w.Items.Sets[static_cast<size_t>(s.Set)];
      p.Source = SpriteSource::File;
      p.OutsideSet = add >= set.Count;
      p.Sprite = static_cast<int32_t>(set.First + static_cast<int64_t>(add % (1u << 20)));
    } else {
      p.Source = SpriteSource::None;
      p.Sprite = static_cast<int32_t>(number);
    }
  } else {
    p.Source = SpriteSource::Base;
    p.Sprite = static_cast<int32_t>((number + add) & 0x3FFFFFFF);
  }
  p.Mode = (s.Word & 0x4000)   ? RecolourMode::Transparent
           : (s.Word & 0x8000) ? RecolourMode::Remap
                               : RecolourMode::None;
  p.Recolour =
      static_cast<int32_t>((((s.Word >> 16) & 0x3FFF) + (slots[2] >= 0 ? reg(2) : 0)) & 0x3FFFFFFF);
  // A recolour sprite of the file's sets: which set it names is not kept with the layout.
  p.RecolourFrom = (s.Flags & 0x0008) ? SpriteSource::None : SpriteSource::Base;
  p.AlwaysDraw = (s.Word & 0x40000000u) != 0;
  p.X = s.X;
  p.Y = s.Y;
  p.Z = s.Z;
  p.XExtent = s.XExtent;
  p.YExtent = s.YExtent;
  p.ZExtent = s.ZExtent;
  if (slots[4] >= 0) {
    p.X += static_cast<int32_t>(reg(4));
    if (s.HasBox) p.Y += static_cast<int32_t>(reg(4, 1));
  }
  if (slots[5] >= 0) (s.HasBox ? p.Z : p.Y) += static_cast<int32_t>(reg(5));
  if (!p.RegisterKnown) unknown = true;
  return p;
}

// The most sprites any set of the layout holds.
uint32_t LargestSet(const GrfItems& items, const SpriteGroup& g) {
  uint32_t most = 0;
  const auto count = [&](const LayoutSprite& s) {
    if ((s.Word & 0x80000000u) && s.Set >= 0 && static_cast<size_t>(s.Set) < items.Sets.size())
      most = std::max(most, items.Sets[static_cast<size_t>(s.Set)].Count);
  };
  count(g.Ground);
  for (const LayoutSprite& s : g.Sprites) count(s);
  return most;
}

void LayoutParts(Walk& w, const SpriteGroup& g, uint32_t within, Composition& c) {
  c.Parts.push_back(MakePart(w, g.Ground, -1, within, c.RegistersUnknown));
  int32_t parent = -1;
  for (size_t i = 0; i < g.Sprites.size(); ++i) {
    ComposedPart p = MakePart(w, g.Sprites[i], static_cast<int32_t>(i), within, c.RegistersUnknown);
    if (p.Role == PartRole::Child)
      p.Parent = parent;
    else
      parent = static_cast<int32_t>(c.Parts.size());
    c.Parts.push_back(p);
  }
  // The ground part without a sprite draws nothing.
  if (g.Ground.Word == 0 && g.Ground.Flags == 0) c.Parts.front().Hidden = true;
}

}  // namespace

bool IsVehicleFeature(uint8_t feature) {
  return feature <= 0x03;
}

bool IsLayoutItem(uint8_t feature) {
  return feature == 0x07 || feature == 0x09 || feature == 0x0F || feature == 0x11;
}

const char* ViewDirection(int32_t view) {
  static const char* const kDirections[] = {"N", "NE", "E", "SE", "S", "SW", "W", "NW"};
  return view >= 0 && view < 8 ? kDirections[view] : "";
}

Composition Compose(const GrfItems& items, const Item& item, const ComposeRequest& request) {
  Composition c;
  const GraphicsEntry* entry = FindEntry(item, request, c.Entry);
  if (entry == nullptr && request.Entry != EntryKind::Default) {
    ComposeRequest fallback;
    fallback.Entry = EntryKind::Default;
    entry = FindEntry(item, fallback, c.Entry);
    c.FellBack = entry != nullptr;
  }
  if (entry == nullptr) return c;
  Walk w{items};
  GroupRef ref = entry->Target;
  std::vector<bool> seen(items.Groups.size(), false);
  for (;;) {
    if (ref.Kind == RefKind::Callback || ref.Kind == RefKind::Undefined) {
      c.End = ref.Kind == RefKind::Callback ? ComposeEnd::Callback : ComposeEnd::Undefined;
      c.Value = ref.Value;
      break;
    }
    if (ref.Kind == RefKind::Set || ref.Group < 0 ||
        static_cast<size_t>(ref.Group) >= items.Groups.size()) {
      c.End = ComposeEnd::Undefined;
      c.Value = ref.Value;
      break;
    }
    if (seen[static_cast<size_t>(ref.Group)]) {
      c.End = ComposeEnd::Loop;
      c.Group = ref.Group;
      break;
    }
    seen[static_cast<size_t>(ref.Group)] = true;
    const SpriteGroup& g = items.Groups[static_cast<size_t>(ref.Group)];
    BranchPoint b;
    b.Group = ref.Group;
    if (g.Kind == GroupKind::Random) {
      if (g.Choices.empty()) {
        c.End = ComposeEnd::Other;
        c.Group = ref.Group;
        break;
      }
      b.Kind = BranchKind::Random;
      b.Choices = static_cast<int32_t>(g.Choices.size());
      b.Picked = PickFor(request, g, 0);
      if (b.Picked < 0 || b.Picked >= b.Choices) b.Picked = 0;
      c.Branches.push_back(b);
      ref = g.Choices[static_cast<size_t>(b.Picked)];
      continue;
    }
    if (g.Kind == GroupKind::Variational) {
      b.Kind = BranchKind::Variational;
      b.Choices = static_cast<int32_t>(g.Ranges.size());
      b.DefaultPick = -1;
      if (const std::optional<uint32_t> v = Evaluate(w, g)) {
        b.Value = *v;
        for (size_t i = 0; i < g.Ranges.size() && !b.Computed; ++i)
          if (g.Ranges[i].Low <= *v && *v <= g.Ranges[i].High) {
            b.DefaultPick = static_cast<int32_t>(i);
            b.Computed = true;
          }
      }
      b.Picked = PickFor(request, g, b.DefaultPick);
      if (b.Picked < -1 || b.Picked >= b.Choices) b.Picked = b.DefaultPick;
      c.Branches.push_back(b);
      if (b.Picked < 0 && !g.HasDefault) {
        c.End = ComposeEnd::Other;
        c.Group = ref.Group;
        break;
      }
      ref = b.Picked < 0 ? g.Default : g.Ranges[static_cast<size_t>(b.Picked)].Target;
      continue;
    }
    c.Group = ref.Group;
    if (g.Kind == GroupKind::Layout) {
      c.End = ComposeEnd::Layout;
      // Which sprite of its sets a layout draws the game decides from the tile's state; it is
      // the user's to pick here.
      const uint32_t most = LargestSet(items, g);
      if (most > 1) {
        b.Kind = BranchKind::SetSprite;
        b.Choices = static_cast<int32_t>(std::min<uint32_t>(most, 1u << 16));
        b.Picked = PickFor(request, g, 0);
        if (b.Picked < 0 || b.Picked >= b.Choices) b.Picked = 0;
        c.Branches.push_back(b);
      }
      LayoutParts(w, g, static_cast<uint32_t>(b.Picked), c);
      break;
    }
    if (g.Kind != GroupKind::Standard) {
      c.End = ComposeEnd::Other;
      break;
    }
    const std::vector<GroupRef>& sets =
        request.Loading && !g.Loading.empty() ? g.Loading : g.Loaded;
    if (sets.empty()) {
      c.End = ComposeEnd::Other;
      break;
    }
    if (sets.size() > 1) {
      b.Kind = BranchKind::Amount;
      b.Choices = static_cast<int32_t>(sets.size());
      b.Picked = PickFor(request, g, 0);
      if (b.Picked < 0 || b.Picked >= b.Choices) b.Picked = 0;
      c.Branches.push_back(b);
    }
    const GroupRef& set = sets[static_cast<size_t>(b.Picked)];
    if (set.Kind != RefKind::Set || set.Set < 0 ||
        static_cast<size_t>(set.Set) >= items.Sets.size()) {
      c.End = set.Kind == RefKind::Callback ? ComposeEnd::Callback : ComposeEnd::Undefined;
      c.Value = set.Value;
      break;
    }
    c.End = IsVehicleFeature(item.Feature) ? ComposeEnd::Views : ComposeEnd::Set;
    c.Set = set.Set;
    const SpriteSetRef& r = items.Sets[static_cast<size_t>(set.Set)];
    for (uint32_t k = 0; k < r.Count && k < 1024; ++k) {
      const int64_t sprite = int64_t{r.First} + k;
      if (sprite < items.SpriteCount)
        c.Views.push_back(static_cast<int32_t>(sprite));
      else
        ++c.MissingViews;
    }
    break;
  }
  c.VariablesAssumed = w.Assumed;
  return c;
}

}  // namespace vossel
