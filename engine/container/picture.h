// One version-2 alternative decoded into a picture, read from a buffer or a file kept open.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "grf2.h"

namespace vossel {

// One decoded alternative. Rgba holds Width x Height pixels of R, G, B, A (alpha 255 where the
// image has none; 0 where no tile run covers), top row first, for an image with RGB. Indices holds
// Width x Height palette indices for an image with a palette layer: its pixels for an 8-bit image,
// the mask layer beside Rgba.
struct SpritePicture {
  int32_t Width = 0;
  int32_t Height = 0;
  int32_t XOffset = 0;
  int32_t YOffset = 0;
  uint8_t Info = 0;
  uint8_t Zoom = 0;
  std::vector<uint8_t> Rgba;
  std::vector<uint8_t> Indices;
};

using GrfV2Image = SpritePicture;

// Decodes one alternative from the file's bytes into `image` (which is replaced; on failure it is
// left empty). Never reads outside the alternative's entry. Safe to call from several threads.
GrfResult DecodeAlternative(const ByteSource& source, const GrfV2Alternative& a,
                            SpritePicture& image);
GrfResult DecodeAlternative(const uint8_t* file, size_t length, const GrfV2Alternative& a,
                            SpritePicture& image);

// The text of a decoding result for an alternative.
std::string DecodeText(GrfResult result, const GrfV2Alternative& a);

}  // namespace vossel
