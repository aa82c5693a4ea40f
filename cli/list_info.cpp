#include <cstdio>
#include <string>

#include "commands.h"
#include "text.h"

namespace {

bool OneFileArgument(const char* command, const std::vector<std::string>& args) {
  if (args.size() == 1) return true;
  std::fprintf(stderr, "Usage: vossel-cli %s FILE\n", command);
  return false;
}

}  // namespace

int CmdList(const std::vector<std::string>& args) {
  if (!OneFileArgument("list", args)) return kExitUsage;
  CliLoad load;
  if (const int status = LoadForCli(args[0], load); status != kExitOk) return status;
  std::string out;
  for (int32_t i = 0; i < load.Outcome.Totals.Count; ++i) {
    const SpriteRowTexts row = SpriteRow(i, load.Store.SpriteTable[static_cast<size_t>(i)]);
    out += row.Number + '\t' + row.Width + '\t' + row.Height + '\t' + row.Size + '\t' + row.Flags +
           '\n';
  }
  std::fwrite(out.data(), 1, out.size(), stdout);
  return kExitOk;
}

int CmdInfo(const std::vector<std::string>& args) {
  if (!OneFileArgument("info", args)) return kExitUsage;
  CliLoad load;
  if (const int status = LoadForCli(args[0], load); status != kExitOk) return status;
  const DecodeTotals& totals = load.Outcome.Totals;
  // The label's lines end in CR LF; a terminal wants LF alone.
  std::string status;
  for (const char c :
       StatusText(load.FileName, totals.CompressedTotal, totals.DecodedTotal, load.FileLength))
    if (c != '\r') status += c;
  std::printf("%s\n\n%s\n%s\n%s\n", status.c_str(), FileLoadedMessage(load.FileName).c_str(),
              LoadedMessage(totals.Count, load.Outcome.DecodeTicks).c_str(),
              PreparedMessage(load.Outcome.PrepareTicks).c_str());
  return kExitOk;
}
