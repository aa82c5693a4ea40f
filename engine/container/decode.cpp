#include "decode.h"

#include <algorithm>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace vossel {

namespace {

inline void Copy8(uint8_t* to, const uint8_t* from) {
  std::memcpy(to, from, 8);
}
inline void Copy4(uint8_t* to, const uint8_t* from) {
  std::memcpy(to, from, 4);
}

// Copies exactly n bytes between buffers that do not overlap. Long copies are one block move, as
// the copy rule has it; shorter ones go in blocks whose last one ends on the last byte,
// overlapping the one before, so that nothing is written past n. The bytes are the same whichever
// way they go.
inline void CopyBytes(uint8_t* to, const uint8_t* from, int32_t n) {
  if (n >= kBlockMoveThreshold) {
    std::memcpy(to, from, static_cast<size_t>(n));
  } else if (n >= 16) {
    for (int32_t i = 0; i + 16 < n; i += 16) std::memcpy(to + i, from + i, 16);
    std::memcpy(to + n - 16, from + n - 16, 16);
  } else if (n >= 8) {
    Copy8(to, from);
    Copy8(to + n - 8, from + n - 8);
  } else if (n >= 4) {
    Copy4(to, from);
    Copy4(to + n - 4, from + n - 4);
  } else {
    for (int32_t i = 0; i < n; ++i) to[i] = from[i];
  }
}

#if defined(__SSE2__)
// Masks whose first n bytes are set, for n from 0 to 16.
struct alignas(16) Masks {
  uint8_t Bytes[17][16];
};
constexpr Masks MakeMasks() {
  Masks m{};
  for (int n = 0; n <= 16; ++n)
    for (int i = 0; i < 16; ++i) m.Bytes[n][i] = i < n ? 0xFF : 0x00;
  return m;
}
alignas(16) constexpr Masks kMasks = MakeMasks();

// Writes exactly the first n (at most 16) bytes of `from` to `to` in one block: the 16 - n bytes
// behind are read and written back as they are. Both sides must have 16 bytes of room.
inline void CopyUpTo16(uint8_t* to, const uint8_t* from, int32_t n) {
  const __m128i mask = _mm_load_si128(reinterpret_cast<const __m128i*>(kMasks.Bytes[n]));
  const __m128i fresh = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
  const __m128i kept = _mm_loadu_si128(reinterpret_cast<const __m128i*>(to));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(to),
                   _mm_or_si128(_mm_and_si128(mask, fresh), _mm_andnot_si128(mask, kept)));
}

// The same where the 16 bytes at `to` are known to hold zero: nothing needs reading back, so the
// block does not wait for the stores before it.
inline void CopyUpTo16OverZero(uint8_t* to, const uint8_t* from, int32_t n) {
  const __m128i mask = _mm_load_si128(reinterpret_cast<const __m128i*>(kMasks.Bytes[n]));
  const __m128i fresh = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm_and_si128(mask, fresh));
}
#else
inline void CopyUpTo16(uint8_t* to, const uint8_t* from, int32_t n) {
  CopyBytes(to, from, n);
}
inline void CopyUpTo16OverZero(uint8_t* to, const uint8_t* from, int32_t n) {
  CopyBytes(to, from, n);
}
#endif

// A row-table entry: two bytes, low first, read as a signed 16-bit number.
inline int32_t RowTableEntry(const uint8_t* rowBuffer, int32_t row) {
  const uint16_t word = static_cast<uint16_t>(rowBuffer[2 * row] | (rowBuffer[2 * row + 1] << 8));
  return static_cast<int16_t>(word);
}

// One block of at most 16 bytes: zeros behind the chunk, or the bytes written back as they were.
inline void CopyBlock(uint8_t* to, const uint8_t* from, int32_t n, bool overZero) {
  if (overZero) {
    CopyUpTo16OverZero(to, from, n);
  } else {
    CopyUpTo16(to, from, n);
  }
}

