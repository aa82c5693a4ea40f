// The chunk viewer's own reading of a file, apart from any window's opened file: its own copy of a
// version-1 file's bytes walked into the chunk scanner's tables, or a version-2 file opened and
// indexed anew.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "chunks.h"
#include "grffile.h"

namespace vossel {

struct ChunkFile {
  // The name, container, sprite count and problems; a version-2 file's index, kept open. A
  // version-1 file holds an empty store here: its sprites are the scan's.
  GrfFile File;
  // A version-1 file's bytes and tables: FileData, SpriteOffset, SpriteSize, SpriteFlags.
  ChunkScan Scan;
};

// Reads the file anew. ReadFailure leaves `viewed` as it was; TooSmall keeps the earlier tables
// beside the new bytes, as the viewer has always done.
ScanOutcome ScanGrfFile(const std::string& path, ChunkFile& viewed);
// Lets go of the file, the bytes and the tables.
void CloseChunkFile(ChunkFile& viewed);

// The chunk list of a sprite through one alternative (a version-1 sprite has just its stream),
// chunk by chunk. A cursor whose file has been scanned again or closed lists nothing; one whose
// version-2 file has changed since it was opened stops with Unreadable.
ChunkCursor StartChunks(const ChunkFile& viewed, int32_t sprite, int32_t alternative);
bool NextChunk(const ChunkFile& viewed, ChunkCursor& cursor, ChunkRecord& chunk);

}  // namespace vossel
