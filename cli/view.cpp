// vossel-cli view FILE FEATURE ID OUT.png: what an item draws for a request, composed as the game
// places it, with the branch points met on the way and the picks taken.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>

#include "commands.h"
#include "compose.h"
#include "item_compose.h"
#include "items.h"
#include "output.h"
#include "pngwrite.h"

namespace vossel {
namespace {

const char kViewUsage[] =
    "Usage: vossel-cli view FILE FEATURE ID OUT.png|- [--cargo C] [--purchase] [--loading]\n"
    "       [--pick SPRITE=N ...] [--boxes] [--origins] [--shared-origin] [--palette PAL]\n"
    "       [--company COLOUR] [--company2 COLOUR] [--base-set FILE] [--zoom LEVEL]\n"
    "       [--depth 8|32] [--json] [--force]\n"
    "  SPRITE names a random or variational group by its Action 02's sprite; N counts its\n"
    "  choices from 1, or is 'default'\n";

int UsageError(const std::string& why) {
  std::fprintf(stderr, "vossel-cli: %s\n%s", why.c_str(), kViewUsage);
  return kExitUsage;
}

QString Q(const std::string& s) {
  return QString::fromStdString(s);
}

bool WholeNumber(const std::string& text, int64_t& v) {
  char* end = nullptr;
  v = std::strtoll(text.c_str(), &end, 10);
  return !text.empty() && *end == '\0';
}

// SPRITE=N with SPRITE from 1, N from 1 or "default".
bool ParsePick(const std::string& text, BranchPick& pick) {
  const size_t eq = text.find('=');
  if (eq == std::string::npos) return false;
  int64_t sprite = 0, n = 0;
  if (!WholeNumber(text.substr(0, eq), sprite) || sprite < 1 || sprite > INT32_MAX) return false;
  const std::string choice = text.substr(eq + 1);
  pick.Sprite = static_cast<int32_t>(sprite - 1);
  if (choice == "default") {
    pick.Pick = -1;
    return true;
  }
  if (!WholeNumber(choice, n) || n < 1 || n > INT32_MAX) return false;
  pick.Pick = static_cast<int32_t>(n - 1);
  return true;
}

// A cargo-table index, or a label the item's Action 03 names.
bool ParseCargo(const Item& item, const std::string& text, uint8_t& cargo) {
  for (const GraphicsEntry& e : item.Graphics)
    if (e.Kind == EntryKind::Cargo && !e.CargoLabel.empty() &&
        Q(e.CargoLabel).compare(Q(text), Qt::CaseInsensitive) == 0) {
      cargo = e.Cargo;
      return true;
    }
  int64_t n = 0;
  if (!WholeNumber(text, n) || n < 0 || n > 0xFD) return false;
  cargo = static_cast<uint8_t>(n);
  return true;
}

QJsonValue PickJson(int32_t pick) {
  return pick < 0 ? QJsonValue("default") : QJsonValue(pick + 1);
}

QJsonObject BranchJson(const GrfItems& items, const BranchPoint& b) {
  const SpriteGroup& g = items.Groups[static_cast<size_t>(b.Group)];
  QJsonObject o = SpriteKeys(g.Sprite);
  static const char* const kKinds[] = {"random", "variational", "amount", "setSprite"};
  o.insert("kind", kKinds[static_cast<int>(b.Kind)]);
  o.insert("text", Q(BranchText(items, b)));
  QJsonArray choices;
  for (int32_t i = 0; i < b.Choices; ++i)
    choices.append(QJsonObject{{"pick", PickJson(i)}, {"text", Q(BranchChoiceText(items, b, i))}});
  if (b.Kind == BranchKind::Variational)
    choices.append(QJsonObject{{"pick", "default"}, {"text", "default"}});
  o.insert("choices", choices);
  o.insert("default", PickJson(b.DefaultPick));
  if (b.Kind == BranchKind::Variational) {
    o.insert("computed", b.Computed);
    if (b.Computed) o.insert("value", static_cast<qint64>(b.Value));
  }
  o.insert("picked", PickJson(b.Picked));
  return o;
}

QJsonObject PlacedJson(const Composition& c, const PlacedSprite& s) {
  QJsonObject o;
  if (s.Source == SpriteSource::File)
    o = SpriteKeys(s.Sprite);
  else
    o.insert(s.Source == SpriteSource::Base ? "baseSprite" : "setSprite", s.Sprite);
  o.insert("source", s.Source == SpriteSource::File   ? "file"
                     : s.Source == SpriteSource::Base ? "base"
                                                      : "none");
  if (c.End == ComposeEnd::Layout) {
    const auto part = std::find_if(c.Parts.begin(), c.Parts.end(),
                                   [&](const ComposedPart& p) { return p.Index == s.Part; });
    if (part != c.Parts.end()) {
      o.insert("role", PartRoleWord(part->Role));
      o.insert("word", static_cast<qint64>(part->Word));
      if (part->RegisterUsed) o.insert("registerKnown", part->RegisterKnown);
    }
  } else {
    o.insert("view", s.Part);
    o.insert("direction", Q(ViewDirection(s.Part)));
  }
  o.insert("x", s.Rect.x());
  o.insert("y", s.Rect.y());
  o.insert("width", s.Rect.width());
  o.insert("height", s.Rect.height());
  o.insert("origin", QJsonArray{s.Origin.x(), s.Origin.y()});
  o.insert("outline", s.Outline);
  if (!s.Problem.empty()) o.insert("problem", Q(s.Problem));
  return o;
}

}  // namespace

int CmdView(const std::vector<std::string>& args) {
  const CommandArgs parsed = ParseCommand(
      args, 4, {"cargo", "palette", "company", "company2", "base-set", "zoom", "depth"},
      {"purchase", "loading", "boxes", "origins", "shared-origin", "json", "force"}, {"pick"});
  if (parsed.TooFew) return UsageError("view needs FILE, FEATURE, ID and OUT.png");
  if (!parsed.Error.empty()) return UsageError(parsed.Error);
  uint8_t feature = 0;
  uint32_t id = 0;
  if (!ParseFeature(args[1], feature)) return UsageError("'" + args[1] + "' is not a feature");
  if (!ParseId(args[2], id)) return UsageError("'" + args[2] + "' is not an ID");
  const std::string& out = parsed.Positional[3];
  const bool json = parsed.Values.count("json") > 0;
  if (json && out == "-") return UsageError("--json and OUT - both want standard output");
  std::string why;
  AlternativeWish wish;
  if (!ParseWish(parsed, wish, why)) return UsageError(why);
  ComposeRequest request;
  request.Loading = parsed.Values.count("loading") > 0;
  if (parsed.Values.count("purchase") > 0 && parsed.Values.count("cargo") > 0)
    return UsageError("--purchase and --cargo ask for two entries; give one");
  if (parsed.Values.count("purchase") > 0) request.Entry = EntryKind::Purchase;
  if (const auto picks = parsed.Lists.find("pick"); picks != parsed.Lists.end())
    for (const std::string& text : picks->second) {
      BranchPick pick;
      if (!ParsePick(text, pick))
        return UsageError("--pick takes SPRITE=N or SPRITE=default, not '" + text + "'");
      request.Picks.push_back(pick);
    }
  ComposeOptions options;
  options.Boxes = parsed.Values.count("boxes") > 0;
  options.Origins = parsed.Values.count("origins") > 0;
  options.SharedOrigin = parsed.Values.count("shared-origin") > 0;

  const std::string& fileName = args[0];
  GrfFile file;
  FileReading reading;
  if (LoadForCli(fileName, file, &reading) != kExitOk) return kExitFailure;
  const GrfItems items = ReadItems(reading);
  const Item* item = FindItem(items, feature, id);
  if (item == nullptr) {
    FileError(fileName, "no item " + std::to_string(id) + " of " + FeatureWord(feature));
    return kExitFailure;
  }
  if (const auto cargo = parsed.Values.find("cargo"); cargo != parsed.Values.end()) {
    if (!ParseCargo(*item, cargo->second, request.Cargo))
      return UsageError("--cargo takes a cargo label of the item or an index, not '" +
                        cargo->second + "'");
    request.Entry = EntryKind::Cargo;
  }
  if (parsed.Values.count("force") == 0 && out != "-" &&
      QFileInfo::exists(QFile::decodeName(out.c_str()))) {
    std::fprintf(stderr,
                 "vossel-cli: %s is there already; nothing was written. Give --force to "
                 "overwrite.\n",
                 out.c_str());
    return kExitFailure;
  }
  Look look;
  if (const int status = ChooseLook(file, reading, parsed.Values, look, &wish); status != kExitOk)
    return status;
  const Composition c = Compose(items, *item, request);
  for (const BranchPick& pick : request.Picks) {
    const auto met = std::find_if(c.Branches.begin(), c.Branches.end(), [&](const BranchPoint& b) {
      return items.Groups[static_cast<size_t>(b.Group)].Sprite == pick.Sprite;
    });
    const std::string at = "--pick " + std::to_string(pick.Sprite + 1);
    if (met == c.Branches.end()) {
      FileError(fileName, at + ": no branch point at sprite " + std::to_string(pick.Sprite + 1) +
                              " on the way");
      return kExitFailure;
    }
    if (pick.Pick >= met->Choices || (pick.Pick < 0 && met->Kind != BranchKind::Variational)) {
      FileError(fileName, at + ": the group has choices 1 to " + std::to_string(met->Choices) +
                              (met->Kind == BranchKind::Variational ? " and default" : ""));
      return kExitFailure;
    }
  }
  BaseSprites base;
  if (c.End == ComposeEnd::Layout) {
    const auto named = parsed.Values.find("base-set");
    base = OpenBaseSprites(named != parsed.Values.end() ? named->second : std::string());
    if (!base.Open) FileError(fileName, "no base set found; base sprites are drawn as outlines");
  }
  if (c.End != ComposeEnd::Layout && c.End != ComposeEnd::Views && c.End != ComposeEnd::Set) {
    FileError(fileName, ComposeEndText(items, c) + "; no picture written");
    return kExitFailure;
  }
  const ComposedPicture picture = DrawComposition(file, items, c, look, &base, options);
  std::vector<uint8_t> png;
  if (!EncodePng(picture.Image, {}, png)) {
    std::fprintf(stderr, "vossel-cli: cannot write '%s': the PNG encoder failed\n", out.c_str());
    return kExitFailure;
  }
  if (!DeliverPng(out, png)) return kExitFailure;
  const Item& it = *item;
  if (json) {
    QJsonObject doc;
    doc.insert("file", Q(fileName));
    doc.insert("feature", it.Feature);
    doc.insert("id", static_cast<qint64>(it.Id));
    doc.insert("entry", c.Entry >= 0
                            ? Q(EntryText(it.Graphics[static_cast<size_t>(c.Entry)], it.Feature))
                            : QString());
    doc.insert("fellBack", c.FellBack);
    doc.insert("end", Q(ComposeEndText(items, c)));
    doc.insert("width", picture.Image.width());
    doc.insert("height", picture.Image.height());
    doc.insert("origin", QJsonArray{picture.Origin.x(), picture.Origin.y()});
    if (c.End == ComposeEnd::Views) doc.insert("viewOrder", "inferred");
    if (base.Open) doc.insert("baseSet", Q(base.Path));
    QJsonArray sprites;
    for (const PlacedSprite& s : picture.Sprites) sprites.append(PlacedJson(c, s));
    doc.insert("count", sprites.size());
    doc.insert("sprites", sprites);
    QJsonArray branches;
    for (const BranchPoint& b : c.Branches) branches.append(BranchJson(items, b));
    doc.insert("branches", branches);
    doc.insert("variablesAssumed", c.VariablesAssumed);
    doc.insert("registersUnknown", c.RegistersUnknown);
    return FinishOutput(PrintJson(doc) != kExitOk ? kExitFailure : LoadStatus(file));
  }
  if (out != "-") {
    std::string text = out + ": " + ComposeEndText(items, c) + ", " +
                       std::to_string(picture.Image.width()) + " x " +
                       std::to_string(picture.Image.height()) + " pixels\n";
    for (const BranchPoint& b : c.Branches) {
      const int32_t sprite = items.Groups[static_cast<size_t>(b.Group)].Sprite + 1;
      text += "  pick " + std::to_string(sprite) + "=" +
              (b.Picked < 0 ? std::string("default") : std::to_string(b.Picked + 1)) + " (" +
              BranchChoiceText(items, b, b.Picked) + ") of " + BranchText(items, b) + "\n";
    }
    if (c.FellBack) text += "  the item has no entry for the request; its default is drawn\n";
    if (c.VariablesAssumed) text += "  game variables read as 0 where the way computes a value\n";
    if (c.RegistersUnknown) text += "  a register nothing filled is taken as 0\n";
    for (const PlacedSprite& s : picture.Sprites)
      if (s.Outline)
        text += "  outline for " +
                std::string(s.Source == SpriteSource::Base ? "base sprite " : "sprite ") +
                std::to_string(s.Sprite + (s.Source == SpriteSource::File)) + ": " + s.Problem +
                "\n";
    std::fwrite(text.data(), 1, text.size(), stdout);
  }
  return FinishOutput(LoadStatus(file));
}

}  // namespace vossel
