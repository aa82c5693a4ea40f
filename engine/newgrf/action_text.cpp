// Every sentence about pseudo-sprites: names, summaries, roles and the NFO listing.
#include <algorithm>
#include <cstdio>
#include <iterator>
#include <string>
#include <vector>

#include "actions.h"
#include "grf2.h"
#include "grffile.h"

namespace vossel {
namespace {

std::string Hex(uint32_t v, int digits) {
  char buf[16];
  std::snprintf(buf, sizeof buf, "%0*X", digits, v);
  return buf;
}

std::string Quoted(const std::string& text) {
  return "\"" + text + "\"";
}

// "1234" or "1234-1245"; empty for an empty range.
std::string Span(uint32_t first, uint32_t count, bool hex) {
  const auto text = [hex](uint64_t v) {
    return hex ? "U+" + Hex(static_cast<uint32_t>(v), 4) : std::to_string(v);
  };
  if (count == 0) return "";
  return count == 1 ? text(first) : text(first) + "-" + text(uint64_t{first} + count - 1);
}

std::string Lower(std::string s) {
  if (!s.empty() && s[0] >= 'A' && s[0] <= 'Z') s[0] = static_cast<char>(s[0] - 'A' + 'a');
  return s;
}

std::string FontName(uint8_t font) {
  static const char* const kNames[] = {"normal", "small", "large", "monospace"};
  return font < 4 ? kNames[font] : "font " + std::to_string(font);
}

void AppendUtf8(std::string& out, uint32_t cp) {
  static const uint8_t kLead[] = {0x00, 0xC0, 0xE0, 0xF0};
  const int tail = cp < 0x80 ? 0 : cp < 0x800 ? 1 : cp < 0x10000 ? 2 : 3;
  out += static_cast<char>(kLead[tail] | (cp >> (6 * tail)));
  for (int k = tail - 1; k >= 0; --k) out += static_cast<char>(0x80 | ((cp >> (6 * k)) & 0x3F));
}

// One UTF-8 character at t[i], its length in `n`; 0xFFFD for a malformed or overlong one.
uint32_t NextUtf8(const uint8_t* t, size_t size, size_t i, size_t& n) {
  const uint8_t b = t[i];
  n = b >= 0xF0 ? 4 : b >= 0xE0 ? 3 : b >= 0xC0 ? 2 : 1;
  static const uint32_t kLowest[] = {0, 0, 0x80, 0x800, 0x10000};
  if (n == 1 || b > 0xF4 || n > size - i) return n = 1, 0xFFFD;
  uint32_t cp = b & (0x7F >> n);
  for (size_t k = 1; k < n; ++k) {
    if ((t[i + k] & 0xC0) != 0x80) return n = 1, 0xFFFD;
    cp = (cp << 6) | (t[i + k] & 0x3F);
  }
  if (cp < kLowest[n] || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) return n = 1, 0xFFFD;
  return cp;
}

std::string SeverityText(uint8_t type) {
  static const char* const kNames[] = {"notice", "warning", "error", "fatal"};
  const uint8_t s = type & 0x7F;
  std::string text = s < 4 ? kNames[s] : "severity " + Hex(s, 2);
  return (type & 0x80) ? text + " (also at start)" : text;
}

std::string GroupType(uint8_t type) {
  switch (type) {
    case 0x80:
    case 0x83:
    case 0x84:
      return "random";
    case 0x81:
    case 0x85:
    case 0x89:
      return "variational";
    case 0x82:
    case 0x86:
    case 0x8A:
      return "variational (related object)";
    default:
      return "plain group or layout";
  }
}

std::string DepthName(char depth) {
  if (depth == '8') return "8-bit";
  if (depth == '3') return "32-bit";
  return "depth '" + std::string(1, depth) + "'";
}

// The ranges of Action 0A or 12, the first few of them.
std::string Ranges(const ActionRecord& a) {
  constexpr size_t kShown = 8;
  std::string text;
  size_t shown = 0;
  for (const ActionRange& r : a.Ranges) {
    const std::string span = Span(r.First, r.Count, a.Action == 0x12);
    if (span.empty()) continue;
    if (++shown > kShown) return text + ", ... (" + CountText(a.Ranges.size(), "set", "sets") + ")";
    if (!text.empty()) text += ", ";
    text += span;
    if (a.Action == 0x12) text += " (" + FontName(r.Font) + ")";
  }
  return text;
}

std::string InfoText(const StaticInfo& i) {
  std::string text;
  const auto add = [&text](const std::string& part) { text += (text.empty() ? "" : ", ") + part; };
  if (i.HasName)
    add("name " + Quoted(i.Name) +
        (i.NameLanguage == 0x7F ? "" : " (language " + Hex(i.NameLanguage, 2) + ")"));
  if (i.HasVersion) add("version " + std::to_string(i.Version));
  if (i.HasMinVersion) add("min version " + std::to_string(i.MinVersion));
  if (i.HasPalette) add("palette " + PaletteName(i.Palette));
  if (i.HasDepth) add(DepthName(i.Depth));
  return text;
}

// What a summary says after "Action XX: ", from the fields that were read (Fields counts the
// action byte, so a header's first field is field 2).
std::string Details(const ActionRecord& a) {
  std::vector<std::string> parts;
  const auto has = [&a](int field) { return a.Fields >= field; };
  const auto feature = [&] {
    if (has(2)) parts.push_back(Lower(FeatureName(a.Feature)));
  };
  switch (a.Action) {
    case 0x00:
      feature();
      if (has(3)) parts.push_back(CountText(a.Count, "property", "properties"));
      if (has(5))
        parts.push_back(a.Number ? (a.Number == 1 ? "ID " : "IDs ") + Span(a.First, a.Number, false)
                                 : "no IDs");
      else if (has(4))
        parts.push_back(CountText(a.Number, "ID", "IDs"));
      break;
    case 0x01:
      feature();
      if (a.HasOffset ? has(6) : has(4))
        parts.push_back(CountText(a.Count, "set", "sets") + " of " +
                        CountText(a.Number, "sprite", "sprites"));
      if (a.HasOffset && has(4)) parts.push_back("from set " + std::to_string(a.First));
      break;
    case 0x02:
      feature();
      if (has(3)) parts.push_back("ID " + Hex(a.Id, 2));
      if (has(4)) parts.push_back(GroupType(a.Type));
      break;
    case 0x03:
      feature();
      if (has(3)) parts.push_back(a.Count ? CountText(a.Count, "ID", "IDs") : "generic callback");
      if (has(3) && a.Override) parts.push_back("livery override");
      if (!IsCut(a)) parts.push_back(CountText(a.Number, "cargo entry", "cargo entries"));
      break;
    case 0x04:
      feature();
      if (has(3)) parts.push_back("language " + Hex(a.Language, 2));
      if (has(5))
        // A text ID in hex as authors write it; an item's ID in decimal as Action 00 shows it.
        parts.push_back(CountText(a.Count, "text", "texts") + " from ID " +
                        (a.WideId ? Hex(a.First, 4) : std::to_string(a.First)));
      if (has(6)) parts.push_back(Quoted(a.Text));
      break;
    case 0x05:
      if (has(2)) parts.push_back(BaseGraphicsName(a.Type));
      if (has(3)) parts.push_back(CountText(a.Count, "sprite", "sprites"));
      if (has(4) && a.HasOffset) parts.back() += " from offset " + std::to_string(a.First);
      break;
    case 0x06:
      parts.push_back(CountText(a.Count, "change", "changes") + " to the next sprite");
      break;
    case 0x07:
    case 0x09:
      if (has(2)) parts.push_back("variable " + Hex(a.Id, 2));
      if (has(4)) parts.push_back("condition " + Hex(a.Type, 2));
      if (has(5)) parts.push_back("value " + Hex(a.Value, 2 * std::min<int>(a.Size, 4)));
      if (has(6))
        parts.push_back(a.Count ? "skips " + CountText(a.Count, "sprite", "sprites")
                                : "skips the rest of the file");
      break;
    case 0x08:
      if (has(3)) parts.push_back("GRF ID " + GrfIdText(a.Grf.Bytes));
      if (has(4)) parts.push_back(Quoted(a.Text));
      if (has(2)) parts.push_back("version " + std::to_string(a.Version));
      break;
    case 0x0A:
      // The bytes as stored are placeholders then: the game's own values replace them.
      if (a.ChangedAtLoad) {
        parts.push_back("replaces base sprites set when the game loads the file (" +
                        CountText(a.Ranges.size(), "set", "sets") + ")");
        break;
      }
      parts.push_back(a.Number == 0   ? "replaces no base sprites"
                      : a.Number == 1 ? "replaces base sprite " + Ranges(a)
                                      : "replaces base sprites " + Ranges(a));
      break;
    case 0x0B:
      if (has(2)) parts.push_back(SeverityText(a.Type));
      if (has(3)) parts.push_back("language " + Hex(a.Language, 2));
      if (has(4)) parts.push_back(a.Id == 0xFF ? Quoted(a.Text) : "message " + Hex(a.Id, 2));
      if (!a.Text2.empty()) parts.push_back("data " + Quoted(a.Text2));
      break;
    case 0x0C:
      parts.push_back(Quoted(a.Text));
      break;
    case 0x0D:
      if (has(2)) parts.push_back("target " + Hex(a.Id, 2));
      if (has(3)) parts.push_back("operation " + Hex(a.Type, 2));
      if (has(5))
        parts.push_back("sources " + Hex(a.Sources[0], 2) + " and " + Hex(a.Sources[1], 2));
      if (has(6)) parts.push_back("data " + Hex(a.Value, 8));
      break;
    case 0x0E: {
      std::string ids;
      for (const GrfId& id : a.Grfs) ids += (ids.empty() ? ": " : ", ") + GrfIdText(id.Bytes);
      if (has(2)) parts.push_back("deactivates " + CountText(a.Count, "GRF", "GRFs") + ids);
      break;
    }
    case 0x0F:
      if (has(2))
        parts.push_back("ID " + Hex(a.Id & 0x7F, 2) + ((a.Id & 0x80) ? " (final definition)" : ""));
      break;
    case 0x10:
      if (has(2)) parts.push_back("label " + Hex(a.Id, 2));
      if (!a.Text.empty()) parts.push_back(Quoted(a.Text));
      break;
    case 0x11:
      if (has(2)) parts.push_back(CountText(a.Count, "sound", "sounds"));
      break;
    case 0x12:
      if (has(2)) parts.push_back(CountText(a.Number, "glyph", "glyphs"));
      if (a.Number) parts.back() += ": " + Ranges(a);
      break;
    case 0x13:
      if (has(2)) parts.push_back("texts for GRF " + GrfIdText(a.Grf.Bytes));
      break;
    case 0x14: {
      const std::string info = InfoText(a.Info);
      parts.push_back(info.empty() ? CountText(a.Count, "chunk", "chunks") : info);
      break;
    }
    default:
      parts.push_back("unknown action");
      break;
  }
  std::string text;
  for (const std::string& p : parts) text += (text.empty() ? "" : ", ") + p;
  return text;
}

std::string CutNote(const ActionRecord& a) {
  if (!IsCut(a)) return "";
  return " (cut: " + std::to_string(a.Have) + " of " + std::to_string(a.Need) + " bytes)";
}

// "Action 01" + name + ": details" + the cut note; the sprite count and an empty pseudo-sprite
// in words of their own.
std::string Summary(const ActionRecord& a, bool named) {
  if (a.IsSpriteCount) return "Sprite count: " + std::to_string(a.Value);
  if (a.Have == 0) return "Empty pseudo-sprite" + CutNote(a);
  const std::string details = Details(a);
  const bool noted = a.ChangedAtLoad && a.Action != 0x0A;
  return "Action " + Hex(a.Action, 2) + (named ? " " + ActionName(a.Action) : "") +
         (details.empty() ? "" : ": " + details) +
         (noted ? " (as stored; an Action 06 changes it when the game loads the file)" : "") +
         CutNote(a);
}

const ActionRecord* ActionOf(const SpriteRole& role, const std::vector<ActionRecord>& actions) {
  if (role.ActionIndex < 0 || static_cast<size_t>(role.ActionIndex) >= actions.size())
    return nullptr;
  return &actions[static_cast<size_t>(role.ActionIndex)];
}

}  // namespace

std::string CountText(uint64_t n, const char* one, const char* many) {
  return std::to_string(n) + " " + (n == 1 ? one : many);
}

std::string ActionName(uint8_t action) {
  static const char* const kNames[] = {"Properties",
                                       "Sprite sets",
                                       "Sprite group",
                                       "Assign to IDs",
                                       "Texts",
                                       "Base graphics set",
                                       "Change the next sprite",
                                       "Skip if (checked at activation)",
                                       "GRF ID and name",
                                       "Skip if (checked always)",
                                       "Replace base sprites",
                                       "Error message",
                                       "Comment",
                                       "Parameter",
                                       "Deactivate GRFs",
                                       "Town names",
                                       "Label",
                                       "Sounds",
                                       "Font glyphs",
                                       "Translate texts",
                                       "Static information"};
  return action < std::size(kNames) ? kNames[action] : "unknown action";
}

std::string FeatureName(uint8_t feature) {
  static const char* const kNames[] = {"Trains",         "Road vehicles", "Ships",
                                       "Aircraft",       "Stations",      "Canals and rivers",
                                       "Bridges",        "Houses",        "Global settings",
                                       "Industry tiles", "Industries",    "Cargos",
                                       "Sound effects",  "Airports",      "Signals",
                                       "Objects",        "Railtypes",     "Airport tiles",
                                       "Roadtypes",      "Tramtypes",     "Road stops",
                                       "Badges"};
  if (feature == 0x48) return "Original texts";
  return feature < std::size(kNames) ? kNames[feature] : "feature " + Hex(feature, 2);
}

std::string BaseGraphicsName(uint8_t type) {
  static const char* const kNames[] = {"signals",
                                       "catenary",
                                       "foundations",
                                       "TTDPatch GUI",
                                       "canals",
                                       "one-way road arrows",
                                       "two-company-colour maps",
                                       "tram tracks",
                                       "snowy temperate trees",
                                       "coast",
                                       "new signals",
                                       "sloped rails",
                                       "airports",
                                       "road stops",
                                       "aqueducts",
                                       "autorail",
                                       "flags",
                                       "OpenTTD GUI",
                                       "airport previews",
                                       "railtype tunnels",
                                       "all-black palette",
                                       "road waypoints"};
  const uint8_t t = type & 0x7F;
  return t >= 4 && t - 4u < std::size(kNames) ? kNames[t - 4] : "type " + Hex(t, 2);
}

std::string ActionSummary(const ActionRecord& a) {
  return Summary(a, false);
}

std::string RoleText(const SpriteRole& role, const std::vector<ActionRecord>& actions) {
  const ActionRecord* owner = ActionOf(role, actions);
  const std::string of = " of Action " + Hex(role.Action, 2);
  std::string text;
  switch (role.Kind) {
    case RoleKind::Action:
    case RoleKind::SpriteCount:
      return owner ? ActionSummary(*owner) : "";
    case RoleKind::SetSprite:
      text = "set " + std::to_string(role.Set) + ", sprite " + std::to_string(role.Index) + of +
             " (" + Lower(FeatureName(role.Feature)) + ")";
      break;
    case RoleKind::BaseGraphics:
      text =
          "sprite " + std::to_string(role.Index) + of + " (" + BaseGraphicsName(role.Feature) + ")";
      break;
    case RoleKind::Replacement:
      text = owner && owner->ChangedAtLoad
                 ? "replaces a base sprite set when the game loads the file"
                 : "replaces base sprite " + std::to_string(role.Number);
      break;
    case RoleKind::Sound:
      if (role.Sound == SoundForm::Named) return "sound " + Quoted(role.SoundName);
      if (role.Sound == SoundForm::Import)
        return "sound " + std::to_string(role.Number) + " of GRF " + GrfIdText(role.SoundGrf.Bytes);
      return "sound " + std::to_string(role.Index) + of;
    case RoleKind::Glyph:
      return "glyph " + Span(role.Number, 1, true) + " (" + FontName(role.Font) + " font)";
    case RoleKind::Recolour:
      return "recolour map";
    case RoleKind::BaseSprite:
      return "base sprite " + std::to_string(role.Number);
  }
  return role.Recolour ? text + ", recolour map" : text;
}

std::string DecodeGrfText(const uint8_t* text, size_t size) {
  std::string out;
  if (!text) return out;
  const auto code = [&out](uint32_t b) { out += "{" + Hex(b, 2) + "}"; };
  const bool utf8 = size >= 2 && text[0] == 0xC3 && text[1] == 0x9E;
  for (size_t i = utf8 ? 2 : 0, n = 1; i < size; i += n) {
    const uint8_t b = text[i];
    n = 1;
    // '{' stands as a code too, so that every brace in the result opens one.
    if (b < 0x20 || b == '{' || (!utf8 && b >= 0x7B && b <= 0x9F)) {
      code(b);
    } else if (b < 0x80 || !utf8) {
      AppendUtf8(out, b);
    } else {
      // In UTF-8 the codes above 7A sit at U+E000 plus the code.
      const uint32_t cp = NextUtf8(text, size, i, n);
      if (cp >= 0x80 && cp <= 0x9F)
        code(cp);
      else if (cp >= 0xE000 && cp <= 0xE0FF)
        code(cp - 0xE000);
      else
        AppendUtf8(out, cp);
    }
  }
  return out;
}

std::string GrfIdText(const uint8_t id[4]) {
  const auto printable = [](uint8_t b) { return b >= 0x20 && b <= 0x7E; };
  std::string text;
  for (int i = 0; i < 4; ++i) text += Hex(id[i], 2);
  if (!printable(id[0]) || !printable(id[1]) || !printable(id[2])) return text;
  text += " (";
  for (int i = 0; i < 4; ++i)
    text += printable(id[i]) && id[i] != '\\' ? std::string(1, static_cast<char>(id[i]))
                                              : "\\" + Hex(id[i], 2);
  return text + ")";
}

std::string HexDigits(uint32_t v, int digits) {
  return Hex(v, digits);
}

std::string PaletteName(char palette) {
  if (palette == 'D') return "DOS";
  if (palette == 'W') return "Windows";
  if (palette == 'A') return "either";
  return "'" + std::string(1, palette) + "'";
}

std::string NfoBytes(const uint8_t* data, size_t size) {
  const auto plain = [](uint8_t b) { return b >= 0x20 && b <= 0x7E && b != '"' && b != '\\'; };
  std::string text;
  for (size_t i = 0; i < size;) {
    if (!text.empty()) text += ' ';
    if (!plain(data[i])) {
      text += Hex(data[i++], 2);
      continue;
    }
    text += '"';
    while (i < size && plain(data[i])) text += static_cast<char>(data[i++]);
    text += '"';
  }
  return text;
}

std::string NfoPseudoLine(int32_t number, const uint8_t* data, size_t size) {
  const std::string bytes = NfoBytes(data, size);
  return std::to_string(number) + " * " + std::to_string(size) + (size ? " " + bytes : "");
}

std::string NfoComment(const SpriteRole& role, const std::vector<ActionRecord>& actions) {
  const ActionRecord* a = ActionOf(role, actions);
  const bool own = role.Kind == RoleKind::Action || role.Kind == RoleKind::SpriteCount;
  return "// " + (own && a ? Summary(*a, true) : RoleText(role, actions));
}

std::string NfoSpriteLine(int32_t number, const std::vector<NfoAlternative>& alternatives,
                          const SpriteRole& role, const std::vector<ActionRecord>& actions) {
  std::string text = std::to_string(number);
  for (size_t i = 0; i < alternatives.size(); ++i) {
    const NfoAlternative& a = alternatives[i];
    text += i ? "; " : " ";
    text += a.IsData ? "data " + CountText(static_cast<uint64_t>(a.DataSize), "byte", "bytes")
                     : AlternativeText({.Zoom = a.Zoom, .Depth = a.Depth}) + " " +
                           std::to_string(a.Width) + "x" + std::to_string(a.Height) + " at " +
                           std::to_string(a.X) + "," + std::to_string(a.Y);
    if (!a.File.empty()) text += " " + a.File;
  }
  return text + " // " + RoleText(role, actions);
}

}  // namespace vossel

