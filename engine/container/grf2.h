// GRF container version 2: the signature, the entries of both sections, and the index of them
// made when the file opens. Standard library only: byte sources in, flat records, results and one
// message callback out. Positions and sizes in the file are 64-bit; sprite numbers and indices
// 32-bit.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "bytesource.h"
#include "grf.h"
#include "problems.h"

namespace vossel {

// The first ten bytes of every version-2 file.
inline constexpr uint8_t kGrfV2Signature[10] = {0x00, 0x00, 0x47, 0x52, 0x46,
                                                0x82, 0x0D, 0x0A, 0x1A, 0x0A};
constexpr int64_t kGrfV2HeaderSize = 15;

// Info bytes of the data section.
constexpr uint8_t kV2Pseudo = 0xFF;
constexpr uint8_t kV2Reference = 0xFD;
// Bits of an image's info byte; 0xFF in the sprite section marks non-image data.
constexpr uint8_t kV2Rgb = 0x01;
constexpr uint8_t kV2Alpha = 0x02;
constexpr uint8_t kV2Palette = 0x04;  // alone: an 8-bit image; beside RGB: the mask layer
constexpr uint8_t kV2Tile = 0x08;
constexpr uint8_t kV2ExactSize = 0x40;

// Zoom levels as the file numbers them.
constexpr uint8_t kZoomNormal = 0;
constexpr uint8_t kZoomIn4 = 1;
constexpr uint8_t kZoomIn2 = 2;
constexpr uint8_t kZoomOut2 = 3;
constexpr uint8_t kZoomOut4 = 4;
constexpr uint8_t kZoomOut8 = 5;
constexpr uint8_t kZoomLevels = 6;

// The game refuses a single sprite that would need more than this.
constexpr int64_t kV2MaxImageBytes = 64 * 1024 * 1024;

// One data-section entry: sprite number i + 1 is Sprites[i].
struct GrfV2Sprite {
  uint8_t Info = 0;              // kV2Pseudo, kV2Reference, or an unknown byte kept as data
  int64_t DataOffset = 0;        // data: the first data byte in the file
  int64_t DataSize = 0;          // data: its bytes
  uint32_t Id = 0;               // reference: the sprite id
  int32_t FirstAlternative = 0;  // reference: index of its first alternative in Alternatives
  int32_t AlternativeCount = 0;  // 0 for data and for a missing id
  int32_t Default = -1;          // index in Alternatives of the default alternative, or -1
};

// One usable sprite-section entry: an alternative (zoom level x colour depth) of an id, or
// non-image data (Info 0xFF).
struct GrfV2Alternative {
  uint32_t Id = 0;
  int64_t StreamOffset = 0;  // the compressed stream (non-image: the data) in the file
  int64_t StreamSize = 0;    // its bytes, to the end of the entry
  uint8_t Info = 0;
  uint8_t Zoom = 0;
  uint16_t Width = 0;
  uint16_t Height = 0;
  int16_t XOffset = 0;
  int16_t YOffset = 0;
  uint32_t TileSize = 0;  // tile form: the decompressed size; otherwise 0
};

struct GrfV2Index {
  std::vector<GrfV2Sprite> Sprites;
  std::vector<GrfV2Alternative> Alternatives;
  std::vector<GrfProblem> Problems;  // the first kV2KeptProblems
  int64_t ProblemCount = 0;          // all of them
  GrfResult End = GrfResult::Ok;     // the first fault that stopped a section, or Ok
};
constexpr size_t kV2KeptProblems = 1000;
// Problems raised through the message callback; a last message counts the rest.
constexpr int64_t kV2ProblemMessages = 20;

// True when the buffer starts with the version-2 signature.
bool IsGrfV2(const uint8_t* file, size_t length);

// Indexes both sections into `index` (replacing what it held) and gives its End. Each problem is
// raised through `message` as it is found, up to kV2ProblemMessages. Only the entries' heads are
// read; a file source is read through one window of kV2ReadWindow bytes.
GrfResult IndexGrfV2(const ByteSource& source, GrfV2Index& index, const MessageFn& message);
GrfResult IndexGrfV2(const uint8_t* file, size_t length, GrfV2Index& index,
                     const MessageFn& message);
constexpr int64_t kV2ReadWindow = 1 << 20;

}  // namespace vossel
