// The chunk viewer's scan and the chunk list of every sprite, also with the tables of one file
// left beside the bytes of a too-small one.
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "chunks.h"

namespace {

void ListAll(const ChunkScan& scan, int32_t entries) {
  for (int32_t v = -1; v <= entries; ++v) {
    ChunkCursor cursor = StartChunkList(scan, v);
    ChunkLine line;
    int32_t lines = 0;
    while (!cursor.Done && NextChunkLine(scan, cursor, line)) {
      // A chunk's line was read at its position; an action sprite's line reads nothing.
      if (!cursor.Action && (line.ItemData < 0 || line.ItemData >= scan.FileLength)) std::abort();
      if (++lines > 1 << 20) std::abort();  // a list always ends
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > 1 << 20) return 0;
  ChunkScan scan;
  const ScanOutcome outcome = ScanBuffer(std::vector<uint8_t>(data, data + size), scan);
  if (scan.SpriteOffset.size() != scan.SpriteSize.size() ||
      scan.SpriteOffset.size() != scan.SpriteFlags.size())
    std::abort();
  if (outcome.Count < 0 || static_cast<size_t>(outcome.Count) > scan.SpriteOffset.size())
    std::abort();
  ListAll(scan, static_cast<int32_t>(scan.SpriteOffset.size()));
  // A too-small file now: its bytes stand beside the tables of the file before.
  const size_t small = size % 17;
  ScanBuffer(std::vector<uint8_t>(data, data + small), scan);
  ListAll(scan, static_cast<int32_t>(scan.SpriteOffset.size()));
  return 0;
}
