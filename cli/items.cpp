// vossel-cli items FILE and item FILE FEATURE ID: what a NewGRF makes, one line per item, and one
// item's properties and graphics tree; both also as one JSON document.
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <string>

#include <QJsonArray>
#include <QJsonObject>

#include "commands.h"
#include "items.h"
#include "output.h"

namespace vossel {
namespace {

const char kItemsUsage[] = "Usage: vossel-cli items FILE [--json]\n";
const char kItemUsage[] =
    "Usage: vossel-cli item FILE FEATURE ID [--json]\n"
    "  FEATURE as NFO writes it (00, 0A) or by name (trains, houses); ID decimal or 0x hex\n";

int UsageError(const char* usage, const std::string& why) {
  std::fprintf(stderr, "vossel-cli: %s\n%s", why.c_str(), usage);
  return kExitUsage;
}

std::string Hex2(uint32_t v) {
  char buffer[16];
  std::snprintf(buffer, sizeof buffer, "%02X", v);
  return buffer;
}

QString Q(const std::string& s) {
  return QString::fromStdString(s);
}

QJsonArray SpriteList(const std::vector<int32_t>& sprites) {
  QJsonArray list;
  for (int32_t s : sprites) list.append(SpriteKeys(s));
  return list;
}

void AddFeature(QJsonObject& o, uint8_t feature) {
  o.insert("feature", feature);
  o.insert("featureName", Q(FeatureWord(feature)));
}

QJsonObject ProblemJson(const ItemProblem& p) {
  QJsonObject o = SpriteKeys(p.Sprite);
  o.insert("text", Q(ItemProblemText(p)));
  return o;
}

QJsonObject PropertyJson(const ItemProperty& p) {
  QJsonObject o = SpriteKeys(p.Sprite);
  o.insert("number", p.Number);
  o.insert("name", Q(PropertyName(p)));
  o.insert("size", Q(PropertySizeText(p)));
  o.insert("raw", Q(HexBytes(p.Raw)));
  o.insert("value", Q(PropertyValueText(p)));
  o.insert("confirmed", p.Row != nullptr && p.Row->Confirmed);
  QJsonArray numbers;
  for (int64_t n : p.Numbers) numbers.append(static_cast<qint64>(n));
  o.insert("numbers", numbers);
  if (!p.Labels.empty()) {
    QJsonArray labels;
    for (const std::string& l : p.Labels) labels.append(Q(l));
    o.insert("labels", labels);
  }
  return o;
}

QJsonObject LayoutSpriteJson(const GrfItems& items, const LayoutSprite& s, bool ground) {
  QJsonObject o;
  o.insert("kind", ground ? "ground" : s.Child ? "child" : "building");
  o.insert("word", static_cast<qint64>(s.Word));
  o.insert("fromFile", (s.Word & 0x80000000u) != 0);
  o.insert("number", static_cast<qint64>(s.Word & 0x3FFF));
  o.insert("recolour", static_cast<qint64>((s.Word >> 16) & 0x3FFF));
  o.insert("flags", s.Flags);
  if (s.HasBox) {
    o.insert("offset", QJsonArray{s.X, s.Y, s.Z});
    o.insert("extent", QJsonArray{s.XExtent, s.YExtent, s.ZExtent});
  }
  if (s.Child) o.insert("pixels", QJsonArray{s.X, s.Y});
  QJsonArray regs;
  for (uint8_t r : s.Registers) regs.append(r);
  o.insert("registers", regs);
  if (s.Set >= 0) {
    const SpriteSetRef& r = items.Sets[static_cast<size_t>(s.Set)];
    std::vector<int32_t> sprites;
    for (uint32_t k = 0; k < r.Count; ++k) sprites.push_back(r.First + static_cast<int32_t>(k));
    o.insert("sprites", SpriteList(sprites));
  }
  o.insert("text", Q(LayoutSpriteText(items, s, ground)));
  return o;
}

// A node of the graphics tree and those below it, as nested objects.
QJsonObject NodeJson(const GrfItems& items, const Item& item, const ItemGraph& graph, size_t& at) {
  const GraphNode& n = graph.Nodes[at++];
  QJsonObject o;
  static const char* const kKinds[] = {"entry", "group",     "seen", "callback",
                                       "set",   "undefined", "loop", "layoutSprite"};
  o.insert("kind", kKinds[static_cast<int>(n.Kind)]);
  o.insert("text", Q(NodeText(items, item, n)));
  if (n.Kind == NodeKind::Entry) {
    const GraphicsEntry& e = item.Graphics[static_cast<size_t>(n.Entry)];
    AddSpriteKeys(o, e.Sprite);
    o.insert("entry", Q(EntryText(e, item.Feature)));
    o.insert("cargo", e.Cargo);
  }
  if (n.Kind == NodeKind::Group || n.Kind == NodeKind::Seen || n.Kind == NodeKind::Loop) {
    const SpriteGroup& g = items.Groups[static_cast<size_t>(n.Group)];
    AddSpriteKeys(o, g.Sprite);
    o.insert("id", g.Id);
    o.insert("type", g.Type);
    if (n.Kind == NodeKind::Group && g.Kind == GroupKind::Variational) {
      QJsonArray adjusts;
      for (const VarAdjust& a : g.Adjusts) {
        QJsonObject j;
        j.insert("operator", a.Op);
        j.insert("variable", a.Variable);
        j.insert("variableName", Q(VariableName(a.Variable, g.Feature)));
        if (a.HasParameter) j.insert("parameter", a.Parameter);
        j.insert("shift", a.Shift);
        j.insert("mask", static_cast<qint64>(a.Mask));
        if (a.HasDivide)
          j.insert("divide",
                   QJsonArray{static_cast<qint64>(a.Add), static_cast<qint64>(a.Divisor)});
        if (a.HasModulo)
          j.insert("modulo",
                   QJsonArray{static_cast<qint64>(a.Add), static_cast<qint64>(a.Divisor)});
        adjusts.append(j);
      }
      o.insert("adjustments", adjusts);
    }
    if (n.Kind == NodeKind::Group && g.Kind == GroupKind::Random) {
      o.insert("randomBit", g.RandomBit);
      o.insert("triggers", g.Triggers);
    }
  }
  if (n.How == GraphNode::Via::Range && n.Parent >= 0) {
    const VarRange& r =
        items.Groups[static_cast<size_t>(n.Parent)].Ranges[static_cast<size_t>(n.Index)];
    o.insert("range", QJsonArray{static_cast<qint64>(r.Low), static_cast<qint64>(r.High)});
  }
  if (n.How == GraphNode::Via::Choice) o.insert("choice", n.Index);
  if (n.How == GraphNode::Via::Loaded) o.insert("loaded", n.Index);
  if (n.How == GraphNode::Via::Loading) o.insert("loading", n.Index);
  if (n.How == GraphNode::Via::Default) o.insert("default", true);
  if (n.Kind == NodeKind::Callback) o.insert("result", static_cast<qint64>(n.Value));
  if (n.Kind == NodeKind::Set) {
    const SpriteSetRef& r = items.Sets[static_cast<size_t>(n.Set)];
    std::vector<int32_t> sprites;
    for (uint32_t k = 0; k < r.Count; ++k) sprites.push_back(r.First + static_cast<int32_t>(k));
    o.insert("set", static_cast<qint64>(r.Number));
    o.insert("action", SpriteKeys(r.Action));
    o.insert("sprites", SpriteList(sprites));
  }
  if (n.Kind == NodeKind::LayoutPart) {
    const SpriteGroup& g = items.Groups[static_cast<size_t>(n.Group)];
    o = LayoutSpriteJson(items, n.Part < 0 ? g.Ground : g.Sprites[static_cast<size_t>(n.Part)],
                         n.Part < 0);
  }
  QJsonArray below;
  while (at < graph.Nodes.size() && graph.Nodes[at].Depth > n.Depth)
    below.append(NodeJson(items, item, graph, at));
  if (!below.isEmpty()) o.insert("below", below);
  return o;
}

std::string NameText(const Item& item) {
  return item.Name.empty() ? "(no name)" : "\"" + item.Name + "\"";
}

}  // namespace

bool ParseId(const std::string& text, uint32_t& id) {
  const bool hex = text.rfind("0x", 0) == 0 || text.rfind("0X", 0) == 0;
  const std::string digits = hex ? text.substr(2) : text;
  if (digits.empty() || digits[0] == '-' || digits[0] == '+') return false;
  errno = 0;
  char* end = nullptr;
  const unsigned long long v = std::strtoull(digits.c_str(), &end, hex ? 16 : 10);
  if (*end != '\0' || errno != 0 || v > 0xFFFFFFFFull) return false;
  id = static_cast<uint32_t>(v);
  return true;
}

int CmdItems(const std::vector<std::string>& args) {
  const CommandArgs parsed = ParseCommand(args, 1, {}, {"json"});
  if (parsed.TooFew) return UsageError(kItemsUsage, "items needs FILE");
  if (!parsed.Error.empty()) return UsageError(kItemsUsage, parsed.Error);
  GrfFile file;
  FileReading reading;
  if (LoadForCli(args[0], file, &reading) != kExitOk) return kExitFailure;
  const GrfItems items = ReadItems(reading);
  if (parsed.Values.count("json")) {
    QJsonObject doc;
    doc.insert("file", Q(args[0]));
    QJsonArray list;
    for (const Item& item : items.Items) {
      QJsonObject o;
      AddFeature(o, item.Feature);
      o.insert("id", static_cast<qint64>(item.Id));
      o.insert("name", Q(item.Name));
      o.insert("properties", static_cast<qint64>(item.Properties.size()));
      o.insert("graphics", static_cast<qint64>(item.Graphics.size()));
      o.insert("sprites", SpriteList(GraphOf(items, item).Sprites));
      list.append(o);
    }
    doc.insert("count", list.size());
    doc.insert("items", list);
    QJsonArray problems;
    for (const ItemProblem& p : items.Problems) problems.append(ProblemJson(p));
    doc.insert("problems", problems);
    return FinishOutput(PrintJson(doc) != kExitOk ? kExitFailure : LoadStatus(file));
  }
  std::string out;
  for (const Item& item : items.Items) {
    const size_t reached = GraphOf(items, item).Sprites.size();
    out += Hex2(item.Feature) + " " + FeatureWord(item.Feature) + " " + std::to_string(item.Id) +
           " " + NameText(item) + ": " +
           CountText(item.Properties.size(), "property", "properties") + ", " +
           CountText(reached, "sprite", "sprites") + "\n";
  }
  if (items.Items.empty()) out += "No items.\n";
  for (const ItemProblem& p : items.Problems) out += "Problem: " + ItemProblemText(p) + "\n";
  std::fwrite(out.data(), 1, out.size(), stdout);
  return FinishOutput(LoadStatus(file));
}

int CmdItem(const std::vector<std::string>& args) {
  const CommandArgs parsed = ParseCommand(args, 3, {}, {"json"});
  if (parsed.TooFew) return UsageError(kItemUsage, "item needs FILE, FEATURE and ID");
  if (!parsed.Error.empty()) return UsageError(kItemUsage, parsed.Error);
  uint8_t feature = 0;
  uint32_t id = 0;
  if (!ParseFeature(args[1], feature))
    return UsageError(kItemUsage, "'" + args[1] + "' is not a feature");
  if (!ParseId(args[2], id)) return UsageError(kItemUsage, "'" + args[2] + "' is not an ID");
  GrfFile file;
  FileReading reading;
  if (LoadForCli(args[0], file, &reading) != kExitOk) return kExitFailure;
  const GrfItems items = ReadItems(reading);
  const Item* item = FindItem(items, feature, id);
  if (item == nullptr) {
    FileError(args[0], "no item " + std::to_string(id) + " of " + FeatureWord(feature));
    return kExitFailure;
  }
  const ItemGraph graph = GraphOf(items, *item);
  if (parsed.Values.count("json")) {
    QJsonObject doc;
    doc.insert("file", Q(args[0]));
    AddFeature(doc, item->Feature);
    doc.insert("id", static_cast<qint64>(item->Id));
    doc.insert("name", Q(item->Name));
    if (item->NameSprite >= 0) {
      QJsonObject from = SpriteKeys(item->NameSprite);
      from.insert("language", item->NameLanguage);
      if (item->Source == NameSource::TextId)
        from.insert("text", static_cast<qint64>(item->NameText));
      doc.insert("nameFrom", from);
    }
    QJsonArray props;
    for (const ItemProperty& p : item->Properties) props.append(PropertyJson(p));
    doc.insert("properties", props);
    QJsonArray tree;
    for (size_t at = 0; at < graph.Nodes.size();) tree.append(NodeJson(items, *item, graph, at));
    doc.insert("graphics", tree);
    doc.insert("sprites", SpriteList(graph.Sprites));
    QJsonArray problems;
    for (const ItemProblem& p : graph.Problems) problems.append(ProblemJson(p));
    doc.insert("problems", problems);
    return FinishOutput(PrintJson(doc) != kExitOk ? kExitFailure : LoadStatus(file));
  }
  std::string out = "Feature: " + Hex2(item->Feature) + " (" + FeatureWord(item->Feature) + ")\n";
  out += "ID: " + std::to_string(item->Id) + "\n";
  out += "Name: " + NameText(*item);
  if (item->NameSprite >= 0)
    out += " (Action 04 at sprite " + std::to_string(item->NameSprite + 1) + ", language " +
           Hex2(item->NameLanguage) + ")";
  out += "\nProperties:" + std::string(item->Properties.empty() ? " none\n" : "\n");
  for (const ItemProperty& p : item->Properties)
    out += "  " + Hex2(p.Number) + " " + PropertyName(p) + " = " + PropertyValueText(p) + "  [" +
           PropertySizeText(p) + ": " + HexBytes(p.Raw) + "] at sprite " +
           std::to_string(p.Sprite + 1) + "\n";
  out += "Graphics:" + std::string(graph.Nodes.empty() ? " none\n" : "\n");
  for (const GraphNode& n : graph.Nodes)
    out +=
        std::string(2 + 2 * static_cast<size_t>(n.Depth), ' ') + NodeText(items, *item, n) + "\n";
  out += "Sprites: " + SpriteRuns(graph.Sprites) + "\n";
  for (const ItemProblem& p : graph.Problems) out += "Problem: " + ItemProblemText(p) + "\n";
  std::fwrite(out.data(), 1, out.size(), stdout);
  return FinishOutput(LoadStatus(file));
}

}  // namespace vossel
