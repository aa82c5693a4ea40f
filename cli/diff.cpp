// vossel-cli diff A B: what changed between two GRF files, as text or as one JSON document. The
// exit status is diff's: 0 the same, 1 different, 2 trouble.
#include <cstdio>
#include <string>

#include <QJsonArray>
#include <QJsonObject>

#include "commands.h"
#include "compare.h"
#include "items.h"
#include "output.h"

namespace vossel {
namespace {

const char kDiffUsage[] = "Usage: vossel-cli diff A B [--json] [--pixels]\n";

constexpr int kSame = 0, kDifferent = 1, kTrouble = 2;

QString Q(const std::string& s) {
  return QString::fromStdString(s);
}

QJsonObject FileJson(const GrfFile& file, const GrfIdentity& i) {
  QJsonObject o;
  o.insert("file", Q(file.Path));
  o.insert("container", file.Container);
  o.insert("count", SpriteCount(file));
  if (i.HasAction8) {
    o.insert("grfId", Q(HexDigits(static_cast<uint32_t>(i.Grf.Bytes[0]) << 24 |
                                      static_cast<uint32_t>(i.Grf.Bytes[1]) << 16 |
                                      static_cast<uint32_t>(i.Grf.Bytes[2]) << 8 | i.Grf.Bytes[3],
                                  8)));
    o.insert("name", Q(i.Name));
  }
  if (i.HasInfo && i.Info.HasVersion) o.insert("version", static_cast<qint64>(i.Info.Version));
  return o;
}

QJsonObject FactsJson(const SpriteFacts& f) {
  QJsonObject o;
  o.insert("width", static_cast<qint64>(f.Width));
  o.insert("height", static_cast<qint64>(f.Height));
  o.insert("x", f.XOffset);
  o.insert("y", f.YOffset);
  return o;
}

QJsonObject SpriteJson(const SpriteDifference& d) {
  QJsonObject o = SpriteKeys(d.Sprite);
  o.insert("change", SpriteChangeKey(d.Change));
  o.insert("text", Q(SpriteChangeText(d)));
  switch (d.Change) {
    case SpriteChange::Size:
    case SpriteChange::Offsets:
    case SpriteChange::Pixels:
    case SpriteChange::Unreadable:
      o.insert("alternative", Q(AlternativeText(d.Alternative)));
      o.insert("old", FactsJson(d.Old));
      o.insert("new", FactsJson(d.New));
      break;
    case SpriteChange::Bytes:
      o.insert("oldNfo", Q(OldNfoLine(d)));
      o.insert("newNfo", Q(NewNfoLine(d)));
      break;
    default:
      break;
  }
  if (d.Change == SpriteChange::Pixels && d.Pixels.Counted) {
    QJsonObject p;
    p.insert("count", static_cast<qint64>(d.Pixels.Count));
    p.insert("left", d.Pixels.Left);
    p.insert("top", d.Pixels.Top);
    p.insert("width", d.Pixels.Right - d.Pixels.Left);
    p.insert("height", d.Pixels.Bottom - d.Pixels.Top);
    o.insert("pixels", p);
  }
  return o;
}

QJsonObject ItemJson(const ItemDifference& d) {
  QJsonObject o;
  o.insert("feature", d.Feature);
  o.insert("featureName", Q(FeatureWord(d.Feature)));
  o.insert("id", static_cast<qint64>(d.Id));
  o.insert("name", Q(d.NewName.empty() ? d.OldName : d.NewName));
  o.insert("change", ItemChangeKey(d.Change));
  o.insert("text", Q(ItemChangeText(d)));
  if (d.Change == ItemChange::Property) {
    o.insert("property", d.Property);
    if (d.HasOld) o.insert("old", Q(PropertyValueText(d.Old)));
    if (d.HasNew) o.insert("new", Q(PropertyValueText(d.New)));
  }
  if (d.Change == ItemChange::Graphics) {
    QJsonArray a, b;
    for (int32_t s : d.OldSprites) a.append(SpriteKeys(s));
    for (int32_t s : d.NewSprites) b.append(SpriteKeys(s));
    o.insert("oldSprites", a);
    o.insert("newSprites", b);
  }
  return o;
}

int PrintJsonDiff(const GrfFile& a, const GrfFile& b, const GrfComparison& c) {
  QJsonObject doc;
  doc.insert("old", FileJson(a, c.OldIdentity));
  doc.insert("new", FileJson(b, c.NewIdentity));
  doc.insert("equal", IsEqual(c));
  doc.insert("summary", Q(ComparisonSummary(c)));
  QJsonArray identity;
  for (const std::string& line : IdentityChangeLines(c)) identity.append(Q(line));
  doc.insert("identity", identity);
  QJsonArray sprites, items;
  for (const SpriteDifference& d : c.Sprites) sprites.append(SpriteJson(d));
  for (const ItemDifference& d : c.Items) items.append(ItemJson(d));
  doc.insert("sprites", sprites);
  doc.insert("items", items);
  doc.insert("count", static_cast<qint64>(c.Sprites.size() + c.Items.size()));
  return PrintJson(doc);
}

int PrintTextDiff(const GrfFile& a, const GrfFile& b, const GrfComparison& c) {
  std::string out;
  out += ComparedFileLine("A", a, c.OldIdentity) + "\n";
  out += ComparedFileLine("B", b, c.NewIdentity) + "\n";
  for (const std::string& line : IdentityChangeLines(c)) out += "Identity: " + line + "\n";
  for (const SpriteDifference& d : c.Sprites) {
    out += SpriteDifferenceLine(d) + "\n";
    if (d.Change == SpriteChange::Bytes)
      out += "  - " + OldNfoLine(d) + "\n  + " + NewNfoLine(d) + "\n";
  }
  for (const ItemDifference& d : c.Items)
    out += "Item " + ItemDifferenceName(d) + ": " + ItemChangeText(d) + "\n";
  out += ComparisonSummary(c) + "\n";
  std::fwrite(out.data(), 1, out.size(), stdout);
  return FinishOutput();
}

}  // namespace

int CmdDiff(const std::vector<std::string>& args) {
  const CommandArgs parsed = ParseCommand(args, 2, {}, {"json", "pixels"});
  if (!parsed.Error.empty()) {
    std::fprintf(stderr, "vossel-cli: %s\n%s", parsed.Error.c_str(), kDiffUsage);
    return kExitUsage;
  }
  GrfFile a, b;
  FileReading ra, rb;
  if (LoadForCli(parsed.Positional[0], a, &ra) != kExitOk) return kTrouble;
  if (LoadForCli(parsed.Positional[1], b, &rb) != kExitOk) return kTrouble;
  CompareOptions options;
  options.CountPixels = parsed.Values.count("pixels") > 0;
  const GrfComparison c = CompareFiles(a, ra, b, rb, options);
  const int written =
      parsed.Values.count("json") > 0 ? PrintJsonDiff(a, b, c) : PrintTextDiff(a, b, c);
  if (written != kExitOk) return kTrouble;
  return IsEqual(c) ? kSame : kDifferent;
}

}  // namespace vossel
