// The loader's two passes on any bytes, against the plain decoder: the same count, the message
// exactly where the plain decoder gives up, and the same entries and bytes of every sprite.
#include <cstdlib>
#include <cstring>
#include <utility>

#include "grf.h"
#include "reference.h"

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
  return 0;
}
