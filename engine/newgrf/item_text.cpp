// Every sentence about items: property values with their units, graphics entries, groups, the
// rows of a graphics tree, and problems.
#include <cctype>
#include <cmath>
#include <cstdio>
#include <string>

#include "items.h"

namespace vossel {
namespace {

std::string Join(const std::vector<std::string>& parts, const char* with = ", ") {
  std::string out;
  for (const std::string& p : parts) out += (out.empty() ? "" : with) + p;
  return out;
}

std::string Rounded(double v) {
  return std::to_string(static_cast<long long>(std::floor(v + 0.5)));
}

// km/h as authors wrote them: their km/h was rounded up into units, so rounding down gives it back.
std::string Speed(double mph) {
  return std::to_string(static_cast<long long>(std::floor(mph * 1.609344 + 1e-9))) + " km/h (" +
         Rounded(mph) + " mph)";
}

std::string Power(double hp) {
  return Rounded(hp) + " hp (" + Rounded(hp * 0.745699872) + " kW)";
}

std::string Tonnes(double t) {
  char buffer[32];
  std::snprintf(buffer, sizeof buffer, "%g t", t);
  return buffer;
}

std::string Cargo(const ItemProperty& p, size_t i) {
  const std::string index = std::to_string(p.Numbers[i]);
  const std::string label = i < p.Labels.size() ? p.Labels[i] : std::string();
  return label.empty() ? "cargo " + index : label;
}

std::string FlagsText(const PropertyRow& row, uint32_t v) {
  std::vector<std::string> names;
  for (int bit = 0; bit < 32; ++bit) {
    if (!(v & (1u << bit))) continue;
    const char* name = bit < 16 && row.Bits ? row.Bits[bit] : nullptr;
    names.push_back(name ? name : "bit " + std::to_string(bit));
  }
  return names.empty() ? "none" : Join(names);
}

std::string LabelText(const std::string& label) {
  std::string out;
  for (unsigned char ch : label)
    out += std::isprint(ch) ? std::string(1, static_cast<char>(ch)) : "\\" + HexDigits(ch, 2);
  return out;
}

// A sprite as the program counts them for people, from 1.
std::string SpriteAt(int32_t sprite) {
  return "sprite " + std::to_string(static_cast<int64_t>(sprite) + 1);
}

// "sprites 3-6" or "sprite 3", counted from 1.
std::string SpriteSpan(int32_t first, uint32_t count) {
  if (count == 1) return SpriteAt(first);
  return "sprites " + std::to_string(int64_t{first} + 1) + "-" +
         std::to_string(int64_t{first} + count);
}

// Operators of a variational group's chain, by their byte.
constexpr const char* kOps[] = {
    "+",       "-",        "min", "max", "umin", "umax",       "/",    "%",          "u/",
    "u%",      "*",        "&",   "|",   "^",    "store temp", "then", "store perm", "rotate right",
    "compare", "ucompare", "<<",  "u>>", ">>"};

// Version 00 gives amounts, 01 the registers that hold them; 02 (cargo, register) pairs.
std::string ProductionText(const SpriteGroup& g) {
  const std::vector<uint32_t>& v = g.Values;
  const auto at = [&v](size_t i) { return i < v.size() ? std::to_string(v[i]) : std::string("?"); };
  const auto reg = [&v](size_t i) { return i < v.size() ? HexDigits(v[i], 2) : std::string("?"); };
  if (g.Type == 0x00)
    return "take " + at(0) + ", " + at(1) + ", " + at(2) + "; give " + at(3) + ", " + at(4) +
           "; again " + at(5);
  if (g.Type == 0x01)
    return "take registers " + reg(0) + ", " + reg(1) + ", " + reg(2) + "; give registers " +
           reg(3) + ", " + reg(4) + "; again register " + reg(5);
  std::string out;
  size_t i = 0;
  for (const char* part : {"take", "give"}) {
    const size_t n = i < v.size() ? v[i] : 0;
    out += std::string(out.empty() ? "" : "; ") + part;
    ++i;
    for (size_t k = 0; k < n && i + 1 < v.size(); ++k, i += 2)
      out += (k ? ", cargo " : " cargo ") + at(i) + " by register " + reg(i + 1);
  }
  return out + "; again register " + reg(i);
}

}  // namespace

std::string DateText(int64_t days) {
  if (days < 0) return std::to_string(days);
  // Days before 1 January of year y, year 0 a leap year.
  const auto before = [](int64_t y) {
    return 365 * y + (y + 3) / 4 - (y + 99) / 100 + (y + 399) / 400;
  };
  int64_t y = days / 366;
  while (before(y + 1) <= days) ++y;
  int64_t d = days - before(y);
  const bool leap = (y % 4 == 0 && y % 100 != 0) || y % 400 == 0;
  const int lengths[12] = {31, leap ? 29 : 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  int m = 0;
  while (m < 11 && d >= lengths[m]) d -= lengths[m++];
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, "%04lld-%02d-%02d", static_cast<long long>(y), m + 1,
                static_cast<int>(d + 1));
  return buffer;
}

std::string HexBytes(const std::vector<uint8_t>& bytes) {
  std::string out;
  for (uint8_t b : bytes) out += (out.empty() ? "" : " ") + HexDigits(b, 2);
  return out;
}

std::string PropertyName(const ItemProperty& p) {
  if (p.Row == nullptr) return "property " + HexDigits(p.Number, 2);
  return p.Row->Confirmed ? p.Row->Name : "property " + HexDigits(p.Number, 2);
}

std::string PropertySizeText(const ItemProperty& p) {
  if (p.Row == nullptr) return "unknown";
  switch (p.Row->Size) {
    case PropSize::Byte:
      return "B";
    case PropSize::Word:
      return "W";
    case PropSize::Dword:
      return "D";
    case PropSize::ExtByte:
      return "B*";
    case PropSize::Fixed:
      return std::to_string(p.Row->Fixed) + " bytes";
    case PropSize::ByteList:
      return "B+n*B";
    case PropSize::DwordList:
      return "B+n*D";
    case PropSize::PairList:
      return "B+n*2B";
    default:
      return "variable";
  }
}

std::string PropertyValueText(const ItemProperty& p) {
  if (p.Row == nullptr) return "unknown property, rest of the block: " + HexBytes(p.Raw);
  const PropertyRow& row = *p.Row;
  if (!row.Confirmed) return HexBytes(p.Raw) + " (unconfirmed)";
  if (p.Numbers.empty() && row.Size != PropSize::ByteList && row.Size != PropSize::DwordList &&
      row.Size != PropSize::PairList)
    return HexBytes(p.Raw);
  const auto v = p.Numbers.empty() ? uint32_t{0} : static_cast<uint32_t>(p.Numbers[0]);
  std::vector<std::string> parts;
  switch (row.Unit) {
    case PropUnit::Number:
      for (int64_t x : p.Numbers) parts.push_back(std::to_string(x));
      return parts.empty() ? "none" : Join(parts);
    case PropUnit::SignedNumber:
      return std::to_string(static_cast<int8_t>(v));
    case PropUnit::Speed16:
      return Speed(v / 1.6);
    case PropUnit::Speed32:
      return Speed(v / 3.2);
    case PropUnit::Speed08:
      return Speed(v / 0.8);
    case PropUnit::Speed8Mph:
      return Speed(v * 8.0);
    case PropUnit::PowerHp:
      return Power(v);
    case PropUnit::Power10Hp:
      return Power(v * 10.0);
    case PropUnit::Tonnes:
      return Tonnes(v);
    case PropUnit::WeightHigh:
      return Tonnes(v * 256.0) + " added";
    case PropUnit::QuarterTonnes:
      return Tonnes(v / 4.0);
    case PropUnit::SixteenthTonnes:
      return Tonnes(v / 16.0);
    case PropUnit::LongDate:
      return DateText(v);
    case PropUnit::Years1920:
      for (int64_t x : p.Numbers) parts.push_back(std::to_string(1920 + x));
      return Join(parts, " to ");
    case PropUnit::Years:
      for (int64_t x : p.Numbers) parts.push_back(std::to_string(x));
      return Join(parts, " to ");
    case PropUnit::Climates:
    case PropUnit::Flags:
      return FlagsText(row, v);
    case PropUnit::Cargo:
      return Cargo(p, 0);
    case PropUnit::CargoList:
      for (size_t i = 0; i < p.Numbers.size(); ++i) parts.push_back(Cargo(p, i));
      return parts.empty() ? "none" : Join(parts);
    case PropUnit::CargoAmounts:
      for (size_t i = 0; i + 1 < p.Numbers.size(); i += 2) {
        const std::string label = i / 2 < p.Labels.size() ? p.Labels[i / 2] : "";
        parts.push_back((label.empty() ? "cargo " + std::to_string(p.Numbers[i]) : label) + " " +
                        std::to_string(p.Numbers[i + 1]) + "/8");
      }
      return parts.empty() ? "none" : Join(parts);
    case PropUnit::TextId:
      return "text " + HexDigits(v, 4) + (p.Labels.empty() ? "" : " \"" + p.Labels[0] + "\"");
    case PropUnit::Label:
    case PropUnit::LabelList:
      for (const std::string& l : p.Labels) parts.push_back(LabelText(l));
      return parts.empty() ? "none" : Join(parts);
    case PropUnit::Fraction255: {
      char buffer[32];
      std::snprintf(buffer, sizeof buffer, "%.2f", v / 255.0);
      return buffer;
    }
    case PropUnit::Hex:
      break;
  }
  for (int64_t x : p.Numbers) parts.push_back(HexDigits(static_cast<uint32_t>(x), 2));
  return parts.empty() ? HexBytes(p.Raw) : Join(parts, " ");
}

std::string FeatureWord(uint8_t feature) {
  std::string name = FeatureName(feature);
  if (!name.empty()) name[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(name[0])));
  return name;
}

