#include "chunkfile.h"

#include <algorithm>
#include <utility>
#include <variant>

#include "fileio.h"
#include "text.h"

namespace vossel {

namespace {

bool Version2(const ChunkFile& viewed) {
  return std::holds_alternative<GrfV2File>(viewed.File.Contents);
}

}  // namespace

ScanOutcome ScanGrfFile(const std::string& path, ChunkFile& viewed) {
  const FileOpenResult open = OpenForReading(path);
  if (!open.Ok)
    return {ScanEnd::ReadFailure, 0, ReadFailureText(open.ErrorNumber, open.Description, path)};
  const bool version2 = IsVersion2File(*open.File);
  ChunkScan& scan = viewed.Scan;
  ScanOutcome outcome;
  if (version2) {
    // The walk of version 1 finds no record in a version-2 file (its first word is 0), so its
    // tables are left empty without reading the file.
    EraseChunkScan(scan);
    scan.FileLength = static_cast<int32_t>(std::min<int64_t>(open.File->Length, INT32_MAX));
  } else {
    FileReadResult whole = ReadAll(*open.File);
    if (!whole.Ok)
      return {ScanEnd::ReadFailure, 0, ReadFailureText(whole.ErrorNumber, whole.Description, path)};
    outcome = ScanBuffer(std::move(whole.Bytes), scan);
  }
  GrfFile& file = viewed.File;
  // One count for both readings: a list started on either stops once the file is read again.
  file.Generation = scan.Generation;
  file.Path = path;
  file.Container = version2 ? 2 : 1;
  file.HasAlternatives = version2;
  file.FileLength = version2 ? open.File->Length : int64_t(scan.FileData.size());
  file.Contents = SpriteStore{};
  file.Problems.clear();
  file.ProblemCount = 0;
  if (outcome.End == ScanEnd::TooSmall) return outcome;
  file.Sprites = outcome.Count;
  if (version2) {
    GrfV2File& v2 = file.Contents.emplace<GrfV2File>(GrfV2File{open.File, {}});
    IndexGrfV2(FileSource(*v2.Source), v2.Index, nullptr);
  }
  if (const GrfV2File* v2 = std::get_if<GrfV2File>(&file.Contents)) {
    const GrfV2Index& index = v2->Index;
    file.Problems = index.Problems;
    file.ProblemCount = index.ProblemCount;
    file.Sprites = static_cast<int32_t>(std::min<size_t>(index.Sprites.size(), INT32_MAX));
    // A section cut short is told as an overrun is; the sprites before it stay.
    for (const GrfProblem& p : index.Problems) {
      if (p.Kind != index.End) continue;
      outcome.End = ScanEnd::InvalidStream;
      outcome.Message = GrfV2Text(p);
      break;
    }
  } else if (outcome.End == ScanEnd::InvalidStream) {
    file.Problems.push_back({GrfResult::OutOfBuffer, 0, outcome.Count + 1, 0, 0});
    file.ProblemCount = 1;
  }
  return outcome;
}

void CloseChunkFile(ChunkFile& viewed) {
  CloseGrfFile(viewed.File);
  EraseChunkScan(viewed.Scan);
  viewed.Scan.FileLength = 0;
  viewed.File.Generation = viewed.Scan.Generation;
}

ChunkCursor StartChunks(const ChunkFile& viewed, int32_t sprite, int32_t alternative) {
  if (Version2(viewed)) return StartChunks(viewed.File, sprite, alternative);
  return StartChunkList(viewed.Scan, sprite);
}

bool NextChunk(const ChunkFile& viewed, ChunkCursor& cursor, ChunkRecord& chunk) {
  if (Version2(viewed)) return NextChunk(viewed.File, cursor, chunk);
  return NextChunk(viewed.Scan, cursor, chunk);
}

}  // namespace vossel
