#include "grffile.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "fileio.h"
#include "reader.h"
#include "text.h"

namespace vossel {

namespace {

bool Version2(const GrfFile& file) {
  return file.Container == 2;
}

bool InRange(const GrfFile& file, int32_t sprite) {
  return sprite >= 0 && sprite < file.Sprites;
}

// A version-2 sprite's alternative by its number among the sprite's, or nullptr.
const GrfV2Alternative* V2Alternative(const GrfFile& file, int32_t sprite, int32_t alternative) {
  if (!Version2(file) || !InRange(file, sprite)) return nullptr;
  const GrfV2Sprite& s = file.Index.Sprites[static_cast<size_t>(sprite)];
  if (alternative < 0 || alternative >= s.AlternativeCount) return nullptr;
  return &file.Index.Alternatives[static_cast<size_t>(s.FirstAlternative + alternative)];
}

// The global index the version-2 reader chose, as a number among the sprite's.
int32_t Local(const GrfV2Sprite& s, int32_t chosen) {
  return chosen < 0 ? -1 : chosen - s.FirstAlternative;
}

// A version-1 record, or nullptr.
const SpriteRecord* V1Record(const GrfFile& file, int32_t sprite) {
  if (Version2(file) || sprite < 0 || static_cast<size_t>(sprite) >= file.Store.SpriteTable.size())
    return nullptr;
  return &file.Store.SpriteTable[static_cast<size_t>(sprite)];
}

void Note(GrfFile& file, const GrfProblem& problem) {
  ++file.ProblemCount;
  if (file.Problems.size() < kV2KeptProblems) file.Problems.push_back(problem);
}

ByteSource SourceOf(const GrfFile& file) {
  return file.Source ? FileSource(*file.Source) : ByteSource{};
}

// The bytes a pseudo-sprite or data stands for, at most `most` of them: read from the file of
// version 2, copied from the store of version 1.
GrfResult DataBytes(const GrfFile& file, int32_t sprite, int32_t alternative, int64_t most,
                    std::vector<uint8_t>& bytes) {
  bytes.clear();
  int64_t offset = 0, size = 0;
  const ByteArray& store = file.Store.SpriteData;
  if (const SpriteRecord* r = V1Record(file, sprite)) {
    if (r->Flags != kActionFlags || !Fits(r->DataOffset, r->Size, int64_t(store.size())))
      return GrfResult::NotData;
    const uint8_t* data = store.data() + r->DataOffset;
    bytes.assign(data, data + std::min<int64_t>(r->Size, most));
    return GrfResult::Ok;
  }
  if (const GrfV2Alternative* a = V2Alternative(file, sprite, alternative)) {
    if (a->Info != kV2Pseudo) return GrfResult::NotData;
    offset = a->StreamOffset;
    size = a->StreamSize;
  } else if (Version2(file) && InRange(file, sprite) && alternative < 0) {
    const GrfV2Sprite& s = file.Index.Sprites[static_cast<size_t>(sprite)];
    if (s.Info == kV2Reference) return GrfResult::NotData;
    offset = s.DataOffset;
    size = s.DataSize;
  } else {
    return GrfResult::NotData;
  }
  return ReadSource(SourceOf(file), offset, std::min(size, most), bytes);
}

// A file long enough to load that starts with the version-2 signature; only its first bytes are
// read.
bool Version2File(const OpenedFile& file) {
  uint8_t head[sizeof kGrfV2Signature] = {};
  return file.Length >= kMinFileSize && ReadAt(file, 0, head, sizeof head).End == ReadEnd::Ok &&
         IsGrfV2(head, sizeof head);
}

// A chunk is its control byte and up to 128 data bytes; one byte more tells whether another
// follows.
constexpr int64_t kChunkWindow = 130;

}  // namespace

OpenOutcome ReadForLoad(const std::string& path, GrfLoad& load) {
  const FileOpenResult open = OpenForReading(path);
  if (!open.Ok)
    return {OpenEnd::ReadFailure, ReadFailureText(open.ErrorNumber, open.Description, path)};
  if (open.File->Length < kMinFileSize) return {OpenEnd::TooSmall, kMsgTooSmall};
  load.Version2 = Version2File(*open.File);
  if (load.Version2) {
    load.Source = open.File;
  } else {
    FileReadResult whole = ReadAll(*open.File);
    if (!whole.Ok)
      return {OpenEnd::ReadFailure, ReadFailureText(whole.ErrorNumber, whole.Description, path)};
    load.Bytes = std::move(whole.Bytes);
  }
  load.Path = path;
  return {};
}

void CountSprites(GrfLoad& load, GrfFile& file, const MessageFn& stop, const MessageFn& note) {
  if (!load.Version2) {
    const auto length = static_cast<int32_t>(load.Bytes.size());
    int64_t refusedAt = -1;
    load.Counted = CountSprites(load.Bytes.data(), length, stop, &refusedAt);
    if (refusedAt >= 0) load.Totals.RefusedAt = refusedAt;
    return;
  }
  CloseGrfFile(file);
  file.Source = std::move(load.Source);
  IndexGrfV2(FileSource(*file.Source), file.Index, note);
}

void ReserveSprites(GrfLoad& load, GrfFile& file) {
  const int64_t counterRefused = load.Totals.RefusedAt;
  if (!load.Version2) {
    // The version-1 store replaces whatever was open.
    file.Source.reset();
    file.Index = GrfV2Index{};
    ReserveStore(file.Store, load.Counted);
  }
  file.Path = load.Path;
  file.Container = load.Version2 ? 2 : 1;
  file.HasAlternatives = load.Version2;
  file.Scan = ChunkScan{};
  file.Problems = load.Version2 ? file.Index.Problems : std::vector<GrfProblem>{};
  file.ProblemCount = load.Version2 ? file.Index.ProblemCount : 0;
  file.FileLength = load.Version2 ? file.Source->Length : static_cast<int64_t>(load.Bytes.size());
  if (counterRefused >= 0)
    Note(file, {GrfResult::OutOfBuffer, counterRefused, load.Counted + 1, 0, 0});
}

void DecodeSprites(GrfLoad& load, GrfFile& file, const MessageFn& stop) {
  if (load.Version2) {
    file.Sprites = static_cast<int32_t>(std::min<size_t>(file.Index.Sprites.size(), INT32_MAX));
    const GrfV2Totals totals = IndexTotals(file.Index);
    file.CompressedTotal = totals.Compressed;
    file.DecodedTotal = totals.Decompressed;
    return;
  }
  std::vector<uint8_t> rowBuffer(kRowBufferSize);
  const int64_t counterRefused = load.Totals.RefusedAt;
  load.Totals = DecodeSprites(load.Bytes.data(), static_cast<int32_t>(load.Bytes.size()),
                              file.Store, rowBuffer.data(), stop);
  if (counterRefused < 0 && load.Totals.RefusedAt >= 0)
    Note(file, {GrfResult::OutOfBuffer, load.Totals.RefusedAt, load.Totals.Count + 1, 0, 0});
  file.Sprites = static_cast<int32_t>(file.Store.SpriteTable.size());
  file.CompressedTotal = load.Totals.CompressedTotal;
  file.DecodedTotal = load.Totals.DecodedTotal;
}

void FinishLoad(GrfLoad& load, GrfFile& file) {
  load.Bytes = {};
  if (!load.Version2) CutStore(file.Store, load.Totals.WritePosition);
}

OpenOutcome LoadGrfFile(const std::string& path, GrfFile& file, const MessageFn& stop,
                        const MessageFn& note) {
  int32_t start = GetTickCount();
  GrfLoad load;
  const OpenOutcome read = ReadForLoad(path, load);
  if (read.End != OpenEnd::Ok) return read;
  CountSprites(load, file, stop, note);
  ReserveSprites(load, file);
  file.PrepareTicks = GetTickCount() - start;
  start = GetTickCount();
  DecodeSprites(load, file, stop);
  file.DecodeTicks = GetTickCount() - start;
  FinishLoad(load, file);
  return read;
}

ScanOutcome ScanGrfFile(const std::string& path, GrfFile& file) {
  const FileOpenResult open = OpenForReading(path);
  if (!open.Ok)
    return {ScanEnd::ReadFailure, 0, ReadFailureText(open.ErrorNumber, open.Description, path)};
  const bool version2 = Version2File(*open.File);
  ScanOutcome outcome;
  if (version2) {
    // The walk of version 1 finds no record in a version-2 file (its first word is 0), so its
    // tables are left empty without reading the file.
    EraseChunkScan(file.Scan);
    file.Scan.FileLength = static_cast<int32_t>(std::min<int64_t>(open.File->Length, INT32_MAX));
  } else {
    FileReadResult whole = ReadAll(*open.File);
    if (!whole.Ok)
      return {ScanEnd::ReadFailure, 0, ReadFailureText(whole.ErrorNumber, whole.Description, path)};
    outcome = ScanBuffer(std::move(whole.Bytes), file.Scan);
  }
  file.Path = path;
  file.Container = version2 ? 2 : 1;
  file.HasAlternatives = version2;
  file.FileLength = version2 ? open.File->Length : int64_t(file.Scan.FileData.size());
  file.Store = SpriteStore{};
  file.Index = GrfV2Index{};
  file.Source.reset();
  file.Problems.clear();
  file.ProblemCount = 0;
  if (outcome.End == ScanEnd::TooSmall) return outcome;
  file.Sprites = outcome.Count;
  if (version2) {
    file.Source = open.File;
    IndexGrfV2(FileSource(*file.Source), file.Index, nullptr);
    file.Problems = file.Index.Problems;
    file.ProblemCount = file.Index.ProblemCount;
    file.Sprites = static_cast<int32_t>(std::min<size_t>(file.Index.Sprites.size(), INT32_MAX));
    // A section cut short is told as an overrun is; the sprites before it stay.
    for (const GrfProblem& p : file.Index.Problems) {
      if (p.Kind != file.Index.End) continue;
      outcome.End = ScanEnd::InvalidStream;
      outcome.Message = GrfV2Text(p);
      break;
    }
  } else if (outcome.End == ScanEnd::InvalidStream) {
    Note(file, {GrfResult::OutOfBuffer, 0, outcome.Count + 1, 0, 0});
  }
  return outcome;
}

void CloseGrfFile(GrfFile& file) {
  const uint32_t generation = file.Scan.Generation;
  file = GrfFile{};
  // A list still running on the closed file must see that it has gone.
  file.Scan.Generation = generation + 1;
}

bool DrawsDeclaredPalette(const GrfFile& file) {
  return Version2(file);
}

bool IsOpen(const GrfFile& file) {
  return file.Container != 0;
}

int32_t SpriteCount(const GrfFile& file) {
  return file.Sprites;
}

int32_t AlternativeCount(const GrfFile& file, int32_t sprite) {
  if (!InRange(file, sprite)) return 0;
  if (Version2(file)) return file.Index.Sprites[static_cast<size_t>(sprite)].AlternativeCount;
  // A version-1 picture is the case of one alternative.
  const SpriteRecord* r = V1Record(file, sprite);
  return r != nullptr && r->Flags != kActionFlags ? 1 : 0;
}

AlternativeInfo AlternativeOf(const GrfFile& file, int32_t sprite, int32_t alternative) {
  AlternativeInfo info;
  if (const GrfV2Alternative* a = V2Alternative(file, sprite, alternative)) {
    info.Data = a->Info == kV2Pseudo;
    info.Zoom = info.Data ? kZoomNormal : a->Zoom;
    info.Depth = static_cast<uint8_t>(AlternativeDepth(*a));
    info.Mask = (a->Info & kV2Rgb) && (a->Info & kV2Palette);
  }
  return info;
}

int32_t DefaultAlternative(const GrfFile& file, int32_t sprite) {
  if (!Version2(file)) return AlternativeCount(file, sprite) > 0 ? 0 : -1;
  if (!InRange(file, sprite)) return -1;
  const GrfV2Sprite& s = file.Index.Sprites[static_cast<size_t>(sprite)];
  return Local(s, s.Default);
}

int32_t ChosenAlternative(const GrfFile& file, int32_t sprite, int32_t zoom, int32_t depth) {
  if (zoom >= 0) {
    const int32_t chosen = FindAlternative(file, sprite, zoom, depth);
    if (chosen >= 0) return chosen;
  }
  return DefaultAlternative(file, sprite);
}

int32_t FindAlternative(const GrfFile& file, int32_t sprite, int32_t zoom, int32_t depth) {
  if (!Version2(file)) {
    const bool fits = (zoom < 0 || zoom == kZoomNormal) && (depth == 0 || depth == 8);
    return fits && AlternativeCount(file, sprite) > 0 ? 0 : -1;
  }
  if (!InRange(file, sprite)) return -1;
  const GrfV2Sprite& s = file.Index.Sprites[static_cast<size_t>(sprite)];
  return Local(s, ChooseAlternative(file.Index, s, zoom, depth));
}

std::string AlternativeText(const AlternativeInfo& a) {
  if (a.Data) return "data";
  return std::to_string(a.Depth) + "bpp " + ZoomName(a.Zoom);
}

std::string AlternativeList(const GrfFile& file, int32_t sprite) {
  std::string names;
  for (int32_t k = 0; k < AlternativeCount(file, sprite); ++k) {
    if (!names.empty()) names += ", ";
    names += AlternativeText(AlternativeOf(file, sprite, k));
  }
  return names;
}

SpriteFacts FactsOf(const GrfFile& file, int32_t sprite, int32_t alternative) {
  SpriteFacts f;
  if (const SpriteRecord* r = V1Record(file, sprite)) {
    f.Kind = r->Flags == kActionFlags ? SpriteKind::Pseudo : SpriteKind::Picture;
    f.Width = r->Width;
    f.Height = r->Height;
    f.Size = r->Size;
    f.Compressed = r->CompressedSize;
    f.XOffset = r->XOffset;
    f.YOffset = r->YOffset;
    f.Flags = r->Flags;
    return f;
  }
  if (!Version2(file) || !InRange(file, sprite)) return f;
  const GrfV2Sprite& s = file.Index.Sprites[static_cast<size_t>(sprite)];
  const GrfV2Alternative* a = V2Alternative(file, sprite, alternative);
  if (a == nullptr && s.Info == kV2Reference) {
    f.Flags = kV2Reference;  // a reference to pictures the file lacks
    return f;
  }
  if (a == nullptr || a->Info == kV2Pseudo) {
    f.Kind = a == nullptr ? SpriteKind::Pseudo : SpriteKind::Data;
    f.Width = f.Size = f.Compressed = a == nullptr ? s.DataSize : a->StreamSize;
    f.Height = 1;
    f.Flags = kV2Pseudo;
    return f;
  }
  f.Width = a->Width;
  f.Height = a->Height;
  f.Size = PictureBytes(*a);
  f.Compressed = a->StreamSize;
  f.XOffset = a->XOffset;
  f.YOffset = a->YOffset;
  f.Flags = a->Info;
  return f;
}

GrfResult PictureOf(const GrfFile& file, int32_t sprite, int32_t alternative,
                    SpritePicture& picture) {
  picture = SpritePicture{};
  std::vector<uint8_t> data;
  const GrfResult bytes = DataBytes(file, sprite, alternative, INT32_MAX, data);
  if (bytes == GrfResult::Ok) {
    picture.Width = static_cast<int32_t>(data.size());
    picture.Height = 1;
    picture.Info = kV2Palette;
    picture.Indices = std::move(data);
    return GrfResult::Ok;
  }
  if (bytes != GrfResult::NotData) return bytes;
  if (const GrfV2Alternative* a = V2Alternative(file, sprite, alternative))
    return DecodeAlternative(SourceOf(file), *a, picture);
  const SpriteRecord* r = V1Record(file, sprite);
  if (r == nullptr || alternative != 0 || r->Width <= 0 || r->Height <= 0) return GrfResult::Ok;
  // The stored bytes; any that lie outside the store stay zero.
  const ByteArray& store = file.Store.SpriteData;
  const int64_t cells = int64_t{r->Width} * r->Height;
  picture.Width = r->Width;
  picture.Height = r->Height;
  picture.XOffset = r->XOffset;
  picture.YOffset = r->YOffset;
  picture.Info = kV2Palette;
  picture.Indices.assign(static_cast<size_t>(cells), 0);
  const int64_t first = std::clamp<int64_t>(r->DataOffset, 0, int64_t(store.size()));
  const int64_t last =
      std::clamp<int64_t>(int64_t{r->DataOffset} + cells, 0, int64_t(store.size()));
  if (first < last)
    std::copy(store.data() + first, store.data() + last,
              picture.Indices.begin() + (first - r->DataOffset));
  return GrfResult::Ok;
}

GrfResult SpriteBytes(const GrfFile& file, int32_t sprite, int32_t alternative,
                      std::vector<uint8_t>& bytes) {
  return DataBytes(file, sprite, alternative, INT64_MAX, bytes);
}

std::string PictureProblem(const GrfFile& file, int32_t sprite, int32_t alternative,
                           GrfResult result) {
  if (result == GrfResult::FileChanged || result == GrfResult::ReadFailed)
    return UnreadableText(file);
  const GrfV2Alternative* a = V2Alternative(file, sprite, alternative);
  return a != nullptr ? DecodeText(result, *a) : GrfV2Text({result, 0, sprite + 1, 0, 0});
}

std::string UnreadableText(const GrfFile& file) {
  const int64_t then = file.FileLength;
  const ReadOutcome now = file.Source ? CheckUnchanged(*file.Source) : ReadOutcome{};
  // A read refused while the file looks as it was: where is no longer known.
  if (now.End != ReadEnd::Changed)
    return GrfV2Text({GrfResult::ReadFailed, -1, 0, 0, now.ErrorNumber});
  return GrfV2Text({GrfResult::FileChanged, then, 0, 0, now.LengthNow});
}

ChunkCursor StartChunks(const GrfFile& file, int32_t sprite, int32_t alternative) {
  if (!Version2(file)) return StartChunkList(file.Scan, sprite);
  if (!InRange(file, sprite)) return ChunkCursor{};
  const GrfV2Sprite& s = file.Index.Sprites[static_cast<size_t>(sprite)];
  ChunkCursor cursor =
      StartV2ChunkList(file.Index, s, alternative < 0 ? -1 : s.FirstAlternative + alternative);
  cursor.Generation = file.Scan.Generation;
  return cursor;
}

bool NextChunk(const GrfFile& file, ChunkCursor& cursor, ChunkRecord& chunk) {
  if (!Version2(file)) return NextChunk(file.Scan, cursor, chunk);
  if (cursor.Generation != file.Scan.Generation) cursor.Done = true;
  if (cursor.Done || cursor.Action) return NextChunk(nullptr, 0, cursor, chunk);
  // The chunk is read from the file, and the cursor walks the few bytes read as it walks a file.
  const int64_t at = cursor.P;
  const int64_t length = std::min({kChunkWindow, cursor.End - at, file.FileLength - at});
  std::vector<uint8_t> window;
  if (length <= 0 || ReadSource(SourceOf(file), at, length, window) != GrfResult::Ok) {
    cursor.Unreadable = length > 0;
    cursor.Done = true;
    return false;
  }
  ChunkCursor near = cursor;
  near.P = 0;
  near.End = length;
  const bool listed = NextChunk(window.data(), window.size(), near, chunk);
  chunk.Position += at;
  cursor.C = near.C;
  cursor.Done = near.Done;
  cursor.P = at + near.P;
  return listed;
}

std::vector<ChunkRecord> ChunksOf(const GrfFile& file, int32_t sprite, int32_t alternative) {
  std::vector<ChunkRecord> chunks;
  ChunkCursor cursor = StartChunks(file, sprite, alternative);
  ChunkRecord chunk;
  while (NextChunk(file, cursor, chunk)) chunks.push_back(std::move(chunk));
  return chunks;
}

std::string ProblemText(const GrfProblem& problem) {
  return GrfV2Text(problem);
}

std::string MoreProblemsText(int64_t count) {
  return "And " + std::to_string(count) + " more problems in this file";
}

}  // namespace vossel
