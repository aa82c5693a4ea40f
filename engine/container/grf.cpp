#include "grf.h"

#include <chrono>
#include <cstring>

#include "decode.h"
#include "text.h"

namespace vossel {

namespace {

inline void Report(const MessageFn& message) {
  if (message) message(kMsgOutOfBuffer);
}

}  // namespace

int16_t CountSprites(const uint8_t* file, int32_t length, const MessageFn& message,
                     int64_t* refusedAt) {
  const WalkOutcome walk =
      WalkRecords(Reader{file, length}, kLoaderRules, kMaxSprites, [](const WalkedRecord&) {});
  if (refusedAt != nullptr) *refusedAt = walk.Refused ? walk.Position : -1;
  // Every way a record cannot be taken in ends the count with the one message; the sprites before
  // it are loaded as usual.
  if (walk.Refused) Report(message);
  return static_cast<int16_t>(walk.Count);
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
  const Reader reader{file, length};
  while (pos < length && count < entries) {
    const RecordHead head = ReadRecordHead(reader, pos, kLoaderRules);
    if (head.Kind == HeadKind::End) break;
    if (head.Kind == HeadKind::Cut) {
      Report(message);
      totals.RefusedAt = pos;
      break;
    }
    const int32_t word = head.Word;
    const uint8_t flags = head.Flags;
    SpriteRecord& r = store.SpriteTable[static_cast<size_t>(count)];
    r.DataOffset = write;
    if (flags == kActionFlags) {
      // The action data must lie in the file and fit the store.
      if (!Fits(pos + kActionHeadSize, word, length) || word > capacity - write) {
        Report(message);
        totals.RefusedAt = pos;
        break;
      }
      std::memcpy(data + write, file + pos + kActionHeadSize, static_cast<size_t>(word));
      r.Size = word;
      r.CompressedSize = word;
      r.Width = static_cast<int16_t>(word);
      r.Height = 1;
      r.XOffset = 0;
      r.YOffset = 0;
      write += word;
      pos += kActionHeadSize + word;
    } else {
      if (!head.HeaderFits) {
        Report(message);
        totals.RefusedAt = pos;
        break;
      }
      pos += kSpriteHeadSize;
      r.Width = head.Width;
      r.Height = head.Height;
      r.Size = static_cast<int32_t>(r.Width) * r.Height;
      const int32_t streamStart = pos;
      const DecodeResult result = DecodeSprite(file, length, pos, r, flags, word - 8, data,
                                               capacity, write, rowBuffer, state);
      if (result != DecodeResult::Finished) {
        Report(message);
        totals.RefusedAt = streamStart - kSpriteHeadSize;
        break;
      }
      r.CompressedSize = pos - streamStart;
      r.XOffset = head.XOffset;
      r.YOffset = head.YOffset;
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

int32_t GetTickCount() {
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
  return static_cast<int32_t>(ms & 0x7FFFFFFF);
}

}  // namespace vossel