bool ParseFeature(const std::string& text, uint8_t& feature) {
  std::string lower;
  for (char ch : text) lower += static_cast<char>(std::tolower(static_cast<unsigned char>(ch)));
  if (lower.size() == 4 && lower.rfind("0x", 0) == 0) lower.erase(0, 2);
  if (lower.size() == 2 && std::isxdigit(static_cast<unsigned char>(lower[0])) &&
      std::isxdigit(static_cast<unsigned char>(lower[1]))) {
    feature = static_cast<uint8_t>(std::stoul(lower, nullptr, 16));
    return true;
  }
  for (int f = 0; f <= 0x15; ++f) {
    std::string name = FeatureWord(static_cast<uint8_t>(f));
    if (name == lower) {
      feature = static_cast<uint8_t>(f);
      return true;
    }
    // "road-vehicles", "road_vehicles" and "roadvehicles" as well.
    std::string squeezed;
    for (char ch : lower)
      if (ch != '-' && ch != '_' && ch != ' ') squeezed += ch;
    std::string plain;
    for (char ch : name)
      if (ch != ' ') plain += ch;
    if (!squeezed.empty() && squeezed == plain) {
      feature = static_cast<uint8_t>(f);
      return true;
    }
  }
  return false;
}

std::string EntryText(const GraphicsEntry& e, uint8_t feature) {
  static const char* const kTrackKinds[] = {
      "gui",           "track overlay",   "underlay",        "tunnels",
      "catenary wire", "catenary pylons", "bridge surfaces", "level crossings",
      "depots",        "fences",          "tunnel overlay",  "signals"};
  static const char* const kRoadKinds[] = {
      "gui",           "track overlay",   "underlay", nullptr,  "catenary front",
      "catenary back", "bridge surfaces", nullptr,    "depots", nullptr,
      "road stops"};
  const std::string cargo = std::to_string(e.Cargo);
  std::string kind;
  if (feature == 0x10 && e.Cargo < std::size(kTrackKinds))
    kind = kTrackKinds[e.Cargo];
  else if ((feature == 0x12 || feature == 0x13) && e.Cargo < std::size(kRoadKinds) &&
           kRoadKinds[e.Cargo])
    kind = kRoadKinds[e.Cargo];
  const std::string label =
      !kind.empty()
          ? kind
          : "cargo " + cargo + (e.CargoLabel.empty() ? "" : " (" + LabelText(e.CargoLabel) + ")");
  switch (e.Kind) {
    case EntryKind::Default:
      return "default";
    case EntryKind::Purchase:
      return feature <= 0x03 ? "purchase list" : "build menu";
    case EntryKind::AnyCargo:
      return "any cargo (FE)";
    case EntryKind::Cargo:
      return label;
    case EntryKind::LiveryOverride:
      return "livery override for engine " + std::to_string(e.Engine);
    case EntryKind::OverrideCargo:
      return "livery override for engine " + std::to_string(e.Engine) + ", " + label;
  }
  return std::string();
}

