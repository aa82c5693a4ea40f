#include <cstdio>

#include "chunks.h"
#include "commands.h"
#include "fileio.h"
#include "text.h"

namespace {

const char kChunksUsage[] = "Usage: vossel-cli chunks FILE N [--zoom LEVEL] [--depth 8|32]\n";

void PrintLines(const std::vector<ChunkLine>& lines) {
  for (const ChunkLine& line : lines)
    std::printf("%d\t%s\n", static_cast<int>(line.ItemData), line.Text.c_str());
}

}  // namespace

// vossel-cli chunks FILE N: the lines the chunk viewer lists for sprite N, each as its item value,
// a tab and its text. A version-2 sprite lists the stream of its chosen alternative.
int CmdChunks(const std::vector<std::string>& args) {
  const CommandArgs parsed = ParseCommand(args, 2, {"zoom", "depth"});
  AlternativeWish wish;
  std::string why;
  if (parsed.Error.empty() && !IsSpriteNumberText(args[1]))
    why = "'" + args[1] + "' is not a sprite number";
  if (!parsed.Error.empty() || !why.empty() || !ParseWish(parsed, wish, why)) {
    if (!why.empty()) std::fprintf(stderr, "vossel-cli: %s\n", why.c_str());
    std::fputs(kChunksUsage, stderr);
    return kExitUsage;
  }

  FileReadResult file = ReadWholeFile(args[0]);
  if (!file.Ok) {
    std::fprintf(stderr, "%s\n",
                 ReadFailureText(file.ErrorNumber, file.Description, args[0]).c_str());
    return kExitFailure;
  }
  int32_t index = 0, alternative = -1;
  if (file.Bytes.size() >= static_cast<size_t>(kMinFileSize) &&
      IsGrfV2(file.Bytes.data(), file.Bytes.size())) {
    CliLoad load;
    load.V2 = true;
    load.Bytes = std::move(file.Bytes);
    IndexGrfV2(load.Bytes.data(), load.Bytes.size(), load.Index,
               [](const std::string& text) { std::fprintf(stderr, "%s\n", text.c_str()); });
    if (!ParseSpriteNumber(args[1], SpriteCount(load), index) ||
        !PickAlternative(load, index, wish, alternative))
      return kExitFailure;
    PrintLines(V2ChunkList(load.Bytes.data(), load.Bytes.size(), load.Index,
                           load.Index.Sprites[static_cast<size_t>(index)], alternative));
    return kExitOk;
  }

  ChunkScan scan;
  const ScanOutcome outcome = ScanBuffer(std::move(file.Bytes), scan);
  switch (outcome.End) {
    case ScanEnd::ReadFailure:
    case ScanEnd::TooSmall:
      std::fprintf(stderr, "%s\n", outcome.Message.c_str());
      return kExitFailure;
    case ScanEnd::InvalidStream:
      // The window's message box; the sprites before the refused record stay listable.
      std::fprintf(stderr, "%s\n", outcome.Message.c_str());
      break;
    case ScanEnd::Complete:
      break;
  }
  if (!ParseSpriteNumber(args[1], outcome.Count, index)) return kExitFailure;
  CliLoad v1;
  if (!PickAlternative(v1, index, wish, alternative)) return kExitFailure;
  PrintLines(ChunkList(scan, index));
  return kExitOk;
}
