// Action 02 groups: standard (sets for loaded and loading), random, variational, sprite layouts and
// industry production. References are resolved as the group is read, to what their IDs mean at
// that point of the file.
#include "item_read.h"

namespace vossel {
namespace {

bool IsLayoutFeature(uint8_t feature) {
  return feature == 0x07 || feature == 0x09 || feature == 0x0F || feature == 0x11;
}

GroupRef SetReference(uint32_t word, SpriteGroup& g, const GroupContext& context) {
  GroupRef r;
  r.Value = word;
  if (word & 0x8000) {
    r.Kind = RefKind::Callback;
    r.Value = word & 0x7FFF;
    return r;
  }
  const std::vector<int32_t>& sets = *context.SetsOf;
  if (word < sets.size() && sets[word] >= 0) {
    r.Kind = RefKind::Set;
    r.Set = sets[word];
    return r;
  }
  Problem(*context.Items, g.Sprite,
          context.HasSets ? ItemProblemKind::UndefinedSet : ItemProblemKind::NoSets, g.Feature,
          word);
  return r;
}

void ReadRefs(ItemCursor& c, uint32_t n, std::vector<GroupRef>& to, SpriteGroup& g,
              const GroupContext& context, bool sets) {
  for (uint32_t i = 0; i < n; ++i) {
    uint32_t w = 0;
    if (!c.Value(2, w)) return;
    to.push_back(sets ? SetReference(w, g, context) : GroupReference(w, context.Current));
    if (!sets && to.back().Kind == RefKind::Undefined)
      Problem(*context.Items, g.Sprite, ItemProblemKind::UndefinedGroup, g.Feature, w);
  }
}

GroupRef OneRef(ItemCursor& c, SpriteGroup& g, const GroupContext& context) {
  std::vector<GroupRef> one;
  ReadRefs(c, 1, one, g, context, false);
  return one.empty() ? GroupRef{} : one[0];
}

void ReadRandom(ItemCursor& c, SpriteGroup& g, const GroupContext& context) {
  g.Kind = GroupKind::Random;
  if (g.Type == 0x84 && !c.Byte(g.Count)) return;
  uint8_t n = 0;
  if (c.Byte(g.Triggers) && c.Byte(g.RandomBit) && c.Byte(n))
    ReadRefs(c, n, g.Choices, g, context, false);
}

void ReadVariational(ItemCursor& c, SpriteGroup& g, const GroupContext& context) {
  g.Kind = GroupKind::Variational;
  const uint8_t low = g.Type & 0x0F;
  g.ValueSize = low <= 0x02 ? 1 : low <= 0x06 ? 2 : 4;
  g.Related = low == 0x02 || low == 0x06 || low == 0x0A;
  const int size = g.ValueSize;
  for (bool more = true; more;) {
    VarAdjust a;
    if (!g.Adjusts.empty() && !c.Byte(a.Op)) return;
    uint8_t shift = 0;
    if (!c.Byte(a.Variable)) return;
    if (a.Variable >= 0x60 && a.Variable <= 0x7F) {
      a.HasParameter = true;
      if (!c.Byte(a.Parameter)) return;
    }
    if (!c.Byte(shift) || !c.Value(size, a.Mask)) return;
    a.Shift = shift & 0x1F;
    a.HasDivide = (shift & 0x40) != 0;
    a.HasModulo = !a.HasDivide && (shift & 0x80) != 0;
    if ((a.HasDivide || a.HasModulo) && !(c.Value(size, a.Add) && c.Value(size, a.Divisor))) return;
    g.Adjusts.push_back(a);
    more = (shift & 0x20) != 0;
  }
  uint8_t n = 0;
  if (!c.Byte(n)) return;
  for (uint32_t i = 0; i < n; ++i) {
    VarRange r;
    uint32_t w = 0;
    if (!c.Value(2, w)) return;
    r.Target = GroupReference(w, context.Current);
    if (r.Target.Kind == RefKind::Undefined)
      Problem(*context.Items, g.Sprite, ItemProblemKind::UndefinedGroup, g.Feature, w);
    if (!c.Value(size, r.Low) || !c.Value(size, r.High)) return;
    g.Ranges.push_back(r);
  }
  g.Default = OneRef(c, g, context);
  g.HasDefault = !c.Cut;
}

// Registers that the flag word of an advanced layout sprite asks for, in bit order.
int RegisterCount(uint16_t flags, bool box) {
  int n = 0;
  for (int bit = 0; bit < 8; ++bit) {
    if (!(flags & (1u << bit)) || bit == 3) continue;
    n += bit == 4 && box ? 2 : 1;
  }
  return n;
}

bool ReadSpriteWord(ItemCursor& c, LayoutSprite& s, SpriteGroup& g, const GroupContext& context) {
  if (!c.Value(4, s.Word)) return false;
  if (s.Word & 0x80000000u) {
    const GroupRef r = SetReference(s.Word & 0x3FFF, g, context);
    s.Set = r.Set;
  }
  return true;
}

bool ReadRegisters(ItemCursor& c, LayoutSprite& s, bool box) {
  for (int i = RegisterCount(s.Flags, box); i > 0; --i) {
    uint8_t r = 0;
    if (!c.Byte(r)) return false;
    s.Registers.push_back(r);
  }
  return true;
}

// A building sprite with its box, or a child sprite (80 where the z offset would be).
bool ReadPlaced(ItemCursor& c, LayoutSprite& s) {
  uint8_t x = 0, y = 0, z = 0;
  if (!c.Byte(x) || !c.Byte(y) || !c.Byte(z)) return false;
  s.X = static_cast<int8_t>(x);
  s.Y = static_cast<int8_t>(y);
  if (z == 0x80) {
    s.Child = true;
    return true;
  }
  s.HasBox = true;
  s.Z = static_cast<int8_t>(z);
  return c.Byte(s.XExtent) && c.Byte(s.YExtent) && c.Byte(s.ZExtent);
}

}  // namespace

void ReadLayout(ItemCursor& c, SpriteGroup& g, const GroupContext& context) {
  g.Kind = GroupKind::Layout;
  if (g.Type == 0) {
    // Basic: ground, one building sprite and its box.
    g.Form = LayoutForm::Basic;
    LayoutSprite b;
    b.HasBox = true;
    uint8_t x = 0, y = 0;
    if (!ReadSpriteWord(c, g.Ground, g, context) || !ReadSpriteWord(c, b, g, context) ||
        !c.Byte(x) || !c.Byte(y) || !c.Byte(b.XExtent) || !c.Byte(b.YExtent) || !c.Byte(b.ZExtent))
      return;
    b.X = static_cast<int8_t>(x);
    b.Y = static_cast<int8_t>(y);
    if (b.Word != 0) g.Sprites.push_back(b);
    return;
  }
  const bool advanced = (g.Type & 0x40) != 0;
  g.Form = advanced ? LayoutForm::Advanced : LayoutForm::Extended;
  const uint32_t n = g.Type & 0x3F;
  if (!ReadSpriteWord(c, g.Ground, g, context)) return;
  if (advanced) {
    uint32_t flags = 0;
    if (!c.Value(2, flags)) return;
    g.Ground.Flags = static_cast<uint16_t>(flags);
    if (!ReadRegisters(c, g.Ground, false)) return;
  }
  for (uint32_t i = 0; i < n; ++i) {
    LayoutSprite s;
    if (!ReadSpriteWord(c, s, g, context)) return;
    if (advanced) {
      uint32_t flags = 0;
      if (!c.Value(2, flags)) return;
      s.Flags = static_cast<uint16_t>(flags);
    }
    if (!ReadPlaced(c, s) || (advanced && !ReadRegisters(c, s, s.HasBox))) return;
    g.Sprites.push_back(std::move(s));
  }
}

namespace {

void ReadProduction(ItemCursor& c, SpriteGroup& g) {
  g.Kind = GroupKind::Production;
  uint32_t v = 0;
  if (g.Type == 0x00 || g.Type == 0x01) {
    const int word = g.Type == 0x00 ? 2 : 1;
    for (int i = 0; i < 5 && c.Value(word, v); ++i) g.Values.push_back(v);
    if (c.Value(1, v)) g.Values.push_back(v);
    return;
  }
  if (g.Type != 0x02) {
    g.Kind = GroupKind::Unknown;
    return;
  }
  // Counts and (cargo, register) pairs, then the register for running again.
  for (int part = 0; part < 2; ++part) {
    uint32_t n = 0;
    if (!c.Value(1, n)) return;
    g.Values.push_back(n);
    for (uint32_t i = 0; i < 2 * n && c.Value(1, v); ++i) g.Values.push_back(v);
  }
  if (c.Value(1, v)) g.Values.push_back(v);
}

}  // namespace

void Problem(GrfItems& items, int32_t sprite, ItemProblemKind kind, uint8_t feature, uint32_t value,
             uint32_t need) {
  items.Problems.push_back({sprite, kind, feature, value, need});
}

GroupRef GroupReference(uint32_t word, const int32_t* current) {
  GroupRef r;
  r.Value = word;
  if (word & 0x8000) {
    r.Kind = RefKind::Callback;
    r.Value = word & 0x7FFF;
  } else if (word <= 0xFF && current[word] >= 0) {
    r.Kind = RefKind::Group;
    r.Group = current[word];
  }
  return r;
}

void ReadGroupBody(ItemCursor& c, SpriteGroup& g, const GroupContext& context) {
  switch (g.Type) {
    case 0x80:
    case 0x83:
    case 0x84:
      ReadRandom(c, g, context);
      return;
    case 0x81:
    case 0x82:
    case 0x85:
    case 0x86:
    case 0x89:
    case 0x8A:
      ReadVariational(c, g, context);
      return;
    default:
      break;
  }
  if (g.Type >= 0x80) {
    Problem(*context.Items, g.Sprite, ItemProblemKind::UnknownGroupType, g.Feature, g.Type);
    return;
  }
  if (IsLayoutFeature(g.Feature)) return ReadLayout(c, g, context);
  if (g.Feature == 0x0A) return ReadProduction(c, g);
  g.Kind = GroupKind::Standard;
  uint8_t loading = 0;
  if (!c.Byte(loading)) return;
  ReadRefs(c, g.Type, g.Loaded, g, context, true);
  ReadRefs(c, loading, g.Loading, g, context, true);
}

}  // namespace vossel
