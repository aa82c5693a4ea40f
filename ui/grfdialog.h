// What both windows' Open commands give their file dialog.
#pragma once

#include <string>

#include "filedialog.h"

namespace vossel {

inline constexpr const char kOpenTitle[] = "Open a GRF file...";
inline constexpr const char kGrfFilter[] =
    "Transport Tycoon GRF file (*.grf)|*.grf|All files (*.*)|*.*";

// Asks for a GRF file to open; true with its name in fileName, false when cancelled.
inline bool AskForGrfToOpen(clsFileDialog& dialog, std::string& fileName) {
  dialog.WindowTitle(kOpenTitle);
  dialog.Filter(kGrfFilter);
  dialog.Flags(OFN_HIDEREADONLY);
  return dialog.FileOpen(fileName);
}

}  // namespace vossel
