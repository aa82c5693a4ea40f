// How sprites are drawn: the palette and why, the company colour and its maps, transparency, the
// zoom level and depth chosen. One record, worked out by one procedure from what the user chose
// and what the file says, for the main window, the Sprite Sheet and every command of vossel-cli.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include <QImage>

#include "colours.h"
#include "companymaps.h"
#include "grffile.h"
#include "palette.h"

namespace vossel {

// Where a file starts when the user has not chosen a palette. The window draws a version-1 file in
// the program's palette file, as the design has always drawn it, and a version-2 file in the
// palette it declares; vossel-cli draws every file in the palette it declares.
enum class FirstPalette : uint8_t { AsDesigned, Declared };
// The palette a file starts in under `rule`.
PaletteChoiceKind StartingPalette(FirstPalette rule, const GrfFile& file);

// Company colour maps and where they came from; the maps of two colours likewise.
struct FoundMaps {
  bool Found = false;
  CompanyMaps Maps;
  std::string From;     // the file read
  std::string Problem;  // why the named base set gave none; empty otherwise
  bool TwoFound = false;
  TwoColourMaps Two;
  std::string TwoFrom;
};
// The maps near the file, in the order they are looked for: a base set named by the user, else the
// file itself (its sprites 775 to 790; its Action 05 of type 0A). `Found` false with no problem, or
// `TwoFound` false: the installed base sets are the last place to look.
FoundMaps NearMaps(const GrfFile& file, const FileReading& reading, const std::string& named);
// The maps of the first installed base sets that hold them; those of two colours unless `two` is
// false. It reads the installed sets, so the window runs it off its thread, once.
FoundMaps InstalledMaps(bool two = true);
// Whether the installed base sets are still to be searched after NearMaps.
inline bool SearchInstalled(const FoundMaps& near, bool two = true) {
  return (!near.Found && near.Problem.empty()) || (two && !near.TwoFound);
}
// `near` with what it lacks taken from `installed`.
FoundMaps WithInstalled(FoundMaps near, const FoundMaps& installed);

// What the user chose.
struct LookChoices {
  std::optional<PaletteChoice> Palette;  // none: the file's first palette by the rule
  int32_t Company = -1;                  // a CompanyColour, or -1 for none
  int32_t Company2 = -1;                 // the second company colour, likewise
  bool Transparent = false;              // index 0 of 8-bit pictures left out
  bool Mask = false;                     // a 32-bit picture's mask layer instead of its colours
  int32_t Zoom = -1;                     // -1: each sprite's default
  int32_t Depth = 0;                     // 0: each sprite's default
  std::string Folder;                    // where the shipped palettes are; empty: the program's
  bool operator==(const LookChoices&) const = default;
};

struct Look {
  // What decides the pixels. Equal looks draw alike.
  PaletteBuffer Palette{};
  int32_t Zoom = -1;
  int32_t Depth = 0;
  bool Mask = false;
  bool Company = false;     // drawn in a company's colours, through Map
  bool TwoColours = false;  // Map is a two-colour map: the second colour is drawn too
  RecolourMap Map{};
  bool Transparent = false;
  // And why: the palette chosen and its file, "DOS (declared by Action 14)".
  PaletteChoice Chosen;
  std::string PaletteFile;
  std::string PaletteText;
  bool PaletteRead = false;  // false: the palette file could not be read; Palette is all zero
  bool operator==(const Look& other) const {
    return Palette == other.Palette && Zoom == other.Zoom && Depth == other.Depth &&
           Mask == other.Mask && Company == other.Company && Map == other.Map &&
           Transparent == other.Transparent;
  }
};

// The one procedure: the palette of the choice (or of the rule) read from its file, the company
// colour through `maps` when there are any. With a second colour and two-colour maps, Map is the
// pair's map; a first colour of none then leaves the first range as it is.
Look ResolveLook(const LookChoices& choices, FirstPalette rule, const GrfFile& file,
                 const PaletteDeclaration& declared, const FoundMaps& maps);

// A decoded picture in the look, as the picture area shows it before magnification: the mask
// layer when asked and present, else through the palette and the company colour.
QImage LookPixels(const Look& look, SpritePicture picture);
// LookPixels with index 0 left out when the look says so: an image with alpha then.
QImage LookPixelsCut(const Look& look, SpritePicture picture);

}  // namespace vossel
