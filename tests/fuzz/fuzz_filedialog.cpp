// FileOpen's reading of the buffer that the platform's dialog leaves, whatever it holds.
#include <cstdint>
#include <cstring>
#include <string>

#include "filedialog.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  // The first byte says whether the dialog was confirmed; the rest is what it left in the buffer.
  SetFileDialogOps({[data, size](OPENFILENAMEA* ofn) -> int32_t {
                      const size_t n = std::min<size_t>(size - 1, ofn->nMaxFile);
                      std::memcpy(ofn->lpstrFile, data + 1, n);
                      return data[0] & 1;
                    },
                    nullptr});
  clsFileDialog dialog;
  dialog.Filter("Transport Tycoon GRF file (*.grf)|*.grf|All files (*.*)|*.*");
  dialog.Flags(4);
  std::string name = (data[0] & 2) ? "" : "earlier.grf";
  dialog.FileOpen(name);
  if (name.find('\0') != std::string::npos) __builtin_trap();
  SetFileDialogOps({});
  return 0;
}
