#include <cstdio>

#include "chunks.h"
#include "commands.h"

// vossel-cli chunks FILE N: the lines the chunk viewer lists for sprite N, each as its item value,
// a tab and its text.
int CmdChunks(const std::vector<std::string>& args) {
  if (args.size() != 2) {
    std::fputs("Usage: vossel-cli chunks FILE N\n", stderr);
    return kExitUsage;
  }
  ChunkScan scan;
  const ScanOutcome outcome = ScanGRF(args[0], scan);
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
  int32_t index = 0;
  if (!ParseSpriteNumber(args[1], outcome.Count, index)) return kExitFailure;
  for (const ChunkLine& line : ChunkList(scan, index))
    std::printf("%d\t%s\n", static_cast<int>(line.ItemData), line.Text.c_str());
  return kExitOk;
}
