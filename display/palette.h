// modBMP: the palette file and the path helper.
#pragma once

#include <array>
#include <cstdint>
#include <string>

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
