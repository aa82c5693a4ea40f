// The GRF sprite store and the loader's two passes. Standard library only: the passes work on a
// byte buffer and report through their results and one message callback.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "bytearray.h"
#include "records.h"

namespace vossel {

// Decoded bytes of all sprites together: 6 x 1024 x 1024.
constexpr int32_t kSpriteDataCapacity = 6291456;
// A file of fewer bytes is refused before any record is read.
constexpr int32_t kMinFileSize = 17;
// The sprite count is a signed 16-bit number.
constexpr int32_t kMaxSprites = 32767;
// Work buffer of the run route; the decoded stream of a run-form sprite always fits.
constexpr int32_t kRowBufferSize = 65536;

// One sprite's entry of SpriteTable. Field order and widths are those of the format's reader.
struct SpriteRecord {
  int32_t DataOffset = 0;      // index in SpriteData of the first decoded byte
  int32_t Size = 0;            // decoded bytes; an action sprite's data bytes
  uint8_t Flags = 0;           // the flags byte; 255 for an action sprite
  int32_t CompressedSize = 0;  // stream bytes in the file, head excluded
  int32_t XOffset = 0;
  int32_t YOffset = 0;
  int16_t Width = 0;
  int16_t Height = 0;
};

// The one message the passes can raise: "Error! Out of buffer size!".
using MessageFn = std::function<void(const std::string&)>;

// The sprite store that frmMain owns.
struct SpriteStore {
  std::vector<SpriteRecord> SpriteTable;
  ByteArray SpriteData;
};

// Counting pass: how many records the file holds, at most 32,767. A record that cannot be taken in
// (a walked stream passing its size, a record running past the end of the file, a length word that
// would move backwards, a 32,768th sprite) raises the message once and ends the count before it.
// `refusedAt`, when given, takes the refused record's position (-1 when none was).
int16_t CountSprites(const uint8_t* file, int32_t length, const MessageFn& message,
                     int64_t* refusedAt = nullptr);

struct DecodeTotals {
  int16_t Count = 0;            // sprites decoded
  int32_t WritePosition = 0;    // bytes of SpriteData in use
  int32_t CompressedTotal = 0;  // sum of CompressedSize
  int32_t DecodedTotal = 0;     // sum of Size
  int64_t RefusedAt = -1;       // where the sprite that could not be decoded starts
};

// Drops the previous store and makes it anew: SpriteData at its full capacity, zero-filled, and
// SpriteTable with exactly `count` entries.
void ReserveStore(SpriteStore& store, int16_t count);

// Decoding pass over the whole file into a store made by ReserveStore. `rowBuffer` holds
// kRowBufferSize bytes, zero-filled when the load starts and not cleared between sprites. The
// table is cut to the sprites decoded, so that it never holds an entry that cannot be shown.
DecodeTotals DecodeSprites(const uint8_t* file, int32_t length, SpriteStore& store,
                           uint8_t* rowBuffer, const MessageFn& message);

// Cuts SpriteData to the bytes written, keeping its contents, in place.
void CutStore(SpriteStore& store, int32_t writePosition);

// A millisecond tick counter, signed 32-bit like the platform's. It stays within 0..2^31-1, so the
// difference of two readings never overflows.
int32_t GetTickCount();

}  // namespace vossel
