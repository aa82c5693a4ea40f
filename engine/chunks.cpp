#include "chunks.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "fileio.h"
#include "grf.h"
#include "text.h"

namespace {

// Bytes a chunk decodes to, and bytes it takes in the file.
int32_t ChunkLength(uint8_t c) {
  if (c & 0x80) return 32 - (c >> 3);
  return (c & 0x7F) ? (c & 0x7F) : 128;
}
int32_t ChunkStep(uint8_t c) {
  return (c & 0x80) ? 2 : ChunkLength(c) + 1;
}

// A new record: the tables take exactly i + 1 entries, and entry i is the new record's.
void EnterRecord(ChunkScan& scan, int32_t i, uint8_t flags, int32_t offset) {
  const size_t n = static_cast<size_t>(i) + 1;
  scan.SpriteOffset.resize(n);
  scan.SpriteSize.resize(n);
  scan.SpriteFlags.resize(n);
  scan.SpriteFlags[i] = flags;
  scan.SpriteOffset[i] = offset;
  scan.SpriteSize[i] = 0;
}

// The walk over the records. Positions are held wider than the file's 32 bits so that no sum can
// wrap; every read is checked against FileLength first. A record that cannot be taken in whole
// ends the walk with the message and the sprites before it, as a stream that passes its size does.
ScanOutcome WalkRecords(ChunkScan& scan) {
  const uint8_t* f = scan.FileData.data();
  const int64_t length = scan.FileLength;
  int64_t p = 0;
  int32_t i = 0;
  auto refuse = [&i] {
    return ScanOutcome{ScanEnd::InvalidStream, static_cast<int16_t>(i), kMsgOutOfBuffer};
  };

  while (p < length) {
    // A lone last byte: a zero one is an end word cut short, any other a head that is not there.
    if (p + 1 >= length) {
      if (f[p] == 0) break;
      return refuse();
    }
    const int16_t word = static_cast<int16_t>(f[p] | (f[p + 1] << 8));
    if (word == 0) break;
    if (p + 2 >= length) return refuse();  // a head without its flags byte
    // The index is 16 bits: a 32,768th sprite cannot be entered.
    if (i == kMaxSprites) return refuse();
    const uint8_t flags = f[p + 2];

    if (flags == kActionFlags) {
      EnterRecord(scan, i, flags, static_cast<int32_t>(p + 3));
      scan.SpriteSize[i] = word;
      // A negative word would step back. Data that runs past the end of the file ends the walk at
      // the loop's head like any other last record; its line reads nothing of FileData.
      if (word < 0) return refuse();
      p += 3 + word;
    } else {
      EnterRecord(scan, i, flags, static_cast<int32_t>(p + 10));
      if (p + 10 > length) return refuse();  // header cut by the end of the file
      const int32_t height = f[p + 3];
      const int32_t width = f[p + 5] * 256 + f[p + 4];
      // Negative words would step back; they include 32,768 to 32,775, which cannot be reduced
      // by 8 in 16 bits.
      if (word < 0) return refuse();
      const int32_t streamSize = word - 8;
      p += 10;
      if (flags & kStoredSizeFlag) {
        // The stream is stepped over, not walked: a word of 1 to 7 moves the position by L + 2
        // all the same, and a stream past the end of the file ends the walk at the loop's head.
        scan.SpriteSize[i] = width * height;
        p += streamSize;
      } else {
        // Below 8 the word cannot count the header: the first chunk overshoots.
        if (streamSize < 0) return refuse();
        int32_t count = 0;
        while (count != streamSize) {
          if (p >= length) return refuse();  // the stream runs past the end of the file
          const uint8_t c = f[p];
          count += ChunkLength(c);
          p += ChunkStep(c);
          if (count > streamSize) return refuse();
        }
        if (p > length) return refuse();  // its last data chunk does
        scan.SpriteSize[i] = streamSize;
      }
    }
    ++i;
  }
  // A file with no record leaves no tables, not the earlier file's.
  if (i == 0) {
    scan.SpriteOffset.clear();
    scan.SpriteSize.clear();
    scan.SpriteFlags.clear();
  }
  return ScanOutcome{ScanEnd::Complete, static_cast<int16_t>(i), std::string()};
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

bool NextChunkLine(const ChunkScan& scan, ChunkCursor& cursor, ChunkLine& line) {
  if (cursor.Done) return false;
  // Events run before this call may have replaced or erased what the list reads.
  if (cursor.Generation != scan.Generation ||
      (cursor.Sprite < 0 || static_cast<size_t>(cursor.Sprite) >= TableSize(scan))) {
    cursor.Done = true;
    return false;
  }
  return NextChunkLineIn(scan.FileData.data(), scan.FileData.size(), cursor, line);
}

bool NextChunkLineIn(const uint8_t* bytes, size_t length, ChunkCursor& cursor, ChunkLine& line) {
  if (cursor.Done) return false;
  cursor.Done = true;
  if (cursor.Action) {
    line.ItemData = cursor.P;
    line.Text = "Action sprite, " + std::to_string(cursor.S) + " bytes";
    return true;
  }

  const int64_t end = std::min<int64_t>(static_cast<int64_t>(length), cursor.End);
  auto inStream = [end](int64_t position) { return position >= 0 && position < end; };
  const int64_t p = cursor.P;
  if (!inStream(p)) return false;
  const uint8_t c = bytes[p];
  const int32_t n = ChunkLength(c);
  line.ItemData = cursor.P;
  if (c & 0x80) {
    if (!inStream(p + 1)) return false;  // no distance to tell a position from
    const int32_t distance = ((c & 7) << 8) | bytes[p + 1];
    line.Text = "Offset chunk, " + std::to_string(n) + " bytes of data from position " +
                std::to_string(cursor.C - distance);
  } else {
    line.Text = "Data chunk of " + std::to_string(n) + " bytes,";
    line.Text.reserve(line.Text.size() + 3 * static_cast<size_t>(n));
    for (int64_t k = p + 1; k <= p + n && inStream(k); ++k) {
      line.Text += ' ';
      line.Text += ByteToHex(bytes[k]);
    }
  }

  const int64_t next = p + ChunkStep(c);
  const int64_t count = static_cast<int64_t>(cursor.C) + n;
  cursor.C = static_cast<int32_t>(std::min<int64_t>(count, std::numeric_limits<int32_t>::max()));
  // Equality ends the list as complete, a count beyond S ends it with this line.
  cursor.Done = count >= cursor.S || !inStream(next);
  if (!cursor.Done) cursor.P = static_cast<int32_t>(next);
  return true;
}

std::vector<ChunkLine> ChunkList(const ChunkScan& scan, int32_t v) {
  std::vector<ChunkLine> lines;
  ChunkCursor cursor = StartChunkList(scan, v);
  ChunkLine line;
  while (NextChunkLine(scan, cursor, line)) lines.push_back(line);
  return lines;
}
