// Files that the Sprite Sheet tests of the window and of vossel-cli both draw, so that the two can
// be held to the same cells.
#pragma once

#include <cstdint>
#include <random>
#include <vector>

#include "grf_writer.h"

namespace sheetfiles {

// Random indices with index 0 and the company colour range (C6..CD) among them.
inline grfw::Bytes Indices(size_t n, uint32_t seed) {
  std::mt19937 rng(seed);
  grfw::Bytes b(n);
  for (uint8_t& v : b) {
    const uint32_t r = rng() % 4;
    v = r == 0 ? 0 : r == 1 ? static_cast<uint8_t>(0xC6 + rng() % 8) : static_cast<uint8_t>(rng());
  }
  return b;
}

// Version 1: the sprite count first, then Action 14 declaring the DOS palette, pictures small and
// large, and the 16 company colour maps at sprites 775 to 790 (from 0), each sending the company
// range somewhere of its own. With `pairs`, then an Action 05 of type 0A with the 256 maps of two
// colours (map k: the first range as colour k mod 16 sends it, the second range as colour k div 16
// sends the first) and, last, a 16 x 8 picture of both ranges among other indices.
inline grfw::Bytes DosVersion1(bool pairs = false) {
  std::vector<grfw::Bytes> records;
  records.push_back(grfw::ActionRecord({0x17, 0x03, 0x00, 0x00}));
  grfw::Bytes info = {0x14, 'C', 'I', 'N',  'F',  'O', 'B',  'P',
                      'A',  'L', 'S', 0x01, 0x00, 'D', 0x00, 0x00};
  records.push_back(grfw::ActionRecord(info));
  const struct {
    uint16_t W;
    uint8_t H;
  } sizes[] = {{8, 8}, {20, 9}, {3, 30}, {100, 40}, {64, 64}, {1, 1}, {33, 17}};
  for (uint32_t k = 0; k < 200; ++k) {
    const auto& s = sizes[k % std::size(sizes)];
    records.push_back(grfw::PlainSprite(s.W, s.H, Indices(size_t{s.W} * s.H, k), -1, 2));
  }
  while (records.size() < 775) records.push_back(grfw::ActionRecord({0x0C, 'x'}));
  // Colour `first` on the first range, `second` (unless -1) on the second.
  const auto map = [](int first, int second) {
    grfw::Bytes m(257);
    for (int i = 0; i < 256; ++i) m[size_t(i) + 1] = static_cast<uint8_t>(i);
    for (int i = 0; i < 8; ++i) {
      m[size_t(0xC6 + i) + 1] = static_cast<uint8_t>(0x10 + 8 * first + i);
      if (second >= 0) m[size_t(0x50 + i) + 1] = static_cast<uint8_t>(0x10 + 8 * second + i);
    }
    return grfw::ActionRecord(m);
  };
  for (int c = 0; c < 16; ++c) records.push_back(map(c, -1));
  if (pairs) {
    records.push_back(grfw::ActionRecord({0x05, 0x0A, 0xFF, 0x00, 0x01}));
    for (int k = 0; k < 256; ++k) records.push_back(map(k % 16, k / 16));
    grfw::Bytes pixels(16 * 8);
    for (size_t i = 0; i < pixels.size(); ++i)
      pixels[i] = static_cast<uint8_t>(i % 3 == 0 ? 0x50 + i % 8 : i % 3 == 1 ? 0xC6 + i % 8 : i);
    records.push_back(grfw::PlainSprite(16, 8, pixels, -8, -4));
    const size_t n = records.size();
    records[0] = grfw::ActionRecord({uint8_t(n), uint8_t(n >> 8), 0x00, 0x00});
  }
  return grfw::FileOf(records);
}

// Version 2: the sprite count, then sprites with an 8-bit picture, a 32-bit one, and a 32-bit one
// with a mask layer, at normal zoom and zoomed in.
inline grfw::Bytes Version2() {
  std::vector<grfw::Bytes> data = {grfw::V2Data(0xFF, {0x20, 0x00, 0x00, 0x00})};
  std::vector<grfw::Bytes> sprites;
  for (uint32_t id = 1; id <= 32; ++id) {
    data.push_back(grfw::V2Ref(id));
    const auto w = static_cast<uint16_t>(4 + id * 3 % 70), h = static_cast<uint16_t>(3 + id % 40);
    grfw::Image2 eight{0x04, 0, w, h, -1, -2, Indices(size_t{w} * h, id)};
    sprites.push_back(grfw::V2Sprite(id, eight));
    sprites.push_back(
        grfw::V2Sprite(id, grfw::RandomImage(id % 2 ? 0x07 : 0x03, 0, w, h, -1, -2, 100 + id)));
    sprites.push_back(grfw::V2Sprite(id, grfw::RandomImage(0x07, 2, w * 2, h * 2, 0, 0, 200 + id)));
  }
  return grfw::V2File(data, sprites);
}

}  // namespace sheetfiles