// An offset chunk whose source starts inside the target (back >= 0). The copy rule goes one byte
// at a time in rising order, so that an overlapping copy repeats what it has just written; the
// blocks give the same bytes. `block` tells whether 16 bytes from `back` and `op` are in bounds.
// A chunk of distance 0 keeps the bytes it covers: those below beforeEnd come from `before`, since
// blocks may have written zeros over them.
inline void CopyOffset(uint8_t* target, int32_t op, int32_t back, int32_t n, bool block,
                       bool overZero, const uint8_t* before, int32_t beforeEnd) {
  uint8_t* out = target + op;
  const int32_t distance = op - back;
  if (n <= distance) {
    if (block) {
      CopyBlock(out, target + back, n, overZero);
    } else {
      CopyBytes(out, target + back, n);
    }
  } else if (distance >= 8) {
    // The second block reads only bytes the first has written.
    Copy8(out, target + back);
    Copy8(out + n - 8, target + back + n - 8);
  } else if (distance == 1) {
    // A run of one byte, which the run route's pictures are full of.
    if (block) {
      uint8_t fill[16];
      std::memset(fill, target[back], sizeof fill);
      CopyBlock(out, fill, n, overZero);
    } else {
      std::memset(out, target[back], static_cast<size_t>(n));
    }
  } else if (distance == 0) {
    for (int32_t i = 0; i < n && op + i < beforeEnd; ++i) out[i] = before[op + i];
  } else {
    for (int32_t i = 0; i < n; ++i) out[i] = target[back + i];
  }
}

}  // namespace

DecodeResult DecodeStream(const uint8_t* file, int32_t fileLength, int32_t& readPos,
                          uint8_t* target, int32_t targetCapacity, int32_t& outPos, int32_t endPos,
                          int32_t zeroFrom, const uint8_t* before) {
  int32_t rp = readPos;
  int32_t op = outPos;
  // Every chunk gives exactly the bytes of the copy rule. A 16-byte block is used only where all
  // its bytes lie inside the file and before both the end position and the target's end. Behind
  // its chunk it writes back what it read, or zeros: where the bytes are zero anyway, or anywhere
  // when `before` keeps a copy of the bytes below zeroFrom. Later chunks write over those zeros;
  // only a chunk of distance 0 keeps bytes as they stood, and takes them from the copy.
  const int32_t writeZerosFrom = before != nullptr ? 0 : zeroFrom;
  const int32_t beforeEnd = before != nullptr ? std::min(zeroFrom, endPos) : 0;
  const int32_t blockEnd = std::min(endPos, targetCapacity) - 16;
  const int32_t fileBlockEnd = fileLength - 17;
  DecodeResult result = DecodeResult::Finished;
  if (rp < 0 || op < 0) {
    if (op != endPos) result = DecodeResult::Truncated;
    readPos = rp;
    outPos = op;
    return result;
  }
  // Fast region: while any chunk (at most 129 file bytes, 128 out, and a block behind) stays
  // inside the file and before blockEnd, no chunk needs a check.
  while (op <= blockEnd - 128 && rp <= fileLength - 129) {
    const uint8_t c = file[rp];
    if (c < 128) {
      const int32_t n = c == 0 ? 128 : c;
      if (n <= 16) {
        CopyBlock(target + op, file + rp + 1, n, op >= writeZerosFrom);
      } else {
        CopyBytes(target + op, file + rp + 1, n);
      }
      rp += n + 1;
      op += n;
    } else {
      const int32_t n = 32 - (c >> 3);
      const int32_t back = op - (((c & 7) << 8) | file[rp + 1]);
      if (back < 0) break;  // the loop below reads zeros before the target's start
      CopyOffset(target, op, back, n, true, op >= writeZerosFrom, before, beforeEnd);
      rp += 2;
      op += n;
    }
  }
  while (op != endPos) {
    if (rp >= fileLength) {
      result = DecodeResult::Truncated;
      break;
    }
    const uint8_t c = file[rp];
    uint8_t* out = target + op;
    int32_t n;
    if (c < 128) {
      n = c == 0 ? 128 : c;
      // The chunk's bytes must lie in the file, and its output in the target. An output that does
      // not fit the target would pass the end position anyway: the stream is overrun.
      if (n > fileLength - rp - 1) {
        result = DecodeResult::Truncated;
        break;
      }
      if (n > targetCapacity - op) {
        result = DecodeResult::Overrun;
        break;
      }
      if (n <= 16 && op <= blockEnd && rp <= fileBlockEnd) {
        CopyBlock(out, file + rp + 1, n, op >= writeZerosFrom);
      } else {
        CopyBytes(out, file + rp + 1, n);
      }
      rp += n + 1;
    } else {
      if (rp + 1 >= fileLength) {
        result = DecodeResult::Truncated;
        break;
      }
      n = 32 - (c >> 3);
      const int32_t distance = ((c & 7) << 8) | file[rp + 1];
      if (n > targetCapacity - op) {
        result = DecodeResult::Overrun;
        break;
      }
      const int32_t back = op - distance;
      if (back < 0) {
        // Bytes before the target's start read as zero.
        for (int32_t i = 0; i < n; ++i) out[i] = back + i >= 0 ? target[back + i] : 0;
      } else {
        CopyOffset(target, op, back, n, op <= blockEnd, op >= writeZerosFrom, before, beforeEnd);
      }
      rp += 2;
    }
    op += n;
    if (op > endPos) {
      result = DecodeResult::Overrun;
      break;
    }
  }
  readPos = rp;
  outPos = op;
  return result;
}

