// modBMP: the palette file and the path helper.
#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace vossel {

// 256 entries of blue, green, red, zero: the colour table of an 8-bit bitmap.
using PaletteBuffer = std::array<uint8_t, 1024>;

inline constexpr const char kPaletteFileName[] = "ttdw-jasc.pal";
inline constexpr const char kMsgBadPalette[] = "Invalid palette file or unknown format";

// Joins a folder and a file name with exactly one separator ('/').
std::string JoinPath(const std::string& folder, const std::string& fileName);

// Reads a JASC-PAL file into `palette`: -1 when read, 0 when refused. What a refusal leaves in the
// buffer is part of the behaviour: entries stored before the failing one stay.
int16_t LoadPalette(const std::string& fileName, PaletteBuffer& palette);

// The folder of the running program's own file (links resolved), without a final separator.
std::string ProgramFolder();

// The text-to-number rule of the palette file. Accepted: optional blanks (spaces, tabs) around;
// a decimal number with optional sign, digits with an optional point and fraction (at least one
// digit in all) and an optional exponent (E or e, optional sign, digits); or &H followed by 1 to 8
// hex digits, &O by 1 to 11 octal digits (no sign, either case). Anything else, the empty text
// included, is not numeric; so is a value beyond the range of a double.
bool TextToNumber(const std::string& text, double& value);

// A numeric text whose value, rounded half to even, lies from 0 to 255.
bool TextToByte(const std::string& text, uint8_t& value);

// LoadPalette also refuses a line of more than 1 MiB, so that an endless input cannot hold it.

}  // namespace vossel
