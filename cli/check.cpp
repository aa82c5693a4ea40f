// vossel-cli check FILE: the mistakes a file carries, one line each, and a summary; the exit status
// tells a build script whether there were errors or warnings.
#include <cstdio>
#include <set>
#include <sstream>
#include <string>

#include <QJsonArray>
#include <QJsonObject>

#include "check.h"
#include "commands.h"
#include "items.h"
#include "output.h"

namespace vossel {
namespace {

constexpr int kExitWarnings = 3;
constexpr int kExitErrors = 4;

const char kCheckUsage[] =
    "Usage: vossel-cli check FILE [--json] [--ignore CODE,...]\n"
    "  CODE as printed (V201) or its number (201)\n";

int UsageError(const std::string& why) {
  std::fprintf(stderr, "vossel-cli: %s\n%s", why.c_str(), kCheckUsage);
  return kExitUsage;
}

QString Q(const std::string& s) {
  return QString::fromStdString(s);
}

bool ParseIgnore(const std::string& text, std::set<CheckCode>& ignored, std::string& bad) {
  std::stringstream list(text);
  for (std::string part; std::getline(list, part, ',');) {
    CheckCode code{};
    if (part.empty()) continue;
    if (!ParseCheckCode(part, code)) {
      bad = part;
      return false;
    }
    ignored.insert(code);
  }
  return true;
}

QJsonObject FindingJson(const Finding& f) {
  QJsonObject o;
  if (f.Sprite >= 0) AddSpriteKeys(o, f.Sprite);
  o.insert("code", Q(CodeText(f.Code)));
  o.insert("severity", Q(SeverityText(f.Level)));
  o.insert("text", Q(FindingText(f)));
  if (f.HasItem) {
    o.insert("feature", f.Feature);
    o.insert("featureName", Q(FeatureWord(f.Feature)));
    o.insert("id", static_cast<qint64>(f.Id));
  }
  QJsonArray values;
  for (int64_t v : f.Values) values.append(static_cast<qint64>(v));
  o.insert("values", values);
  return o;
}

}  // namespace

int CmdCheck(const std::vector<std::string>& args) {
  const CommandArgs parsed = ParseCommand(args, 1, {"ignore"}, {"json"});
  if (parsed.TooFew) return UsageError("check needs FILE");
  if (!parsed.Error.empty()) return UsageError(parsed.Error);
  std::set<CheckCode> ignored;
  if (const auto it = parsed.Values.find("ignore"); it != parsed.Values.end()) {
    std::string bad;
    if (!ParseIgnore(it->second, ignored, bad)) return UsageError("'" + bad + "' is not a code");
  }
  const std::string& path = parsed.Positional[0];
  // The load's own messages are left out: what matters of them comes back as findings, each once.
  GrfFile file;
  FileReading reading;
  if (LoadForCli(path, file, &reading, false) != kExitOk) return kExitFailure;
  const GrfItems items = ReadItems(reading);
  std::vector<Finding> findings;
  int64_t counts[3] = {0, 0, 0};
  for (const Finding& f : CheckGrf(file, reading, items)) {
    if (ignored.count(f.Code)) continue;
    findings.push_back(f);
    ++counts[static_cast<int>(f.Level)];
  }
  const int status = counts[0] ? kExitErrors : counts[1] ? kExitWarnings : kExitOk;
  if (parsed.Values.count("json")) {
    QJsonObject doc;
    doc.insert("file", Q(path));
    QJsonArray list;
    for (const Finding& f : findings) list.append(FindingJson(f));
    doc.insert("findings", list);
    doc.insert("count", list.size());
    doc.insert("errors", static_cast<qint64>(counts[0]));
    doc.insert("warnings", static_cast<qint64>(counts[1]));
    doc.insert("notes", static_cast<qint64>(counts[2]));
    // A lost output is trouble, whatever was found.
    return PrintJson(doc) != kExitOk ? kExitFailure : status;
  }
  std::string out;
  for (const Finding& f : findings) {
    const std::string where = f.Sprite >= 0 ? std::to_string(f.Sprite + 1) : "-";
    out += where + ": " + SeverityText(f.Level) + " " + CodeText(f.Code) + ": " + FindingText(f) +
           "\n";
  }
  out += path + ": " +
         (findings.empty() ? std::string("no problems found")
                           : CountText(counts[0], "error", "errors") + ", " +
                                 CountText(counts[1], "warning", "warnings") + ", " +
                                 CountText(counts[2], "note", "notes")) +
         "\n";
  std::fwrite(out.data(), 1, out.size(), stdout);
  return FinishOutput() != kExitOk ? kExitFailure : status;
}

}  // namespace vossel
