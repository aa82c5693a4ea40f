// What changed between two GRF files: their identities, the sprites matched by number, the
// pseudo-sprites' bytes and the items. Pictures are compared decoded, so the same sprites stored in
// either container compare equal. Records come out; the sentences are made in compare_text.cpp.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "actions.h"
#include "items.h"

namespace vossel {

enum class SpriteChange : uint8_t {
  Added,         // only B has the sprite
  Removed,       // only A has it
  Kind,          // a picture in one, a pseudo-sprite or data in the other
  Bytes,         // a pseudo-sprite's or a data sprite's bytes
  Alternatives,  // the sets of zoom levels and depths differ
  Size,          // one alternative's width or height
  Offsets,       // one alternative's offsets
  Pixels,        // one alternative's pixels
  Unreadable,    // a picture of one file could not be decoded, or not as in the other: Result
};

// Where the pixels of one alternative differ. Counted only when asked for; otherwise Count is 0
// and the box empty, and the change says only that they differ.
struct PixelDifference {
  bool Counted = false;
  int64_t Count = 0;
  int32_t Left = 0, Top = 0, Right = 0, Bottom = 0;  // Right and Bottom exclusive
};

struct SpriteDifference {
  int32_t Sprite = 0;  // from 0
  SpriteChange Change = SpriteChange::Pixels;
  SpriteFacts Old, New;         // the facts through Alternative (Size, Offsets, Pixels)
  AlternativeInfo Alternative;  // the alternative concerned (Size, Offsets, Pixels, Unreadable)
  std::vector<AlternativeInfo> OldAlternatives, NewAlternatives;  // Alternatives, Added, Removed
  std::vector<uint8_t> OldBytes, NewBytes;                        // Bytes
  PixelDifference Pixels;
  GrfResult Result = GrfResult::Ok;  // Unreadable
};

enum class ItemChange : uint8_t {
  Added,
  Removed,
  Property,  // a property given another value, given or no longer given
  Graphics,  // the sprites its graphics reach
};

struct ItemDifference {
  uint8_t Feature = 0;
  uint32_t Id = 0;
  std::string OldName, NewName;
  ItemChange Change = ItemChange::Property;
  uint8_t Property = 0;
  bool HasOld = false, HasNew = false;          // Property: whether each file gives it
  ItemProperty Old, New;                        // the last value each file gives
  std::vector<int32_t> OldSprites, NewSprites;  // Graphics
};

struct CompareOptions {
  // Count the differing pixels and box them; otherwise stop at the first.
  bool CountPixels = false;
};

struct GrfComparison {
  GrfIdentity OldIdentity, NewIdentity;
  bool IdentityChanged = false;
  int32_t OldSprites = 0, NewSprites = 0;
  std::vector<SpriteDifference> Sprites;  // by sprite number
  std::vector<ItemDifference> Items;      // by feature, then ID
};

inline bool IsEqual(const GrfComparison& c) {
  return !c.IdentityChanged && c.Sprites.empty() && c.Items.empty();
}

// Compares two opened files, each with what it says about itself. Linear in the sprites and, for
// the pictures, in their pixels.
GrfComparison CompareFiles(const GrfFile& oldFile, const FileReading& oldReading,
                           const GrfFile& newFile, const FileReading& newReading,
                           const CompareOptions& options);

// The alternative of `sprite` that is what `wanted` is (data or not, zoom, depth, mask); -1 when
// the file has none such.
int32_t MatchingAlternative(const GrfFile& file, int32_t sprite, const AlternativeInfo& wanted);

// Where two pictures of the same size differ, counting all (`count`) or stopping at the first.
PixelDifference ComparePictures(const SpritePicture& a, const SpritePicture& b, bool count);
// Whether pixel `pixel` (row by row from 0) of two pictures of the same size differs, as
// ComparePictures counts it.
bool PixelDiffers(const SpritePicture& a, const SpritePicture& b, int64_t pixel);

// --- Texts (compare_text.cpp) --------------------------------------------------------------------

// One compared file: "A: path (container 2, 925 sprites, GRF ID ..., name, version 3)".
std::string ComparedFileLine(const char* side, const GrfFile& file, const GrfIdentity& identity);
// A sprite's line: "Sprite 12 (NFO 11): offsets ...".
std::string SpriteDifferenceLine(const SpriteDifference& d);
// "identical" or "3 sprites, 1 item differ".
std::string ComparisonSummary(const GrfComparison& c);
// What changed in a sprite, without its number: "offsets -31,0 -> -30,0 (8bpp normal)".
std::string SpriteChangeText(const SpriteDifference& d);
// For a pseudo-sprite change: the NFO line of each side.
std::string OldNfoLine(const SpriteDifference& d);
std::string NewNfoLine(const SpriteDifference& d);
// The item as a line names it: "trains 0x05 (Kirby Paul Tank)".
std::string ItemDifferenceName(const ItemDifference& d);
// What changed in the item: "speed: 100 km/h -> 120 km/h", "added", "graphics reach 151-158,
// now 151-159".
std::string ItemChangeText(const ItemDifference& d);
// The identity lines: "GRF ID: ... -> ..." for each field that differs.
std::vector<std::string> IdentityChangeLines(const GrfComparison& c);
// A short name for the change kind, for the JSON documents: "pixels", "offsets", ...
const char* SpriteChangeKey(SpriteChange change);
const char* ItemChangeKey(ItemChange change);

}  // namespace vossel