namespace {

// Places the runs of the decoded stream in rowBuffer into the sprite's cells at spriteData[write].
// Only a run's start is tested against the sprite, so a long run goes on into the next row's cells
// (and past the sprite's end); the copy itself is cut at the ends of both buffers. Returns the end
// of the furthest write.
int32_t PlaceRuns(const uint8_t* rowBuffer, const SpriteRecord& entry, uint8_t* spriteData,
                  int32_t capacity, int32_t write) {
  const int32_t size = entry.Size;
  const int32_t width = entry.Width;
  const int32_t height = entry.Height;
  // An entry with a high byte of 128 or more reads as negative and ends the placement. Row starts
  // are worked out in 32 bits, so a sprite whose rows pass 32,767 cells is still placed whole.
  int32_t runPos = RowTableEntry(rowBuffer, 0);
  int32_t furthest = write;
  int32_t row = 0;
  int32_t rowStart = 0;
  for (;;) {
    if (runPos < 0 || runPos + 2 > kRowBufferSize - 1) break;
    const uint8_t header = rowBuffer[runPos];
    const int32_t skip = rowBuffer[runPos + 1];
    const int32_t n = header & 127;
    const int32_t cell = rowStart + skip;
    if (cell > size - 1) break;
    const int32_t room = std::min(kRowBufferSize - (runPos + 2), capacity - (write + cell));
    const int32_t copied = std::min(n, room);
    // A block must end inside the sprite's own cells and inside the row buffer.
    if (copied <= 16 && cell <= size - 16 && runPos <= kRowBufferSize - 18) {
      CopyUpTo16(spriteData + write + cell, rowBuffer + runPos + 2, copied);
    } else {
      CopyBytes(spriteData + write + cell, rowBuffer + runPos + 2, copied);
    }
    furthest = std::max(furthest, write + cell + copied);
    runPos += n + 2;
    if ((header & 0x80) == 0) continue;
    ++row;
    if (row == height) break;
    runPos = RowTableEntry(rowBuffer, row);
    rowStart = row * width;
  }
  return furthest;
}

}  // namespace

DecodeResult DecodeSprite(const uint8_t* file, int32_t fileLength, int32_t& readPos,
                          const SpriteRecord& entry, uint8_t flags, int32_t streamSize,
                          uint8_t* spriteData, int32_t capacity, int32_t& writePos,
                          uint8_t* rowBuffer, DecodeState& state) {
  // A sprite whose cells would not fit the store (or a negative size from a width of 32,768 and
  // more) is not taken in: the same end as a stream that passes its size.
  if (entry.Size < 0 || entry.Size > capacity - writePos) return DecodeResult::Overrun;
  if ((flags & kRunFormFlag) == 0) {
    int32_t out = writePos;
    const DecodeResult result = DecodeStream(file, fileLength, readPos, spriteData, capacity, out,
                                             writePos + entry.Size, state.DataZeroFrom);
    state.DataZeroFrom = std::max(state.DataZeroFrom, out);
    writePos = out;
    return result;
  }
  // What earlier sprites left in the row buffer stays readable by a chunk of distance 0. A copy of
  // the part this stream covers is cheaper than reading it back block by block.
  const int32_t covered = std::clamp(std::min(state.RowsZeroFrom, streamSize), 0, kRowBufferSize);
  if (covered > 0) {
    state.RowsBefore.resize(kRowBufferSize);
    std::memcpy(state.RowsBefore.data(), rowBuffer, static_cast<size_t>(covered));
  }
  int32_t out = 0;
  const DecodeResult result =
      DecodeStream(file, fileLength, readPos, rowBuffer, kRowBufferSize, out, streamSize,
                   state.RowsZeroFrom, covered > 0 ? state.RowsBefore.data() : nullptr);
  state.RowsZeroFrom = std::max(state.RowsZeroFrom, out);
  if (result != DecodeResult::Finished) return result;
  state.DataZeroFrom =
      std::max(state.DataZeroFrom, PlaceRuns(rowBuffer, entry, spriteData, capacity, writePos));
  writePos += entry.Size;
  return result;
}

}  // namespace vossel
