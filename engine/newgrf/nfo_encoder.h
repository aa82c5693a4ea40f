// The NFO listing in the form the NewGRF encoder reads back: pseudo-sprites as their bytes in hex,
// real sprites as the PNG files an export wrote, one line per alternative, with the readable
// comment lines the encoder skips. Data to text; the files themselves are the export's.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "actions.h"
#include "grffile.h"

namespace vossel {

// The folder the listing and its pictures sit in, below the folder the encoder runs in; the
// listing names every picture by a path that starts with it.
inline constexpr const char kEncoderFolder[] = "sprites";

// The two lines every listing starts with.
std::string EncoderHead();
// The encoder's zoom names: "normal", "zi4", "zi2", "zo2", "zo4", "zo8".
std::string EncoderZoomName(uint8_t zoom);
// "Sprite 13 (NFO 12)": a sprite numbered as the windows and the CLI count (from 1) and as an NFO
// listing does (from 0). `index` counts from 0.
std::string SpriteNumberText(int32_t index);
// "12 * 9 01 00 ...": the bytes as hex pairs, 32 to a line, further lines indented by a tab.
std::string EncoderPseudoLines(int32_t number, const uint8_t* data, size_t size);
// A real sprite's lines: the first picture after its number, the others on "|" lines, a 32-bit
// picture's mask after it. Each picture is the whole of its own PNG, its borders kept. Pictures
// without a file are left out; none at all gives an empty text.
std::string EncoderPictureLines(int32_t number, const std::vector<NfoAlternative>& pictures);
// One sprite of an opened file: its comment line, then its lines. `pictures` are its
// alternatives with the files an export wrote. Non-image data stands as a pseudo-sprite of its
// bytes, which is what the encoder's form has for it. No line break at the end.
std::string EncoderText(const GrfFile& file, const FileReading& reading, int32_t sprite,
                        const std::vector<NfoAlternative>& pictures);

}  // namespace vossel
