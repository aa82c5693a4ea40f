#include "records.h"

namespace vossel {

RecordHead ReadRecordHead(const Reader& file, int64_t pos, const WalkRules& rules) {
  RecordHead head;
  uint8_t low = 0;
  uint16_t word = 0;
  if (!U16(file, pos, word)) {
    // A lone last byte cannot hold a length word.
    head.Kind =
        rules.LoneZeroEnds && U8(file, pos, low) && low == 0 ? HeadKind::End : HeadKind::Cut;
    return head;
  }
  head.Word = static_cast<int16_t>(word);
  if (head.Word == 0) return head;
  if (!U8(file, pos + 2, head.Flags)) {
    head.Kind = HeadKind::Cut;
    return head;
  }
  head.Kind = head.Flags == kActionFlags ? HeadKind::Action : HeadKind::Sprite;
  if (head.Kind == HeadKind::Sprite && Fits(pos, kSpriteHeadSize, file.End)) {
    head.HeaderFits = true;
    U8(file, pos + 3, head.Height);
    S16(file, pos + 4, head.Width);
    S16(file, pos + 6, head.XOffset);
    S16(file, pos + 8, head.YOffset);
  }
  return head;
}

StepEnd StepChunks(const Reader& file, int64_t& pos, int64_t size) {
  int64_t left = size;
  uint8_t c = 0;
  while (left > 0) {
    if (!U8(file, pos, c)) return StepEnd::FileEnd;
    left -= ChunkLength(c);
    pos += ChunkStep(c);
  }
  return left == 0 ? StepEnd::Exact : StepEnd::Overshoot;
}

}  // namespace vossel