std::string VariableName(uint8_t variable, uint8_t feature) {
  struct Name {
    int Feature;  // -1 every feature
    uint8_t Variable;
    const char* Text;
  };
  static const Name kNames[] = {
      {-1, 0x00, "date since 1920"},
      {-1, 0x01, "year since 1920"},
      {-1, 0x02, "month and day"},
      {-1, 0x03, "climate"},
      {-1, 0x06, "road side"},
      {-1, 0x09, "date fraction"},
      {-1, 0x0A, "animation counter"},
      {-1, 0x0C, "current callback"},
      {-1, 0x10, "callback info 1"},
      {-1, 0x12, "game mode"},
      {-1, 0x18, "callback info 2"},
      {-1, 0x1A, "constant"},
      {-1, 0x1C, "last result"},
      {-1, 0x22, "difficulty"},
      {-1, 0x23, "current date"},
      {-1, 0x24, "current year"},
      {-1, 0x7B, "indirect"},
      {-1, 0x7C, "persistent register"},
      {-1, 0x7D, "temporary register"},
      {-1, 0x7E, "procedure call"},
      {-1, 0x7F, "GRF parameter"},
      {0, 0x40, "position in consist"},
      {0, 0x41, "position among same ID"},
      {0, 0x42, "consist cargo"},
      {0, 0x43, "company"},
      {0, 0x44, "airport type"},
      {0, 0x45, "curvature"},
      {0, 0x46, "motion counter"},
      {0, 0x47, "cargo"},
      {0, 0x49, "year built"},
      {0, 0x4A, "railtype"},
      {0, 0x4B, "last service"},
      {0, 0x4C, "current speed limit"},
      {0, 0x4D, "position in articulated vehicle"},
      {0, 0x5F, "triggers and random bits"},
      {0, 0xB4, "current speed"},
      {0, 0xBA, "capacity"},
      {0, 0xBC, "cargo count"},
      {0, 0xC0, "age in days"},
      {4, 0x40, "platform info"},
      {4, 0x41, "platform info (section)"},
      {4, 0x42, "terrain and track"},
      {4, 0x43, "company"},
      {4, 0x45, "rail continuation"},
      {4, 0x4A, "animation frame"},
      {4, 0x60, "cargo waiting"},
      {4, 0x61, "time since pickup"},
      {4, 0x62, "rating"},
      {4, 0x66, "animation frame nearby"},
      {4, 0x67, "land nearby"},
      {4, 0x68, "station nearby"},
      {4, 0x69, "acceptance history"},
      {4, 0xF0, "facilities"},
      {4, 0xFA, "build date"},
      {7, 0x40, "construction stage"},
      {7, 0x41, "age in years"},
      {7, 0x42, "town zone"},
      {7, 0x43, "terrain"},
      {7, 0x44, "same ID count"},
      {7, 0x45, "built with town"},
      {7, 0x46, "animation frame"},
      {7, 0x47, "coordinates"},
      {7, 0x5F, "random bits"},
      {7, 0x61, "class count"},
      {7, 0x62, "land nearby"},
      {7, 0x63, "animation frame nearby"},
      {7, 0x66, "house ID nearby"},
      {9, 0x40, "construction state"},
      {9, 0x41, "terrain"},
      {9, 0x42, "town zone"},
      {9, 0x43, "relative position"},
      {9, 0x44, "animation frame"},
      {9, 0x5F, "random bits"},
      {9, 0x60, "land nearby"},
      {9, 0x61, "animation frame nearby"},
      {9, 0x62, "tile ID nearby"},
      {10, 0x40, "waiting cargo 1"},
      {10, 0x41, "waiting cargo 2"},
      {10, 0x42, "waiting cargo 3"},
      {10, 0x43, "distance to water"},
      {10, 0x44, "layout"},
      {10, 0x45, "founder"},
      {10, 0x46, "build date"},
      {10, 0x5F, "random bits"},
      {15, 0x40, "relative position"},
      {15, 0x41, "terrain and slope"},
      {15, 0x42, "build date"},
      {15, 0x43, "animation frame"},
      {15, 0x48, "view"},
      {15, 0x5F, "random bits"},
      {16, 0x40, "terrain"},
      {16, 0x41, "enhanced tunnels"},
      {16, 0x42, "level crossing"},
      {16, 0x43, "depot build date"},
  };
  // The vehicle features share their variables.
  const int f = feature <= 0x03 ? 0 : feature;
  for (const Name& n : kNames)
    if (n.Variable == variable && (n.Feature == f || (n.Feature < 0 && variable < 0x40) ||
                                   (n.Feature < 0 && variable >= 0x7B && variable <= 0x7F)))
      return n.Text;
  return std::string();
}

