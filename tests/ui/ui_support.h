// What the window tests share: a Wine prefix of their own, a recorder for message boxes, a log of
// the main window's captions and enabled states, and a started frmMain.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include <QCoreApplication>
#include <QEvent>
#include <QObject>

#include <QColor>
#include <QLabel>

#include "controls.h"
#include "frmMain.h"
#include "grf_writer.h"
#include "listview.h"
#include "msgbox.h"
#include "process.h"

namespace uitest {

namespace fs = std::filesystem;

// A fresh folder under the temp folder, removed again at the end.
struct TempFolder {
  fs::path Path;
  explicit TempFolder(const std::string& name) {
    Path = fs::temp_directory_path() /
           ("vossel-ui-" + name + "-" + std::to_string(QCoreApplication::applicationPid()));
    fs::remove_all(Path);
    fs::create_directories(Path);
  }
  ~TempFolder() {
    std::error_code ignored;
    fs::remove_all(Path, ignored);
  }
};

// WINEPREFIX pointed at a folder of the test's own, with or without a system.reg; the current
// directory is put back at the end.
struct WinePrefix {
  TempFolder Folder{"wine"};
  std::string OldPrefix;
  bool HadPrefix;
  std::string OldDirectory = CurDir();

  WinePrefix() {
    const char* old = std::getenv("WINEPREFIX");
    HadPrefix = old != nullptr;
    if (old != nullptr) OldPrefix = old;
    setenv("WINEPREFIX", Folder.Path.c_str(), 1);
  }
  ~WinePrefix() {
    if (HadPrefix)
      setenv("WINEPREFIX", OldPrefix.c_str(), 1);
    else
      unsetenv("WINEPREFIX");
    ChDir(OldDirectory);
  }

  // The game's key with one value line as Wine writes it, e.g. "\"HDPath\"=\"C:\\\\TTD\\\\\"".
  void WriteGameKey(const std::string& valueLine) const {
    std::ofstream reg(Folder.Path / "system.reg", std::ios::binary);
    reg << "WINE REGISTRY Version 2\n;; All keys relative to \\\\Machine\n\n#arch=win32\n\n"
        << "[Software\\\\FISH Technology Group\\\\Transport Tycoon Deluxe] 1700000000\n"
        << valueLine << "\n";
  }

  // drive_c with Wine's link c: -> ../drive_c, and a folder inside it.
  fs::path MakeDriveCFolder(const std::string& name) const {
    fs::create_directories(Folder.Path / "drive_c" / name);
    fs::create_directories(Folder.Path / "dosdevices");
    fs::create_directory_symlink("../drive_c", Folder.Path / "dosdevices" / "c:");
    return fs::canonical(Folder.Path / "drive_c" / name);
  }
};

struct Shown {
  std::string Text, Title;
  MsgBoxIcon Icon;
};

// Takes the place of the message box while it lives.
struct MsgBoxRecorder {
  std::vector<Shown> Boxes;
  MsgBoxRecorder() {
    SetMsgBoxHook([this](const std::string& text, const std::string& title, MsgBoxIcon icon) {
      Boxes.push_back({text, title, icon});
    });
  }
  ~MsgBoxRecorder() { SetMsgBoxHook(nullptr); }
};

// Every caption and every enabled state the window takes, in order: "caption:<text>",
// "enabled" and "disabled".
class WindowLog : public QObject {
 public:
  std::vector<std::string> Entries;
  explicit WindowLog(QWidget* window) : window_(window) { window->installEventFilter(this); }
  ~WindowLog() override { window_->removeEventFilter(this); }
  std::vector<std::string> Captions() const {
    std::vector<std::string> captions;
    for (const std::string& e : Entries)
      if (e.rfind("caption:", 0) == 0) captions.push_back(e.substr(8));
    return captions;
  }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (watched == window_ && event->type() == QEvent::WindowTitleChange)
      Entries.push_back("caption:" + Caption(window_));
    if (watched == window_ && event->type() == QEvent::EnabledChange)
      Entries.push_back(window_->isEnabled() ? "enabled" : "disabled");
    return false;
  }

 private:
  QWidget* window_;
};

// frmMain loaded from the build's program folder (with the real palette) and shown, in a Wine
// prefix without a registry file, with its message boxes recorded.
struct StartedForm {
  WinePrefix Wine;
  MsgBoxRecorder Boxes;  // no test waits on a real box
  std::unique_ptr<frmMain> Form = std::make_unique<frmMain>();
  StartedForm() {
    Form->AppPath = VOSSEL_BIN_DIR;
    EXPECT_TRUE(Form->Form_Load());
    Form->show();
  }
  frmMain& operator*() { return *Form; }
  frmMain* operator->() { return Form.get(); }

  // Writes the bytes to a file and loads it through LoadGRF.
  std::string Load(const std::string& name, const grfw::Bytes& bytes) {
    Form->FileName = grfw::WriteTemp(name, bytes);
    Form->LoadGRF();
    return Form->FileName;
  }
};

}  // namespace uitest

namespace uitest {

// Five sprites, each of another kind:
// 0: plain 2 x 2 at -2, 1 with the pixels 40 50 / A0 C5; 1: an action sprite of 10 bytes;
// 2: plain 3 x 1 with the stored-size flag; 3: plain 1 x 1, flags 0x10;
// 4: run form 64 x 31, flags 8, at -31, 0.
inline grfw::Bytes FiveSprites() {
  std::vector<std::vector<grfw::Run>> rows(31);
  for (size_t r = 0; r < rows.size(); ++r)
    rows[r] = {grfw::Run{static_cast<uint8_t>(r), grfw::Bytes(8, static_cast<uint8_t>(0x20 + r))}};
  return grfw::File({
      grfw::PlainSprite(2, 2, {0x40, 0x50, 0xA0, 0xC5}, -2, 1),
      grfw::ActionRecord({1, 2, 3, 4, 5, 6, 7, 8, 9, 10}),
      grfw::PlainSprite(3, 1, {7, 7, 7}, 0, 0, 2),
      grfw::PlainSprite(1, 1, {9}, 0, 0, 0x10),
      grfw::RunSprite(64, rows, -31, 0),
  });
}

// `count` plain sprites; sprite i is (i * 7) % 13 + 1 pixels wide and 2 high.
inline grfw::Bytes ManySprites(int count) {
  std::vector<grfw::Bytes> records;
  for (int i = 0; i < count; ++i) {
    const auto width = static_cast<uint16_t>((i * 7) % 13 + 1);
    records.push_back(
        grfw::PlainSprite(width, 2, grfw::Bytes(width * 2u, static_cast<uint8_t>(i))));
  }
  return grfw::FileOf(records);
}

// Texts of one column of lvwSprite, in the order shown.
inline std::vector<std::string> ColumnTexts(const frmMain& form, size_t column) {
  std::vector<std::string> texts;
  for (int32_t i = 1; i <= form.lvwSprite->ItemCount(); ++i)
    texts.push_back(form.lvwSprite->Item(i).Texts[column]);
  return texts;
}

// The colour that palette index i shows.
inline QColor PaletteColour(const frmMain& form, int i) {
  const auto& p = form.Palette;
  return QColor(p[static_cast<size_t>(4 * i + 2)], p[static_cast<size_t>(4 * i + 1)],
                p[static_cast<size_t>(4 * i)]);
}

}  // namespace uitest
