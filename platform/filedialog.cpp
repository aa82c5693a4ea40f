#include "filedialog.h"

#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <limits>

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QObject>
#include <QVariant>

#include "hwnd.h"

namespace vossel {

namespace {

int32_t CallOnCopy(OPENFILENAME& r, int32_t (*dialog)(OPENFILENAMEA*)) {
  std::vector<char> filter, custom, file, fileTitle, initialDir, title, defExt, templateName;
  OPENFILENAMEA a;
  a.lStructSize = static_cast<uint32_t>(r.lStructSize);
  a.hwndOwner = r.hwndOwner;
  a.hInstance = r.hInstance;
  a.lpstrFilter = TextToPlatform(r.lpstrFilter, filter);
  a.lpstrCustomFilter = TextToPlatform(r.lpstrCustomFilter, custom);
  a.nMaxCustFilter = static_cast<uint32_t>(r.nMaxCustFilter);
  a.nFilterIndex = static_cast<uint32_t>(r.nFilterIndex);
  a.lpstrFile = TextToPlatform(r.lpstrFile, file);
  a.nMaxFile = static_cast<uint32_t>(r.nMaxFile);
  a.lpstrFileTitle = TextToPlatform(r.lpstrFileTitle, fileTitle);
  a.nMaxFileTitle = static_cast<uint32_t>(r.nMaxFileTitle);
  a.lpstrInitialDir = TextToPlatform(r.lpstrInitialDir, initialDir);
  a.lpstrTitle = TextToPlatform(r.lpstrTitle, title);
  a.Flags = static_cast<uint32_t>(r.Flags);
  a.nFileOffset = static_cast<uint16_t>(r.nFileOffset);
  a.nFileExtension = static_cast<uint16_t>(r.nFileExtension);
  a.lpstrDefExt = TextToPlatform(r.lpstrDefExt, defExt);
  a.lCustData = r.lCustData;
  a.lpTemplateName = TextToPlatform(r.lpTemplateName, templateName);

  const int32_t result = dialog(&a);

  r.lStructSize = static_cast<int32_t>(a.lStructSize);
  r.hwndOwner = a.hwndOwner;
  r.hInstance = a.hInstance;
  r.lpstrFilter = TextFromPlatform(r.lpstrFilter, filter);
  r.lpstrCustomFilter = TextFromPlatform(r.lpstrCustomFilter, custom);
  r.nMaxCustFilter = static_cast<int32_t>(a.nMaxCustFilter);
  r.nFilterIndex = static_cast<int32_t>(a.nFilterIndex);
  r.lpstrFile = TextFromPlatform(r.lpstrFile, file);
  r.nMaxFile = static_cast<int32_t>(a.nMaxFile);
  r.lpstrFileTitle = TextFromPlatform(r.lpstrFileTitle, fileTitle);
  r.nMaxFileTitle = static_cast<int32_t>(a.nMaxFileTitle);
  r.lpstrInitialDir = TextFromPlatform(r.lpstrInitialDir, initialDir);
  r.lpstrTitle = TextFromPlatform(r.lpstrTitle, title);
  r.Flags = static_cast<int32_t>(a.Flags);
  r.nFileOffset = static_cast<int16_t>(a.nFileOffset);
  r.nFileExtension = static_cast<int16_t>(a.nFileExtension);
  r.lpstrDefExt = TextFromPlatform(r.lpstrDefExt, defExt);
  r.lCustData = a.lCustData;
  r.lpTemplateName = TextFromPlatform(r.lpTemplateName, templateName);
  return result;
}

}  // namespace

clsFileDialog::clsFileDialog() {
  // The nearest thing to an instance handle this process has.
  ofn_.hInstance = static_cast<int32_t>(getpid());
  ofn_.lpstrFile = std::string(1, '\0') + std::string(kFileBufferSize - 1, ' ');
  ofn_.nMaxFile = kFileBufferSize;
}

std::string clsFileDialog::DefaultExtension() const {
  return ofn_.lpstrDefExt.value_or("");
}
void clsFileDialog::DefaultExtension(const std::string& Extension) {
  ofn_.lpstrDefExt = Extension;
}

bool clsFileDialog::FileOpen(std::string& Filename) {
  ofn_.lpstrFile = std::string(kFileBufferSize, '\0');
  const bool result = CallOnCopy(ofn_, GetOpenFileNameA) != 0;

  // From here on only the buffer counts, whatever the dialog returned. The NULs behind its last
  // text make only empty pieces, which change nothing; they are not split.
  const std::string buffer = ofn_.lpstrFile.value_or("");
  std::string_view text = TrimBlanks(buffer);
  text = text.substr(0, text.find_last_not_of('\0') + 1);
  const QByteArrayList pieces =
      QByteArray(text.data(), static_cast<qsizetype>(text.size())).split('\0');
  const std::string first = pieces[0].toStdString();
  if (first.empty()) return false;
  const std::string second = pieces.value(1).toStdString();
  if (second.empty() || first.ends_with(second)) {
    Filename = first;
    return result;
  }

  const std::string folder = first.ends_with('/') ? first : first + '/';
  // The pieces are counted in full width: a name behind any number of empty pieces is taken.
  for (const QByteArray& name : pieces.sliced(1))
    if (!name.isEmpty()) Filename += '|' + folder + name.toStdString();
  Filename.erase(0, 1);
  return result;
}

bool clsFileDialog::FileSave(std::string& Filename) {
  if (CallOnCopy(ofn_, GetSaveFileNameA) == 0) return false;
  const std::string buffer = ofn_.lpstrFile.value_or("");
  Filename = buffer.substr(0, buffer.find('\0'));
  return true;
}

void clsFileDialog::Filter(const std::string& CustomFilter) {
  std::string filter = CustomFilter;
  std::replace(filter.begin(), filter.end(), '|', '\0');
  if (filter.empty() || filter.back() != '\0') filter += '\0';
  ofn_.lpstrFilter = filter;
}

int32_t clsFileDialog::FilterIndex() const {
  return ofn_.nFilterIndex;
}
void clsFileDialog::FilterIndex(int32_t Index) {
  ofn_.nFilterIndex = Index;
}
int32_t clsFileDialog::Flags() const {
  return ofn_.Flags;
}
void clsFileDialog::Flags(int32_t vFlags) {
  ofn_.Flags = vFlags;
}
std::string clsFileDialog::InitialDirectory() const {
  return ofn_.lpstrInitialDir.value_or("");
}
void clsFileDialog::InitialDirectory(const std::string& InitDir) {
  ofn_.lpstrInitialDir = InitDir;
}
void clsFileDialog::ObjectOwner(QObject* objOwner) {
  ofn_.hwndOwner = OwnerHandleOf(objOwner);
}
std::string clsFileDialog::WindowTitle() const {
  return ofn_.lpstrTitle.value_or("");
}
void clsFileDialog::WindowTitle(const std::string& Title) {
  ofn_.lpstrTitle = Title;
}

// --- Platform operations ---------------------------------------------------------------------

namespace {

FileDialogOps& Ops() {
  static FileDialogOps ops;
  return ops;
}

std::string Bytes(const QString& path) {
  return QFile::encodeName(path).toStdString();
}

uint16_t Offset(size_t offset) {
  return static_cast<uint16_t>(std::min<size_t>(offset, std::numeric_limits<uint16_t>::max()));
}

int32_t QtFileDialog(OPENFILENAMEA* ofn, bool save) {
  QFileDialog dialog(WindowOfHandle(ofn->hwndOwner));
  ConfigureFileDialog(dialog, *ofn, save);
  if (dialog.exec() != QDialog::Accepted) return 0;
  // Without a list of ours the dialog's own "All Files" is no index to write back.
  const bool filtered = !NameFiltersOf(ofn->lpstrFilter).isEmpty();
  return FinishFileDialog(ofn, dialog.selectedFiles(), filtered ? SelectedFilterIndex(dialog) : 0);
}

int32_t RunDialog(const FileDialogProc& fake, OPENFILENAMEA* ofn, bool save) {
  if (ofn == nullptr) return 0;
  // A copy, so that a fake that replaces the operations does not pull itself away.
  const FileDialogProc dialog = fake;
  return dialog ? dialog(ofn) : QtFileDialog(ofn, save);
}

}  // namespace

void SetFileDialogOps(FileDialogOps ops) {
  Ops() = std::move(ops);
}

int32_t GetOpenFileNameA(OPENFILENAMEA* ofn) {
  return RunDialog(Ops().GetOpenFileNameA, ofn, false);
}
int32_t GetSaveFileNameA(OPENFILENAMEA* ofn) {
  return RunDialog(Ops().GetSaveFileNameA, ofn, true);
}

QStringList NameFiltersOf(const char* lpstrFilter) {
  QStringList filters;
  if (lpstrFilter == nullptr) return filters;
  // Pairs until an empty piece; the list ends in two NULs.
  for (const char* p = lpstrFilter; *p != '\0';) {
    const QString description = QString::fromLocal8Bit(p);
    p += std::strlen(p) + 1;
    if (*p == '\0') break;
    QStringList patterns = QString::fromLocal8Bit(p).split(u';', Qt::SkipEmptyParts);
    p += std::strlen(p) + 1;
    for (QString& pattern : patterns) {
      pattern = pattern.trimmed();
      if (pattern == QLatin1String("*.*")) pattern = QStringLiteral("*");
    }
    filters << description + QStringLiteral(" (") + patterns.join(u' ') + u')';
  }
  return filters;
}

void ConfigureFileDialog(QFileDialog& dialog, const OPENFILENAMEA& ofn, bool save) {
  // Qt's own dialog behaves the same on every desktop. The description is shown as written; the
  // patterns appended behind it only steer the matching.
  dialog.setOption(QFileDialog::DontUseNativeDialog);
  dialog.setOption(QFileDialog::HideNameFilterDetails);
  dialog.setAcceptMode(save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
  if (save) {
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setOption(QFileDialog::DontConfirmOverwrite, (ofn.Flags & OFN_OVERWRITEPROMPT) == 0);
  } else if (ofn.Flags & OFN_ALLOWMULTISELECT) {
    dialog.setFileMode(QFileDialog::ExistingFiles);
  } else {
    dialog.setFileMode((ofn.Flags & OFN_FILEMUSTEXIST) ? QFileDialog::ExistingFile
                                                       : QFileDialog::AnyFile);
  }
  const bool titled = ofn.lpstrTitle != nullptr && *ofn.lpstrTitle != '\0';
  dialog.setWindowTitle(titled ? QString::fromLocal8Bit(ofn.lpstrTitle)
                               : (save ? QStringLiteral("Save As") : QStringLiteral("Open")));
  const bool initialDir = ofn.lpstrInitialDir != nullptr && *ofn.lpstrInitialDir != '\0';
  dialog.setDirectory(initialDir ? QFile::decodeName(ofn.lpstrInitialDir) : QDir::currentPath());
  if (ofn.lpstrDefExt != nullptr && *ofn.lpstrDefExt != '\0')
    dialog.setDefaultSuffix(QFile::decodeName(ofn.lpstrDefExt));

  const QStringList filters = NameFiltersOf(ofn.lpstrFilter);
  if (!filters.isEmpty()) {
    dialog.setNameFilters(filters);
    // 1-based; 0 and anything past the list start on the first entry.
    const qsizetype index = ofn.nFilterIndex;
    dialog.selectNameFilter(filters[index >= 1 && index <= filters.size() ? index - 1 : 0]);
  }
  if (ofn.lpstrFile != nullptr && *ofn.lpstrFile != '\0')
    dialog.selectFile(QFile::decodeName(ofn.lpstrFile));
}

int32_t SelectedFilterIndex(const QFileDialog& dialog) {
  const QStringList filters = dialog.nameFilters();
  const QString selected = dialog.selectedNameFilter();
  // With the details hidden the dialog names its filter by the description alone.
  for (qsizetype i = 0; i < filters.size(); ++i) {
    const QString& filter = filters[i];
    if (filter == selected || filter.left(filter.lastIndexOf(u'(')).simplified() == selected)
      return static_cast<int32_t>(i + 1);
  }
  return 0;
}

int32_t FinishFileDialog(OPENFILENAMEA* ofn, const QStringList& files, int32_t filterIndex) {
  if (ofn == nullptr || files.isEmpty()) return 0;
  const QFileInfo first(files.front());
  std::string buffer;
  size_t fileOffset = 0;
  size_t extension = 0;
  if (files.size() == 1) {
    buffer = Bytes(first.absoluteFilePath());
    fileOffset = buffer.rfind('/') + 1;
    const size_t dot = buffer.rfind('.');
    extension = dot != std::string::npos && dot >= fileOffset ? dot + 1 : buffer.size();
    buffer += '\0';
  } else {
    buffer = Bytes(first.absolutePath()) + '\0';
    fileOffset = buffer.size();
    for (const QString& file : files) buffer += Bytes(QFileInfo(file).fileName()) + '\0';
    buffer += '\0';
  }

  if (ofn->lpstrFile == nullptr || buffer.size() > ofn->nMaxFile) {
    // The size it would take, in the first two bytes, as the platform reports it.
    if (ofn->lpstrFile != nullptr && ofn->nMaxFile >= 2) {
      const uint16_t needed = Offset(buffer.size());
      ofn->lpstrFile[0] = static_cast<char>(needed & 0xFF);
      ofn->lpstrFile[1] = static_cast<char>(needed >> 8);
    }
    return 0;
  }
  std::memcpy(ofn->lpstrFile, buffer.data(), buffer.size());
  ofn->nFileOffset = Offset(fileOffset);
  ofn->nFileExtension = Offset(extension);
  if (filterIndex > 0) ofn->nFilterIndex = static_cast<uint32_t>(filterIndex);
  if (ofn->lpstrDefExt != nullptr && *ofn->lpstrDefExt != '\0' && files.size() == 1) {
    const bool same =
        first.suffix().compare(QFile::decodeName(ofn->lpstrDefExt), Qt::CaseInsensitive) == 0;
    ofn->Flags = same ? ofn->Flags & ~uint32_t{OFN_EXTENSIONDIFFERENT}
                      : ofn->Flags | uint32_t{OFN_EXTENSIONDIFFERENT};
  }
  if ((ofn->Flags & OFN_NOCHANGEDIR) == 0) QDir::setCurrent(first.absolutePath());
  return 1;
}

// --- Shared with the folder dialog -----------------------------------------------------------

char* TextToPlatform(const DialogText& text, std::vector<char>& buffer) {
  buffer.clear();
  if (!text) return nullptr;
  buffer.assign(text->begin(), text->end());
  buffer.push_back('\0');
  return buffer.data();
}

DialogText TextFromPlatform(const DialogText& text, const std::vector<char>& buffer) {
  if (!text) return std::nullopt;
  return std::string(buffer.data(), std::min(text->size(), buffer.size()));
}

std::string_view TrimBlanks(std::string_view text) {
  const size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

int32_t OwnerHandleOf(QObject* objOwner) {
  if (objOwner == nullptr) return 0;
  bool ok = false;
  const qlonglong handle = objOwner->property("hWnd").toLongLong(&ok);
  if (!ok || handle < std::numeric_limits<int32_t>::min() ||
      handle > std::numeric_limits<int32_t>::max())
    return 0;
  return static_cast<int32_t>(handle);
}

}  // namespace vossel
