#include "grffile.h"

#include <algorithm>
#include <limits>
#include <utility>
#include <variant>

#include "fileio.h"
#include "grf2_chunks.h"
#include "reader.h"
#include "text.h"

namespace vossel {

namespace {

// The one place where the container is told apart: `visit` is called with the version-1 store,
// the version-2 file, or std::monostate while nothing is open, and each procedure below gives one
// overload for each.
template <typename... Fns>
struct ByContainer : Fns... {
  using Fns::operator()...;
};
template <typename... Fns>
ByContainer(Fns...) -> ByContainer<Fns...>;

template <typename... Fns>
decltype(auto) Visit(const GrfFile& file, Fns&&... fns) {
  return std::visit(ByContainer{std::forward<Fns>(fns)...}, file.Contents);
}

const GrfV2File* V2Of(const GrfFile& file) {
  return std::get_if<GrfV2File>(&file.Contents);
}

bool InRange(const GrfFile& file, int32_t sprite) {
  return sprite >= 0 && sprite < file.Sprites;
}

// A version-2 sprite's alternative by its number among the sprite's, or nullptr.
const GrfV2Alternative* V2Alternative(const GrfFile& file, int32_t sprite, int32_t alternative) {
  const GrfV2File* v2 = V2Of(file);
  if (v2 == nullptr || !InRange(file, sprite)) return nullptr;
  const GrfV2Sprite& s = v2->Index.Sprites[static_cast<size_t>(sprite)];
  if (alternative < 0 || alternative >= s.AlternativeCount) return nullptr;
  return &v2->Index.Alternatives[static_cast<size_t>(s.FirstAlternative + alternative)];
}

// A version-2 sprite in range, or nullptr.
const GrfV2Sprite* V2Sprite(const GrfFile& file, const GrfV2File& v2, int32_t sprite) {
  return InRange(file, sprite) ? &v2.Index.Sprites[static_cast<size_t>(sprite)] : nullptr;
}

// The global index the version-2 reader chose, as a number among the sprite's.
int32_t Local(const GrfV2Sprite& s, int32_t chosen) {
  return chosen < 0 ? -1 : chosen - s.FirstAlternative;
}

// A version-1 record, or nullptr.
const SpriteRecord* V1Record(const SpriteStore& store, int32_t sprite) {
  if (sprite < 0 || static_cast<size_t>(sprite) >= store.SpriteTable.size()) return nullptr;
  return &store.SpriteTable[static_cast<size_t>(sprite)];
}

void Note(GrfFile& file, const GrfProblem& problem) {
  ++file.ProblemCount;
  if (file.Problems.size() < kV2KeptProblems) file.Problems.push_back(problem);
}

ByteSource SourceOf(const GrfV2File& v2) {
  return v2.Source ? FileSource(*v2.Source) : ByteSource{};
}

// The bytes a pseudo-sprite or data stands for, at most `most` of them: read from the file of
// version 2, copied from the store of version 1.
GrfResult DataBytes(const GrfFile& file, int32_t sprite, int32_t alternative, int64_t most,
                    std::vector<uint8_t>& bytes) {
  bytes.clear();
  return Visit(
      file, [](std::monostate) { return GrfResult::NotData; },
      [&](const SpriteStore& store) {
        const SpriteRecord* r = V1Record(store, sprite);
        if (r == nullptr || r->Flags != kActionFlags ||
            !Fits(r->DataOffset, r->Size, int64_t(store.SpriteData.size())))
          return GrfResult::NotData;
        const uint8_t* data = store.SpriteData.data() + r->DataOffset;
        bytes.assign(data, data + std::min<int64_t>(r->Size, most));
        return GrfResult::Ok;
      },
      [&](const GrfV2File& v2) {
        int64_t offset = 0, size = 0;
        const GrfV2Sprite* s = V2Sprite(file, v2, sprite);
        if (const GrfV2Alternative* a = V2Alternative(file, sprite, alternative)) {
          if (a->Info != kV2Pseudo) return GrfResult::NotData;
          offset = a->StreamOffset;
          size = a->StreamSize;
        } else if (s != nullptr && alternative < 0 && s->Info != kV2Reference) {
          offset = s->DataOffset;
          size = s->DataSize;
        } else {
          return GrfResult::NotData;
        }
        return ReadSource(SourceOf(v2), offset, std::min(size, most), bytes);
      });
}

// A chunk is its control byte and up to 128 data bytes; one byte more tells whether another
// follows.
constexpr int64_t kChunkWindow = 130;

}  // namespace

bool IsVersion2File(const OpenedFile& file) {
  uint8_t head[sizeof kGrfV2Signature] = {};
  return file.Length >= kMinFileSize && ReadAt(file, 0, head, sizeof head).End == ReadEnd::Ok &&
         IsGrfV2(head, sizeof head);
}

OpenOutcome ReadForLoad(const std::string& path, GrfLoad& load) {
  const FileOpenResult open = OpenForReading(path);
  if (!open.Ok)
    return {OpenEnd::ReadFailure, ReadFailureText(open.ErrorNumber, open.Description, path)};
  if (open.File->Length < kMinFileSize) return {OpenEnd::TooSmall, kMsgTooSmall};
  load.Version2 = IsVersion2File(*open.File);
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
  GrfV2File& v2 = file.Contents.emplace<GrfV2File>(GrfV2File{std::move(load.Source), {}});
  IndexGrfV2(FileSource(*v2.Source), v2.Index, note);
}

void ReserveSprites(GrfLoad& load, GrfFile& file) {
  const int64_t counterRefused = load.Totals.RefusedAt;
  file.Path = load.Path;
  file.Container = load.Version2 ? 2 : 1;
  file.HasAlternatives = load.Version2;
  if (const GrfV2File* v2 = V2Of(file); load.Version2 && v2 != nullptr) {
    file.Problems = v2->Index.Problems;
    file.ProblemCount = v2->Index.ProblemCount;
    file.FileLength = v2->Source->Length;
  } else {
    // The version-1 store replaces whatever was open.
    ReserveStore(file.Contents.emplace<SpriteStore>(), load.Counted);
    ++file.Generation;
    file.Problems.clear();
    file.ProblemCount = 0;
    file.FileLength = static_cast<int64_t>(load.Bytes.size());
  }
  if (counterRefused >= 0)
    Note(file, {GrfResult::OutOfBuffer, counterRefused, load.Counted + 1, 0, 0});
}

void DecodeSprites(GrfLoad& load, GrfFile& file, const MessageFn& stop) {
  if (const GrfV2File* v2 = V2Of(file); load.Version2 && v2 != nullptr) {
    file.Sprites = static_cast<int32_t>(std::min<size_t>(v2->Index.Sprites.size(), INT32_MAX));
    const GrfV2Totals totals = IndexTotals(v2->Index);
    file.CompressedTotal = totals.Compressed;
    file.DecodedTotal = totals.Decompressed;
    return;
  }
  SpriteStore& store = std::get<SpriteStore>(file.Contents);
  std::vector<uint8_t> rowBuffer(kRowBufferSize);
  const int64_t counterRefused = load.Totals.RefusedAt;
  load.Totals = DecodeSprites(load.Bytes.data(), static_cast<int32_t>(load.Bytes.size()), store,
                              rowBuffer.data(), stop);
  if (counterRefused < 0 && load.Totals.RefusedAt >= 0)
    Note(file, {GrfResult::OutOfBuffer, load.Totals.RefusedAt, load.Totals.Count + 1, 0, 0});
  file.Sprites = static_cast<int32_t>(store.SpriteTable.size());
  file.CompressedTotal = load.Totals.CompressedTotal;
  file.DecodedTotal = load.Totals.DecodedTotal;
}

void FinishLoad(GrfLoad& load, GrfFile& file) {
  load.Bytes = {};
  if (SpriteStore* store = std::get_if<SpriteStore>(&file.Contents); !load.Version2 && store)
    CutStore(*store, load.Totals.WritePosition);
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

void CloseGrfFile(GrfFile& file) {
  const uint32_t generation = file.Generation;
  file = GrfFile{};
  // A list still running on the closed file must see that it has gone.
  file.Generation = generation + 1;
}

bool DrawsDeclaredPalette(const GrfFile& file) {
  return V2Of(file) != nullptr;
}

bool IsOpen(const GrfFile& file) {
  return file.Container != 0;
}

int32_t SpriteCount(const GrfFile& file) {
  return file.Sprites;
}

int32_t AlternativeCount(const GrfFile& file, int32_t sprite) {
  if (!InRange(file, sprite)) return 0;
  return Visit(
      file, [](std::monostate) { return 0; },
      [&](const SpriteStore& store) {
        // A version-1 picture is the case of one alternative.
        const SpriteRecord* r = V1Record(store, sprite);
        return r != nullptr && r->Flags != kActionFlags ? 1 : 0;
      },
      [&](const GrfV2File& v2) {
        return v2.Index.Sprites[static_cast<size_t>(sprite)].AlternativeCount;
      });
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
  return FindAlternative(file, sprite, -1, 0);
}

int32_t ChosenAlternative(const GrfFile& file, int32_t sprite, int32_t zoom, int32_t depth) {
  if (zoom >= 0) {
    const int32_t chosen = FindAlternative(file, sprite, zoom, depth);
    if (chosen >= 0) return chosen;
  }
  return DefaultAlternative(file, sprite);
}

int32_t FindAlternative(const GrfFile& file, int32_t sprite, int32_t zoom, int32_t depth) {
  const auto v1 = [&](const auto&) {
    const bool fits = (zoom < 0 || zoom == kZoomNormal) && (depth == 0 || depth == 8);
    return fits && AlternativeCount(file, sprite) > 0 ? 0 : -1;
  };
  return Visit(file, v1, [&](const GrfV2File& v2) {
    const GrfV2Sprite* s = V2Sprite(file, v2, sprite);
    if (s == nullptr) return -1;
    // The index keeps the default it chose; any other wish is chosen by the same order.
    return Local(
        *s, zoom < 0 && depth == 0 ? s->Default : ChooseAlternative(v2.Index, *s, zoom, depth));
  });
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
  Visit(
      file, [](std::monostate) {},
      [&](const SpriteStore& store) {
        const SpriteRecord* r = V1Record(store, sprite);
        if (r == nullptr) return;
        f.Kind = r->Flags == kActionFlags ? SpriteKind::Pseudo : SpriteKind::Picture;
        f.Width = r->Width;
        f.Height = r->Height;
        f.Size = r->Size;
        f.Compressed = r->CompressedSize;
        f.XOffset = r->XOffset;
        f.YOffset = r->YOffset;
        f.Flags = r->Flags;
      },
      [&](const GrfV2File& v2) {
        const GrfV2Sprite* s = V2Sprite(file, v2, sprite);
        if (s == nullptr) return;
        const GrfV2Alternative* a = V2Alternative(file, sprite, alternative);
        if (a == nullptr && s->Info == kV2Reference) {
          f.Flags = kV2Reference;  // a reference to pictures the file lacks
          return;
        }
        if (a == nullptr || a->Info == kV2Pseudo) {
          f.Kind = a == nullptr ? SpriteKind::Pseudo : SpriteKind::Data;
          f.Width = f.Size = f.Compressed = a == nullptr ? s->DataSize : a->StreamSize;
          f.Height = 1;
          f.Flags = kV2Pseudo;
          return;
        }
        f.Width = a->Width;
        f.Height = a->Height;
        f.Size = PictureBytes(*a);
        f.Compressed = a->StreamSize;
        f.XOffset = a->XOffset;
        f.YOffset = a->YOffset;
        f.Flags = a->Info;
      });
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
  return Visit(
      file, [](std::monostate) { return GrfResult::Ok; },
      [&](const GrfV2File& v2) {
        const GrfV2Alternative* a = V2Alternative(file, sprite, alternative);
        return a != nullptr ? DecodeAlternative(SourceOf(v2), *a, picture) : GrfResult::Ok;
      },
      [&](const SpriteStore& store) {
        const SpriteRecord* r = V1Record(store, sprite);
        if (r == nullptr || alternative != 0 || r->Width <= 0 || r->Height <= 0)
          return GrfResult::Ok;
        // The stored bytes; any that lie outside the store stay zero.
        const ByteArray& data = store.SpriteData;
        const int64_t cells = int64_t{r->Width} * r->Height;
        picture.Width = r->Width;
        picture.Height = r->Height;
        picture.XOffset = r->XOffset;
        picture.YOffset = r->YOffset;
        picture.Info = kV2Palette;
        picture.Indices.assign(static_cast<size_t>(cells), 0);
        const int64_t first = std::clamp<int64_t>(r->DataOffset, 0, int64_t(data.size()));
        const int64_t last =
            std::clamp<int64_t>(int64_t{r->DataOffset} + cells, 0, int64_t(data.size()));
        if (first < last)
          std::copy(data.data() + first, data.data() + last,
                    picture.Indices.begin() + (first - r->DataOffset));
        return GrfResult::Ok;
      });
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
  const GrfV2File* v2 = V2Of(file);
  const ReadOutcome now = v2 && v2->Source ? CheckUnchanged(*v2->Source) : ReadOutcome{};
  // A read refused while the file looks as it was: where is no longer known.
  if (now.End != ReadEnd::Changed)
    return GrfV2Text({GrfResult::ReadFailed, -1, 0, 0, now.ErrorNumber});
  return GrfV2Text({GrfResult::FileChanged, then, 0, 0, now.LengthNow});
}

ChunkCursor StartChunks(const GrfFile& file, int32_t sprite, int32_t alternative) {
  const GrfV2File* v2 = V2Of(file);
  const GrfV2Sprite* s = v2 != nullptr ? V2Sprite(file, *v2, sprite) : nullptr;
  if (s == nullptr) return ChunkCursor{};
  ChunkCursor cursor =
      StartV2ChunkList(v2->Index, *s, alternative < 0 ? -1 : s->FirstAlternative + alternative);
  cursor.Generation = file.Generation;
  return cursor;
}

bool NextChunk(const GrfFile& file, ChunkCursor& cursor, ChunkRecord& chunk) {
  const GrfV2File* v2 = V2Of(file);
  if (v2 == nullptr || cursor.Generation != file.Generation) cursor.Done = true;
  if (cursor.Done || cursor.Action) return NextChunk(nullptr, 0, cursor, chunk);
  // The chunk is read from the file, and the cursor walks the few bytes read as it walks a file.
  const int64_t at = cursor.P;
  const int64_t length = std::min({kChunkWindow, cursor.End - at, file.FileLength - at});
  std::vector<uint8_t> window;
  if (length <= 0 || ReadSource(SourceOf(*v2), at, length, window) != GrfResult::Ok) {
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

}  // namespace vossel
