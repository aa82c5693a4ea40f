#include "grf2.h"

#include <algorithm>
#include <cstring>

#include "alternatives.h"
#include "reader.h"

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

}  // namespace

bool IsGrfV2(const uint8_t* file, size_t length) {
  return length >= sizeof kGrfV2Signature &&
         std::memcmp(file, kGrfV2Signature, sizeof kGrfV2Signature) == 0;
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

}  // namespace vossel
