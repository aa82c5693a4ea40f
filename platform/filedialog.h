// clsFileDialog: the common Open and Save dialogs behind a small class. The class keeps one
// OPENFILENAME record; each dialog works on a single-byte copy of it, which is copied back after.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <QtContainerFwd>

class QFileDialog;
class QObject;

namespace vossel {

// A counted text that may hold NULs. std::nullopt is "no text", which goes to the platform as a
// null pointer; the empty text goes as a lone NUL.
using DialogText = std::optional<std::string>;

inline constexpr int32_t OFN_READONLY = 0x1;
inline constexpr int32_t OFN_OVERWRITEPROMPT = 0x2;
inline constexpr int32_t OFN_HIDEREADONLY = 0x4;
inline constexpr int32_t OFN_NOCHANGEDIR = 0x8;
inline constexpr int32_t OFN_ALLOWMULTISELECT = 0x200;
inline constexpr int32_t OFN_EXTENSIONDIFFERENT = 0x400;
inline constexpr int32_t OFN_FILEMUSTEXIST = 0x1000;

// Size of the record in its 32-bit form, the value of lStructSize.
inline constexpr int32_t kOpenFileNameSize = 76;
// Characters of the file buffer; also nMaxFile.
inline constexpr int32_t kFileBufferSize = 65535;

// The record as the class holds it: numbers as the platform has them, texts counted.
struct OPENFILENAME {
  int32_t lStructSize = kOpenFileNameSize;
  int32_t hwndOwner = 0;
  int32_t hInstance = 0;
  DialogText lpstrFilter;
  DialogText lpstrCustomFilter;
  int32_t nMaxCustFilter = 0;
  int32_t nFilterIndex = 0;
  DialogText lpstrFile;
  int32_t nMaxFile = 0;
  DialogText lpstrFileTitle;
  int32_t nMaxFileTitle = 0;
  DialogText lpstrInitialDir;
  DialogText lpstrTitle;
  int32_t Flags = 0;
  int16_t nFileOffset = 0;
  int16_t nFileExtension = 0;
  DialogText lpstrDefExt;
  int32_t lCustData = 0;
  int32_t lpfnHook = 0;
  DialogText lpTemplateName;
};

// The single-byte copy the platform works on: every text a NUL-terminated buffer or null.
struct OPENFILENAMEA {
  uint32_t lStructSize = 0;
  int32_t hwndOwner = 0;
  int32_t hInstance = 0;
  const char* lpstrFilter = nullptr;
  char* lpstrCustomFilter = nullptr;
  uint32_t nMaxCustFilter = 0;
  uint32_t nFilterIndex = 0;
  char* lpstrFile = nullptr;
  uint32_t nMaxFile = 0;
  char* lpstrFileTitle = nullptr;
  uint32_t nMaxFileTitle = 0;
  const char* lpstrInitialDir = nullptr;
  const char* lpstrTitle = nullptr;
  uint32_t Flags = 0;
  uint16_t nFileOffset = 0;
  uint16_t nFileExtension = 0;
  const char* lpstrDefExt = nullptr;
  int32_t lCustData = 0;
  void* lpfnHook = nullptr;
  const char* lpTemplateName = nullptr;
};

class clsFileDialog {
 public:
  clsFileDialog();

  std::string DefaultExtension() const;
  void DefaultExtension(const std::string& Extension);
  // Shows the Open dialog; true when a name came back. Filename is written even on false when
  // the dialog left text in the buffer, and is not cleared before a list of several files.
  bool FileOpen(std::string& Filename);
  // Shows the Save dialog on the name left in the buffer by the last dialog.
  bool FileSave(std::string& Filename);
  // '|'-separated pairs of description and patterns.
  void Filter(const std::string& CustomFilter);
  int32_t FilterIndex() const;
  void FilterIndex(int32_t Index);
  int32_t Flags() const;
  void Flags(int32_t vFlags);
  std::string InitialDirectory() const;
  void InitialDirectory(const std::string& InitDir);
  void ObjectOwner(QObject* objOwner);
  std::string WindowTitle() const;
  void WindowTitle(const std::string& Title);

  // What the dialogs and the properties left in the record.
  const OPENFILENAME& Record() const { return ofn_; }

 private:
  OPENFILENAME ofn_;
};

// --- Platform operations ---------------------------------------------------------------------

using FileDialogProc = std::function<int32_t(OPENFILENAMEA*)>;

// The dialogs in use. An empty member stands for Qt's dialog; tests put fakes here.
struct FileDialogOps {
  FileDialogProc GetOpenFileNameA;
  FileDialogProc GetSaveFileNameA;
};
void SetFileDialogOps(FileDialogOps ops);

// Modal to hwndOwner's window. Non-zero when confirmed, 0 when cancelled or failed.
int32_t GetOpenFileNameA(OPENFILENAMEA* ofn);
int32_t GetSaveFileNameA(OPENFILENAMEA* ofn);

// The steps of Qt's dialog on either side of showing it, apart so that they can be checked
// without a dialog on the screen.

// "Description (patterns)" for every complete pair of a NUL-separated filter list; ';' between
// patterns becomes a blank, and "*.*" matches every file as it does on the desktop it comes from.
QStringList NameFiltersOf(const char* lpstrFilter);
// Sets up `dialog` from the record: mode, title, folder, name, filters and the filter to start on.
void ConfigureFileDialog(QFileDialog& dialog, const OPENFILENAMEA& ofn, bool save);
// The 1-based number of the filter the dialog stands on; 0 when it has none of its list.
int32_t SelectedFilterIndex(const QFileDialog& dialog);
// Writes a confirmed selection back: the buffer (one path and a NUL; or the folder, a NUL, and
// each name with a NUL behind, then one more NUL), the offsets, the 1-based filter index (0 for
// none) and the current directory. A selection that does not fit nMaxFile gives 0 and leaves the
// size it needs, at most 0xFFFF, in the first two bytes. An empty selection gives 0.
int32_t FinishFileDialog(OPENFILENAMEA* ofn, const QStringList& files, int32_t filterIndex);

// --- Shared with the folder dialog -----------------------------------------------------------

// A counted text as the platform takes it: its bytes and one NUL behind in `buffer`, or null.
char* TextToPlatform(const DialogText& text, std::vector<char>& buffer);
// The text back from the platform's buffer, at the length it went out with.
DialogText TextFromPlatform(const DialogText& text, const std::vector<char>& buffer);
// Blanks (spaces only) removed from both ends; tabs and NULs stay.
std::string_view TrimBlanks(std::string_view text);
// The object's "hWnd" property as a 32-bit number; 0 for no object, no such property or a value
// that is no 32-bit number.
int32_t OwnerHandleOf(QObject* objOwner);

}  // namespace vossel
