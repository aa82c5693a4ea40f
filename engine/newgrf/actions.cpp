#include "actions.h"

#include <algorithm>
#include <cstring>

#include "reader.h"

namespace vossel {
namespace {

// A bounded, forward-only reader of one pseudo-sprite. A field that would reach past the end reads
// nothing, notes how many bytes it would have needed, and leaves the cursor cut: every later read
// fails too, so that nothing after a missing field is taken from the wrong place.
struct Cursor {
  const uint8_t* Data;
  uint64_t Size;
  uint64_t At = 0;
  uint64_t Need = 0;  // the furthest byte asked for
  bool Cut = false;
  uint32_t Fields = 0;  // fields read whole
};

bool Take(Cursor& c, uint64_t n) {
  if (c.Cut ||
      !Fits(static_cast<int64_t>(c.At), static_cast<int64_t>(n), static_cast<int64_t>(c.Size))) {
    if (!c.Cut) c.Need = std::max(c.Need, c.At + n);
    c.Cut = true;
    return false;
  }
  c.At += n;
  c.Need = std::max(c.Need, c.At);
  return true;
}

bool Left(const Cursor& c) {
  return !c.Cut && c.At < c.Size;
}

// Little-endian value of n (at most 4) bytes, through the one bounded reader.
bool Raw(Cursor& c, uint64_t n, uint32_t& v) {
  const auto at = static_cast<int64_t>(c.At);
  if (!Take(c, n)) return false;
  const Reader bytes{c.Data, static_cast<int64_t>(c.Size)};
  v = 0;
  for (uint64_t i = 0; i < n; ++i) {
    uint8_t b = 0;
    vossel::U8(bytes, at + static_cast<int64_t>(i), b);
    v |= static_cast<uint32_t>(b) << (8 * i);
  }
  return true;
}

// Ends a read of one field, counting it when it was read whole.
bool Counted(Cursor& c, bool read) {
  if (read) ++c.Fields;
  return read;
}

bool Number(Cursor& c, uint64_t n, uint32_t& v) {
  return Counted(c, Raw(c, n, v));
}

bool U8(Cursor& c, uint8_t& v) {
  uint32_t w = 0;
  if (!Number(c, 1, w)) return false;
  v = static_cast<uint8_t>(w);
  return true;
}

bool U8(Cursor& c, uint32_t& v) {
  return Number(c, 1, v);
}

bool U16(Cursor& c, uint32_t& v) {
  return Number(c, 2, v);
}

// An extended byte: 00..FE is the value, FF is followed by a word that is.
bool Ext(Cursor& c, uint32_t& v) {
  return Counted(c, Raw(c, 1, v) && (v != 0xFF || Raw(c, 2, v)));
}

bool Id(Cursor& c, GrfId& id) {
  if (!Take(c, 4)) return false;
  std::memcpy(id.Bytes, c.Data + c.At - 4, 4);
  return Counted(c, true);
}

// A zero-terminated text. Without its zero, the rest is taken and the cursor is cut one byte on.
bool Text(Cursor& c, std::string& text) {
  if (c.Cut) return false;
  const uint8_t* from = c.Data + c.At;
  const auto* zero = static_cast<const uint8_t*>(std::memchr(from, 0, c.Size - c.At));
  const uint64_t n = zero ? static_cast<uint64_t>(zero - from) : c.Size - c.At;
  text = DecodeGrfText(from, n);
  return Counted(c, Take(c, n + 1));
}

bool Rest(Cursor& c, std::string& text) {
  if (c.Cut) return false;
  text = DecodeGrfText(c.Data + c.At, c.Size - c.At);
  c.At = c.Size;
  return Counted(c, true);
}

// Which text of several languages stands for the file: all languages (7F), then English (01,
// then 00), then the first given.
int LanguageRank(uint8_t language) {
  return language == 0x7F ? 3 : language == 0x01 ? 2 : language == 0x00 ? 1 : 0;
}

void Keep(uint8_t language, std::string& text, bool& has, uint8_t& kept, std::string& to) {
  if (has && LanguageRank(language) <= LanguageRank(kept)) return;
  to = std::move(text);
  has = true;
  kept = language;
}

// Action 14's chunks. Only the INFO container at the top is read into Info; all else is walked
// over by its type's length.
void ReadStaticInfo(Cursor& c, ActionRecord& a) {
  StaticInfo& info = a.Info;
  uint64_t depth = 0;
  bool inInfo = false;  // depth 1 is the INFO container
  for (;;) {
    uint8_t type = 0;
    GrfId id;
    if (!U8(c, type)) return;
    if (type == 0) {
      if (depth == 0) return;
      if (--depth == 0) inInfo = false;
      continue;
    }
    if (!Id(c, id)) return;
    ++a.Count;
    const bool here = inInfo && depth == 1;
    const auto is = [&id](const char* name) { return std::memcmp(id.Bytes, name, 4) == 0; };
    if (type == 'C') {
      inInfo = inInfo || (depth == 0 && is("INFO"));
      ++depth;
    } else if (type == 'B') {
      uint32_t length = 0;
      if (!U16(c, length)) return;
      const uint64_t at = c.At;
      if (!Take(c, length)) return;
      const uint8_t first = length > 0 ? c.Data[at] : 0;
      if (here && length == 4 && (is("VRSN") || is("MINV"))) {
        Cursor value{c.Data + at, 4};
        Raw(value, 4, is("VRSN") ? info.Version : info.MinVersion);
        (is("VRSN") ? info.HasVersion : info.HasMinVersion) = true;
      } else if (here && length == 1 && is("PALS")) {
        info.Palette = static_cast<char>(first);
        info.HasPalette = true;
      } else if (here && length == 1 && is("BLTR")) {
        info.Depth = static_cast<char>(first);
        info.HasDepth = true;
      }
    } else if (type == 'T') {
      uint8_t language = 0;
      std::string text;
      if (!U8(c, language) || !Text(c, text)) return;
      if (here && is("NAME")) Keep(language, text, info.HasName, info.NameLanguage, info.Name);
      if (here && is("DESC"))
        Keep(language, text, info.HasDescription, info.DescriptionLanguage, info.Description);
    } else {
      return;  // an unknown chunk type has no length to pass over
    }
  }
}

// Reads the header of one action into `a` (its Action, Sprite and Have already set).
void ReadHeader(Cursor& c, ActionRecord& a) {
  switch (a.Action) {
    case 0x00:
      U8(c, a.Feature) && U8(c, a.Count) && U8(c, a.Number) && Ext(c, a.First);
      break;
    case 0x01:
      if (U8(c, a.Feature) && U8(c, a.Count) && a.Count == 0) {
        a.HasOffset = true;
        Ext(c, a.First) && Ext(c, a.Count) && Ext(c, a.Number);
      } else {
        Ext(c, a.Number);
      }
      break;
    case 0x02:
      U8(c, a.Feature) && U8(c, a.Id) && U8(c, a.Type);
      break;
    case 0x03: {
      uint8_t n = 0;
      if (!U8(c, a.Feature) || !U8(c, n)) break;
      a.Override = (n & 0x80) != 0;
      a.Count = n & 0x7F;
      // Vehicles name their IDs in extended bytes, every other feature in plain ones.
      uint32_t ignored = 0;
      for (uint32_t i = 0; i < a.Count; ++i)
        if (!(HasExtendedIds(a.Feature) ? Ext(c, ignored) : U8(c, ignored))) return;
      U8(c, a.Number) && Take(c, uint64_t{a.Number} * 3) && U16(c, ignored);
      break;
    }
    case 0x04: {
      if (!U8(c, a.Feature) || !U8(c, a.Language) || !U8(c, a.Count)) break;
      a.WideId = (a.Language & 0x80) != 0;
      // A word text ID with bit 7 of the language, else the item's own ID as an extended byte.
      if (!(a.WideId ? U16(c, a.First) : Ext(c, a.First))) break;
      std::string text;
      for (uint32_t i = 0; i < a.Count && Text(c, text); ++i)
        if (i == 0) a.Text = text;
      break;
    }
    case 0x05:
      if (U8(c, a.Type) && Ext(c, a.Count) && (a.Type & 0x80)) a.HasOffset = Ext(c, a.First);
      break;
    case 0x06:
      for (uint8_t parameter = 0; U8(c, parameter) && parameter != 0xFF; ++a.Count) {
        uint32_t ignored = 0;
        if (!U8(c, ignored) || !Ext(c, ignored)) break;
      }
      break;
    case 0x07:
    case 0x09: {
      if (!U8(c, a.Id) || !U8(c, a.Size) || !U8(c, a.Type)) break;
      const uint64_t at = c.At;
      if (!Counted(c, Take(c, a.Size))) break;
      Cursor value{c.Data + at, std::min<uint64_t>(a.Size, 4)};
      Raw(value, value.Size, a.Value);
      U8(c, a.Count);
      break;
    }
    case 0x08:
      U8(c, a.Version) && Id(c, a.Grf) && Text(c, a.Text) && Text(c, a.Text2);
      break;
    case 0x0A:
    case 0x12: {
      uint32_t n = 0;
      if (!U8(c, n)) break;
      a.Count = n;
      for (uint32_t i = 0; i < n; ++i) {
        ActionRange r;
        if (a.Action == 0x12 && !U8(c, r.Font)) break;
        if (!U8(c, r.Count) || !U16(c, r.First)) break;
        a.Ranges.push_back(r);
        a.Number += r.Count;
      }
      break;
    }
    case 0x0B:
      if (!U8(c, a.Type) || !U8(c, a.Language) || !U8(c, a.Id)) break;
      if (a.Id == 0xFF && !Text(c, a.Text)) break;
      if (Left(c)) Text(c, a.Text2);
      break;
    case 0x0C:
      Rest(c, a.Text);
      break;
    case 0x0D:
      if (U8(c, a.Id) && U8(c, a.Type) && U8(c, a.Sources[0]) && U8(c, a.Sources[1]) && Left(c))
        a.HasOffset = Number(c, 4, a.Value);
      break;
    case 0x0E:
      if (!U8(c, a.Count)) break;
      for (uint32_t i = 0; i < a.Count; ++i)
        if (!Id(c, a.Grfs.emplace_back())) return a.Grfs.pop_back();
      break;
    case 0x0F:
      U8(c, a.Id);
      break;
    case 0x10:
      if (U8(c, a.Id)) Rest(c, a.Text);
      break;
    case 0x11:
      U16(c, a.Count);
      break;
    case 0x13:
      Id(c, a.Grf);
      break;
    case 0x14:
      ReadStaticInfo(c, a);
      break;
    default:
      break;
  }
}

bool IsRecolour(const SpriteInput& s) {
  return s.Kind == SpriteKind::Pseudo && s.Size == 257 && s.Data && s.Data[0] == 0;
}

// How a sound sprite names its sound: FF, name length, name; or FE 00, GRF ID, sound number.
void ReadSoundHead(const SpriteInput& s, SpriteRole& role) {
  if (s.Kind == SpriteKind::Picture || !s.Data) return;
  SoundParts named;
  if (SplitNamedSound(s.Data, s.Size, named)) {
    role.SoundName = DecodeGrfText(named.Name, named.NameSize);
    role.Sound = SoundForm::Named;
    return;
  }
  Cursor c{s.Data, s.Size};
  uint8_t head = 0, length = 0;
  uint32_t number = 0;
  if (U8(c, head) && head == 0xFE && U8(c, length) && length == 0 && Id(c, role.SoundGrf) &&
      U16(c, number)) {
    role.Number = number;
    role.Sound = SoundForm::Import;
  }
}

// The sprites an action hands out, and how far along they are.
struct Block {
  int32_t ActionIndex = -1;
  uint64_t Total = 0;
  uint64_t Done = 0;
  size_t Range = 0;  // 0A and 12: the current range, and the place in it
  uint32_t InRange = 0;
};

// The role of the next sprite of an open block.
void MemberRole(Block& b, const ActionRecord& a, SpriteRole& role) {
  role.ActionIndex = b.ActionIndex;
  role.Owner = a.Sprite;
  role.Action = a.Action;
  const uint64_t k = b.Done++;
  switch (a.Action) {
    case 0x01:
      role.Kind = RoleKind::SetSprite;
      role.Feature = a.Feature;
      role.Set = static_cast<uint32_t>(a.First + k / a.Number);
      role.Index = static_cast<uint32_t>(k % a.Number);
      break;
    case 0x05:
      role.Kind = RoleKind::BaseGraphics;
      role.Feature = a.Type & 0x7F;
      role.Index = static_cast<uint32_t>(a.First + k);
      break;
    case 0x11:
      role.Kind = RoleKind::Sound;
      role.Index = static_cast<uint32_t>(k);
      break;
    default: {  // 0A and 12: through the ranges, passing empty ones
      while (b.InRange >= a.Ranges[b.Range].Count) ++b.Range, b.InRange = 0;
      const ActionRange& r = a.Ranges[b.Range];
      role.Kind = a.Action == 0x0A ? RoleKind::Replacement : RoleKind::Glyph;
      role.Set = static_cast<uint32_t>(b.Range);
      role.Index = b.InRange;
      role.Number = r.First + b.InRange++;
      role.Font = r.Font;
      break;
    }
  }
}

void NoteIdentity(const ActionRecord& a, GrfIdentity& id) {
  if (a.Action == 0x08 && !id.HasAction8 && a.Fields >= 3) {
    id.HasAction8 = true;
    id.Action8Sprite = a.Sprite;
    id.Grf = a.Grf;
    id.GrfVersion = a.Version;
    id.Name = a.Text;
    id.Description = a.Text2;
  }
  const StaticInfo& i = a.Info;
  const bool any = i.HasName || i.HasDescription || i.HasVersion || i.HasMinVersion ||
                   i.HasPalette || i.HasDepth;
  if (a.Action == 0x14 && !id.HasInfo && any) {
    id.HasInfo = true;
    id.InfoSprite = a.Sprite;
    id.Info = i;
  }
}

}  // namespace

bool SplitNamedSound(const uint8_t* data, uint64_t size, SoundParts& parts) {
  if (size < 2 || data[0] != 0xFF) return false;
  parts.Name = data + 2;
  const uint64_t name = std::min<uint64_t>(data[1], size - 2);
  parts.NameSize = name;
  while (parts.NameSize > 0 && parts.Name[parts.NameSize - 1] == 0) --parts.NameSize;
  uint64_t at = 2 + name;
  if (at < size && data[at] == 0) ++at;
  parts.Wav = data + at;
  parts.WavSize = size - at;
  return true;
}

uint64_t BlockSize(const ActionRecord& a) {
  if (IsCut(a) && a.Action != 0x0A && a.Action != 0x12) return 0;
  switch (a.Action) {
    case 0x01:
      return uint64_t{a.Count} * a.Number;
    case 0x05:
    case 0x11:
      return a.Count;
    case 0x0A:
    case 0x12:
      return a.Number;  // the sum of the ranges read
    default:
      return 0;
  }
}

GrfActions ReadActions(const std::vector<SpriteInput>& sprites) {
  GrfActions out;
  out.Sprites.resize(sprites.size());
  Block block;
  for (size_t i = 0; i < sprites.size(); ++i) {
    const SpriteInput& s = sprites[i];
    SpriteRole& role = out.Sprites[i];
    const auto number = static_cast<int32_t>(i);
    if (block.Done < block.Total) {
      const ActionRecord& owner = out.Actions[static_cast<size_t>(block.ActionIndex)];
      MemberRole(block, owner, role);
      role.Recolour = IsRecolour(s);
      if (owner.Action == 0x11) ReadSoundHead(s, role);
      continue;
    }
    role.Number = static_cast<uint32_t>(number);
    if (s.Kind != SpriteKind::Pseudo) continue;  // a base sprite
    // An Action 00 can be 257 bytes too; before any Action 08 the file is a base set.
    if (IsRecolour(s) && !out.Identity.HasAction8) {
      role.Kind = RoleKind::Recolour;
      role.Recolour = true;
      continue;
    }
    ActionRecord& a = out.Actions.emplace_back();
    a.Sprite = number;
    a.Have = s.Data ? s.Size : 0;
    role.ActionIndex = static_cast<int32_t>(out.Actions.size() - 1);
    role.Owner = number;
    Cursor c{s.Data, a.Have};
    if (i == 0 && a.Have == 4) {
      role.Kind = RoleKind::SpriteCount;
      a.IsSpriteCount = true;
      Number(c, 4, a.Value);
    } else {
      role.Kind = RoleKind::Action;
      if (U8(c, a.Action)) ReadHeader(c, a);
    }
    // An Action 06 right before changes this one's bytes when the game loads the file.
    if (i > 0 && out.Sprites[i - 1].Kind == RoleKind::Action) {
      const ActionRecord& before = out.Actions[static_cast<size_t>(out.Sprites[i - 1].ActionIndex)];
      a.ChangedAtLoad = before.Action == 0x06 && before.Have > 0;
    }
    a.Need = c.Need;
    a.Fields = static_cast<uint8_t>(std::min<uint32_t>(c.Fields, 255));
    role.Action = a.Action;
    role.Feature = a.Feature;
    NoteIdentity(a, out.Identity);
    block = Block{role.ActionIndex, BlockSize(a)};
  }
  return out;
}

}  // namespace vossel
