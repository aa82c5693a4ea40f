// The chunk viewer's list of a version-2 sprite: the chunks of one alternative's stream.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "chunks.h"
#include "grf2.h"

namespace vossel {

// The chunk viewer's list for a sprite through one of its alternatives (-1: none): the chunks of
// its stream, or one action-sprite line for data. Further lines come from NextChunkLineIn.
ChunkCursor StartV2ChunkList(const GrfV2Index& index, const GrfV2Sprite& s, int32_t alternative);
// All lines at once.
std::vector<ChunkLine> V2ChunkList(const uint8_t* file, size_t length, const GrfV2Index& index,
                                   const GrfV2Sprite& s, int32_t alternative);

}  // namespace vossel
