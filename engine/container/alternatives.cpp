#include "alternatives.h"

namespace vossel {

namespace {

// Zoom levels by nearness to normal zoom: normal, in2, out2, in4, out4, out8.
constexpr int32_t kZoomRank[kZoomLevels] = {0, 3, 1, 2, 4, 5};
const char* const kZoomNames[kZoomLevels] = {"normal", "in4", "in2", "out2", "out4", "out8"};

}  // namespace

std::string ZoomName(uint8_t zoom) {
  if (zoom < kZoomLevels) return kZoomNames[zoom];
  return "zoom " + std::to_string(zoom);
}

bool ParseZoomName(const std::string& name, uint8_t& zoom) {
  for (uint8_t z = 0; z < kZoomLevels; ++z) {
    if (name == kZoomNames[z]) {
      zoom = z;
      return true;
    }
  }
  return false;
}

int32_t AlternativeDepth(const GrfV2Alternative& a) {
  return (a.Info & kV2Rgb) ? 32 : 8;
}

int32_t V2PixelSize(uint8_t info) {
  return ((info & kV2Rgb) ? 3 : 0) + ((info & kV2Alpha) ? 1 : 0) + ((info & kV2Palette) ? 1 : 0);
}

int32_t ChooseAlternative(const GrfV2Index& index, const GrfV2Sprite& s, int32_t zoom,
                          int32_t depth) {
  int32_t best = -1, bestRank = 0;
  for (int32_t i = s.FirstAlternative; i < s.FirstAlternative + s.AlternativeCount; ++i) {
    const GrfV2Alternative& a = index.Alternatives[static_cast<size_t>(i)];
    int32_t rank = 1000;  // data: only when nothing else is there, and never by zoom or depth
    if (a.Info != kV2Pseudo) {
      if ((zoom >= 0 && a.Zoom != zoom) || (depth != 0 && AlternativeDepth(a) != depth)) continue;
      rank = 2 * kZoomRank[a.Zoom] + (AlternativeDepth(a) == 32 ? 0 : 1);
    } else if (zoom >= 0 || depth != 0) {
      continue;
    }
    if (best < 0 || rank < bestRank) {
      best = i;
      bestRank = rank;
    }
  }
  return best;
}

int64_t PictureBytes(const GrfV2Alternative& a) {
  return static_cast<int64_t>(a.Width) * a.Height * V2PixelSize(a.Info);
}

GrfV2Totals IndexTotals(const GrfV2Index& index) {
  GrfV2Totals t;
  for (const GrfV2Sprite& s : index.Sprites) {
    t.Compressed += s.DataSize;
    t.Decompressed += s.DataSize;
  }
  for (const GrfV2Alternative& a : index.Alternatives) {
    t.Compressed += a.StreamSize;
    t.Decompressed += a.Info == kV2Pseudo ? a.StreamSize : PictureBytes(a);
  }
  return t;
}

int64_t DecodedSize(const GrfV2Alternative& a) {
  return (a.Info & kV2Tile) ? a.TileSize : PictureBytes(a);
}

}  // namespace vossel
