#include "reference.h"

#include <cstring>

namespace {

int32_t Word(const uint8_t* p) {
  return static_cast<int16_t>(p[0] | (p[1] << 8));
}

void CopyRule(uint8_t* to, const uint8_t* from, int32_t n) {
  if (n < 48) {
    for (int32_t i = 0; i < n; ++i) to[i] = from[i];
  } else {
    std::memcpy(to, from, static_cast<size_t>(n));
  }
}

// Returns false when the stream passes its size or leaves the buffers.
bool Stream(const uint8_t* file, int32_t length, int32_t& rp, uint8_t* target, int32_t cap,
            int32_t& op, int32_t end) {
  while (op != end) {
    if (rp >= length) return false;
    const uint8_t c = file[rp];
    int32_t n;
    if (c < 128) {
      n = c == 0 ? 128 : c;
      if (rp + 1 + n > length || op + n > cap) return false;
      CopyRule(target + op, file + rp + 1, n);
      rp += n + 1;
    } else {
      if (rp + 1 >= length) return false;
      n = 32 - (c >> 3);
      const int32_t d = ((c & 7) << 8) | file[rp + 1];
      if (op + n > cap) return false;
      for (int32_t i = 0; i < n; ++i) {
        const int32_t from = op + i - d;
        target[op + i] = from >= 0 ? target[from] : 0;
      }
      rp += 2;
    }
    op += n;
    if (op > end) return false;
  }
  return true;
}

}  // namespace

ReferenceLoad ReferenceDecode(const uint8_t* file, int32_t length) {
  ReferenceLoad out;
  // Counting pass.
  int32_t pos = 0, count = 0;
  while (pos + 2 < length && count < kMaxSprites) {
    const int32_t word = Word(file + pos);
    if (word == 0) break;
    const uint8_t flags = file[pos + 2];
    if (flags == 255) {
      pos += word + 3;
    } else if (flags & 2) {
      pos += word + 2;
    } else {
      pos += 10;
      int32_t sum = 0;
      while (sum < word - 8 && pos < length) {
        const uint8_t c = file[pos];
        if (c < 128) {
          sum += c == 0 ? 128 : c;
          pos += (c == 0 ? 128 : c) + 1;
        } else {
          sum += 32 - (c >> 3);
          pos += 2;
        }
      }
    }
    ++count;
  }
  out.Table.resize(static_cast<size_t>(count));
  out.Data.assign(kSpriteDataCapacity, 0);
  std::vector<uint8_t> rows(kRowBufferSize, 0);

  // Decoding pass.
  pos = 0;
  int32_t write = 0;
  for (int32_t i = 0; i < count; ++i) {
    if (pos + 2 >= length) break;
    const int32_t word = Word(file + pos);
    const uint8_t flags = file[pos + 2];
    SpriteRecord& r = out.Table[static_cast<size_t>(i)];
    r.DataOffset = write;
    r.Flags = flags;
    if (flags == 255) {
      if (pos + 3 + word > length || write + word > kSpriteDataCapacity) {
        out.Failed = true;
        break;
      }
      std::memcpy(out.Data.data() + write, file + pos + 3, static_cast<size_t>(word));
      r.Size = r.CompressedSize = r.Width = static_cast<int16_t>(word);
      r.Height = 1;
      write += word;
      pos += word + 3;
    } else {
      if (pos + 10 > length) {
        out.Failed = true;
        break;
      }
      r.Height = file[pos + 3];
      r.Width = static_cast<int16_t>(Word(file + pos + 4));
      r.XOffset = Word(file + pos + 6);
      r.YOffset = Word(file + pos + 8);
      r.Size = r.Width * r.Height;
      pos += 10;
      const int32_t start = pos;
      if (r.Size < 0 || write + r.Size > kSpriteDataCapacity) {
        out.Failed = true;
        break;
      }
      if (flags & 8) {
        int32_t op = 0;
        if (!Stream(file, length, pos, rows.data(), kRowBufferSize, op, word - 8)) {
          out.Failed = true;
          break;
        }
        int32_t run = static_cast<int16_t>(rows[0] | (rows[1] << 8));
        int32_t row = 0, rowStart = 0;
        while (run >= 0 && run + 2 <= kRowBufferSize - 1) {
          const uint8_t h = rows[static_cast<size_t>(run)];
          const int32_t s = rows[static_cast<size_t>(run) + 1];
          const int32_t n = h & 127;
          if (rowStart + s > r.Size - 1) break;
          int32_t m = n;
          if (m > kRowBufferSize - (run + 2)) m = kRowBufferSize - (run + 2);
          if (m > kSpriteDataCapacity - (write + rowStart + s))
            m = kSpriteDataCapacity - (write + rowStart + s);
          CopyRule(out.Data.data() + write + rowStart + s, rows.data() + run + 2, m);
          run += n + 2;
          if (!(h & 0x80)) continue;
          if (++row == r.Height) break;
          run = static_cast<int16_t>(rows[2 * static_cast<size_t>(row)] |
                                     (rows[2 * static_cast<size_t>(row) + 1] << 8));
          rowStart = row * r.Width;
        }
        write += r.Size;
      } else {
        int32_t op = write;
        if (!Stream(file, length, pos, out.Data.data(), kSpriteDataCapacity, op, write + r.Size)) {
          out.Failed = true;
          break;
        }
        write = op;
      }
      r.CompressedSize = pos - start;
    }
    ++out.Count;
  }
  out.Data.resize(static_cast<size_t>(write));
  out.Data.shrink_to_fit();
  return out;
}
