#include "chunks.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "fileio.h"
#include "grf.h"
#include "reader.h"
#include "records.h"
#include "text.h"

namespace vossel {

namespace {

// A new record: the tables take exactly i + 1 entries, and entry i is the new record's.
void EnterRecord(ChunkScan& scan, int32_t i, uint8_t flags, int64_t offset) {
  const size_t n = static_cast<size_t>(i) + 1;
  scan.SpriteOffset.resize(n);
  scan.SpriteSize.resize(n);
  scan.SpriteFlags.resize(n);
  scan.SpriteFlags[i] = flags;
  scan.SpriteOffset[i] = static_cast<int32_t>(offset);
  scan.SpriteSize[i] = 0;
}

// The walk over the records into the tables. A refused record gets its entry too, as the last.
ScanOutcome WalkRecords(ChunkScan& scan) {
  int32_t i = 0;
  const WalkOutcome walk = WalkRecords(Reader{scan.FileData.data(), scan.FileLength}, kScannerRules,
                                       kMaxSprites, [&scan, &i](const WalkedRecord& r) {
                                         EnterRecord(scan, i, r.Head.Flags, r.Body);
                                         const int32_t word = r.Head.Word;
                                         // A stored-size sprite lists until its picture is full,
                                         // any other until its stream is.
                                         if (r.Head.Kind == HeadKind::Action)
                                           scan.SpriteSize[i] = word;
                                         else if (!r.Refused && (r.Head.Flags & kStoredSizeFlag))
                                           scan.SpriteSize[i] =
                                               static_cast<uint16_t>(r.Head.Width) * r.Head.Height;
                                         else if (!r.Refused)
                                           scan.SpriteSize[i] = word - 8;
                                         ++i;
                                       });
  if (walk.Refused)
    return ScanOutcome{ScanEnd::InvalidStream, static_cast<int16_t>(walk.Count), kMsgOutOfBuffer};
  // A file with no record leaves no tables, not the earlier file's.
  if (walk.Count == 0) {
    scan.SpriteOffset.clear();
    scan.SpriteSize.clear();
    scan.SpriteFlags.clear();
  }
  return ScanOutcome{ScanEnd::Complete, static_cast<int16_t>(walk.Count), std::string()};
}

// Entries that the three tables all hold.
size_t TableSize(const ChunkScan& scan) {
  return std::min({scan.SpriteOffset.size(), scan.SpriteSize.size(), scan.SpriteFlags.size()});
}

bool InFile(const ChunkScan& scan, int64_t position) {
  return position >= 0 && position < static_cast<int64_t>(scan.FileData.size());
}

}  // namespace

ScanOutcome ScanGRF(const std::string& fileName, ChunkScan& scan) {
  FileReadResult read = ReadWholeFile(fileName);
  if (!read.Ok) {
    return ScanOutcome{ScanEnd::ReadFailure, 0,
                       ReadFailureText(read.ErrorNumber, read.Description, fileName)};
  }
  return ScanBuffer(std::move(read.Bytes), scan);
}

ScanOutcome ScanBuffer(std::vector<uint8_t> bytes, ChunkScan& scan) {
  scan.FileData = std::move(bytes);
  scan.FileLength = static_cast<int32_t>(
      std::min<size_t>(scan.FileData.size(), std::numeric_limits<int32_t>::max()));
  ++scan.Generation;
  if (scan.FileLength < kMinFileSize) return ScanOutcome{ScanEnd::TooSmall, 0, kMsgTooSmall};
  return WalkRecords(scan);
}

void EraseChunkScan(ChunkScan& scan) {
  scan.FileData = {};
  scan.SpriteOffset = {};
  scan.SpriteSize = {};
  scan.SpriteFlags = {};
  ++scan.Generation;
}

std::string ByteToHex(uint8_t value) {
  static const char kDigits[] = "0123456789ABCDEF";
  return std::string{kDigits[value >> 4], kDigits[value & 15]};
}

ChunkCursor StartChunkList(const ChunkScan& scan, int32_t v) {
  ChunkCursor cursor;
  cursor.Generation = scan.Generation;
  if (v < 0 || static_cast<size_t>(v) >= TableSize(scan)) return cursor;
  cursor.Sprite = v;
  cursor.Action = scan.SpriteFlags[v] == kActionFlags;
  cursor.P = scan.SpriteOffset[v];
  cursor.S = scan.SpriteSize[v];
  cursor.C = 0;
  // An action sprite has its one line and reads nothing of FileData.
  cursor.Done = !cursor.Action && (cursor.C == cursor.S || !InFile(scan, cursor.P));
  return cursor;
}

bool NextChunk(const ChunkScan& scan, ChunkCursor& cursor, ChunkRecord& chunk) {
  if (cursor.Done) return false;
  // Events run before this call may have replaced or erased what the list reads.
  if (cursor.Generation != scan.Generation ||
      (cursor.Sprite < 0 || static_cast<size_t>(cursor.Sprite) >= TableSize(scan))) {
    cursor.Done = true;
    return false;
  }
  return NextChunk(scan.FileData.data(), scan.FileData.size(), cursor, chunk);
}

bool NextChunkLine(const ChunkScan& scan, ChunkCursor& cursor, ChunkLine& line) {
  ChunkRecord chunk;
  if (!NextChunk(scan, cursor, chunk)) return false;
  line = LineOf(chunk);
  return true;
}

bool NextChunk(const uint8_t* bytes, size_t length, ChunkCursor& cursor, ChunkRecord& chunk) {
  if (cursor.Done) return false;
  cursor.Done = true;
  chunk = ChunkRecord{};
  chunk.Position = cursor.P;
  chunk.Decoded = cursor.C;
  if (cursor.Action) {
    chunk.Kind = ChunkKind::Action;
    chunk.Length = cursor.S;
    return true;
  }

  const int64_t end = std::min<int64_t>(static_cast<int64_t>(length), cursor.End);
  const Reader stream{bytes, end};
  const int64_t p = cursor.P;
  uint8_t c = 0, low = 0;
  if (!U8(stream, p, c)) return false;
  chunk.Length = ChunkLength(c);
  if (c & 0x80) {
    if (!U8(stream, p + 1, low)) return false;  // no distance to tell a position from
    chunk.Kind = ChunkKind::Offset;
    chunk.Distance = ((c & 7) << 8) | low;
  } else {
    // A data chunk cut by the end shows the bytes that are there.
    chunk.Kind = ChunkKind::Data;
    const int64_t n = std::clamp<int64_t>(end - (p + 1), 0, chunk.Length);
    chunk.Bytes.assign(bytes + p + 1, bytes + p + 1 + n);
  }

  const int64_t next = p + ChunkStep(c);
  const int64_t count = static_cast<int64_t>(cursor.C) + chunk.Length;
  cursor.C = static_cast<int32_t>(std::min<int64_t>(count, std::numeric_limits<int32_t>::max()));
  // Equality ends the list as complete, a count beyond S ends it with this chunk.
  cursor.Done = count >= cursor.S || !Fits(next, 1, end);
  if (!cursor.Done) cursor.P = next;
  return true;
}

std::string ChunkText(const ChunkRecord& chunk) {
  switch (chunk.Kind) {
    case ChunkKind::Action:
      return "Action sprite, " + std::to_string(chunk.Length) + " bytes";
    case ChunkKind::Offset:
      return "Offset chunk, " + std::to_string(chunk.Length) + " bytes of data from position " +
             std::to_string(int64_t{chunk.Decoded} - chunk.Distance);
    case ChunkKind::Data:
      break;
  }
  std::string text = "Data chunk of " + std::to_string(chunk.Length) + " bytes,";
  text.reserve(text.size() + 3 * chunk.Bytes.size());
  for (const uint8_t b : chunk.Bytes) {
    text += ' ';
    text += ByteToHex(b);
  }
  return text;
}

ChunkLine LineOf(const ChunkRecord& chunk) {
  return ChunkLine{static_cast<int32_t>(chunk.Position), ChunkText(chunk)};
}

bool NextChunkLineIn(const uint8_t* bytes, size_t length, ChunkCursor& cursor, ChunkLine& line) {
  ChunkRecord chunk;
  if (!NextChunk(bytes, length, cursor, chunk)) return false;
  line = LineOf(chunk);
  return true;
}

std::vector<ChunkLine> ChunkList(const ChunkScan& scan, int32_t v) {
  std::vector<ChunkLine> lines;
  ChunkCursor cursor = StartChunkList(scan, v);
  ChunkLine line;
  while (NextChunkLine(scan, cursor, line)) lines.push_back(line);
  return lines;
}

}  // namespace vossel
