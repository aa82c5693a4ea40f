// The input of the fuzz targets that read pseudo-sprites: a list of sprites, each a kind byte (its
// value mod 3: picture, pseudo-sprite, data), a length byte (FF: a word follows), then the bytes.
// Each sprite gets an allocation of its own, so that a read past one is seen.
#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <vector>

#include "actions.h"

struct FuzzSprites {
  std::vector<std::unique_ptr<uint8_t[]>> Owned;
  std::vector<vossel::SpriteInput> Sprites;
};

inline FuzzSprites SpritesOf(const uint8_t* data, size_t size) {
  FuzzSprites out;
  for (size_t at = 0; at + 2 <= size;) {
    const auto kind = static_cast<vossel::SpriteKind>(data[at] % 3);
    size_t length = data[at + 1];
    at += 2;
    if (length == 0xFF && at + 2 <= size) length = data[at] | (data[at + 1] << 8), at += 2;
    length = std::min(length, size - at);
    out.Owned.emplace_back(new uint8_t[length]);
    std::copy(data + at, data + at + length, out.Owned.back().get());
    out.Sprites.push_back({kind, out.Owned.back().get(), length});
    at += length;
  }
  return out;
}
