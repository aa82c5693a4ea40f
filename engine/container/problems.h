// Every way reading or decoding a GRF file can end or go wrong, one problem found with where it
// lies, and their texts: one table for the message list, standard error and the boxes.
#pragma once

#include <cstdint>
#include <string>

namespace vossel {

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
// The line that counts the problems not told one by one.
std::string MoreProblemsText(int64_t count);

}  // namespace vossel
