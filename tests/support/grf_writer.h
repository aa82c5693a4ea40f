// A small GRF writer for tests: builds chunk streams, records and whole files byte by byte, the
// well-formed ones and the hostile ones alike.
#pragma once

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include <unistd.h>

namespace grfw {

using Bytes = std::vector<uint8_t>;

inline void Append(Bytes& to, const Bytes& from) {
  to.insert(to.end(), from.begin(), from.end());
}

inline void PutWord(Bytes& to, uint16_t w) {
  to.push_back(static_cast<uint8_t>(w & 0xFF));
  to.push_back(static_cast<uint8_t>(w >> 8));
}

// --- Chunk streams -------------------------------------------------------------------------------

// One data chunk of 1 to 128 bytes (128 is written as control byte 0).
inline void AddData(Bytes& stream, const Bytes& data) {
  stream.push_back(static_cast<uint8_t>(data.size() == 128 ? 0 : data.size()));
  Append(stream, data);
}

// One offset chunk of `length` 1..16 bytes from `distance` 0..2047 back.
inline void AddOffset(Bytes& stream, int length, int distance) {
  const int c = 0x80 | ((32 - length) << 3) | ((distance >> 8) & 7);
  stream.push_back(static_cast<uint8_t>(c));
  stream.push_back(static_cast<uint8_t>(distance & 0xFF));
}

// The decoded bytes as data chunks of at most `chunk` bytes each.
inline Bytes Literal(const Bytes& decoded, size_t chunk = 128) {
  Bytes s;
  for (size_t i = 0; i < decoded.size(); i += chunk) {
    const size_t n = std::min(chunk, decoded.size() - i);
    AddData(s, Bytes(decoded.begin() + static_cast<long>(i),
                     decoded.begin() + static_cast<long>(i + n)));
  }
  return s;
}

// A simple greedy compressor: runs of one repeated byte become offset chunks of distance 1, all
// else data chunks. Gives real mixes of both chunk kinds.
inline Bytes Compress(const Bytes& decoded) {
  Bytes s, pending;
  size_t i = 0;
  auto flush = [&] {
    if (!pending.empty()) Append(s, Literal(pending));
    pending.clear();
  };
  while (i < decoded.size()) {
    size_t run = 1;
    while (i + run < decoded.size() && decoded[i + run] == decoded[i] && run < 17) ++run;
    if (run >= 4) {
      pending.push_back(decoded[i]);
      flush();
      AddOffset(s, static_cast<int>(run - 1), 1);
      i += run;
    } else {
      pending.push_back(decoded[i]);
      ++i;
    }
  }
  flush();
  return s;
}

// --- Run form ------------------------------------------------------------------------------------

struct Run {
  uint8_t skip;
  Bytes pixels;  // at most 127
};

// The decoded stream of a run-form picture: the row table, then each row's runs, the last run of a
// row with bit 7 set. A row with no run gets one empty last run.
inline Bytes RunFormStream(const std::vector<std::vector<Run>>& rows) {
  Bytes table(rows.size() * 2), body;
  for (size_t r = 0; r < rows.size(); ++r) {
    const size_t pos = table.size() + body.size();
    table[2 * r] = static_cast<uint8_t>(pos & 0xFF);
    table[2 * r + 1] = static_cast<uint8_t>(pos >> 8);
    std::vector<Run> runs = rows[r];
    if (runs.empty()) runs.push_back(Run{0, {}});
    for (size_t k = 0; k < runs.size(); ++k) {
      const bool last = k + 1 == runs.size();
      body.push_back(static_cast<uint8_t>(runs[k].pixels.size() | (last ? 0x80 : 0)));
      body.push_back(runs[k].skip);
      Append(body, runs[k].pixels);
    }
  }
  Append(table, body);
  return table;
}

// --- Records -------------------------------------------------------------------------------------

inline Bytes ActionRecord(const Bytes& data) {
  Bytes r;
  PutWord(r, static_cast<uint16_t>(data.size()));
  r.push_back(0xFF);
  Append(r, data);
  return r;
}

// A non-action record with an explicit length word: the raw form for hostile cases.
inline Bytes RawSprite(uint16_t lengthWord, uint8_t flags, uint8_t height, uint16_t width,
                       int16_t x, int16_t y, const Bytes& stream) {
  Bytes r;
  PutWord(r, lengthWord);
  r.push_back(flags);
  r.push_back(height);
  PutWord(r, width);
  PutWord(r, static_cast<uint16_t>(x));
  PutWord(r, static_cast<uint16_t>(y));
  Append(r, stream);
  return r;
}

// A well-formed non-action record. With the stored-size flag the length word counts the stream's
// stored bytes, without it the stream's decoded size.
inline Bytes SpriteRec(uint8_t flags, uint8_t height, uint16_t width, int16_t x, int16_t y,
                       const Bytes& stream, int32_t decodedSize) {
  const int32_t l = 8 + ((flags & 2) ? static_cast<int32_t>(stream.size()) : decodedSize);
  return RawSprite(static_cast<uint16_t>(l), flags, height, width, x, y, stream);
}

// A plain-form sprite from its pixels (width x height bytes, top row first).
inline Bytes PlainSprite(uint16_t width, uint8_t height, const Bytes& pixels, int16_t x = 0,
                         int16_t y = 0, uint8_t flags = 0, bool compress = true) {
  const Bytes stream = compress ? Compress(pixels) : Literal(pixels);
  return SpriteRec(flags, height, width, x, y, stream, static_cast<int32_t>(pixels.size()));
}

// A run-form sprite (flags hold 8; the stored-size flag stays clear).
inline Bytes RunSprite(uint16_t width, const std::vector<std::vector<Run>>& rows, int16_t x = 0,
                       int16_t y = 0, uint8_t flags = 8) {
  const Bytes decoded = RunFormStream(rows);
  return SpriteRec(flags, static_cast<uint8_t>(rows.size()), width, x, y, Compress(decoded),
                   static_cast<int32_t>(decoded.size()));
}

// A whole file: the records one behind the other, with the closing zero word if asked.
inline Bytes FileOf(const std::vector<Bytes>& records, bool zeroWord = true) {
  Bytes f;
  for (const Bytes& r : records) Append(f, r);
  if (zeroWord) PutWord(f, 0);
  return f;
}

inline Bytes File(std::initializer_list<Bytes> records, bool zeroWord = true) {
  return FileOf(std::vector<Bytes>(records), zeroWord);
}

// The smallest file that loads: 17 bytes, one sprite of 2 x 2.
inline Bytes SeventeenByteFile() {
  return {0x0C, 0x00, 0x00, 0x02, 0x02, 0x00, 0xFE, 0xFF, 0x01,
          0x00, 0x02, 0x0A, 0x0B, 0xF0, 0x02, 0x00, 0x00};
}

// --- Container version 2 ----------------------------------------------------------------------

inline void PutLong(Bytes& to, uint32_t v) {
  PutWord(to, static_cast<uint16_t>(v & 0xFFFF));
  PutWord(to, static_cast<uint16_t>(v >> 16));
}

// One image: the info byte's layers (1 RGB, 2 alpha, 4 palette index) and tile form (8), and its
// pixels, each the present layers in the order R, G, B, A, M.
struct Image2 {
  uint8_t info = 4;
  uint8_t zoom = 0;
  uint16_t width = 0, height = 0;
  int16_t x = 0, y = 0;
  Bytes pixels;
};

inline size_t PixelBytes(uint8_t info) {
  return ((info & 1) ? 3 : 0) + ((info & 2) ? 1 : 0) + ((info & 4) ? 1 : 0);
}

// Random pixels with runs of equal ones in them; about a third of them all zero, which tile form
// leaves uncovered.
inline Image2 RandomImage(uint8_t info, uint8_t zoom, uint16_t w, uint16_t h, int16_t x, int16_t y,
                          uint32_t seed) {
  std::mt19937 rng(seed);
  Image2 im{info, zoom, w, h, x, y, {}};
  Bytes pixel(PixelBytes(info));
  for (size_t i = 0; i < size_t{w} * h; ++i) {
    if (rng() % 3 == 0) pixel.assign(pixel.size(), 0);
    if (rng() % 3 == 1)
      for (uint8_t& b : pixel) b = static_cast<uint8_t>(rng() | 1);
    Append(im.pixels, pixel);
  }
  return im;
}

// The decompressed tile form: one offset per row (4 bytes each once the whole reaches 65,536
// bytes), then each row's runs of covered pixels. A pixel whose bytes are all 0 is left uncovered;
// a row with none gets one empty last run. Heads are 2 bytes up to width 256, else 4.
inline Bytes TileData(const Image2& im) {
  const size_t ps = PixelBytes(im.info), wide = im.width > 256, longest = wide ? 0x7FFF : 0x7F;
  auto covered = [&](size_t y, size_t x) {
    const uint8_t* p = im.pixels.data() + (y * im.width + x) * ps;
    return x < im.width && std::any_of(p, p + ps, [](uint8_t b) { return b != 0; });
  };
  auto head = [&](Bytes& to, size_t n, size_t x) {
    for (size_t v : {n, x}) wide ? PutWord(to, uint16_t(v)) : to.push_back(uint8_t(v));
  };
  std::vector<size_t> starts;
  Bytes body;
  for (size_t y = 0; y < im.height; ++y) {
    starts.push_back(body.size());
    size_t lastHead = SIZE_MAX;
    for (size_t x = 0, n = 0; x < im.width; x += n ? n : 1) {
      for (n = 0; n < longest && covered(y, x + n);) ++n;
      if (n == 0) continue;
      lastHead = body.size();
      head(body, n, x);
      body.insert(body.end(), im.pixels.begin() + static_cast<long>((y * im.width + x) * ps),
                  im.pixels.begin() + static_cast<long>((y * im.width + x + n) * ps));
    }
    if (lastHead == SIZE_MAX) head(body, 0, 0);
    body[lastHead == SIZE_MAX ? body.size() - (wide ? 3 : 2) : lastHead + wide] |= 0x80;
  }
  const size_t entry = im.height * 2 + body.size() >= 65536 ? 4 : 2;
  Bytes out;
  for (size_t start : starts) {
    const auto at = static_cast<uint32_t>(im.height * entry + start);
    entry == 4 ? PutLong(out, at) : PutWord(out, static_cast<uint16_t>(at));
  }
  Append(out, body);
  return out;
}

// What a decoder must give for an image, worked out from its pixels alone: RGBA for an image with
// RGB (alpha 255 without an alpha layer), palette indices with a palette layer; all 0 where tile
// form covers nothing.
inline void DecodedLayers(const Image2& im, Bytes& rgba, Bytes& indices) {
  const size_t ps = PixelBytes(im.info);
  for (size_t c = 0; c < size_t{im.width} * im.height; ++c) {
    const uint8_t* p = &im.pixels[c * ps];
    const bool covered = !(im.info & 8) || std::any_of(p, p + ps, [](uint8_t b) { return b; });
    const size_t m = ps - 1;  // the mask, where there is one, comes last
    if (im.info & 1)
      for (uint8_t b : {p[0], p[1], p[2], uint8_t((im.info & 2) ? p[3] : 255)})
        rgba.push_back(covered ? b : 0);
    if (im.info & 4) indices.push_back(covered ? p[m] : 0);
  }
}

// A sprite-section entry with any body (its first byte the info byte).
inline Bytes V2Raw(uint32_t id, const Bytes& body) {
  Bytes e;
  PutLong(e, id);
  PutLong(e, static_cast<uint32_t>(body.size()));
  Append(e, body);
  return e;
}

// A well-formed image entry; its stream is compressed by Compress.
inline Bytes V2Sprite(uint32_t id, const Image2& im) {
  Bytes body = {im.info, im.zoom};
  PutWord(body, im.height);
  PutWord(body, im.width);
  PutWord(body, static_cast<uint16_t>(im.x));
  PutWord(body, static_cast<uint16_t>(im.y));
  Bytes decoded = im.pixels;
  if (im.info & 8) {
    decoded = TileData(im);
    PutLong(body, static_cast<uint32_t>(decoded.size()));
  }
  Append(body, Compress(decoded));
  return V2Raw(id, body);
}

// A data-section entry: a pseudo-sprite (0xFF) or anything else.
inline Bytes V2Data(uint8_t info, const Bytes& data) {
  Bytes e;
  PutLong(e, static_cast<uint32_t>(data.size()));
  e.push_back(info);
  Append(e, data);
  return e;
}

inline Bytes V2Ref(uint32_t id) {
  Bytes data;
  PutLong(data, id);
  return V2Data(0xFD, data);
}

// A whole version-2 file: header, data section and sprite section, each closed.
inline Bytes V2File(const std::vector<Bytes>& data, const std::vector<Bytes>& sprites,
                    uint8_t compression = 0) {
  Bytes f = {0x00, 0x00, 0x47, 0x52, 0x46, 0x82, 0x0D, 0x0A, 0x1A, 0x0A};
  Bytes section;
  for (const Bytes& d : data) Append(section, d);
  PutLong(section, 0);
  PutLong(f, static_cast<uint32_t>(15 + section.size() - 14));
  f.push_back(compression);
  Append(f, section);
  for (const Bytes& e : sprites) Append(f, e);
  PutLong(f, 0);
  return f;
}

// The test temp folder, one for each test process.
inline std::filesystem::path TempDir() {
  const auto dir =
      std::filesystem::temp_directory_path() / ("vossel-tests-" + std::to_string(getpid()));
  std::filesystem::create_directories(dir);
  return dir;
}

// A folder of its own under the temp folder, removed first; made anew, empty, when `make` is set.
inline std::filesystem::path FreshFolder(const std::string& name, bool make = false) {
  const auto dir = TempDir() / name;
  std::filesystem::remove_all(dir);
  if (make) std::filesystem::create_directories(dir);
  return dir;
}

// A whole file's bytes; none when it cannot be read.
inline Bytes ReadFile(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  return Bytes(std::istreambuf_iterator<char>(in), {});
}

// Writes bytes to a fresh file under the test temp folder and gives its path.
inline std::string WriteTemp(const std::string& name, const Bytes& bytes) {
  const auto path = TempDir() / name;
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(reinterpret_cast<const char*>(bytes.data()),
            static_cast<std::streamsize>(bytes.size()));
  return path.string();
}

}  // namespace grfw
