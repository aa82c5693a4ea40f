// The files the benchmark reads or makes.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace vossel {

struct BenchFile {
  std::string Name;  // the file name without its extension, or the generated file's name
  std::vector<uint8_t> Bytes;
};

// The files named in VOSSEL_BENCH_FILES (separated by ':'), then the two real files of
// openttd-data where installed, each once.
std::vector<BenchFile> RealBenchFiles();

// A file at the limits: 32,767 sprites of 16 x 12, plain and run form alternating, 6,291,264
// decoded bytes.
std::vector<uint8_t> LimitsFile();

// A file of `count` plain sprites of 32 x 24 with action sprites among them, like a real set.
std::vector<uint8_t> ManySpritesFile(int count);

// A file whose first sprite's stream holds exactly `chunks` chunks, data and offset mixed.
std::vector<uint8_t> ChunkyFile(int chunks);

// The six OpenGFX files (container version 2) where openttd-opengfx is installed.
std::vector<BenchFile> OpenGfxBenchFiles();

// A version-2 file of `count` sprites, each a reference to an id with three 32-bit alternatives:
// normal, in2 and in4 zoom, as a 32-bit set with 4x zoom holds them.
std::vector<uint8_t> V2ManySpritesFile(int count);
// The same written to `path` piece by piece, for files larger than one would hold: 250,000 sprites
// make about 350 MB, the size of the largest high-definition sets.
bool WriteV2ManySpritesFile(const std::string& path, int count);

// A version-2 file of one sprite: a 256 x 124 32-bit (RGBA and mask) image in tile form at 4x zoom,
// about two thirds of it covered; with `references`, as many sprites that refer to it.
std::vector<uint8_t> V2DecodeFile(int references = 1);

}  // namespace vossel