std::string AdjustText(const VarAdjust& a, uint8_t feature) {
  // A constant: the all-ones variable through a mask.
  if (a.Variable == 0x1A && a.Shift == 0 && !a.HasDivide && !a.HasModulo)
    return HexDigits(a.Mask, 2);
  std::string out;
  const std::string name = VariableName(a.Variable, feature);
  out += "var " + HexDigits(a.Variable, 2);
  if (a.HasParameter) out += "(" + HexDigits(a.Parameter, 2) + ")";
  if (!name.empty()) out += " [" + name + "]";
  if (a.Shift) out += " >> " + std::to_string(a.Shift);
  out += " & " + HexDigits(a.Mask, 2);
  if (a.HasDivide) out += " + " + std::to_string(a.Add) + " / " + std::to_string(a.Divisor);
  if (a.HasModulo) out += " + " + std::to_string(a.Add) + " % " + std::to_string(a.Divisor);
  return out;
}

std::string GroupText(const SpriteGroup& g) {
  std::string out;
  const std::string id = "group " + HexDigits(g.Id, 2) + " (" + SpriteAt(g.Sprite) + ")";
  switch (g.Kind) {
    case GroupKind::Standard:
      out = id + ": " + std::to_string(g.Loaded.size()) +
            (g.Feature == 0x04 ? " little, " : " loaded, ") + std::to_string(g.Loading.size()) +
            (g.Feature == 0x04 ? " lots" : " loading");
      break;
    case GroupKind::Random: {
      const char* whose = g.Type == 0x83   ? "related object's bits"
                          : g.Type == 0x84 ? "consist's bits"
                                           : "own bits";
      out = id + ": random, " + whose + " from bit " + std::to_string(g.RandomBit) + ", triggers " +
            HexDigits(g.Triggers, 2) + ", " + std::to_string(g.Choices.size()) + " choices";
      if (g.Type == 0x84) {
        static const char* const kModes[] = {
            "backward from this vehicle", "forward from this vehicle",
            "backward from the front engine", "backward from the first of the same ID"};
        const uint8_t n = g.Count & 0x3F;
        out += ", " + (n ? std::to_string(n) : std::string("a register's count of")) +
               " vehicles " + kModes[g.Count >> 6];
      }
      break;
    }
    case GroupKind::Variational: {
      out = id + ": switch on " + (g.Related ? "related object: " : "");
      for (size_t i = 0; i < g.Adjusts.size(); ++i) {
        const uint8_t op = g.Adjusts[i].Op;
        if (i > 0)
          out += std::string(" ") +
                 (op < std::size(kOps) ? kOps[op] : ("op " + HexDigits(op, 2)).c_str()) + " ";
        out += "(" + AdjustText(g.Adjusts[i], g.Feature) + ")";
      }
      if (g.Ranges.empty()) out += ", the value as callback result";
      break;
    }
    case GroupKind::Layout: {
      const char* form = g.Form == LayoutForm::Basic      ? "basic"
                         : g.Form == LayoutForm::Extended ? "extended"
                                                          : "advanced";
      out = id + ": sprite layout (" + form + "), " +
            CountText(g.Sprites.size(), "sprite", "sprites") + " above the ground";
      break;
    }
    case GroupKind::Production: {
      out = id + ": production, version " + HexDigits(g.Type, 2) + ": " + ProductionText(g);
      break;
    }
    case GroupKind::Unknown:
      out = id + ": unknown type " + HexDigits(g.Type, 2);
      break;
  }
  return g.Cut ? out + " (cut)" : out;
}

