// The platform's readers of outside text, on any bytes: Wine's registry file through GetRegString
// and the folder mapping, and the Open dialog's file buffer through FileOpen (the first byte says
// whether the dialog was confirmed and whether the caller's name was empty).
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "filedialog.h"
#include "registry.h"

using namespace vossel;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const std::string prefix = [] {
    const std::string dir = "/tmp/vossel-fuzz-wine-" + std::to_string(getpid());
    mkdir(dir.c_str(), 0700);
    setenv("WINEPREFIX", dir.c_str(), 1);
    return dir;
  }();
  FILE* f = std::fopen((prefix + "/system.reg").c_str(), "wb");
  if (f == nullptr || size == 0) return 0;
  std::fwrite(data, 1, size, f);
  std::fclose(f);
  const std::string key = "SOFTWARE\\FISH Technology Group\\Transport Tycoon Deluxe";
  WineFolderToLinux(GetRegString(HKEY_LOCAL_MACHINE, key, "HDPath", ""));
  GetRegString(HKEY_LOCAL_MACHINE, "Software", "", "default");

  SetFileDialogOps({[data, size](OPENFILENAMEA* ofn) -> int32_t {
                      std::memcpy(ofn->lpstrFile, data + 1,
                                  std::min<size_t>(size - 1, ofn->nMaxFile));
                      return data[0] & 1;
                    },
                    nullptr});
  clsFileDialog dialog;
  std::string name = (data[0] & 2) ? "" : "earlier.grf";
  dialog.FileOpen(name);
  if (name.find('\0') != std::string::npos) __builtin_trap();
  return 0;
}
