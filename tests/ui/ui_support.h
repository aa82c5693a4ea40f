// What the window tests share: a Wine prefix of their own, the message box and the Open dialog
// replaced by recorders, a started frmMain, and a file of five kinds of sprite.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>

#include <QLabel>
#include <string>
#include <variant>
#include <vector>

#include "controls.h"
#include "filedialog.h"
#include "frmMain.h"
#include "grf_writer.h"
#include "listview.h"
#include "msgbox.h"
#include "process.h"

namespace vossel {

namespace uitest {

namespace fs = std::filesystem;

// The window's version-1 sprite store; an empty one while it holds no version-1 file.
inline const SpriteStore& StoreOf(const GrfFile& file) {
  static const SpriteStore kNone;
  const auto* store = std::get_if<SpriteStore>(&file.Contents);
  return store != nullptr ? *store : kNone;
}

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

// frmMain started from the build's program folder, with the palette beside it, and shown.
struct StartedForm {
  Fakes Boxes;
  std::unique_ptr<frmMain> Form = std::make_unique<frmMain>();
  StartedForm() {
    Form->AppPath = VOSSEL_BIN_DIR;
    EXPECT_TRUE(Form->Form_Load());
    Form->show();
  }
  frmMain& operator*() { return *Form; }
  frmMain* operator->() { return Form.get(); }
  // Loads a file of these bytes through LoadGRF; gives its name.
  std::string Load(const std::string& name, const grfw::Bytes& bytes) {
    Form->FileName = grfw::WriteTemp(name, bytes);
    Form->LoadGRF();
    return Form->FileName;
  }
};

// 0: plain 2 x 2 at -2, 1; 1: an action sprite of 10 bytes; 2: plain 3 x 1, stored size;
// 3: `fourth`, by default plain 1 x 1, flags 0x10; 4: run form 64 x 31 at -31, 0.
inline grfw::Bytes FiveSprites(const grfw::Bytes& fourth = grfw::PlainSprite(1, 1, {9}, 0, 0,
                                                                             0x10)) {
  std::vector<std::vector<grfw::Run>> rows(31);
  for (size_t r = 0; r < rows.size(); ++r)
    rows[r] = {{static_cast<uint8_t>(r), grfw::Bytes(8, static_cast<uint8_t>(0x20 + r))}};
  return grfw::File({grfw::PlainSprite(2, 2, {0x40, 0x50, 0xA0, 0xC5}, -2, 1),
                     grfw::ActionRecord(grfw::Bytes(10, 1)),
                     grfw::PlainSprite(3, 1, {7, 7, 7}, 0, 0, 2), fourth,
                     grfw::RunSprite(64, rows, -31, 0)});
}

// A real NewGRF kept with the tests.
inline grfw::Bytes DataFile(const std::string& name) {
  return grfw::ReadFile(std::string(VOSSEL_TESTS_DIR) + "/data/newgrf/" + name);
}

// The colour that palette index i shows.
inline QColor PaletteColour(const frmMain& form, int i) {
  const auto& p = form.Palette;
  return QColor(p[4 * static_cast<size_t>(i) + 2], p[4 * static_cast<size_t>(i) + 1],
                p[4 * static_cast<size_t>(i)]);
}

}  // namespace uitest

}  // namespace vossel
