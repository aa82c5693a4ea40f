// The palette reader, on any file.
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <string>

#include "palette.h"

using namespace vossel;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const std::string path = "/tmp/vossel-fuzz-palette-" + std::to_string(getpid()) + ".pal";
  FILE* f = std::fopen(path.c_str(), "wb");
  if (f == nullptr) return 0;
  std::fwrite(data, 1, size, f);
  std::fclose(f);
  PaletteBuffer palette{};
  const int16_t result = LoadPalette(path, palette);
  if (result != 0 && result != -1) __builtin_trap();
  return 0;
}
