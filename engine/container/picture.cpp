#include "picture.h"

#include <limits>

#include "alternatives.h"
#include "decode.h"
#include "reader.h"

namespace vossel {

namespace {

// n pixels of the present layers from `from` into the image from cell `cell` on.
void PutPixels(const uint8_t* from, int64_t n, int64_t cell, SpritePicture& image) {
  const uint8_t info = image.Info;
  uint8_t* rgba = image.Rgba.empty() ? nullptr : image.Rgba.data() + 4 * cell;
  uint8_t* index = image.Indices.empty() ? nullptr : image.Indices.data() + cell;
  for (int64_t i = 0; i < n; ++i) {
    if (info & kV2Rgb) {
      rgba[0] = from[0];
      rgba[1] = from[1];
      rgba[2] = from[2];
      from += 3;
      rgba[3] = (info & kV2Alpha) ? *from++ : 255;
      rgba += 4;
    } else if (info & kV2Alpha) {
      ++from;  // alpha without colour has nothing to show
    }
    if (info & kV2Palette) *index++ = *from++;
  }
}

// A run's head at `pos`, which moves behind it: the pixel count with the row's last-run bit in
// its top bit, then the first column; a byte each up to width 256, two bytes each when wider.
bool RunHead(const Reader& r, int64_t& pos, bool wide, int64_t& length, int64_t& x, bool& last) {
  uint16_t head = 0, at = 0;
  uint8_t head8 = 0, at8 = 0;
  const bool read =
      wide ? U16(r, pos, head) && U16(r, pos + 2, at) : U8(r, pos, head8) && U8(r, pos + 1, at8);
  if (!wide) {
    head = head8;
    at = at8;
  }
  const uint16_t lastBit = wide ? 0x8000 : 0x80;
  last = head & lastBit;
  length = head & (lastBit - 1);
  x = at;
  pos += wide ? 4 : 2;
  return read;
}

// Places the runs of the tile form held in `raw`: one offset per row, then each row's runs.
GrfResult PlaceTiles(const std::vector<uint8_t>& raw, const GrfV2Alternative& a,
                     SpritePicture& image) {
  const Reader r{raw.data(), static_cast<int64_t>(raw.size())};
  const int64_t pixelSize = V2PixelSize(a.Info);
  const bool longOffsets = raw.size() >= 65536;
  const bool wide = a.Width > 256;
  for (int64_t y = 0; y < a.Height; ++y) {
    int64_t pos = 0;
    if (longOffsets) {
      uint32_t offset = 0;
      if (!U32(r, 4 * y, offset)) return GrfResult::TileOutside;
      pos = offset;
    } else {
      uint16_t offset = 0;
      if (!U16(r, 2 * y, offset)) return GrfResult::TileOutside;
      pos = offset;
    }
    for (bool last = false; !last;) {
      int64_t length = 0, x = 0;
      if (!RunHead(r, pos, wide, length, x, last)) return GrfResult::TileOutside;
      if (!Fits(x, length, a.Width) || !Fits(pos, length * pixelSize, r.End))
        return GrfResult::TileOutside;
      PutPixels(raw.data() + pos, length, y * a.Width + x, image);
      pos += length * pixelSize;
    }
  }
  return GrfResult::Ok;
}

}  // namespace

std::string DecodeText(GrfResult result, const GrfV2Alternative& a) {
  return GrfV2Text({result, a.StreamOffset, 0, a.Id, 0});
}

GrfResult DecodeAlternative(const uint8_t* file, size_t length, const GrfV2Alternative& a,
                            SpritePicture& image) {
  return DecodeAlternative(MemorySource(file, length), a, image);
}

GrfResult DecodeAlternative(const ByteSource& source, const GrfV2Alternative& a,
                            SpritePicture& image) {
  image = SpritePicture{};
  if (a.Info == kV2Pseudo) return GrfResult::NotAnImage;
  const int64_t cells = static_cast<int64_t>(a.Width) * a.Height;
  const int64_t decoded = DecodedSize(a);
  if (PictureBytes(a) > kV2MaxImageBytes || decoded > kV2MaxImageBytes) return GrfResult::TooLarge;
  if (!Fits(a.StreamOffset, a.StreamSize, source.Length)) return GrfResult::StreamShort;
  // A chunk decodes to at most eight times its bytes, so a stream too short for its size is told
  // before any memory is taken for it.
  if (decoded > 8 * a.StreamSize) return GrfResult::StreamShort;
  // Tile form holds at least a row offset and a run head for every row.
  if ((a.Info & kV2Tile) && decoded < 4 * static_cast<int64_t>(a.Height))
    return GrfResult::TileOutside;

  // Every chunk decodes to one byte or more from two bytes or fewer, and the last may pass the
  // size by a whole chunk: nothing behind that is read.
  const int64_t needed = std::min(a.StreamSize, 2 * decoded + 130);
  std::vector<uint8_t> read;
  const uint8_t* stream = source.Memory != nullptr ? source.Memory + a.StreamOffset : nullptr;
  if (stream == nullptr) {
    const GrfResult got = ReadSource(source, a.StreamOffset, needed, read);
    if (got != GrfResult::Ok) return got;
    stream = read.data();
  }
  std::vector<uint8_t> raw(static_cast<size_t>(decoded));
  int32_t readPos = 0, outPos = 0;
  const int32_t streamBytes =
      static_cast<int32_t>(std::min<int64_t>(needed, std::numeric_limits<int32_t>::max()));
  const DecodeResult result =
      DecodeStream(stream, streamBytes, readPos, raw.data(), static_cast<int32_t>(decoded), outPos,
                   static_cast<int32_t>(decoded), 0);
  if (result == DecodeResult::Overrun) return GrfResult::StreamOverrun;
  if (result == DecodeResult::Truncated) return GrfResult::StreamShort;

  image.Width = a.Width;
  image.Height = a.Height;
  image.XOffset = a.XOffset;
  image.YOffset = a.YOffset;
  image.Info = a.Info;
  image.Zoom = a.Zoom;
  if (a.Info & kV2Rgb) image.Rgba.assign(static_cast<size_t>(4 * cells), 0);
  if (a.Info & kV2Palette) image.Indices.assign(static_cast<size_t>(cells), 0);
  GrfResult placed = GrfResult::Ok;
  if (a.Info & kV2Tile)
    placed = PlaceTiles(raw, a, image);
  else
    PutPixels(raw.data(), cells, 0, image);
  if (placed != GrfResult::Ok) image = SpritePicture{};
  return placed;
}

}  // namespace vossel
