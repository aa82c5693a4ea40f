#include "reference.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace vossel {

namespace {

int32_t Word(const uint8_t* p) {
  return static_cast<int16_t>(p[0] | (p[1] << 8));
}

// Expands chunks from file[readPos] into target[outPos] until the output reaches end, and moves
// both positions behind the stream. False when a chunk would pass end or the stream runs out of
// the file; nothing is written past end.
bool Stream(const uint8_t* file, int32_t length, int32_t& readPos, uint8_t* target, int32_t& outPos,
            int32_t end) {
  int32_t pos = readPos, op = outPos;  // kept apart from the bytes that the loop writes
  while (op != end) {
    if (pos >= length) return false;
    const uint8_t c = file[pos];
    if (c < 128) {
      const int32_t n = c == 0 ? 128 : c;
      if (op + n > end || n > length - pos - 1) return false;
      std::memcpy(target + op, file + pos + 1, static_cast<size_t>(n));
      pos += n + 1;
      op += n;
    } else {
      const int32_t n = 32 - (c >> 3);
      if (op + n > end || pos + 1 >= length) return false;
      const int32_t distance = ((c & 7) << 8) | file[pos + 1];
      for (int32_t i = op; i < op + n; ++i) target[i] = i >= distance ? target[i - distance] : 0;
      pos += 2;
      op += n;
    }
  }
  readPos = pos;
  outPos = op;
  return true;
}

// The runs of the decoded stream in `rows` into the sprite's cells at data[write]. Only a run's
// start is tested against the sprite; its pixels are cut at the ends of both buffers.
void PlaceRuns(const uint8_t* rows, const SpriteRecord& r, uint8_t* data, int32_t write) {
  int32_t run = Word(rows), row = 0, rowStart = 0;
  while (run >= 0 && run + 2 <= kRowBufferSize - 1) {
    const uint8_t header = rows[run];
    const int32_t cell = rowStart + rows[run + 1];
    if (cell > r.Size - 1) break;
    const int32_t n =
        std::min({header & 127, kRowBufferSize - (run + 2), kSpriteDataCapacity - (write + cell)});
    std::memcpy(data + write + cell, rows + run + 2, static_cast<size_t>(n));
    run += (header & 127) + 2;
    if (header & 0x80) {
      if (++row == r.Height) break;
      run = Word(rows + 2 * row);
      rowStart = row * r.Width;
    }
  }
}

// The counting pass: records up to a zero word or the end of the file. A record it cannot take
// in ends it with `failed`.
int32_t CountRecords(const uint8_t* file, int32_t length, bool& failed) {
  int32_t pos = 0, count = 0;
  while (pos < length && !failed) {
    if (length - pos < 2) {
      failed = true;
      break;
    }
    const int32_t word = Word(file + pos);
    if (word == 0) break;
    if (length - pos < 3 || count == kMaxSprites) {
      failed = true;
      break;
    }
    const uint8_t flags = file[pos + 2];
    if (flags == 255) {
      failed = word < 0;
      pos += word + 3;
    } else if (flags & 2) {
      failed = word < 8;
      pos += word + 2;
    } else {
      pos += 10;
      int32_t sum = 0;
      while (sum < word - 8 && pos < length) {
        const uint8_t c = file[pos];
        const int32_t n = c >= 128 ? 32 - (c >> 3) : c == 0 ? 128 : c;
        sum += n;
        pos += c >= 128 ? 2 : n + 1;
      }
      failed = sum != word - 8;
    }
    if (!failed) ++count;
  }
  return count;
}

// One record of the decoding pass at file[pos] into r; false when it cannot be taken in.
bool DecodeRecord(const uint8_t* file, int32_t length, int32_t& pos, SpriteRecord& r, uint8_t* data,
                  int32_t& write, uint8_t* rows) {
  if (length - pos < 3) return false;
  const int32_t word = Word(file + pos);
  r.DataOffset = write;
  r.Flags = file[pos + 2];
  if (r.Flags == 255) {
    if (word < 0 || word > length - pos - 3 || word > kSpriteDataCapacity - write) return false;
    std::memcpy(data + write, file + pos + 3, static_cast<size_t>(word));
    r.Size = r.CompressedSize = r.Width = static_cast<int16_t>(word);
    r.Height = 1;
    write += word;
    pos += word + 3;
    return true;
  }
  if (length - pos < 10) return false;
  r.Height = file[pos + 3];
  r.Width = static_cast<int16_t>(Word(file + pos + 4));
  r.XOffset = Word(file + pos + 6);
  r.YOffset = Word(file + pos + 8);
  r.Size = r.Width * r.Height;
  if (r.Size < 0 || r.Size > kSpriteDataCapacity - write) return false;
  pos += 10;
  const int32_t start = pos;
  if (r.Flags & 8) {
    int32_t op = 0;
    if (!Stream(file, length, pos, rows, op, word - 8)) return false;
    PlaceRuns(rows, r, data, write);
    write += r.Size;
  } else {
    int32_t op = write;
    if (!Stream(file, length, pos, data, op, write + r.Size)) return false;
    write = op;
  }
  r.CompressedSize = pos - start;
  return true;
}

}  // namespace

ReferenceLoad ReferenceDecode(const uint8_t* file, int32_t length, std::vector<uint8_t> data) {
  ReferenceLoad out;
  out.Data = std::move(data);
  const int32_t count = CountRecords(file, length, out.Failed);
  out.Table.resize(static_cast<size_t>(count));
  out.Data.assign(kSpriteDataCapacity, 0);
  std::vector<uint8_t> rows(kRowBufferSize, 0);
  int32_t pos = 0, write = 0;
  while (out.Count < count && pos < length) {
    if (length - pos >= 2 && Word(file + pos) == 0) break;
    if (!DecodeRecord(file, length, pos, out.Table[static_cast<size_t>(out.Count)], out.Data.data(),
                      write, rows.data())) {
      out.Failed = true;
      break;
    }
    ++out.Count;
  }
  out.Data.resize(static_cast<size_t>(write));
  return out;
}

}  // namespace vossel
