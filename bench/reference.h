// The plainest decoder of the format, to measure the loader against and to check its bytes: the
// two passes as byte loops, data chunks and runs by memcpy, offset chunks one byte at a time.
#pragma once

#include <cstdint>
#include <vector>

#include "grf.h"

namespace vossel {

struct ReferenceLoad {
  std::vector<SpriteRecord> Table;  // one entry per counted record; the first Count are decoded
  std::vector<uint8_t> Data;        // the decoded bytes, cut behind the last decoded sprite
  int32_t Count = 0;
  bool Failed = false;  // a record could not be taken in: the loader's message
};

// Any bytes: nothing is read or written outside the buffers. `data` lends its storage to the
// result's Data, as the window lends its store from one load to the next.
ReferenceLoad ReferenceDecode(const uint8_t* file, int32_t length, std::vector<uint8_t> data = {});

}  // namespace vossel