std::string LayoutSpriteText(const GrfItems& items, const LayoutSprite& s, bool ground) {
  std::string out = ground ? "ground: " : s.Child ? "child: " : "building: ";
  const uint32_t number = s.Word & 0x3FFF;
  if (s.Word & 0x80000000u) {
    out += "set " + std::to_string(number);
    if (s.Set >= 0) {
      const SpriteSetRef& r = items.Sets[static_cast<size_t>(s.Set)];
      out += " (" + SpriteSpan(r.First, r.Count) + ")";
    }
  } else {
    out += number == 0 && !ground ? "nothing" : "base sprite " + std::to_string(number);
  }
  const uint32_t recolour = (s.Word >> 16) & 0x3FFF;
  if (s.Word & 0x4000) out += ", transparent through " + std::to_string(recolour);
  if (s.Word & 0x8000)
    out +=
        ", recoloured by " + (recolour ? std::to_string(recolour) : std::string("company colours"));
  if (s.Word & 0x40000000u) out += ", always drawn";
  if (s.HasBox)
    out += ", box at " + std::to_string(s.X) + "," + std::to_string(s.Y) + "," +
           std::to_string(s.Z) + " size " + std::to_string(s.XExtent) + "x" +
           std::to_string(s.YExtent) + "x" + std::to_string(s.ZExtent);
  if (s.Child) out += ", at pixels " + std::to_string(s.X) + "," + std::to_string(s.Y);
  if (s.Flags) out += ", flags " + HexDigits(s.Flags, 4);
  if (!s.Registers.empty()) {
    std::vector<std::string> regs;
    for (uint8_t r : s.Registers) regs.push_back(HexDigits(r, 2));
    out += ", registers " + Join(regs, " ");
  }
  return out;
}

