// The registry reader on any system.reg, through GetRegString and the folder mapping.
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "registry.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const std::string prefix = [] {
    const std::string dir = "/tmp/vossel-fuzz-wine-" + std::to_string(getpid());
    mkdir(dir.c_str(), 0700);
    setenv("WINEPREFIX", dir.c_str(), 1);
    return dir;
  }();
  FILE* f = std::fopen((prefix + "/system.reg").c_str(), "wb");
  if (f == nullptr) return 0;
  std::fwrite(data, 1, size, f);
  std::fclose(f);
  const std::string folder = GetRegString(
      HKEY_LOCAL_MACHINE, "SOFTWARE\\FISH Technology Group\\Transport Tycoon Deluxe", "HDPath", "");
  WineFolderToLinux(folder);
  GetRegString(HKEY_LOCAL_MACHINE, "Software", "", "default");
  GetRegString(HKEY_LOCAL_MACHINE, "SOFTWARE\\FISH Technology Group\\Transport Tycoon Deluxe", "A",
               "x");
  return 0;
}