namespace vossel {

FactLines IdentityFacts(const GrfFile& file, const FileReading& reading) {
  const GrfIdentity& id = reading.Actions.Identity;
  const StaticInfo& info = id.Info;
  FactLines lines;
  lines.emplace_back("GRF ID", id.HasAction8 ? GrfIdText(id.Grf.Bytes) : "none");
  if (id.HasAction8) lines.emplace_back("GRF version", std::to_string(id.GrfVersion));
  // Action 08 names the file for the game's lists; Action 14 for newer games.
  const std::string name = id.HasAction8 && !id.Name.empty() ? id.Name : info.Name;
  const std::string description =
      id.HasAction8 && !id.Description.empty() ? id.Description : info.Description;
  if (!name.empty()) lines.emplace_back("Name", name);
  if (reading.Descriptor) {
    const BaseSetDescriptor& set = reading.Descriptor->Descriptor;
    lines.emplace_back("Base set",
                       set.Name + (set.Version.empty() ? "" : ", version " + set.Version));
  }
  if (!description.empty()) lines.emplace_back("Description", description);
  if (info.HasVersion) lines.emplace_back("Version", std::to_string(info.Version));
  if (info.HasMinVersion) lines.emplace_back("Minimum version", std::to_string(info.MinVersion));
  lines.emplace_back("Palette", DeclarationText(DeclaredPaletteOf(reading)));
  if (info.HasDepth)
    lines.emplace_back("Graphics", info.Depth == '3'   ? "32-bit"
                                   : info.Depth == '8' ? "8-bit"
                                                       : "'" + std::string(1, info.Depth) + "'");
  lines.emplace_back("Sprites", std::to_string(SpriteCount(file)));
  lines.emplace_back("Container", std::to_string(file.Container));
  return lines;
}

FactLines SpriteDetails(const GrfFile& file, const FileReading& reading, int32_t sprite) {
  FactLines lines;
  const size_t i = static_cast<size_t>(sprite);
  if (sprite < 0 || i >= reading.Actions.Sprites.size()) return lines;
  const SpriteRole& role = reading.Actions.Sprites[i];
  const std::vector<ActionRecord>& actions = reading.Actions.Actions;
  const ActionRecord* own = role.Kind == RoleKind::Action || role.Kind == RoleKind::SpriteCount
                                ? ActionOf(role, actions)
                                : nullptr;
  if (own != nullptr) {
    lines.emplace_back("Action", own->IsSpriteCount
                                     ? std::string("none (sprite count)")
                                     : Hex(own->Action, 2) + " " + ActionName(own->Action));
    lines.emplace_back("Summary", ActionSummary(*own));
  } else {
    lines.emplace_back("Role", RoleText(role, actions));
  }
  if (FactsOf(file, sprite, -1).Kind == SpriteKind::Pseudo)
    lines.emplace_back("NFO",
                       NfoPseudoLine(sprite, reading.Bytes[i].data(), reading.Bytes[i].size()));
  return lines;
}

}  // namespace vossel
