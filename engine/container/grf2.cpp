#include "grf2.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "decode.h"
#include "grffile.h"
#include "reader.h"
#include "text.h"

namespace vossel {

namespace {

// The walk's view of its source: the buffer that holds the whole file, or a window of the file
// read again wherever the walk moves past it.
struct Window {
  ByteSource Source;
  std::vector<uint8_t> Buffer;
  int64_t Start = 0;  // the file's byte at Buffer[0]
  int64_t Count = 0;  // bytes of the file held
};

// What one indexing carries: the file, the index being filled and where problems go.
struct Indexer {
  Window View;
  GrfV2Index& Index;
  const MessageFn& Message;
};

void Note(Indexer& ix, const GrfProblem& p) {
  ++ix.Index.ProblemCount;
  if (ix.Index.Problems.size() < kV2KeptProblems) ix.Index.Problems.push_back(p);
  if (ix.Message && ix.Index.ProblemCount <= kV2ProblemMessages) ix.Message(GrfV2Text(p));
}

// A problem that stops a section; the first one is the index's End.
void Stop(Indexer& ix, const GrfProblem& p) {
  if (ix.Index.End == GrfResult::Ok) ix.Index.End = p.Kind;
  Note(ix, p);
}

// Room made ahead for the index's tables, at most: a file of any size may claim any count, and
// the tables grow past it as entries are really found.
constexpr size_t kMostReserved = size_t{1} << 22;

GrfProblem ReadProblem(const ByteSource& source, int64_t at, const ReadOutcome& read) {
  if (read.End == ReadEnd::Changed)
    return {GrfResult::FileChanged, source.Length, 0, 0, read.LengthNow};
  return {GrfResult::ReadFailed, at, 0, 0, read.ErrorNumber};
}

// A reader of the n bytes at `at`, fewer where `end` comes first; its positions count from `at`.
// False, the problem noted, when the file cannot be read as it was.
bool Look(Indexer& ix, int64_t at, int64_t n, int64_t end, Reader& r) {
  Window& w = ix.View;
  const int64_t held = at >= 0 && at < end ? std::min(n, end - at) : 0;
  if (w.Source.Memory != nullptr) {
    r = {held > 0 ? w.Source.Memory + at : w.Source.Memory, held};
    return true;
  }
  if (held > 0 && (at < w.Start || at + held > w.Start + w.Count)) {
    const int64_t count = std::min<int64_t>(kV2ReadWindow, w.Source.Length - at);
    w.Buffer.resize(static_cast<size_t>(kV2ReadWindow));
    const ReadOutcome read = ReadAt(*w.Source.File, at, w.Buffer.data(), count);
    w.Count = 0;
    if (read.End != ReadEnd::Ok) {
      Stop(ix, ReadProblem(w.Source, at, read));
      return false;
    }
    w.Start = at;
    w.Count = count;
  }
  r = {w.Buffer.data() + (held > 0 ? at - w.Start : 0), held};
  return true;
}

// Entries of the data section from byte 15 up to `end`: each a 4-byte size and an info byte, the
// data behind; size 0 closes the section. False when the file could not be read.
bool IndexDataSection(Indexer& ix, int64_t end) {
  int64_t pos = kGrfV2HeaderSize;
  // Room for a section of references, 9 bytes each, which most files are.
  ix.Index.Sprites.reserve(
      std::min(static_cast<size_t>(std::max<int64_t>(end - pos, 0) / 9), kMostReserved));
  for (Reader r{}; Look(ix, pos, 9, end, r);) {
    const int32_t number = static_cast<int32_t>(ix.Index.Sprites.size()) + 1;
    uint32_t size = 0;
    uint8_t info = 0;
    if (!U32(r, 0, size)) {
      Stop(ix, {GrfResult::DataSectionCut, pos, number, 0, 0});
      return true;
    }
    if (size == 0) return true;
    if (!U8(r, 4, info) || !Fits(pos + 5, size, end)) {
      Stop(ix, {GrfResult::DataSectionCut, pos, number, 0, size});
      return true;
    }
    GrfV2Sprite s;
    s.Info = info;
    if (info == kV2Reference) {
      if (size != 4 || !U32(r, 5, s.Id)) Note(ix, {GrfResult::BadReference, pos, number, 0, size});
    } else {
      if (info != kV2Pseudo) Note(ix, {GrfResult::UnknownDataInfo, pos, number, 0, info});
      s.DataOffset = pos + 5;
      s.DataSize = size;
    }
    ix.Index.Sprites.push_back(s);
    pos += 5 + static_cast<int64_t>(size);
  }
  return false;
}

// One sprite-section entry of `size` bytes at `pos`, read through `r` from its start, into
// Alternatives; false when it is left out.
bool IndexAlternative(Indexer& ix, const Reader& r, int64_t pos, uint32_t id, uint32_t size) {
  const int64_t body = 8;
  // Filled in place, and taken back when the entry is left out.
  GrfV2Alternative& a = ix.Index.Alternatives.emplace_back();
  const auto leaveOut = [&ix](const GrfProblem& p) {
    ix.Index.Alternatives.pop_back();
    Note(ix, p);
    return false;
  };
  a.Id = id;
  if (size == 0 || !U8(r, body, a.Info)) return leaveOut({GrfResult::EmptyEntry, pos, 0, id, 0});
  int64_t header = 1;
  if (a.Info != kV2Pseudo) {
    header = (a.Info & kV2Tile) ? 14 : 10;
    if (size < header) return leaveOut({GrfResult::ImageHeaderCut, pos, 0, id, size});
    U8(r, body + 1, a.Zoom);
    U16(r, body + 2, a.Height);
    U16(r, body + 4, a.Width);
    S16(r, body + 6, a.XOffset);
    S16(r, body + 8, a.YOffset);
    if (a.Info & kV2Tile) U32(r, body + 10, a.TileSize);
    if (a.Zoom >= kZoomLevels) return leaveOut({GrfResult::UnknownZoom, pos, 0, id, a.Zoom});
    if ((a.Info & (kV2Rgb | kV2Palette)) == 0)
      return leaveOut({GrfResult::NoColour, pos, 0, id, a.Info});
  }
  a.StreamOffset = pos + body + header;
  a.StreamSize = size - header;
  return true;
}

// The alternatives of one id: consecutive entries that share it.
struct IdGroup {
  uint32_t Id;
  int32_t First;
  int32_t Count;
};

// Entries of the sprite section from `pos`: id, size, then the entry; id 0 closes the section. A
// section that stops exactly at the end of the file is taken as closed.
std::vector<IdGroup> IndexSpriteSection(Indexer& ix, int64_t pos) {
  const int64_t end = ix.View.Source.Length;
  std::vector<IdGroup> groups;
  // Each reference has an alternative or more, and an image entry takes 18 bytes at least.
  size_t references = 0;
  for (const GrfV2Sprite& s : ix.Index.Sprites) references += s.Info == kV2Reference;
  const size_t room = std::min(static_cast<size_t>((end - pos) / 18), kMostReserved);
  ix.Index.Alternatives.reserve(std::min(room, 3 * references));
  groups.reserve(std::min(room, references));
  // An entry's head: id, size and the image header of the tile form, the longest.
  constexpr int64_t kHead = 8 + 14;
  for (Reader r{}; pos != end && Look(ix, pos, kHead, end, r);) {
    uint32_t id = 0, size = 0;
    if (!U32(r, 0, id)) {
      Stop(ix, {GrfResult::SpriteSectionCut, pos, 0, 0, 0});
      break;
    }
    if (id == 0) break;
    if (!U32(r, 4, size) || !Fits(pos + 8, size, end)) {
      Stop(ix, {GrfResult::SpriteSectionCut, pos, 0, id, size});
      break;
    }
    // The head holds no more than the entry.
    r.End = std::min<int64_t>(r.End, 8 + int64_t{size});
    if (groups.empty() || groups.back().Id != id)
      groups.push_back({id, static_cast<int32_t>(ix.Index.Alternatives.size()), 0});
    const int64_t next = pos + 8 + static_cast<int64_t>(size);
    // The walk of a buffer waits on memory for each entry's head: ask for the next one while this
    // one is read.
    if (ix.View.Source.Memory != nullptr && Fits(next, 8, end))
      __builtin_prefetch(ix.View.Source.Memory + next);
    if (IndexAlternative(ix, r, pos, id, size)) ++groups.back().Count;
    pos = next;
  }
  return groups;
}

// Points every reference at its id's alternatives. An id that comes back later in the section
// keeps its first group.
void ResolveReferences(Indexer& ix, std::vector<IdGroup>& groups) {
  const auto byId = [](const IdGroup& a, const IdGroup& b) { return a.Id < b.Id; };
  if (!std::is_sorted(groups.begin(), groups.end(), byId))
    std::stable_sort(groups.begin(), groups.end(), byId);
  auto next = groups.begin();  // references mostly come in the order of their ids
  for (size_t i = 0; i < ix.Index.Sprites.size(); ++i) {
    GrfV2Sprite& s = ix.Index.Sprites[i];
    if (s.Info != kV2Reference || s.Id == 0) continue;
    auto g = next;
    if (g == groups.end() || g->Id != s.Id)
      g = std::lower_bound(groups.begin(), groups.end(), s.Id,
                           [](const IdGroup& a, uint32_t id) { return a.Id < id; });
    if (g != groups.end()) next = g + 1;
    if (g == groups.end() || g->Id != s.Id) {
      Note(ix, {GrfResult::MissingId, 0, static_cast<int32_t>(i) + 1, s.Id, 0});
      continue;
    }
    s.FirstAlternative = g->First;
    s.AlternativeCount = g->Count;
    s.Default = ChooseAlternative(ix.Index, s, -1, 0);
  }
}

// Zoom levels by nearness to normal zoom: normal, in2, out2, in4, out4, out8.
constexpr int32_t kZoomRank[kZoomLevels] = {0, 3, 1, 2, 4, 5};
const char* const kZoomNames[kZoomLevels] = {"normal", "in4", "in2", "out2", "out4", "out8"};

// Bytes the alternative's stream decompresses to.
int64_t DecodedSize(const GrfV2Alternative& a) {
  return (a.Info & kV2Tile) ? a.TileSize : PictureBytes(a);
}

// n pixels of the present layers from `from` into the image from cell `cell` on.
void PutPixels(const uint8_t* from, int64_t n, int64_t cell, SpritePicture& image) {
  const uint8_t info = image.Info;
  uint8_t* rgba = image.Rgba.empty() ? nullptr : image.Rgba.data() + 4 * cell;
  uint8_t* index = image.Indices.empty() ? nullptr : image.Indices.data() + cell;
  for (int64_t i = 0; i < n; ++i) {
    if (info & kV2Rgb) {
      rgba[0] = from[0];
      rgba[1] = from[1];
      rgba[2] = from[2];
      from += 3;
      rgba[3] = (info & kV2Alpha) ? *from++ : 255;
      rgba += 4;
    } else if (info & kV2Alpha) {
      ++from;  // alpha without colour has nothing to show
    }
    if (info & kV2Palette) *index++ = *from++;
  }
}

// A run's head at `pos`, which moves behind it: the pixel count with the row's last-run bit in
// its top bit, then the first column; a byte each up to width 256, two bytes each when wider.
bool RunHead(const Reader& r, int64_t& pos, bool wide, int64_t& length, int64_t& x, bool& last) {
  uint16_t head = 0, at = 0;
  uint8_t head8 = 0, at8 = 0;
  const bool read =
      wide ? U16(r, pos, head) && U16(r, pos + 2, at) : U8(r, pos, head8) && U8(r, pos + 1, at8);
  if (!wide) {
    head = head8;
    at = at8;
  }
  const uint16_t lastBit = wide ? 0x8000 : 0x80;
  last = head & lastBit;
  length = head & (lastBit - 1);
  x = at;
  pos += wide ? 4 : 2;
  return read;
}

// Places the runs of the tile form held in `raw`: one offset per row, then each row's runs.
GrfResult PlaceTiles(const std::vector<uint8_t>& raw, const GrfV2Alternative& a,
                     SpritePicture& image) {
  const Reader r{raw.data(), static_cast<int64_t>(raw.size())};
  const int64_t pixelSize = V2PixelSize(a.Info);
  const bool longOffsets = raw.size() >= 65536;
  const bool wide = a.Width > 256;
  for (int64_t y = 0; y < a.Height; ++y) {
    int64_t pos = 0;
    if (longOffsets) {
      uint32_t offset = 0;
      if (!U32(r, 4 * y, offset)) return GrfResult::TileOutside;
      pos = offset;
    } else {
      uint16_t offset = 0;
      if (!U16(r, 2 * y, offset)) return GrfResult::TileOutside;
      pos = offset;
    }
    for (bool last = false; !last;) {
      int64_t length = 0, x = 0;
      if (!RunHead(r, pos, wide, length, x, last)) return GrfResult::TileOutside;
      if (!Fits(x, length, a.Width) || !Fits(pos, length * pixelSize, r.End))
        return GrfResult::TileOutside;
      PutPixels(raw.data() + pos, length, y * a.Width + x, image);
      pos += length * pixelSize;
    }
  }
  return GrfResult::Ok;
}

}  // namespace

std::string GrfV2Text(const GrfProblem& p) {
  const std::string at = " at byte " + std::to_string(p.Position);
  const std::string sprite = "Sprite " + std::to_string(p.Sprite);
  const std::string entry = "The entry of id " + std::to_string(p.Id) + at;
  const std::string stream = "The image stream of id " + std::to_string(p.Id) + at;
  const std::string value = std::to_string(p.Value);
  switch (p.Kind) {
    case GrfResult::Ok:
      return "";
    case GrfResult::NotVersion2:
      return "Not a GRF file of container version 2";
    case GrfResult::HeaderCut:
      return "The file's header is cut short: " + value + " bytes of 15";
    case GrfResult::UnknownCompression:
      return "The file's sections use the unknown compression " + value + "; nothing can be read";
    case GrfResult::SpriteSectionOutside:
      return "The sprite section would start at byte " + value + ", outside the file";
    case GrfResult::DataSectionCut:
      return sprite + at + " runs past the end of the data section; no sprite follows";
    case GrfResult::SpriteSectionCut:
      return entry + " runs past the end of the file; the sprite section ends there";
    case GrfResult::UnknownDataInfo:
      return sprite + at + " has the unknown info byte " + value + "; it is kept as data";
    case GrfResult::BadReference:
      return sprite + at + " is a reference of " + value + " bytes instead of 4";
    case GrfResult::MissingId:
      return sprite + " refers to id " + std::to_string(p.Id) + ", which the file lacks";
    case GrfResult::EmptyEntry:
      return entry + " is empty";
    case GrfResult::ImageHeaderCut:
      return entry + " is too short for an image header: " + value + " bytes";
    case GrfResult::UnknownZoom:
      return entry + " has the unknown zoom level " + value;
    case GrfResult::NoColour:
      return entry + " has no colour layer (info " + value + ")";
    case GrfResult::NotAnImage:
      return entry + " holds no image";
    case GrfResult::NotData:
      return sprite + " holds no data bytes";
    case GrfResult::TooLarge:
      return stream + " would need more than 64 MiB";
    case GrfResult::StreamOverrun:
      return stream + " decompresses past its size";
    case GrfResult::StreamShort:
      return stream + " ends before its decompressed size";
    case GrfResult::TileOutside:
      return stream + " has a row or a run outside its bounds";
    case GrfResult::FileChanged:
      return "The file has changed since it was opened: " +
             (p.Value != p.Position
                  ? "it holds " + value + " bytes now, " + std::to_string(p.Position) + " then"
                  : std::string("it has been rewritten")) +
             "; open it again to see it as it is";
    case GrfResult::ReadFailed:
      return "The file could not be read" + (p.Position >= 0 ? at : std::string()) +
             (p.Value > 0 ? ": " + std::string(std::strerror(static_cast<int>(p.Value))) : "");
    case GrfResult::OutOfBuffer:
      return kMsgOutOfBuffer;
  }
  return "";
}

std::string DecodeText(GrfResult result, const GrfV2Alternative& a) {
  return GrfV2Text({result, a.StreamOffset, 0, a.Id, 0});
}

bool IsGrfV2(const uint8_t* file, size_t length) {
  return length >= sizeof kGrfV2Signature &&
         std::memcmp(file, kGrfV2Signature, sizeof kGrfV2Signature) == 0;
}

ByteSource MemorySource(const uint8_t* file, size_t length) {
  return {file, nullptr,
          static_cast<int64_t>(
              std::min<size_t>(length, static_cast<size_t>(std::numeric_limits<int64_t>::max())))};
}

ByteSource FileSource(const OpenedFile& file) {
  return {nullptr, &file, file.Length};
}

GrfResult ReadSource(const ByteSource& source, int64_t at, int64_t n, std::vector<uint8_t>& bytes) {
  bytes.clear();
  // Only a file that has changed can make an index point outside it.
  if (!Fits(at, n, source.Length)) return GrfResult::FileChanged;
  if (source.Memory != nullptr) {
    bytes.assign(source.Memory + at, source.Memory + at + n);
    return GrfResult::Ok;
  }
  bytes.resize(static_cast<size_t>(n));
  const ReadOutcome read = ReadAt(*source.File, at, bytes.data(), n);
  if (read.End == ReadEnd::Ok) return GrfResult::Ok;
  bytes.clear();
  return ReadProblem(source, at, read).Kind;
}

GrfResult IndexGrfV2(const uint8_t* file, size_t length, GrfV2Index& index,
                     const MessageFn& message) {
  return IndexGrfV2(MemorySource(file, length), index, message);
}

GrfResult IndexGrfV2(const ByteSource& source, GrfV2Index& index, const MessageFn& message) {
  index = GrfV2Index{};
  const int64_t end = source.Length;
  Indexer ix{{source, {}, 0, 0}, index, message};
  Reader head{};
  uint32_t offset = 0;
  uint8_t compression = 0;
  if (!Look(ix, 0, kGrfV2HeaderSize, end, head)) {
    // the problem is noted
  } else if (!IsGrfV2(head.Data, static_cast<size_t>(head.End))) {
    Stop(ix, {GrfResult::NotVersion2, 0, 0, 0, 0});
  } else if (!U32(head, 10, offset) || !U8(head, 14, compression)) {
    Stop(ix, {GrfResult::HeaderCut, 0, 0, 0, end});
  } else if (compression != 0) {
    Stop(ix, {GrfResult::UnknownCompression, 14, 0, 0, compression});
  } else {
    // The data section ends where the sprite section starts, if that lies behind the header.
    const int64_t spriteSection = 14 + static_cast<int64_t>(offset);
    const bool inside = Fits(kGrfV2HeaderSize, spriteSection - kGrfV2HeaderSize, end);
    // Without a sprite section every reference is missing; the one problem says so.
    if (!IndexDataSection(ix, inside ? spriteSection : end)) {
      // the file could not be read on: nothing behind is trusted
    } else if (inside) {
      std::vector<IdGroup> groups = IndexSpriteSection(ix, spriteSection);
      ResolveReferences(ix, groups);
    } else {
      Stop(ix, {GrfResult::SpriteSectionOutside, 10, 0, 0, spriteSection});
    }
  }
  if (message && index.ProblemCount > kV2ProblemMessages)
    message(MoreProblemsText(index.ProblemCount - kV2ProblemMessages));
  return index.End;
}

std::string ZoomName(uint8_t zoom) {
  if (zoom < kZoomLevels) return kZoomNames[zoom];
  return "zoom " + std::to_string(zoom);
}

bool ParseZoomName(const std::string& name, uint8_t& zoom) {
  for (uint8_t z = 0; z < kZoomLevels; ++z) {
    if (name == kZoomNames[z]) {
      zoom = z;
      return true;
    }
  }
  return false;
}

int32_t AlternativeDepth(const GrfV2Alternative& a) {
  return (a.Info & kV2Rgb) ? 32 : 8;
}

int32_t V2PixelSize(uint8_t info) {
  return ((info & kV2Rgb) ? 3 : 0) + ((info & kV2Alpha) ? 1 : 0) + ((info & kV2Palette) ? 1 : 0);
}

std::string AlternativeName(const GrfV2Alternative& a) {
  if (a.Info == kV2Pseudo) return "data";
  return std::to_string(AlternativeDepth(a)) + "bpp " + ZoomName(a.Zoom);
}

std::string AlternativeNames(const GrfV2Index& index, const GrfV2Sprite& s) {
  std::string names;
  for (int32_t i = 0; i < s.AlternativeCount; ++i) {
    if (!names.empty()) names += ", ";
    names += AlternativeName(index.Alternatives[static_cast<size_t>(s.FirstAlternative + i)]);
  }
  return names;
}

int32_t ChooseAlternative(const GrfV2Index& index, const GrfV2Sprite& s, int32_t zoom,
                          int32_t depth) {
  int32_t best = -1, bestRank = 0;
  for (int32_t i = s.FirstAlternative; i < s.FirstAlternative + s.AlternativeCount; ++i) {
    const GrfV2Alternative& a = index.Alternatives[static_cast<size_t>(i)];
    int32_t rank = 1000;  // data: only when nothing else is there, and never by zoom or depth
    if (a.Info != kV2Pseudo) {
      if ((zoom >= 0 && a.Zoom != zoom) || (depth != 0 && AlternativeDepth(a) != depth)) continue;
      rank = 2 * kZoomRank[a.Zoom] + (AlternativeDepth(a) == 32 ? 0 : 1);
    } else if (zoom >= 0 || depth != 0) {
      continue;
    }
    if (best < 0 || rank < bestRank) {
      best = i;
      bestRank = rank;
    }
  }
  return best;
}

int64_t PictureBytes(const GrfV2Alternative& a) {
  return static_cast<int64_t>(a.Width) * a.Height * V2PixelSize(a.Info);
}

GrfV2Totals IndexTotals(const GrfV2Index& index) {
  GrfV2Totals t;
  for (const GrfV2Sprite& s : index.Sprites) {
    t.Compressed += s.DataSize;
    t.Decompressed += s.DataSize;
  }
  for (const GrfV2Alternative& a : index.Alternatives) {
    t.Compressed += a.StreamSize;
    t.Decompressed += a.Info == kV2Pseudo ? a.StreamSize : PictureBytes(a);
  }
  return t;
}

GrfResult DecodeAlternative(const uint8_t* file, size_t length, const GrfV2Alternative& a,
                            SpritePicture& image) {
  return DecodeAlternative(MemorySource(file, length), a, image);
}

GrfResult DecodeAlternative(const ByteSource& source, const GrfV2Alternative& a,
                            SpritePicture& image) {
  image = SpritePicture{};
  if (a.Info == kV2Pseudo) return GrfResult::NotAnImage;
  const int64_t cells = static_cast<int64_t>(a.Width) * a.Height;
  const int64_t decoded = DecodedSize(a);
  if (PictureBytes(a) > kV2MaxImageBytes || decoded > kV2MaxImageBytes) return GrfResult::TooLarge;
  if (!Fits(a.StreamOffset, a.StreamSize, source.Length)) return GrfResult::StreamShort;
  // A chunk decodes to at most eight times its bytes, so a stream too short for its size is told
  // before any memory is taken for it.
  if (decoded > 8 * a.StreamSize) return GrfResult::StreamShort;
  // Tile form holds at least a row offset and a run head for every row.
  if ((a.Info & kV2Tile) && decoded < 4 * static_cast<int64_t>(a.Height))
    return GrfResult::TileOutside;

  // Every chunk decodes to one byte or more from two bytes or fewer, and the last may pass the
  // size by a whole chunk: nothing behind that is read.
  const int64_t needed = std::min(a.StreamSize, 2 * decoded + 130);
  std::vector<uint8_t> read;
  const uint8_t* stream = source.Memory != nullptr ? source.Memory + a.StreamOffset : nullptr;
  if (stream == nullptr) {
    const GrfResult got = ReadSource(source, a.StreamOffset, needed, read);
    if (got != GrfResult::Ok) return got;
    stream = read.data();
  }
  std::vector<uint8_t> raw(static_cast<size_t>(decoded));
  int32_t readPos = 0, outPos = 0;
  const int32_t streamBytes =
      static_cast<int32_t>(std::min<int64_t>(needed, std::numeric_limits<int32_t>::max()));
  const DecodeResult result =
      DecodeStream(stream, streamBytes, readPos, raw.data(), static_cast<int32_t>(decoded), outPos,
                   static_cast<int32_t>(decoded), 0);
  if (result == DecodeResult::Overrun) return GrfResult::StreamOverrun;
  if (result == DecodeResult::Truncated) return GrfResult::StreamShort;

  image.Width = a.Width;
  image.Height = a.Height;
  image.XOffset = a.XOffset;
  image.YOffset = a.YOffset;
  image.Info = a.Info;
  image.Zoom = a.Zoom;
  if (a.Info & kV2Rgb) image.Rgba.assign(static_cast<size_t>(4 * cells), 0);
  if (a.Info & kV2Palette) image.Indices.assign(static_cast<size_t>(cells), 0);
  GrfResult placed = GrfResult::Ok;
  if (a.Info & kV2Tile)
    placed = PlaceTiles(raw, a, image);
  else
    PutPixels(raw.data(), cells, 0, image);
  if (placed != GrfResult::Ok) image = SpritePicture{};
  return placed;
}

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
