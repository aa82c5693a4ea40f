#include "decode.h"

#include <algorithm>
#include <cstring>

namespace {

// Below the threshold a byte loop beats the call; from it on one block move. Both give the same
// bytes, so the threshold is only a matter of speed.
inline void CopyBytes(uint8_t* to, const uint8_t* from, int32_t n) {
  if (n < kBlockMoveThreshold) {
    for (int32_t i = 0; i < n; ++i) to[i] = from[i];
  } else {
    std::memcpy(to, from, static_cast<size_t>(n));
  }
}

// A row-table entry: two bytes, low first, read as a signed 16-bit number.
inline int32_t RowTableEntry(const uint8_t* rowBuffer, int32_t row) {
  const uint16_t word = static_cast<uint16_t>(rowBuffer[2 * row] | (rowBuffer[2 * row + 1] << 8));
  return static_cast<int16_t>(word);
}

}  // namespace

DecodeResult DecodeStream(const uint8_t* file, int32_t fileLength, int32_t& readPos,
                          uint8_t* target, int32_t targetCapacity, int32_t& outPos,
                          int32_t endPos) {
  int32_t rp = readPos;
  int32_t op = outPos;
  DecodeResult result = DecodeResult::Finished;
  while (op != endPos) {
    if (rp < 0 || rp >= fileLength || op < 0) {
      result = DecodeResult::Truncated;
      break;
    }
    const uint8_t c = file[rp];
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
      CopyBytes(target + op, file + rp + 1, n);
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
      // One byte at a time in rising order, so that an overlapping copy repeats what it has just
      // written. Bytes before the target's start read as zero.
      uint8_t* out = target + op;
      const int32_t back = op - distance;
      if (back >= 0) {
        const uint8_t* from = target + back;
        for (int32_t i = 0; i < n; ++i) out[i] = from[i];
      } else {
        for (int32_t i = 0; i < n; ++i) out[i] = back + i >= 0 ? target[back + i] : 0;
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
// (and past the sprite's end); the copy itself is cut at the ends of both buffers.
void PlaceRuns(const uint8_t* rowBuffer, const SpriteRecord& entry, uint8_t* spriteData,
               int32_t capacity, int32_t write) {
  const int32_t size = entry.Size;
  const int32_t width = entry.Width;
  const int32_t height = entry.Height;
  // An entry with a high byte of 128 or more reads as negative and ends the placement. Row starts
  // are worked out in 32 bits, so a sprite whose rows pass 32,767 cells is still placed whole.
  int32_t runPos = RowTableEntry(rowBuffer, 0);
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
    CopyBytes(spriteData + write + cell, rowBuffer + runPos + 2, std::min(n, room));
    runPos += n + 2;
    if ((header & 0x80) == 0) continue;
    ++row;
    if (row == height) break;
    runPos = RowTableEntry(rowBuffer, row);
    rowStart = row * width;
  }
}

}  // namespace

DecodeResult DecodeSprite(const uint8_t* file, int32_t fileLength, int32_t& readPos,
                          const SpriteRecord& entry, uint8_t flags, int32_t streamSize,
                          uint8_t* spriteData, int32_t capacity, int32_t& writePos,
                          uint8_t* rowBuffer) {
  // A sprite whose cells would not fit the store (or a negative size from a width of 32,768 and
  // more) is not taken in: the same end as a stream that passes its size.
  if (entry.Size < 0 || entry.Size > capacity - writePos) return DecodeResult::Overrun;
  if ((flags & kRunFormFlag) == 0) {
    int32_t out = writePos;
    const DecodeResult result =
        DecodeStream(file, fileLength, readPos, spriteData, capacity, out, writePos + entry.Size);
    writePos = out;
    return result;
  }
  int32_t out = 0;
  const DecodeResult result =
      DecodeStream(file, fileLength, readPos, rowBuffer, kRowBufferSize, out, streamSize);
  if (result != DecodeResult::Finished) return result;
  PlaceRuns(rowBuffer, entry, spriteData, capacity, writePos);
  writePos += entry.Size;
  return result;
}
