// clsBrowseForFolderDialog: the folder browser behind a small class, opening with a folder
// already selected; modDialogs' BrowseCallbackProc does the selecting.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

#include "filedialog.h"

class QFileDialog;
class QObject;

namespace vossel {

inline constexpr uint32_t BIF_RETURNONLYFSDIRS = 0x01;
inline constexpr uint32_t BIF_DONTGOBELOWDOMAIN = 0x02;
inline constexpr uint32_t BIF_NEWDIALOGSTYLE = 0x40;
inline constexpr uint32_t BFFM_INITIALIZED = 1;
inline constexpr uint32_t BFFM_SELCHANGED = 2;
inline constexpr uint32_t BFFM_SETSELECTIONA = 0x466;
inline constexpr uint32_t LPTR = 0x40;
// Characters of a path buffer, its NUL included.
inline constexpr int32_t kMaxPath = 260;

// An item the browser gives out: the folder's path, empty for an item that is no folder on disk.
// The caller of SHBrowseForFolder frees it with CoTaskMemFree.
struct ITEMIDLIST {
  std::string path;
};

using BFFCALLBACK = int32_t (*)(int32_t hwnd, uint32_t uMsg, intptr_t lParam, intptr_t lpData);

// The browse record as the class holds it, texts counted.
struct BROWSEINFO {
  int32_t hwndOwner = 0;
  ITEMIDLIST* pidlRoot = nullptr;
  DialogText pszDisplayName;
  DialogText lpszTitle;
  int32_t ulFlags = 0;
  BFFCALLBACK lpfn = nullptr;
  intptr_t lParam = 0;
  int32_t iImage = 0;
};

// The single-byte copy the browser works on.
struct BROWSEINFOA {
  int32_t hwndOwner = 0;
  ITEMIDLIST* pidlRoot = nullptr;
  char* pszDisplayName = nullptr;
  const char* lpszTitle = nullptr;
  uint32_t ulFlags = 0;
  BFFCALLBACK lpfn = nullptr;
  intptr_t lParam = 0;
  int32_t iImage = 0;
};

class clsBrowseForFolderDialog {
 public:
  // Plain browser. Path becomes the chosen folder, or "" when there is none; true when not "".
  bool FolderDialog(std::string& Path);
  std::string InitialDirectory() const { return initialDirectory_; }
  // Stored with a final '/'; "" becomes "/".
  void InitialDirectory(const std::string& InitDir);
  void ObjectOwner(QObject* objOwner);
  // Browser with a button for a new folder; otherwise as FolderDialog.
  bool NewFolderDialog(std::string& Path);
  std::string WindowMessage() const { return windowMessage_; }
  void WindowMessage(const std::string& Message) { windowMessage_ = Message; }

  // The browse record as the last showing left it.
  const BROWSEINFO& Record() const { return browseInfo_; }

 private:
  std::string BrowseForFolder();

  BROWSEINFO browseInfo_;
  int32_t ownerHandle_ = 0;
  bool newFolder_ = false;
  // The top of the file system, where a desktop of drive letters would start on "C:\".
  std::string initialDirectory_ = "/";
  std::string windowMessage_ = "Select a folder:";
};

// modDialogs. Selects the folder of the block at lpData once the browser has opened; returns 0.
int32_t BrowseCallbackProc(int32_t hwnd, uint32_t uMsg, intptr_t lParam, intptr_t lpData);

// --- Platform operations ---------------------------------------------------------------------

// The operations in use. An empty member stands for the Qt one; tests put fakes here.
struct FolderBrowserOps {
  std::function<ITEMIDLIST*(BROWSEINFOA*)> SHBrowseForFolder;
  std::function<int32_t(ITEMIDLIST*, char*)> SHGetPathFromIDList;
  std::function<void(ITEMIDLIST*)> CoTaskMemFree;
  std::function<void*(uint32_t, size_t)> LocalAlloc;
  std::function<void*(void*)> LocalFree;
  std::function<intptr_t(int32_t, uint32_t, intptr_t, intptr_t)> SendMessageA;
};
void SetFolderBrowserOps(FolderBrowserOps ops);

// Modal to hwndOwner's window; calls lpfn with BFFM_INITIALIZED once it shows. The chosen
// folder, or nullptr when cancelled.
ITEMIDLIST* SHBrowseForFolder(BROWSEINFOA* bi);
// Writes the item's path and a NUL into kMaxPath characters; 0 when it has no path or it does not
// fit.
int32_t SHGetPathFromIDList(ITEMIDLIST* pidl, char* pszPath);
void CoTaskMemFree(ITEMIDLIST* pidl);
// A block of uBytes, zero-filled for LPTR; nullptr when there is none.
void* LocalAlloc(uint32_t uFlags, size_t uBytes);
// Frees the block; nullptr on success.
void* LocalFree(void* hMem);
// BFFM_SETSELECTIONA to a browser opens it on the folder in lParam: a path when wParam is
// non-zero, an item otherwise. Other messages and unknown windows are ignored; returns 0.
intptr_t SendMessageA(int32_t hwnd, uint32_t Msg, intptr_t wParam, intptr_t lParam);

// Sets up Qt's directory dialog from the record, apart so that it can be checked unshown.
void ConfigureFolderBrowser(QFileDialog& dialog, const BROWSEINFOA& bi);

}  // namespace vossel
