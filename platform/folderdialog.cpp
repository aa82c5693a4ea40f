#include "folderdialog.h"

#include <cstdlib>
#include <cstring>
#include <vector>

#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QGridLayout>
#include <QLabel>
#include <QTimer>

#include "hwnd.h"

namespace vossel {

namespace {

ITEMIDLIST* BrowseOnCopy(BROWSEINFO& r) {
  std::vector<char> displayName, title;
  BROWSEINFOA a;
  a.hwndOwner = r.hwndOwner;
  a.pidlRoot = r.pidlRoot;
  a.pszDisplayName = TextToPlatform(r.pszDisplayName, displayName);
  a.lpszTitle = TextToPlatform(r.lpszTitle, title);
  a.ulFlags = static_cast<uint32_t>(r.ulFlags);
  a.lpfn = r.lpfn;
  a.lParam = r.lParam;
  a.iImage = r.iImage;

  ITEMIDLIST* item = SHBrowseForFolder(&a);

  r.hwndOwner = a.hwndOwner;
  r.pidlRoot = a.pidlRoot;
  r.pszDisplayName = TextFromPlatform(r.pszDisplayName, displayName);
  r.lpszTitle = TextFromPlatform(r.lpszTitle, title);
  r.ulFlags = static_cast<int32_t>(a.ulFlags);
  r.lpfn = a.lpfn;
  r.lParam = a.lParam;
  r.iImage = a.iImage;
  return item;
}

}  // namespace

bool clsBrowseForFolderDialog::FolderDialog(std::string& Path) {
  newFolder_ = false;
  Path = BrowseForFolder();
  return !Path.empty();
}

void clsBrowseForFolderDialog::InitialDirectory(const std::string& InitDir) {
  initialDirectory_ = InitDir;
  if (initialDirectory_.empty() || initialDirectory_.back() != '/') initialDirectory_ += '/';
}

void clsBrowseForFolderDialog::ObjectOwner(QObject* objOwner) {
  ownerHandle_ = OwnerHandleOf(objOwner);
}

bool clsBrowseForFolderDialog::NewFolderDialog(std::string& Path) {
  newFolder_ = true;
  Path = BrowseForFolder();
  return !Path.empty();
}

std::string clsBrowseForFolderDialog::BrowseForFolder() {
  std::string path;
  std::string buffer = initialDirectory_.substr(0, kMaxPath);
  buffer.resize(kMaxPath, ' ');

  // The callback runs inside the browser, so the folder it selects lives in a block of its own
  // until the browser has closed. Without a block the browser still opens, on no selection.
  char* block = static_cast<char*>(LocalAlloc(LPTR, kMaxPath + 1));
  if (block != nullptr) {
    std::memcpy(block, buffer.data(), kMaxPath);
    block[kMaxPath] = '\0';
  }

  browseInfo_.hwndOwner = ownerHandle_;
  browseInfo_.pidlRoot = nullptr;
  browseInfo_.pszDisplayName = std::nullopt;
  browseInfo_.lpszTitle = windowMessage_ + '\0';
  browseInfo_.ulFlags =
      newFolder_ ? BIF_RETURNONLYFSDIRS | BIF_DONTGOBELOWDOMAIN | BIF_NEWDIALOGSTYLE : 0;
  browseInfo_.lpfn = BrowseCallbackProc;
  browseInfo_.lParam = reinterpret_cast<intptr_t>(block);

  if (ITEMIDLIST* item = BrowseOnCopy(browseInfo_)) {
    std::vector<char> text;
    if (SHGetPathFromIDList(item, TextToPlatform(buffer, text)) != 0) {
      const std::string_view chosen = TrimBlanks(std::string_view(text.data(), kMaxPath));
      path = chosen.substr(0, chosen.find('\0'));
    }
    CoTaskMemFree(item);
  }
  if (block != nullptr) LocalFree(block);
  return path;
}

int32_t BrowseCallbackProc(int32_t hwnd, uint32_t uMsg, intptr_t /*lParam*/, intptr_t lpData) {
  if (uMsg == BFFM_INITIALIZED) SendMessageA(hwnd, BFFM_SETSELECTIONA, -1, lpData);
  return 0;
}

// --- Platform operations ---------------------------------------------------------------------

namespace {

FolderBrowserOps& Ops() {
  static FolderBrowserOps ops;
  return ops;
}

ITEMIDLIST* QtBrowseForFolder(BROWSEINFOA* bi) {
  QFileDialog dialog(WindowOfHandle(bi->hwndOwner));
  ConfigureFolderBrowser(dialog, *bi);
  if (bi->lpfn != nullptr) {
    const BFFCALLBACK callback = bi->lpfn;
    const int32_t hwnd = HandleOfWindow(&dialog);
    const intptr_t data = bi->lParam;
    // Runs once the dialog's own loop has started, that is with the browser on the screen.
    QTimer::singleShot(0, &dialog, [=] { callback(hwnd, BFFM_INITIALIZED, 0, data); });
  }
  if (dialog.exec() != QDialog::Accepted) return nullptr;
  const QStringList chosen = dialog.selectedFiles();
  if (chosen.isEmpty()) return nullptr;
  return new ITEMIDLIST{QFile::encodeName(chosen.front()).toStdString()};
}

int32_t QtPathFromIdList(ITEMIDLIST* pidl, char* pszPath) {
  if (pidl == nullptr || pszPath == nullptr || pidl->path.empty() ||
      pidl->path.size() >= static_cast<size_t>(kMaxPath))
    return 0;
  std::memcpy(pszPath, pidl->path.c_str(), pidl->path.size() + 1);
  return 1;
}

void* QtLocalAlloc(uint32_t uFlags, size_t uBytes) {
  return (uFlags & LPTR) ? std::calloc(1, uBytes) : std::malloc(uBytes);
}

void* QtLocalFree(void* hMem) {
  std::free(hMem);
  return nullptr;
}

intptr_t QtSendMessage(int32_t hwnd, uint32_t Msg, intptr_t wParam, intptr_t lParam) {
  auto* dialog = qobject_cast<QFileDialog*>(WindowOfHandle(hwnd));
  if (dialog == nullptr || Msg != BFFM_SETSELECTIONA || lParam == 0) return 0;
  std::string folder = wParam != 0 ? std::string(reinterpret_cast<const char*>(lParam))
                                   : reinterpret_cast<const ITEMIDLIST*>(lParam)->path;
  // Blanks behind a path name no folder where this message comes from; they go unless a folder
  // really ends in them.
  if (!QFileInfo(QFile::decodeName(folder.c_str())).isDir())
    folder.erase(folder.find_last_not_of(' ') + 1);
  dialog->setDirectory(QFile::decodeName(folder.c_str()));
  return 0;
}

// The browser's message is a line of its own above the tree. Qt's dialog lays out in a grid, so
// every item moves one row down to make room at the top.
void ShowMessageAboveTree(QFileDialog& dialog, const QString& message) {
  auto* grid = qobject_cast<QGridLayout*>(dialog.layout());
  auto* label = new QLabel(message, &dialog);
  label->setObjectName(QStringLiteral("message"));
  label->setWordWrap(true);
  if (grid == nullptr) return;
  struct Placed {
    QLayoutItem* Item;
    int Row, Column, RowSpan, ColumnSpan;
  };
  std::vector<Placed> items;
  for (int i = grid->count() - 1; i >= 0; --i) {
    Placed p{nullptr, 0, 0, 0, 0};
    grid->getItemPosition(i, &p.Row, &p.Column, &p.RowSpan, &p.ColumnSpan);
    p.Item = grid->takeAt(i);
    items.push_back(p);
  }
  for (const Placed& p : items) grid->addItem(p.Item, p.Row + 1, p.Column, p.RowSpan, p.ColumnSpan);
  grid->addWidget(label, 0, 0, 1, grid->columnCount());
}

}  // namespace

void SetFolderBrowserOps(FolderBrowserOps ops) {
  Ops() = std::move(ops);
}

// Each runs a copy of the operation, so that a fake that replaces the operations stays whole.
ITEMIDLIST* SHBrowseForFolder(BROWSEINFOA* bi) {
  if (bi == nullptr) return nullptr;
  const auto op = Ops().SHBrowseForFolder;
  return op ? op(bi) : QtBrowseForFolder(bi);
}

int32_t SHGetPathFromIDList(ITEMIDLIST* pidl, char* pszPath) {
  const auto op = Ops().SHGetPathFromIDList;
  return op ? op(pidl, pszPath) : QtPathFromIdList(pidl, pszPath);
}

void CoTaskMemFree(ITEMIDLIST* pidl) {
  const auto op = Ops().CoTaskMemFree;
  if (op) return op(pidl);
  delete pidl;
}

void* LocalAlloc(uint32_t uFlags, size_t uBytes) {
  const auto op = Ops().LocalAlloc;
  return op ? op(uFlags, uBytes) : QtLocalAlloc(uFlags, uBytes);
}

void* LocalFree(void* hMem) {
  const auto op = Ops().LocalFree;
  return op ? op(hMem) : QtLocalFree(hMem);
}

intptr_t SendMessageA(int32_t hwnd, uint32_t Msg, intptr_t wParam, intptr_t lParam) {
  const auto op = Ops().SendMessageA;
  return op ? op(hwnd, Msg, wParam, lParam) : QtSendMessage(hwnd, Msg, wParam, lParam);
}

void ConfigureFolderBrowser(QFileDialog& dialog, const BROWSEINFOA& bi) {
  dialog.setOption(QFileDialog::DontUseNativeDialog);
  dialog.setFileMode(QFileDialog::Directory);
  dialog.setOption(QFileDialog::ShowDirsOnly);
  // Only the new style offers to make a folder.
  dialog.setOption(QFileDialog::ReadOnly, (bi.ulFlags & BIF_NEWDIALOGSTYLE) == 0);
  dialog.setWindowTitle(QStringLiteral("Browse For Folder"));
  if (bi.lpszTitle != nullptr && *bi.lpszTitle != '\0')
    ShowMessageAboveTree(dialog, QString::fromLocal8Bit(bi.lpszTitle));
  dialog.setDirectory(bi.pidlRoot != nullptr ? QFile::decodeName(bi.pidlRoot->path.c_str())
                                             : QDir::rootPath());
}

}  // namespace vossel
