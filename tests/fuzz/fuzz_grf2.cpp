// The version-2 reader on any bytes: the index, every alternative decoded, and the chunk list of
// every sprite through each of its alternatives.
#include <cstdint>
#include <cstdlib>

#include "alternatives.h"
#include "grf2.h"
#include "grf2_chunks.h"
#include "picture.h"

using namespace vossel;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  GrfV2Index index;
  IndexGrfV2(data, size, index, nullptr);
  const int64_t length = static_cast<int64_t>(size);
  for (const GrfV2Alternative& a : index.Alternatives) {
    if (a.StreamOffset < 0 || a.StreamSize < 0 || a.StreamOffset + a.StreamSize > length)
      std::abort();
    // The fuzzer's memory limit is below the decoder's 64 MiB, which the tests cover.
    if (int64_t{a.Width} * a.Height * 5 > 16 * 1024 * 1024) continue;
    GrfV2Image image;
    const size_t cells = size_t{a.Width} * a.Height;
    if (DecodeAlternative(data, size, a, image) != GrfV2Result::Ok) continue;
    // Each layer is absent or holds every cell.
    if ((!image.Rgba.empty() && image.Rgba.size() != 4 * cells) ||
        (!image.Indices.empty() && image.Indices.size() != cells))
      std::abort();
  }
  for (const GrfV2Sprite& s : index.Sprites) {
    if (s.DataOffset + s.DataSize > length) std::abort();
    if (s.AlternativeCount > 0 &&
        (s.Default < s.FirstAlternative || s.Default >= s.FirstAlternative + s.AlternativeCount))
      std::abort();
    for (int32_t i = -1; i < s.AlternativeCount; ++i) {
      for (const ChunkLine& line :
           V2ChunkList(data, size, index, s, i < 0 ? s.Default : s.FirstAlternative + i))
        if (line.ItemData < 0 || line.ItemData >= length) std::abort();
    }
  }
  return 0;
}
