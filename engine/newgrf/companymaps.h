// Company colours: their names and the recolour maps a base set holds for them. Standard library
// only.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "baseset.h"
#include "grffile.h"

namespace vossel {

// Palette index i is drawn as map[i].
using RecolourMap = std::array<uint8_t, 256>;

constexpr int32_t kCompanyColourCount = 16;
// A base set's recolour sprites, one per company colour in the order of CompanyColour, counted
// from 0.
constexpr int32_t kFirstCompanyMapSprite = 775;
// A recolour sprite: a 00 byte, then the 256 entries of its map.
constexpr size_t kRecolourSpriteSize = 257;

enum class CompanyColour : uint8_t {
  DarkBlue,
  PaleGreen,
  Pink,
  Yellow,
  Red,
  LightBlue,
  Green,
  DarkGreen,
  Blue,
  Cream,
  Mauve,
  Purple,
  Orange,
  Brown,
  Grey,
  White,
};

struct CompanyMaps {
  std::array<RecolourMap, kCompanyColourCount> Maps{};
};

inline const RecolourMap& MapOf(const CompanyMaps& maps, CompanyColour colour) {
  return maps.Maps[static_cast<size_t>(colour)];
}

// "dark-blue", "pale-green", ... as the command line takes them.
std::string_view CompanyColourToken(CompanyColour colour);
// "Dark Blue", "Pale Green", ... as a menu shows them.
std::string_view CompanyColourCaption(CompanyColour colour);
// The colour of a token (exact, lower case); false for any other text.
bool ParseCompanyColour(std::string_view token, CompanyColour& colour);

enum class CompanyMapsResult : uint8_t {
  Ok,
  CannotRead,     // the file cannot be read
  NotGrf,         // neither container version gives any sprites
  TooFewSprites,  // the file ends before sprite 790
  NotRecolour,    // a sprite in 775..790 is not a 257-byte recolour sprite
};

// Maps from the 16 pseudo-sprites at 775..790 of a file already open; `maps` is set only on Ok.
CompanyMapsResult CompanyMapsFromSprites(
    const std::array<std::span<const uint8_t>, kCompanyColourCount>& sprites, CompanyMaps& maps);

// The maps of a file already open: its sprites 775 to 790.
CompanyMapsResult CompanyMapsOfFile(const GrfFile& file, CompanyMaps& maps);
// Reads the file (either container version) and takes its maps.
CompanyMapsResult LoadCompanyMaps(const std::string& path, CompanyMaps& maps);

// The maps of the first installed set whose base file holds them; the path of that file, or
// empty when none does.
std::string FindInstalledCompanyMaps(const std::vector<InstalledBaseSet>& sets, CompanyMaps& maps);

// "company colour maps read", "the file ends before sprite 790", ...
std::string CompanyMapsText(CompanyMapsResult result);
// Without any maps the company colour cannot be shown.
inline constexpr char kMsgNoCompanyMaps[] = "no base set with company colour maps found";

}  // namespace vossel
