// The two readers of the format on any bytes. The loader's two passes against the plain decoder:
// the same count, the message exactly where the plain decoder gives up, and the same entries and
// bytes of every sprite. The chunk viewer's walk and the chunk list of every sprite, also with the
// tables of one file left beside the bytes of a too-small one.
#include <cstdlib>
#include <cstring>
#include <utility>

#include "chunks.h"
#include "grf.h"
#include "load_sprites.h"
#include "reference.h"

using namespace vossel;

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
  // Kept from one input to the next, as the window keeps its store: each load must start from
  // zeros. The plain decoder's store is lent from one input to the next too.
  static SpriteStore store;
  static std::vector<uint8_t> lent;
  bool message = false;
  const int32_t length = static_cast<int32_t>(size);
  const int32_t count =
      LoadSprites(data, length, store, [&](const std::string&) { message = true; }).Totals.Count;
  ReferenceLoad ref = ReferenceDecode(data, length, std::move(lent));
  if (count != ref.Count || message != ref.Failed) std::abort();
  size_t decoded = 0;
  for (size_t i = 0; i < static_cast<size_t>(count); ++i) {
    const SpriteRecord &a = store.SpriteTable[i], &b = ref.Table[i];
    if (a.DataOffset != b.DataOffset || a.Size != b.Size || a.Flags != b.Flags ||
        a.CompressedSize != b.CompressedSize || a.XOffset != b.XOffset || a.YOffset != b.YOffset ||
        a.Width != b.Width || a.Height != b.Height)
      std::abort();
    decoded = static_cast<size_t>(a.DataOffset) + static_cast<size_t>(a.Size);
  }
  if (store.SpriteData.size() < decoded || ref.Data.size() < decoded ||
      (decoded > 0 && std::memcmp(store.SpriteData.data(), ref.Data.data(), decoded) != 0))
    std::abort();
  if (!ref.Failed && store.SpriteData.size() != ref.Data.size()) std::abort();
  lent = std::move(ref.Data);

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
