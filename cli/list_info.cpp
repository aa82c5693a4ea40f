#include <cstdio>
#include <string>

#include "commands.h"
#include "text.h"

namespace vossel {

namespace {

std::string RowLine(const SpriteRowTexts& row) {
  return row.Number + '\t' + row.Width + '\t' + row.Height + '\t' + row.Size + '\t' + row.Flags;
}

}  // namespace

bool OneFileArgument(const char* command, const std::vector<std::string>& args) {
  if (ParseCommand(args, 1, {}).Error.empty()) return true;
  std::fprintf(stderr, "Usage: vossel-cli %s FILE\n", command);
  return false;
}

int CmdList(const std::vector<std::string>& args) {
  if (!OneFileArgument("list", args)) return kExitUsage;
  GrfFile file;
  if (const int status = LoadForCli(args[0], file); status != kExitOk) return status;
  std::string out;
  for (int32_t i = 0; i < SpriteCount(file); ++i) {
    // The default alternative's facts, then all alternatives where sprites have several.
    const SpriteFacts f = FactsOf(file, i, DefaultAlternative(file, i));
    out += RowLine(SpriteRow(i, f.Width, f.Height, f.Size, f.Flags));
    if (file.HasAlternatives) out += '\t' + AlternativeList(file, i);
    out += '\n';
  }
  std::fwrite(out.data(), 1, out.size(), stdout);
  return LoadStatus(file);
}

int CmdInfo(const std::vector<std::string>& args) {
  if (!OneFileArgument("info", args)) return kExitUsage;
  GrfFile file;
  if (const int status = LoadForCli(args[0], file); status != kExitOk) return status;
  // The label's lines end in CR LF; a terminal wants LF alone.
  std::string status;
  for (const char c :
       StatusText(file.Path, file.CompressedTotal, file.DecodedTotal, file.FileLength))
    if (c != '\r') status += c;
  std::printf("%s\n\n%s\n%s\n%s\n", status.c_str(), FileLoadedMessage(file.Path).c_str(),
              LoadedMessage(SpriteCount(file), file.DecodeTicks).c_str(),
              PreparedMessage(file.PrepareTicks).c_str());
  return LoadStatus(file);
}

}  // namespace vossel
