#include "grf2_chunks.h"

#include <algorithm>
#include <limits>

#include "alternatives.h"

namespace vossel {

ChunkCursor StartV2ChunkList(const GrfV2Index& index, const GrfV2Sprite& s, int32_t alternative) {
  ChunkCursor cursor;
  int64_t offset = s.DataOffset, size = s.DataSize, decoded = s.DataSize;
  bool action = true;
  if (alternative >= 0 && static_cast<size_t>(alternative) < index.Alternatives.size()) {
    const GrfV2Alternative& a = index.Alternatives[static_cast<size_t>(alternative)];
    offset = a.StreamOffset;
    size = decoded = a.StreamSize;
    action = a.Info == kV2Pseudo;
    if (!action) decoded = DecodedSize(a);
  } else if (s.Info == kV2Reference) {
    return cursor;  // nothing to list
  }
  cursor.P = offset;
  cursor.End = offset + size;
  cursor.S = static_cast<int32_t>(std::min<int64_t>(decoded, std::numeric_limits<int32_t>::max()));
  cursor.Action = action;
  cursor.Done = !action && (cursor.S == 0 || size == 0);
  return cursor;
}

std::vector<ChunkLine> V2ChunkList(const uint8_t* file, size_t length, const GrfV2Index& index,
                                   const GrfV2Sprite& s, int32_t alternative) {
  std::vector<ChunkLine> lines;
  ChunkCursor cursor = StartV2ChunkList(index, s, alternative);
  ChunkLine line;
  while (NextChunkLineIn(file, length, cursor, line)) lines.push_back(line);
  return lines;
}

}  // namespace vossel
