// GRF container version 2: an index of both sections, made when the file opens, and the decoding
// of one alternative when it is asked for. Standard library only: byte buffers in, flat records,
// results and one message callback out. Positions and sizes in the file are 64-bit; sprite
// numbers and indices 32-bit.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "chunks.h"
#include "fileio.h"
#include "grf.h"

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

// Every way reading or decoding can end or go wrong; one table of texts (GrfV2Text).
enum class GrfResult : uint8_t {
  Ok,
  // The index stops here.
  NotVersion2,           // no version-2 signature
  HeaderCut,             // fewer than 15 bytes
  UnknownCompression,    // the sections' compression byte is not 0; nothing is read
  SpriteSectionOutside,  // the sprite-section offset points outside the file or into the header
  DataSectionCut,        // a data-section entry runs past the end; the sprites before it stay
  SpriteSectionCut,      // a sprite-section entry runs past the end; the entries before it stay
  // One entry is left out or incomplete; the index goes on.
  UnknownDataInfo,  // a data entry neither FF nor FD: kept as data
  BadReference,     // an FD entry whose size is not 4
  MissingId,        // a reference to an id the sprite section lacks
  EmptyEntry,       // a sprite-section entry of size 0
  ImageHeaderCut,   // an image entry too short for its header
  UnknownZoom,      // a zoom byte above 5
  NoColour,         // an image with neither RGB nor palette layer
  // Decoding one alternative.
  NotAnImage,     // non-image data
  NotData,        // a picture, or nothing, where data bytes were asked for
  TooLarge,       // more than 64 MiB
  StreamOverrun,  // the stream passes its decompressed size
  StreamShort,    // the stream ends before its decompressed size
  TileOutside,    // a tile row offset or run outside the decompressed data or the image
  // Reading a file kept open.
  FileChanged,  // shorter, longer or newer than when it was opened: Position the length then,
                // Value the length now
  ReadFailed,   // the system refused a read at Position (-1: not known); Value its errno or 0
  // A version-1 record that cannot be taken in: "Error! Out of buffer size!".
  OutOfBuffer,
};

// One problem found, with where it lies. Fields that do not apply are 0.
struct GrfProblem {
  GrfResult Kind = GrfResult::Ok;
  int64_t Position = 0;  // byte in the file
  int32_t Sprite = 0;    // sprite number, from 1
  uint32_t Id = 0;
  int64_t Value = 0;  // the value at fault: compression byte, zoom, size, info byte
};

// The names the tests of the version-2 reader know them by.
using GrfV2Result = GrfResult;
using GrfV2Problem = GrfProblem;

// The text of a problem, as the message list and standard error show it.
std::string GrfV2Text(const GrfProblem& problem);

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

// Where a version-2 file's bytes are read: a buffer that holds all of it, or a file kept open and
// read at positions, so that a file of any size is indexed and shown without being held.
struct ByteSource {
  const uint8_t* Memory = nullptr;
  const OpenedFile* File = nullptr;
  int64_t Length = 0;
};
ByteSource MemorySource(const uint8_t* file, size_t length);
ByteSource FileSource(const OpenedFile& file);

// n bytes at `at` into `bytes` (replaced): Ok, FileChanged or ReadFailed.
GrfResult ReadSource(const ByteSource& source, int64_t at, int64_t n, std::vector<uint8_t>& bytes);

// Indexes both sections into `index` (replacing what it held) and gives its End. Each problem is
// raised through `message` as it is found, up to kV2ProblemMessages. Only the entries' heads are
// read; a file source is read through one window of kV2ReadWindow bytes.
GrfResult IndexGrfV2(const ByteSource& source, GrfV2Index& index, const MessageFn& message);
GrfResult IndexGrfV2(const uint8_t* file, size_t length, GrfV2Index& index,
                     const MessageFn& message);
constexpr int64_t kV2ReadWindow = 1 << 20;

// Names: "normal", "in4", "in2", "out2", "out4", "out8"; "zoom N" for others.
std::string ZoomName(uint8_t zoom);
// The zoom level of a name; false for an unknown name.
bool ParseZoomName(const std::string& name, uint8_t& zoom);
// 32 for an alternative with RGB, else 8.
int32_t AlternativeDepth(const GrfV2Alternative& a);
// Bytes of one pixel: the present layers R, G, B, A, M.
int32_t V2PixelSize(uint8_t info);
// "8bpp normal", "32bpp in4"; "data" for non-image data.
std::string AlternativeName(const GrfV2Alternative& a);
// The names of a sprite's alternatives joined by ", "; empty for data.
std::string AlternativeNames(const GrfV2Index& index, const GrfV2Sprite& s);

// The sprite's alternative with the given zoom (-1: any) and depth (8 or 32; 0: any) that comes
// first by the default rule: normal zoom, then in2, out2, in4, out4, out8; 32-bit before 8-bit;
// then file order. Non-image data only when there is no image. -1 when none fits.
int32_t ChooseAlternative(const GrfV2Index& index, const GrfV2Sprite& s, int32_t zoom,
                          int32_t depth);

// Bytes of the alternative's picture: every cell with every layer it has.
int64_t PictureBytes(const GrfV2Alternative& a);

// The figures of the status text: stream bytes and picture bytes of every alternative, data
// counted in both alike.
struct GrfV2Totals {
  int64_t Compressed = 0;
  int64_t Decompressed = 0;
};
GrfV2Totals IndexTotals(const GrfV2Index& index);

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

// The chunk viewer's list for a sprite through one of its alternatives (-1: none): the chunks of
// its stream, or one action-sprite line for data. Further lines come from NextChunkLineIn.
ChunkCursor StartV2ChunkList(const GrfV2Index& index, const GrfV2Sprite& s, int32_t alternative);
// All lines at once.
std::vector<ChunkLine> V2ChunkList(const uint8_t* file, size_t length, const GrfV2Index& index,
                                   const GrfV2Sprite& s, int32_t alternative);

}  // namespace vossel
