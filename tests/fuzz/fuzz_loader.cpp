// The loader's two passes with the decompressor, on any bytes.
#include <cstdint>
#include <cstdlib>

#include "grf.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > 0x7FFFFFFF) return 0;
  // Kept from one input to the next, as the window keeps it: each load must start from zeros all
  // the same.
  static SpriteStore store;
  const LoadOutcome outcome = LoadSprites(data, static_cast<int32_t>(size), store, nullptr);
  const DecodeTotals& t = outcome.Totals;
  // What the window reads after a load must lie inside the store.
  if (t.Count < 0 || static_cast<size_t>(t.Count) > store.SpriteTable.size()) std::abort();
  if (store.SpriteData.size() != static_cast<size_t>(t.WritePosition)) std::abort();
  if (store.SpriteData.size() > static_cast<size_t>(kSpriteDataCapacity)) std::abort();
  for (int32_t i = 0; i < t.Count; ++i) {
    const SpriteRecord& r = store.SpriteTable[static_cast<size_t>(i)];
    if (r.Size < 0 || r.DataOffset < 0 ||
        static_cast<int64_t>(r.DataOffset) + r.Size > t.WritePosition)
      std::abort();
  }
  return 0;
}