std::string NodeText(const GrfItems& items, const Item& item, const GraphNode& n) {
  std::string via;
  using V = GraphNode::Via;
  switch (n.How) {
    case V::Loaded:
      via = (item.Feature == 0x04 ? "little " : "loaded ") + std::to_string(n.Index) + ": ";
      break;
    case V::Loading:
      via = (item.Feature == 0x04 ? "lots " : "loading ") + std::to_string(n.Index) + ": ";
      break;
    case V::Choice:
      via = "choice " + std::to_string(n.Index) + ": ";
      break;
    case V::Range:
      break;
    case V::Default:
      via = "default: ";
      break;
    default:
      break;
  }
  std::string what;
  switch (n.Kind) {
    case NodeKind::Entry:
      return EntryText(item.Graphics[static_cast<size_t>(n.Entry)], item.Feature) +
             " (Action 03 at " + SpriteAt(item.Graphics[static_cast<size_t>(n.Entry)].Sprite) + ")";
    case NodeKind::Group:
      what = GroupText(items.Groups[static_cast<size_t>(n.Group)]);
      break;
    case NodeKind::Seen:
      what = "group " + HexDigits(items.Groups[static_cast<size_t>(n.Group)].Id, 2) + " (" +
             SpriteAt(items.Groups[static_cast<size_t>(n.Group)].Sprite) + "), shown above";
      break;
    case NodeKind::Callback:
      what = "callback result " + std::to_string(n.Value) + " (" + HexDigits(n.Value | 0x8000, 4) +
             ")";
      break;
    case NodeKind::Set: {
      const SpriteSetRef& r = items.Sets[static_cast<size_t>(n.Set)];
      what = "set " + std::to_string(r.Number) + " of Action 01 at " + SpriteAt(r.Action) + ": " +
             SpriteSpan(r.First, r.Count);
      break;
    }
    case NodeKind::Undefined:
      what = "undefined: " + HexDigits(n.Value, 4);
      break;
    case NodeKind::Loop:
      what =
          "loop: group " + HexDigits(items.Groups[static_cast<size_t>(n.Group)].Id, 2) + " again";
      break;
    case NodeKind::LayoutPart: {
      const SpriteGroup& g = items.Groups[static_cast<size_t>(n.Group)];
      what = LayoutSpriteText(items, n.Part < 0 ? g.Ground : g.Sprites[static_cast<size_t>(n.Part)],
                              n.Part < 0);
      break;
    }
  }
  if (n.How == V::Range && n.Parent >= 0) {
    const VarRange& r =
        items.Groups[static_cast<size_t>(n.Parent)].Ranges[static_cast<size_t>(n.Index)];
    // Callback numbers are written in hex wherever authors meet them.
    const SpriteGroup& g = items.Groups[static_cast<size_t>(n.Parent)];
    const bool callback = g.Adjusts.size() == 1 && g.Adjusts[0].Variable == 0x0C;
    const auto value = [callback](uint32_t v) {
      return callback ? "callback " + HexDigits(v, 2) : std::to_string(v);
    };
    via =
        value(r.Low) +
        (r.Low == r.High ? "" : ".." + (callback ? HexDigits(r.High, 2) : std::to_string(r.High))) +
        ": ";
  }
  return via + what;
}

