#include <cstdio>
#include <string>

#include "commands.h"
#include "text.h"

namespace {

bool OneFileArgument(const char* command, const std::vector<std::string>& args) {
  if (ParseCommand(args, 1, {}).Error.empty()) return true;
  std::fprintf(stderr, "Usage: vossel-cli %s FILE\n", command);
  return false;
}

std::string RowLine(const SpriteRowTexts& row) {
  return row.Number + '\t' + row.Width + '\t' + row.Height + '\t' + row.Size + '\t' + row.Flags;
}

}  // namespace

int CmdList(const std::vector<std::string>& args) {
  if (!OneFileArgument("list", args)) return kExitUsage;
  CliLoad load;
  if (const int status = LoadForCli(args[0], load); status != kExitOk) return status;
  std::string out;
  for (int32_t i = 0; i < SpriteCount(load); ++i) {
    if (load.V2) {
      // The default alternative's facts, then all alternatives.
      const GrfV2Sprite& s = load.Index.Sprites[static_cast<size_t>(i)];
      const GrfV2Facts f = SpriteFacts(load.Index, s, s.Default);
      out += RowLine(SpriteRow(i, f.Width, f.Height, f.Size, f.Flags)) + '\t' +
             AlternativeNames(load.Index, s) + '\n';
    } else {
      out += RowLine(SpriteRow(i, load.Store.SpriteTable[static_cast<size_t>(i)])) + '\n';
    }
  }
  std::fwrite(out.data(), 1, out.size(), stdout);
  return kExitOk;
}

int CmdInfo(const std::vector<std::string>& args) {
  if (!OneFileArgument("info", args)) return kExitUsage;
  CliLoad load;
  if (const int status = LoadForCli(args[0], load); status != kExitOk) return status;
  int64_t compressed = load.Outcome.Totals.CompressedTotal;
  int64_t decoded = load.Outcome.Totals.DecodedTotal;
  if (load.V2) {
    const GrfV2Totals totals = IndexTotals(load.Index);
    compressed = totals.Compressed;
    decoded = totals.Decompressed;
  }
  // The label's lines end in CR LF; a terminal wants LF alone.
  std::string status;
  for (const char c : StatusText(load.FileName, compressed, decoded, load.FileLength))
    if (c != '\r') status += c;
  std::printf("%s\n\n%s\n%s\n%s\n", status.c_str(), FileLoadedMessage(load.FileName).c_str(),
              LoadedMessage(SpriteCount(load), load.Outcome.DecodeTicks).c_str(),
              PreparedMessage(load.Outcome.PrepareTicks).c_str());
  return kExitOk;
}
