// The sprite decompressor: chunk streams into SpriteData (plain route) or through RowBuffer (run
// route). Every read is checked against the file, every write against the target.
#pragma once

#include <cstdint>
#include <vector>

#include "grf.h"

namespace vossel {

enum class DecodeResult {
  Finished,   // the stream landed exactly on its decoded size
  Overrun,    // the stream passed its decoded size
  Truncated,  // the stream runs past the end of the file, or reaches outside its target
};

// Copies below this length go byte by byte, from it on as one block move.
constexpr int32_t kBlockMoveThreshold = 48;

// Expands chunks from file[readPos] into target[outPos] until outPos reaches endPos. Both positions
// are advanced for the caller. Offset chunks whose distance reaches before target[0] copy zeros.
// Target bytes from zeroFrom on must hold zero. `before`, if given, holds a copy of the target's
// bytes below zeroFrom (those below endPos at least) as they stand when the stream starts.
DecodeResult DecodeStream(const uint8_t* file, int32_t fileLength, int32_t& readPos,
                          uint8_t* target, int32_t targetCapacity, int32_t& outPos, int32_t endPos,
                          int32_t zeroFrom = INT32_MAX, const uint8_t* before = nullptr);

// What the decoding pass carries from sprite to sprite: how far its two targets have been written
// (from these positions on, SpriteData and the row buffer still hold zero), and room for a copy of
// the row buffer.
struct DecodeState {
  int32_t DataZeroFrom = 0;
  int32_t RowsZeroFrom = 0;
  std::vector<uint8_t> RowsBefore;
};

// Decodes one non-action sprite whose Width, Height and Size are filled. `streamSize` is L - 8,
// used by the run route; it is held in 32 bits because L - 8 of the words 0x8000 to 0x8007 does not
// fit 16. readPos and writePos are advanced for the caller.
DecodeResult DecodeSprite(const uint8_t* file, int32_t fileLength, int32_t& readPos,
                          const SpriteRecord& entry, uint8_t flags, int32_t streamSize,
                          uint8_t* spriteData, int32_t capacity, int32_t& writePos,
                          uint8_t* rowBuffer, DecodeState& state);

}  // namespace vossel
