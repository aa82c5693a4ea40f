// What the window tests share: a Wine prefix of their own, and the message box and the Open
// dialog replaced by recorders.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "controls.h"
#include "filedialog.h"
#include "grf_writer.h"
#include "msgbox.h"
#include "process.h"

namespace uitest {

namespace fs = std::filesystem;

struct Shown {
  std::string Text, Title;
  MsgBoxIcon Icon;
  bool operator==(const Shown&) const = default;
  friend void PrintTo(const Shown& s, std::ostream* os) { *os << s.Text << " | " << s.Title; }
};

// While it lives: WINEPREFIX names a fresh folder without a registry file (the current directory
// comes back at the end); message boxes are recorded; the Open dialog records its title, folder,
// filter list, flags and owner, and confirms Next, or cancels when Next is empty.
struct Fakes {
  fs::path Wine = fs::temp_directory_path() / ("vossel-ui-wine-" + std::to_string(getpid()));
  std::string OldDirectory = CurDir();
  std::vector<Shown> Boxes;
  std::string Next;
  std::vector<std::tuple<std::string, std::string, std::string, uint32_t, int32_t>> Dialogs;
  Fakes() {
    fs::remove_all(Wine);
    fs::create_directories(Wine);
    setenv("WINEPREFIX", Wine.c_str(), 1);
    SetMsgBoxHook([this](const std::string& text, const std::string& title, MsgBoxIcon icon) {
      Boxes.push_back({text, title, icon});
    });
    SetFileDialogOps({[this](OPENFILENAMEA* ofn) -> int32_t {
                        std::string filter;
                        for (const char* p = ofn->lpstrFilter; p[0] || p[1]; ++p) filter += *p;
                        Dialogs.emplace_back(ofn->lpstrTitle, ofn->lpstrInitialDir, filter,
                                             ofn->Flags, ofn->hwndOwner);
                        std::memcpy(ofn->lpstrFile, Next.c_str(), Next.size() + 1);
                        return Next.empty() ? 0 : 1;
                      },
                      {}});
  }
  ~Fakes() {
    SetMsgBoxHook(nullptr);
    SetFileDialogOps({});
    unsetenv("WINEPREFIX");
    ChDir(OldDirectory);
    std::error_code ignored;
    fs::remove_all(Wine, ignored);
  }
};

// What the windows' Open dialog is handed.
inline auto OpenDialog(const std::string& folder, int32_t owner) {
  using namespace std::string_literals;
  return std::make_tuple("Open a GRF file..."s, folder,
                         "Transport Tycoon GRF file (*.grf)\0*.grf\0All files (*.*)\0*.*"s,
                         uint32_t{4}, owner);
}

}  // namespace uitest
