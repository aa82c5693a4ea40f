// The records of a version-1 file as every walk over them reads them: one head reader and one
// chunk step, on the bounded reader. Where the loader and the chunk scanner differ on purpose, the
// difference is a rule of WalkRules.
#pragma once

#include <cstdint>

#include "reader.h"

namespace vossel {

constexpr uint8_t kActionFlags = 255;
constexpr uint8_t kStoredSizeFlag = 2;
constexpr uint8_t kRunFormFlag = 8;

// What the loader and the chunk scanner make differently of the same bytes.
struct WalkRules {
  // A lone zero byte at the end of the file: an end word cut short (true) or a cut record.
  bool LoneZeroEnds;
  // A length word of 1 to 7 on a sprite with the stored-size flag: stepped over by L + 2 (true)
  // or refused, since it cannot count the sprite's header.
  bool StepShortStoredSize;
  // A sprite whose header or last data chunk runs past the end of the file: refused (true), or
  // counted and left to the loader's decoding pass, which may never read that far.
  bool RefusePastEnd;
};
// The loader refuses what it cannot reserve for.
constexpr WalkRules kLoaderRules{false, false, false};
// The chunk viewer lists whatever it can still step over, and nothing it cannot read.
constexpr WalkRules kScannerRules{true, true, true};

enum class HeadKind : uint8_t {
  End,     // a zero length word: the records are over
  Action,  // flags 255: Word data bytes follow the head
  Sprite,  // a non-action sprite: its header fields are read where they lie in the file
  Cut,     // the head does not fit the file
};

// The head of the record at a position: the length word (signed 16-bit) and the flags byte, and
// for a non-action sprite the height, width and offsets behind them.
struct RecordHead {
  HeadKind Kind = HeadKind::End;
  int16_t Word = 0;
  uint8_t Flags = 0;
  bool HeaderFits = false;  // a non-action sprite's ten bytes lie in the file
  uint8_t Height = 0;
  int16_t Width = 0;
  int16_t XOffset = 0;
  int16_t YOffset = 0;
};
constexpr int64_t kActionHeadSize = 3;
constexpr int64_t kSpriteHeadSize = 10;

RecordHead ReadRecordHead(const Reader& file, int64_t pos, const WalkRules& rules);

// The head of a record whose ten bytes lie in the file, as most do, read without a check a field.
inline bool ReadWholeHead(const Reader& file, int64_t pos, RecordHead& head) {
  if (!Fits(pos, kSpriteHeadSize, file.End)) return false;
  const uint8_t* p = file.Data + pos;
  head.Word = static_cast<int16_t>(p[0] | (p[1] << 8));
  head.Flags = p[2];
  if (head.Word == 0) {
    head.Kind = HeadKind::End;
  } else if (head.Flags == kActionFlags) {
    head.Kind = HeadKind::Action;
  } else {
    head.Kind = HeadKind::Sprite;
    head.HeaderFits = true;
    head.Height = p[3];
    head.Width = static_cast<int16_t>(p[4] | (p[5] << 8));
    head.XOffset = static_cast<int16_t>(p[6] | (p[7] << 8));
    head.YOffset = static_cast<int16_t>(p[8] | (p[9] << 8));
  }
  return true;
}

// Bytes a chunk decodes to, and bytes it takes in the file.
inline int32_t ChunkLength(uint8_t c) {
  if (c & 0x80) return 32 - (c >> 3);
  return (c & 0x7F) ? (c & 0x7F) : 128;
}
inline int32_t ChunkStep(uint8_t c) {
  return (c & 0x80) ? 2 : ChunkLength(c) + 1;
}

enum class StepEnd : uint8_t {
  Exact,      // the chunks decode to exactly the size asked
  Overshoot,  // a chunk passes it
  FileEnd,    // the file ends before it is reached
};
// Steps over the chunks of a stream from `pos` (moved behind them) until `size` bytes are
// decoded. Reads only control bytes, each inside the file; the last data chunk may reach past
// its end, which the caller judges.
inline StepEnd StepChunks(const Reader& file, int64_t& pos, int64_t size) {
  int64_t left = size;
  while (left > 0) {
    if (pos < 0 || pos >= file.End) return StepEnd::FileEnd;
    const uint8_t c = file.Data[pos];
    left -= ChunkLength(c);
    pos += ChunkStep(c);
  }
  return left == 0 ? StepEnd::Exact : StepEnd::Overshoot;
}

// How a walk over the records ended: the records taken in, and whether the one behind them was
// refused (the loader's "Error! Out of buffer size!").
struct WalkOutcome {
  int32_t Count = 0;
  bool Refused = false;
  int64_t Position = 0;  // where the walk stopped: the refused record, or the end
};

// One record as the walk met it. Body is where its data (an action sprite) or its chunk stream
// begins; a refused record is the walk's last.
struct WalkedRecord {
  int64_t Position = 0;
  int64_t Body = 0;
  RecordHead Head;
  bool Refused = false;
};

// Walks the records from the first byte until a zero length word, the end of the file, a record
// that cannot be taken in, or `maxRecords` taken. `visit` sees every record with a flags byte, the
// refused one included, before the walk moves on.
template <typename Visit>
WalkOutcome WalkRecords(const Reader& file, const WalkRules& rules, int32_t maxRecords,
                        Visit&& visit) {
  WalkOutcome out;
  int64_t pos = 0;
  while ((out.Position = pos) < file.End) {
    WalkedRecord r{pos, pos, {}, false};
    if (!ReadWholeHead(file, pos, r.Head)) r.Head = ReadRecordHead(file, pos, rules);
    if (r.Head.Kind == HeadKind::End) return out;
    if (r.Head.Kind == HeadKind::Cut || out.Count == maxRecords) {
      out.Refused = true;
      return out;
    }
    int64_t next = 0;
    const int64_t word = r.Head.Word;
    if (r.Head.Kind == HeadKind::Action) {
      // A negative word would step back, and never end.
      r.Body = pos + kActionHeadSize;
      r.Refused = word < 0;
      next = r.Body + word;
    } else {
      r.Body = next = pos + kSpriteHeadSize;
      const int64_t stream = word - 8;
      if ((rules.RefusePastEnd && !r.Head.HeaderFits) || word < 0) {
        r.Refused = true;
      } else if (r.Head.Flags & kStoredSizeFlag) {
        r.Refused = stream < 0 && !rules.StepShortStoredSize;
        next += stream;  // stepped over, not walked
      } else {
        r.Refused = StepChunks(file, next, stream) != StepEnd::Exact ||
                    (rules.RefusePastEnd && next > file.End);
      }
    }
    visit(static_cast<const WalkedRecord&>(r));
    if (r.Refused) {
      out.Refused = true;
      return out;
    }
    ++out.Count;
    pos = next;
  }
  return out;
}

}  // namespace vossel
