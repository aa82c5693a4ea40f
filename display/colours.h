// The colours a picture is drawn in: which palette, chosen or declared, and company colours.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include <QImage>

#include "baseset.h"
#include "companymaps.h"
#include "grffile.h"
#include "palette.h"

namespace vossel {

// The palette files shipped beside the program.
inline constexpr char kDosPaletteFileName[] = "ttd-dos-jasc.pal";
inline constexpr char kWindowsToylandPaletteFileName[] = "ttd-windows-toyland-jasc.pal";
inline constexpr char kDosToylandPaletteFileName[] = "ttd-dos-toyland-jasc.pal";

// Windows: the program's own palette file; Dos: the DOS one; Declared: what the file declares
// (toyland variant included); File: a palette file of the user's.
enum class PaletteChoiceKind : uint8_t { Windows, Dos, Declared, File };
struct PaletteChoice {
  PaletteChoiceKind Kind = PaletteChoiceKind::Declared;
  std::string Path;  // File only
  bool operator==(const PaletteChoice&) const = default;
};

// "windows", "dos" and "declared" name those choices; any other text is a palette file's path
// (so "./dos" is a file). False for an empty text.
bool ParsePaletteChoice(const std::string& token, PaletteChoice& choice);

// The shipped file of a palette.
const char* PaletteFileName(PaletteKind kind, bool toyland);

// The full name of the file the choice draws in: shipped files in `folder`, the program's own
// when it is empty.
std::string PaletteFileFor(const PaletteChoice& choice, const PaletteDeclaration& declared,
                           const std::string& folder = {});

// Why the palette is the one in use: "DOS (declared by Action 14)", "DOS (chosen)",
// "/tmp/my.pal (chosen)".
std::string PaletteChoiceText(const PaletteChoice& choice, const PaletteDeclaration& declared);
// The menu item of the declared choice: "As the file declares (DOS)".
std::string DeclaredMenuText(const PaletteDeclaration& declared);

// Reads the palette of the choice; LoadPalette's result (-1 read, 0 refused).
int16_t LoadChosenPalette(const PaletteChoice& choice, const PaletteDeclaration& declared,
                          PaletteBuffer& palette);

// `count` indices drawn through the map, in place.
void RecolourIndices(uint8_t* indices, size_t count, const RecolourMap& map);

// An indexed picture's colour table recoloured: colour i becomes colour map[i], which draws every
// pixel as map[index] does.
void RecolourColourTable(QImage& indexed, const RecolourMap& map);

// 32-bit pixels (R, G, B, A) with a mask layer in company colours, into `out` (same layout;
// `out` may be `rgba`): where the mask index m is not 0 the pixel takes palette colour map[m], each
// channel colour x brightness / 128 limited to 255, brightness the largest of the pixel's R, G and
// B; alpha stays. Where m is 0 the pixel stays.
void ShadeMaskedPixels(const uint8_t* rgba, const uint8_t* mask, size_t count,
                       const RecolourMap& map, const PaletteBuffer& palette, uint8_t* out);

// ImageBitmap with company colours: an 8-bit image through the map, a 32-bit one with a mask by
// ShadeMaskedPixels; a 32-bit image without a mask as ImageBitmap gives it.
QImage ImageBitmapInColour(const SpritePicture& image, const PaletteBuffer& palette,
                           const RecolourMap& map);

// A decoded picture as the game draws it: through the palette, and with `map` (when given) in a
// company's colours. An 8-bit picture keeps indices of its own, remapped; a 32-bit one with a mask
// is shaded as ShadeMaskedPixels says.
QImage DrawnPicture(SpritePicture picture, const PaletteBuffer& palette, const RecolourMap* map);

// What the picture area shows of a decoded picture: its mask layer through the palette when
// `mask` is asked and it has one, else DrawnPicture.
QImage ViewPixels(SpritePicture picture, const PaletteBuffer& palette, bool mask,
                  const RecolourMap* map);

}  // namespace vossel
