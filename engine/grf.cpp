#include "grf.h"

#include <chrono>
#include <cstring>

#include "decode.h"
#include "text.h"

namespace {

inline int16_t ReadInt16(const uint8_t* p) {
  return static_cast<int16_t>(static_cast<uint16_t>(p[0] | (p[1] << 8)));
}

inline void Report(const MessageFn& message) {
  if (message) message(kMsgOutOfBuffer);
}

// What stands at a record's head: 0 ends the records, -1 means the head does not fit the file.
// A lone byte at the end cannot hold a length word and counts as a cut record.
inline int32_t HeadWord(const uint8_t* file, int32_t length, int32_t pos) {
  if (length - pos < 2) return -1;
  const int16_t word = ReadInt16(file + pos);
  if (word == 0) return 0;
  return length - pos < 3 ? -1 : 1;
}

}  // namespace

int16_t CountSprites(const uint8_t* file, int32_t length, const MessageFn& message) {
  int32_t pos = 0;
  int32_t count = 0;
  while (pos < length) {
    const int32_t head = HeadWord(file, length, pos);
    if (head == 0) break;
    // Every way a record cannot be taken in ends the count with the one message; the sprites
    // before it are loaded as usual.
    if (head < 0 || count == kMaxSprites) {
      Report(message);
      break;
    }
    const int32_t word = ReadInt16(file + pos);
    const uint8_t flags = file[pos + 2];
    if (flags == kActionFlags) {
      // A negative word would move the position backwards, and never end.
      if (word < 0) {
        Report(message);
        break;
      }
      pos += word + 3;
    } else {
      const int32_t streamSize = word - 8;
      pos += 10;
      if (flags & kStoredSizeFlag) {
        if (streamSize < 0) {
          Report(message);
          break;
        }
        pos += streamSize;
      } else {
        int32_t left = streamSize;  // decoded bytes still to walk
        while (left > 0 && pos < length) {
          const uint8_t c = file[pos];
          if (c < 128) {
            const int32_t n = c == 0 ? 128 : c;
            pos += n + 1;
            left -= n;
          } else {
            pos += 2;
            left -= 32 - (c >> 3);
          }
        }
        if (left != 0) {  // short of the size at the end of the file, or past it
          Report(message);
          break;
        }
      }
    }
    ++count;
  }
  return static_cast<int16_t>(count);
}

void ReserveStore(SpriteStore& store, int16_t count) {
  // The table is dropped first, so that the old and the new one are never held together. The
  // store's block is kept from the last load: zeroing what that load used is cheaper than fresh
  // pages.
  std::vector<SpriteRecord>().swap(store.SpriteTable);
  store.SpriteData.AssignZeroed(kSpriteDataCapacity);
  store.SpriteTable.assign(count > 0 ? count : 0, SpriteRecord{});
}

DecodeTotals DecodeSprites(const uint8_t* file, int32_t length, SpriteStore& store,
                           uint8_t* rowBuffer, const MessageFn& message) {
  DecodeTotals totals;
  const int32_t entries = static_cast<int32_t>(store.SpriteTable.size());
  uint8_t* data = store.SpriteData.data();
  const int32_t capacity = static_cast<int32_t>(store.SpriteData.size());
  int32_t pos = 0;
  int32_t write = 0;
  int32_t count = 0;
  DecodeState state;  // the store and the row buffer start zero-filled
  while (pos < length && count < entries) {
    const int32_t head = HeadWord(file, length, pos);
    if (head == 0) break;
    if (head < 0) {
      Report(message);
      break;
    }
    const int32_t word = ReadInt16(file + pos);
    const uint8_t flags = file[pos + 2];
    SpriteRecord& r = store.SpriteTable[static_cast<size_t>(count)];
    r.DataOffset = write;
    if (flags == kActionFlags) {
      // The action data must lie in the file and fit the store.
      if (word < 0 || word > length - pos - 3 || word > capacity - write) {
        Report(message);
        break;
      }
      std::memcpy(data + write, file + pos + 3, static_cast<size_t>(word));
      r.Size = word;
      r.CompressedSize = word;
      r.Width = static_cast<int16_t>(word);
      r.Height = 1;
      r.XOffset = 0;
      r.YOffset = 0;
      write += word;
      pos += word + 3;
    } else {
      if (length - pos < 10) {
        Report(message);
        break;
      }
      const uint8_t height = file[pos + 3];
      const int16_t width = ReadInt16(file + pos + 4);
      const int16_t x = ReadInt16(file + pos + 6);
      const int16_t y = ReadInt16(file + pos + 8);
      pos += 10;
      r.Width = width;
      r.Height = height;
      r.Size = static_cast<int32_t>(width) * height;
      const int32_t streamStart = pos;
      const DecodeResult result = DecodeSprite(file, length, pos, r, flags, word - 8, data,
                                               capacity, write, rowBuffer, state);
      if (result != DecodeResult::Finished) {
        Report(message);
        break;
      }
      r.CompressedSize = pos - streamStart;
      r.XOffset = x;
      r.YOffset = y;
    }
    r.Flags = flags;
    totals.CompressedTotal += r.CompressedSize;
    totals.DecodedTotal += r.Size;
    ++count;
  }
  // Entries behind the count were never filled, or only partly by a sprite that failed: the table
  // keeps just the sprites that were decoded, so its size is the one count everybody reads.
  store.SpriteTable.resize(static_cast<size_t>(count));
  totals.Count = static_cast<int16_t>(count);
  totals.WritePosition = write;
  return totals;
}

void CutStore(SpriteStore& store, int32_t writePosition) {
  if (writePosition < 0) writePosition = 0;
  // Only the last run of a run-form sprite can write behind the write position: it starts inside
  // its sprite and holds at most 127 pixels.
  const size_t cut = static_cast<size_t>(writePosition);
  store.SpriteData.CutTo(cut, cut + 127);
}

LoadOutcome LoadSprites(const uint8_t* file, int32_t length, SpriteStore& store,
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

int32_t GetTickCount() {
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
  return static_cast<int32_t>(ms & 0x7FFFFFFF);
}
