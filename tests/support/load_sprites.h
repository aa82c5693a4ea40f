// Both passes of a version-1 load over a buffer, with the store's making and cutting, for tests and
// benchmarks that want the store without a window or an opened file.
#pragma once

#include <cstdint>
#include <vector>

#include "grf.h"

namespace vossel {

// Both passes with the store's making and cutting, for callers without a window.
struct LoadOutcome {
  DecodeTotals Totals;
  int32_t FileLength = 0;
  int32_t PrepareTicks = 0;  // counting pass and reservation, in milliseconds
  int32_t DecodeTicks = 0;   // decoding pass, in milliseconds
};
inline LoadOutcome LoadSprites(const uint8_t* file, int32_t length, SpriteStore& store,
                               const MessageFn& message) {
  LoadOutcome outcome;
  outcome.FileLength = length;
  int32_t start = GetTickCount();
  const int16_t count = CountSprites(file, length, message);
  ReserveStore(store, count);
  outcome.PrepareTicks = GetTickCount() - start;

  start = GetTickCount();
  std::vector<uint8_t> rowBuffer(kRowBufferSize, 0);
  outcome.Totals = DecodeSprites(file, length, store, rowBuffer.data(), message);
  outcome.DecodeTicks = GetTickCount() - start;
  CutStore(store, outcome.Totals.WritePosition);
  return outcome;
}

}  // namespace vossel