std::string ItemProblemText(const ItemProblem& p) {
  const std::string at = SpriteAt(p.Sprite) + ": ";
  switch (p.Kind) {
    case ItemProblemKind::CutAction:
      return at + "the action ends early (" + std::to_string(p.Value) + " of " +
             std::to_string(p.Need) + " bytes)";
    case ItemProblemKind::UnknownProperty:
      return at + "property " + HexDigits(p.Value, 2) + " of " + FeatureWord(p.Feature) +
             " has no known size; the rest of the block is not read";
    case ItemProblemKind::UnknownGroupType:
      return at + "group type " + HexDigits(p.Value, 2) + " is not known";
    case ItemProblemKind::UndefinedGroup:
      return at + "group " + HexDigits(p.Value, 2) + " is not defined before it is used";
    case ItemProblemKind::UndefinedSet:
      return at + "set " + std::to_string(p.Value) + " is not in the Action 01 before it";
    case ItemProblemKind::NoSets:
      return at + "set " + std::to_string(p.Value) + " is used before any Action 01 of " +
             FeatureWord(p.Feature);
    case ItemProblemKind::SetOutsideFile:
      return at + "set " + std::to_string(p.Value) + " runs past the end of the file";
    case ItemProblemKind::Loop:
      return at + "group " + HexDigits(p.Value, 2) + " leads back to itself";
  }
  return at;
}

std::string SpriteRuns(const std::vector<int32_t>& sprites) {
  std::string out;
  for (size_t i = 0; i < sprites.size();) {
    size_t j = i;
    while (j + 1 < sprites.size() && sprites[j + 1] == sprites[j] + 1) ++j;
    out += (out.empty() ? "" : ", ") + std::to_string(sprites[i] + 1);
    if (j > i) out += "-" + std::to_string(sprites[j] + 1);
    i = j + 1;
  }
  return out.empty() ? "none" : out;
}

}  // namespace vossel
