#include <cstdio>
#include <string>

#include <QJsonArray>
#include <QJsonObject>

#include "commands.h"
#include "output.h"
#include "text.h"

namespace vossel {

namespace {

std::string RowLine(const SpriteRowTexts& row) {
  return row.Number + '\t' + row.Width + '\t' + row.Height + '\t' + row.Size + '\t' + row.Flags;
}

QJsonArray AlternativesJson(const GrfFile& file, int32_t sprite) {
  QJsonArray list;
  for (int32_t k = 0; k < AlternativeCount(file, sprite); ++k) {
    const AlternativeInfo a = AlternativeOf(file, sprite, k);
    list.append(a.Data ? QJsonObject{{"kind", "data"}}
                       : QJsonObject{{"kind", "picture"},
                                     {"depth", a.Depth},
                                     {"zoom", QString::fromStdString(ZoomName(a.Zoom))}});
  }
  return list;
}

int ListJson(const GrfFile& file) {
  QJsonArray sprites;
  for (int32_t i = 0; i < SpriteCount(file); ++i) {
    const SpriteFacts f = FactsOf(file, i, DefaultAlternative(file, i));
    QJsonObject sprite = SpriteKeys(i);
    sprite.insert("width", static_cast<qint64>(f.Width));
    sprite.insert("height", static_cast<qint64>(f.Height));
    sprite.insert("size", static_cast<qint64>(f.Size));
    sprite.insert("flags", f.Flags);
    if (file.HasAlternatives) sprite.insert("alternatives", AlternativesJson(file, i));
    sprites.append(sprite);
  }
  return PrintJson({{"file", QString::fromStdString(file.Path)},
                    {"container", file.Container},
                    {"count", SpriteCount(file)},
                    {"sprites", sprites}},
                   LoadStatus(file));
}

int InfoJson(const GrfFile& file) {
  QJsonArray problems;
  for (const GrfProblem& problem : file.Problems)
    problems.append(QString::fromStdString(ProblemText(problem)));
  return PrintJson({{"file", QString::fromStdString(file.Path)},
                    {"container", file.Container},
                    {"count", SpriteCount(file)},
                    {"compressed", static_cast<qint64>(file.CompressedTotal)},
                    {"decoded", static_cast<qint64>(file.DecodedTotal)},
                    {"length", static_cast<qint64>(file.FileLength)},
                    {"prepareMilliseconds", file.PrepareTicks},
                    {"decodeMilliseconds", file.DecodeTicks},
                    {"problems", QJsonObject{{"total", static_cast<qint64>(file.ProblemCount)},
                                             {"first", problems}}}},
                   LoadStatus(file));
}

}  // namespace

bool OneFileArgument(const char* command, const std::vector<std::string>& args, bool* json) {
  const CommandArgs parsed = ParseCommand(
      args, 1, {}, json != nullptr ? std::vector<std::string>{"json"} : std::vector<std::string>{});
  if (parsed.Error.empty()) {
    if (json != nullptr) *json = parsed.Values.count("json") > 0;
    return true;
  }
  if (!parsed.TooFew) std::fprintf(stderr, "vossel-cli: %s\n", parsed.Error.c_str());
  std::fprintf(stderr, "Usage: vossel-cli %s FILE [--json]\n", command);
  return false;
}

int CmdList(const std::vector<std::string>& args) {
  bool json = false;
  if (!OneFileArgument("list", args, &json)) return kExitUsage;
  GrfFile file;
  if (const int status = LoadForCli(args[0], file); status != kExitOk) return status;
  if (json) return ListJson(file);
  std::string out;
  for (int32_t i = 0; i < SpriteCount(file); ++i) {
    // The default alternative's facts, then all alternatives where sprites have several.
    const SpriteFacts f = FactsOf(file, i, DefaultAlternative(file, i));
    out += RowLine(SpriteRow(i, f.Width, f.Height, f.Size, f.Flags));
    // A pseudo-sprite has none to list.
    if (const std::string alternatives = file.HasAlternatives ? AlternativeList(file, i) : "";
        !alternatives.empty())
      out += '\t' + alternatives;
    out += '\n';
  }
  std::fwrite(out.data(), 1, out.size(), stdout);
  return FinishOutput(LoadStatus(file));
}

int CmdInfo(const std::vector<std::string>& args) {
  bool json = false;
  if (!OneFileArgument("info", args, &json)) return kExitUsage;
  GrfFile file;
  if (const int status = LoadForCli(args[0], file); status != kExitOk) return status;
  if (json) return InfoJson(file);
  // The label's lines end in CR LF; a terminal wants LF alone.
  std::string status;
  for (const char c :
       StatusText(file.Path, file.CompressedTotal, file.DecodedTotal, file.FileLength))
    if (c != '\r') status += c;
  std::printf("%s\n\n%s\n%s\n%s\n", status.c_str(), FileLoadedMessage(file.Path).c_str(),
              LoadedMessage(SpriteCount(file), file.DecodeTicks).c_str(),
              PreparedMessage(file.PrepareTicks).c_str());
  return FinishOutput(LoadStatus(file));
}

}  // namespace vossel
