// Company colours: their names, the recolour maps a base set holds for them, and the maps of two
// company colours a file brings. Standard library only.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "actions.h"
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

// --- Two company colours
// --------------------------------------------------------------------------

// The palette indices of the first company colour and of the second.
constexpr uint8_t kFirstColourIndex = 0xC6;
constexpr uint8_t kSecondColourIndex = 0x50;
constexpr int32_t kColourIndexCount = 8;
// The Action 05 type whose sprites are the maps of two company colours.
constexpr uint8_t kTwoColourMapsType = 0x0A;
constexpr int32_t kTwoColourMapCount = kCompanyColourCount * kCompanyColourCount;

// Map first + 16 x second draws the pair: the first colour's map on the first range, the second
// colour's on the second. OpenGFX orders its 256 that way.
struct TwoColourMaps {
  std::vector<RecolourMap> Maps;  // kTwoColourMapCount once read
};

inline const RecolourMap& PairMapOf(const TwoColourMaps& maps, CompanyColour first,
                                    CompanyColour second) {
  return maps.Maps[static_cast<size_t>(first) + kCompanyColourCount * static_cast<size_t>(second)];
}

enum class TwoColourMapsResult : uint8_t {
  Ok,
  CannotRead,   // the file cannot be read
  NotGrf,       // neither container version gives any sprites
  NoAction,     // no Action 05 of type 0A
  TooFewMaps,   // its actions bring fewer than the 256 maps
  NotRecolour,  // one of their sprites is not a 257-byte recolour sprite
};

// The maps of the Action 05 blocks of type 0A of a file already read, a later block's map over
// an earlier one's; `maps` is set only on Ok. Maps past 255 are not looked at.
TwoColourMapsResult TwoColourMapsOf(const FileReading& reading, TwoColourMaps& maps);
// Reads the file (either container version) and takes its two-colour maps.
TwoColourMapsResult LoadTwoColourMaps(const std::string& path, TwoColourMaps& maps);

// The maps of the first installed set whose extra or base file holds them; that file's path, or
// empty when none does.
std::string FindInstalledTwoColourMaps(const std::vector<InstalledBaseSet>& sets,
                                       TwoColourMaps& maps);

// "two-company-colour maps read", "the file has no Action 05 of type 0A", ...
std::string TwoColourMapsText(TwoColourMapsResult result);
inline constexpr char kMsgNoTwoColourMaps[] =
    "no base set with two-company-colour maps (Action 05 type 0A) found";

}  // namespace vossel
