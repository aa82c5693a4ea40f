#include "records.h"

namespace vossel {

RecordHead ReadRecordHead(const Reader& file, int64_t pos, const WalkRules& rules) {
  RecordHead head;
  if (ReadWholeHead(file, pos, head)) return head;
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
  // Near the end of the file: a sprite's header does not fit.
  head.Kind = head.Flags == kActionFlags ? HeadKind::Action : HeadKind::Sprite;
  return head;
}
}  // namespace vossel
