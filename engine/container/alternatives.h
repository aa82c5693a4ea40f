// A version-2 sprite's alternatives: their names, depths and sizes, and which one is shown.
#pragma once

#include <cstdint>
#include <string>

#include "grf2.h"

namespace vossel {

// Names: "normal", "in4", "in2", "out2", "out4", "out8"; "zoom N" for others.
std::string ZoomName(uint8_t zoom);
// The zoom level of a name; false for an unknown name.
bool ParseZoomName(const std::string& name, uint8_t& zoom);
// 32 for an alternative with RGB, else 8.
int32_t AlternativeDepth(const GrfV2Alternative& a);
// Bytes of one pixel: the present layers R, G, B, A, M.
int32_t V2PixelSize(uint8_t info);

// The sprite's alternative with the given zoom (-1: any) and depth (8 or 32; 0: any) that comes
// first by the default rule: normal zoom, then in2, out2, in4, out4, out8; 32-bit before 8-bit;
// then file order. Non-image data only when there is no image. -1 when none fits.
int32_t ChooseAlternative(const GrfV2Index& index, const GrfV2Sprite& s, int32_t zoom,
                          int32_t depth);

// Bytes of the alternative's picture: every cell with every layer it has.
int64_t PictureBytes(const GrfV2Alternative& a);
// Bytes the alternative's stream decompresses to.
int64_t DecodedSize(const GrfV2Alternative& a);

// The figures of the status text: stream bytes and picture bytes of every alternative, data
// counted in both alike.
struct GrfV2Totals {
  int64_t Compressed = 0;
  int64_t Decompressed = 0;
};
GrfV2Totals IndexTotals(const GrfV2Index& index);

}  // namespace vossel
