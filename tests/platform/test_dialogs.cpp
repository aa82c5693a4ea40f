// The dialog wrappers against fake platform dialogs, and the Qt pieces that need no showing.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QLabel>
#include <QLayout>
#include <QTemporaryDir>
#include <QWidget>

#include "filedialog.h"
#include "folderdialog.h"
#include "hwnd.h"

using namespace std::string_literals;

void PrintTo(const QString& text, std::ostream* os) {
  *os << '"' << text.toStdString() << '"';
}

namespace {

class OwnerWindow : public QWidget {
  Q_OBJECT
  Q_PROPERTY(int hWnd READ hWnd)

 public:
  int hWnd() const { return HandleOfWindow(const_cast<OwnerWindow*>(this)); }
};

const std::string kCallersFilter = "Transport Tycoon GRF file (*.grf)|*.grf|All files (*.*)|*.*";

// n bytes from the platform's side of a text, or "<null>".
std::string Raw(const char* text, size_t n) {
  return text == nullptr ? "<null>" : std::string(text, n);
}

bool HasNul(const std::string& text) {
  return text.find('\0') != std::string::npos;
}

// --- clsFileDialog ---------------------------------------------------------------------------

class FileDialogTest : public ::testing::Test {
 protected:
  void TearDown() override { SetFileDialogOps({}); }

  // Both dialogs write `buffer` at the front of the file buffer and return `result`; `look` sees
  // the record first.
  void Dialog(int32_t result, const std::string& buffer,
              std::function<void(OPENFILENAMEA*)> look = {}) {
    const FileDialogProc dialog = [=, this](OPENFILENAMEA* ofn) {
      ++calls;
      if (look) look(ofn);
      std::memcpy(ofn->lpstrFile, buffer.data(), std::min<size_t>(buffer.size(), ofn->nMaxFile));
      return result;
    };
    SetFileDialogOps({dialog, dialog});
  }

  std::string Open(const std::string& filenameBefore, bool expected) {
    std::string filename = filenameBefore;
    EXPECT_EQ(expected, fd.FileOpen(filename));
    EXPECT_FALSE(HasNul(filename));
    return filename;
  }

  clsFileDialog fd;
  int calls = 0;
};

TEST_F(FileDialogTest, RecordAtCreation) {
  const OPENFILENAME& r = fd.Record();
  EXPECT_EQ(76, r.lStructSize);
  EXPECT_EQ(0, r.hwndOwner);
  EXPECT_NE(0, r.hInstance);
  EXPECT_EQ(clsFileDialog().Record().hInstance, r.hInstance);
  for (const DialogText* text :
       {&r.lpstrFilter, &r.lpstrCustomFilter, &r.lpstrFileTitle, &r.lpstrInitialDir, &r.lpstrTitle,
        &r.lpstrDefExt, &r.lpTemplateName})
    EXPECT_FALSE(text->has_value());
  ASSERT_TRUE(r.lpstrFile.has_value());
  EXPECT_EQ("\0"s + std::string(65534, ' '), *r.lpstrFile);
  EXPECT_EQ(65535, r.nMaxFile);
  for (int32_t n : {r.nMaxCustFilter, r.nFilterIndex, r.nMaxFileTitle, r.Flags, r.lCustData,
                    r.lpfnHook, int32_t{r.nFileOffset}, int32_t{r.nFileExtension}})
    EXPECT_EQ(0, n);
  EXPECT_EQ("", fd.DefaultExtension());
  EXPECT_EQ("", fd.InitialDirectory());
  EXPECT_EQ("", fd.WindowTitle());
}

TEST_F(FileDialogTest, PropertiesStoreTheirValuesUnchanged) {
  fd.DefaultExtension("grf");
  fd.InitialDirectory("/usr/share/games");
  fd.WindowTitle("Open a GRF file...");
  fd.FilterIndex(2);
  fd.Flags(static_cast<int32_t>(0x80000004u));
  EXPECT_EQ("grf", fd.DefaultExtension());
  EXPECT_EQ("/usr/share/games", fd.InitialDirectory());  // no separator added
  EXPECT_EQ("Open a GRF file...", fd.WindowTitle());
  EXPECT_EQ(2, fd.FilterIndex());
  EXPECT_EQ(static_cast<int32_t>(0x80000004u), fd.Flags());
  EXPECT_EQ("grf", *fd.Record().lpstrDefExt);
  EXPECT_EQ("/usr/share/games", *fd.Record().lpstrInitialDir);
  EXPECT_EQ("Open a GRF file...", *fd.Record().lpstrTitle);

  // The empty text is a text, not "no text".
  fd.WindowTitle("");
  EXPECT_TRUE(fd.Record().lpstrTitle.has_value());
  fd.InitialDirectory("/tmp/");
  EXPECT_EQ("/tmp/", fd.InitialDirectory());
}

TEST_F(FileDialogTest, FilterBecomesNulSeparatedList) {
  fd.Filter(kCallersFilter);
  EXPECT_EQ("Transport Tycoon GRF file (*.grf)\0*.grf\0All files (*.*)\0*.*\0"s,
            *fd.Record().lpstrFilter);

  fd.Filter("Text|*.txt|");  // already ends in a separator: no second NUL of its own
  EXPECT_EQ("Text\0*.txt\0"s, *fd.Record().lpstrFilter);

  fd.Filter("");
  EXPECT_EQ("\0"s, *fd.Record().lpstrFilter);

  fd.Filter("||");
  EXPECT_EQ("\0\0"s, *fd.Record().lpstrFilter);
}

TEST_F(FileDialogTest, PlatformGetsTheCallersFilterAsFourPiecesAndTwoNuls) {
  fd.Filter(kCallersFilter);
  std::string seen;
  Dialog(0, "", [&](OPENFILENAMEA* ofn) {
    const char* p = ofn->lpstrFilter;
    while (!(p[0] == '\0' && p[1] == '\0')) ++p;
    seen.assign(ofn->lpstrFilter, p + 2);
  });
  std::string filename;
  fd.FileOpen(filename);
  EXPECT_EQ("Transport Tycoon GRF file (*.grf)\0*.grf\0All files (*.*)\0*.*\0\0"s, seen);
  EXPECT_EQ(5, std::count(seen.begin(), seen.end(), '\0'));
}

TEST_F(FileDialogTest, CopyForThePlatform) {
  fd.WindowTitle("a\0b"s);
  fd.InitialDirectory("/games");
  fd.Flags(OFN_HIDEREADONLY);
  fd.FilterIndex(3);
  OPENFILENAMEA seen;
  std::string title, initialDir;
  Dialog(0, "", [&](OPENFILENAMEA* ofn) {
    seen = *ofn;
    title = Raw(ofn->lpstrTitle, 4);
    initialDir = Raw(ofn->lpstrInitialDir, 7);
  });
  std::string filename;
  fd.FileOpen(filename);
  EXPECT_EQ(76u, seen.lStructSize);
  EXPECT_EQ("a\0b\0"s, title);  // at full length, with one NUL behind
  EXPECT_EQ("/games\0"s, initialDir);
  EXPECT_EQ(nullptr, seen.lpstrFilter);  // never set: no text
  EXPECT_EQ(nullptr, seen.lpstrCustomFilter);
  EXPECT_EQ(nullptr, seen.lpstrFileTitle);
  EXPECT_EQ(nullptr, seen.lpstrDefExt);
  EXPECT_EQ(nullptr, seen.lpTemplateName);
  EXPECT_EQ(nullptr, seen.lpfnHook);
  EXPECT_EQ(65535u, seen.nMaxFile);
  EXPECT_EQ(uint32_t{OFN_HIDEREADONLY}, seen.Flags);
  EXPECT_EQ(3u, seen.nFilterIndex);
  // Copied back at the same length.
  EXPECT_EQ("a\0b"s, fd.WindowTitle());
}

TEST_F(FileDialogTest, ObjectOwnerAsksTheObjectForItsHandle) {
  OwnerWindow window;
  const int32_t handle = HandleOfWindow(&window);
  fd.ObjectOwner(&window);
  EXPECT_EQ(handle, fd.Record().hwndOwner);
  int32_t seen = 0;
  Dialog(0, "", [&](OPENFILENAMEA* ofn) { seen = ofn->hwndOwner; });
  std::string filename;
  fd.FileOpen(filename);
  EXPECT_EQ(handle, seen);
  EXPECT_EQ(&window, WindowOfHandle(seen));

  // Asked by name: a property set at run time answers too.
  QObject plain;
  plain.setProperty("hWnd", 77);
  fd.ObjectOwner(&plain);
  EXPECT_EQ(77, fd.Record().hwndOwner);

  // The object is not kept.
  {
    QObject gone;
    gone.setProperty("hWnd", 78);
    fd.ObjectOwner(&gone);
  }
  EXPECT_EQ(78, fd.Record().hwndOwner);
}

TEST_F(FileDialogTest, ObjectOwnerWithoutAUsableHandleGivesNoOwner) {
  QObject none;
  fd.ObjectOwner(&none);
  EXPECT_EQ(0, fd.Record().hwndOwner);
  QObject text;
  text.setProperty("hWnd", "window");
  fd.ObjectOwner(&text);
  EXPECT_EQ(0, fd.Record().hwndOwner);
  QObject wide;
  wide.setProperty("hWnd", qlonglong{1} << 40);
  fd.ObjectOwner(&wide);
  EXPECT_EQ(0, fd.Record().hwndOwner);
  fd.ObjectOwner(nullptr);
  EXPECT_EQ(0, fd.Record().hwndOwner);
}

TEST_F(FileDialogTest, FileOpenStartsOnAnEmptyBuffer) {
  std::string first, second;
  Dialog(1, "/games/a.grf\0"s,
         [&](OPENFILENAMEA* ofn) { (calls == 1 ? first : second) = Raw(ofn->lpstrFile, 65536); });
  Open("/old/name.grf", true);
  Open("/old/name.grf", true);
  // Neither the blanks of a new object nor the last choice nor Filename reach the dialog.
  EXPECT_EQ(std::string(65536, '\0'), first);
  EXPECT_EQ(std::string(65536, '\0'), second);
}

// What the dialog returns and leaves in the buffer, against Filename before and after.
struct OpenCase {
  const char* what;
  int32_t returned;
  std::string buffer, before, after;
  bool result;
};

TEST_F(FileDialogTest, FileOpenReadsTheBufferIntoFilename) {
  const OpenCase cases[] = {
      {"cancel", 0, "", "/old", "/old", false},
      {"one file", 1, "/games/a.grf\0"s, "", "/games/a.grf", true},
      {"one file replaces", 1, "/games/a.grf\0"s, "/a/much/longer/name/before.grf", "/games/a.grf",
       true},
      {"blanks trimmed in front only", 1, "   /games/my file.grf  \0"s, "", "/games/my file.grf  ",
       true},
      {"blanks alone", 1, "      \0"s, "/old", "/old", false},
      {"empty first piece, confirmed", 1, "\0/games/a.grf\0"s, "/old", "/old", false},
      {"several", 1, "/games\0a.grf\0b.grf\0\0"s, "", "/games/a.grf|/games/b.grf", true},
      {"several, folder with separator", 1, "/games/\0a.grf\0b.grf\0\0"s, "",
       "/games/a.grf|/games/b.grf", true},
      {"several in the root", 1, "/\0a.grf\0b.grf\0\0"s, "", "/a.grf|/b.grf", true},
      {"empty pieces skipped", 1, "/games\0a.grf\0\0\0b.grf\0"s, "", "/games/a.grf|/games/b.grf",
       true},
      // The old text stays in front, less its first character.
      {"several, not cleared first", 1, "/games\0a.grf\0b.grf\0\0"s, "old",
       "ld|/games/a.grf|/games/b.grf", true},
      {"second piece ends the first", 1, "/games/a.grf\0a.grf\0"s, "", "/games/a.grf", true},
      {"second piece longer", 1, "ab\0xab\0"s, "", "ab/xab", true},
      // What an overfull selection leaves: the size it needed.
      {"failed with text", 0, "\xFF\xFF\0"s, "/old", "\xFF\xFF", false},
      {"failed with a list", 0, "/games\0a.grf\0b.grf\0\0"s, "", "/games/a.grf|/games/b.grf",
       false},
  };
  for (const OpenCase& c : cases) {
    Dialog(c.returned, c.buffer);
    EXPECT_EQ(c.after, Open(c.before, c.result)) << c.what;
  }
}

TEST_F(FileDialogTest, FileOpenTakesNamesBeyondSixteenBitsOfPieces) {
  // A name behind 39,999 empty pieces, at piece 40,000.
  std::string buffer = "/d\0a"s + std::string(39999, '\0') + "z";
  Dialog(1, buffer);
  EXPECT_EQ("/d/a|/d/z", Open("", true));

  // The fullest list the buffer holds: 32,766 one-letter names in the root, up to the last byte.
  buffer = "/\0"s;
  std::string expected;
  for (int i = 0; i < 32766; ++i) {
    buffer += static_cast<char>('a' + i % 26);
    buffer += '\0';
    expected += "|/"s + static_cast<char>('a' + i % 26);
  }
  ASSERT_EQ(65534u, buffer.size());
  Dialog(1, buffer);
  EXPECT_EQ(expected.substr(1), Open("", true));
}

TEST_F(FileDialogTest, FileOpenBufferWithoutNulIsOnePath) {
  Dialog(1, std::string(65535, 'x'));
  EXPECT_EQ(std::string(65535, 'x'), Open("", true));
}

TEST_F(FileDialogTest, FileSaveOnANewObjectShowsNoName) {
  std::string seen;
  Dialog(1, "/games/new.grf\0"s, [&](OPENFILENAMEA* ofn) { seen = Raw(ofn->lpstrFile, 65536); });
  std::string filename = "/old.grf";
  EXPECT_TRUE(fd.FileSave(filename));
  EXPECT_EQ("\0"s + std::string(65534, ' ') + "\0"s, seen);
  EXPECT_EQ("/games/new.grf", filename);
}

TEST_F(FileDialogTest, FileSaveOpensOnTheLastFileAndFilter) {
  fd.Filter(kCallersFilter);
  Dialog(1, "/games/a.grf\0"s, [](OPENFILENAMEA* ofn) { ofn->nFilterIndex = 2; });
  Open("", true);

  std::string name;
  uint32_t index = 0;
  Dialog(0, "", [&](OPENFILENAMEA* ofn) {
    name = ofn->lpstrFile;
    index = ofn->nFilterIndex;
  });
  std::string filename = "/kept.grf";
  EXPECT_FALSE(fd.FileSave(filename));
  EXPECT_EQ("/games/a.grf", name);
  EXPECT_EQ(2u, index);
  EXPECT_EQ("/kept.grf", filename);
}

TEST_F(FileDialogTest, FileSaveFalseLeavesFilenameWhateverTheBuffer) {
  Dialog(0, "/games/typed.grf\0"s);
  std::string filename = "/kept.grf";
  EXPECT_FALSE(fd.FileSave(filename));
  EXPECT_EQ("/kept.grf", filename);
}

TEST_F(FileDialogTest, FileSaveTakesTheBufferUpToItsFirstNul) {
  // A save buffer is not trimmed.
  Dialog(1, " /games/b.grf\0tail\0"s);
  std::string filename;
  EXPECT_TRUE(fd.FileSave(filename));
  EXPECT_EQ(" /games/b.grf", filename);
}

TEST_F(FileDialogTest, DialogWritesFilterIndexFlagsAndOffsetsBack) {
  fd.Flags(OFN_HIDEREADONLY);
  Dialog(1, "/games/a.grf\0"s, [](OPENFILENAMEA* ofn) {
    ofn->nFilterIndex = 2;
    ofn->Flags |= OFN_READONLY;
    ofn->nFileOffset = 7;
    ofn->nFileExtension = 0xFFFF;
  });
  Open("", true);
  EXPECT_EQ(2, fd.FilterIndex());
  EXPECT_EQ(OFN_HIDEREADONLY | OFN_READONLY, fd.Flags());
  EXPECT_EQ(7, fd.Record().nFileOffset);
  EXPECT_EQ(-1, fd.Record().nFileExtension);

  uint32_t index = 0, flags = 0;
  Dialog(0, "", [&](OPENFILENAMEA* ofn) {
    index = ofn->nFilterIndex;
    flags = ofn->Flags;
  });
  Open("", false);
  EXPECT_EQ(2u, index);
  EXPECT_EQ(uint32_t{OFN_HIDEREADONLY | OFN_READONLY}, flags);
}

// --- Qt's file dialog, unshown ---------------------------------------------------------------

TEST(QtFileDialog, NameFilters) {
  const std::string callers = "Transport Tycoon GRF file (*.grf)\0*.grf\0All files (*.*)\0*.*\0\0"s;
  EXPECT_EQ(QStringList({"Transport Tycoon GRF file (*.grf) (*.grf)", "All files (*.*) (*)"}),
            NameFiltersOf(callers.c_str()));
  EXPECT_EQ(QStringList({"Pictures (*.bmp *.dib)"}),
            NameFiltersOf("Pictures\0*.bmp;*.dib\0\0"s.c_str()));
  EXPECT_EQ(QStringList({"Text (*.txt)"}), NameFiltersOf("Text\0*.txt\0Lone\0\0"s.c_str()));
  EXPECT_TRUE(NameFiltersOf("\0\0"s.c_str()).isEmpty());
  EXPECT_TRUE(NameFiltersOf(nullptr).isEmpty());
}

TEST(QtFileDialog, ConfigureOpen) {
  QTemporaryDir dir;
  ASSERT_TRUE(dir.isValid());
  const std::string filter = "Transport Tycoon GRF file (*.grf)\0*.grf\0All files (*.*)\0*.*\0\0"s;
  const std::string initialDir = QFile::encodeName(dir.path()).toStdString();
  std::string file(65536, '\0');
  OPENFILENAMEA ofn;
  ofn.lpstrFilter = filter.c_str();
  ofn.lpstrInitialDir = initialDir.c_str();
  ofn.lpstrTitle = "Open a GRF file...";
  ofn.lpstrFile = file.data();
  ofn.nMaxFile = 65535;
  ofn.Flags = OFN_HIDEREADONLY;

  QFileDialog dialog;
  ConfigureFileDialog(dialog, ofn, false);
  EXPECT_TRUE(dialog.testOption(QFileDialog::DontUseNativeDialog));
  EXPECT_EQ(QFileDialog::AcceptOpen, dialog.acceptMode());
  EXPECT_EQ(QFileDialog::AnyFile, dialog.fileMode());  // a name that does not exist may come back
  EXPECT_EQ("Open a GRF file...", dialog.windowTitle());
  EXPECT_EQ(QDir(dir.path()), dialog.directory());
  EXPECT_EQ(NameFiltersOf(filter.c_str()), dialog.nameFilters());
  // The description is shown as written.
  EXPECT_EQ("Transport Tycoon GRF file (*.grf)", dialog.selectedNameFilter());
  EXPECT_EQ(1, SelectedFilterIndex(dialog));  // index 0: the first

  for (const auto& [index, expected] :
       std::initializer_list<std::pair<uint32_t, int32_t>>{{1, 1}, {2, 2}, {3, 1}, {~0u, 1}}) {
    ofn.nFilterIndex = index;
    QFileDialog again;
    ConfigureFileDialog(again, ofn, false);
    EXPECT_EQ(expected, SelectedFilterIndex(again)) << index;
  }

  ofn.Flags = OFN_FILEMUSTEXIST;
  QFileDialog existing;
  ConfigureFileDialog(existing, ofn, false);
  EXPECT_EQ(QFileDialog::ExistingFile, existing.fileMode());
  ofn.Flags = OFN_ALLOWMULTISELECT;
  QFileDialog several;
  ConfigureFileDialog(several, ofn, false);
  EXPECT_EQ(QFileDialog::ExistingFiles, several.fileMode());
}

TEST(QtFileDialog, ConfigureSave) {
  QTemporaryDir dir;
  ASSERT_TRUE(dir.isValid());
  const std::string last = QFile::encodeName(dir.filePath("last.grf")).toStdString();
  std::string file = last + std::string(65536 - last.size(), '\0');
  OPENFILENAMEA ofn;
  ofn.lpstrFile = file.data();
  ofn.nMaxFile = 65535;

  QFileDialog dialog;
  ConfigureFileDialog(dialog, ofn, true);
  EXPECT_EQ(QFileDialog::AcceptSave, dialog.acceptMode());
  EXPECT_EQ("Save As", dialog.windowTitle());
  EXPECT_TRUE(dialog.testOption(QFileDialog::DontConfirmOverwrite));
  EXPECT_EQ(QDir(dir.path()), dialog.directory());  // opens where the last name is
  EXPECT_EQ(QStringList{dir.filePath("last.grf")}, dialog.selectedFiles());

  ofn.Flags = OFN_OVERWRITEPROMPT;
  QFileDialog asking;
  ConfigureFileDialog(asking, ofn, true);
  EXPECT_FALSE(asking.testOption(QFileDialog::DontConfirmOverwrite));
}

class QtFinishTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(dir.isValid());
    before = QDir::currentPath();
    ofn.lpstrFile = file.data();
    ofn.nMaxFile = 65535;
    ofn.nFilterIndex = 1;
  }
  void TearDown() override { QDir::setCurrent(before); }

  QTemporaryDir dir;
  QString before;
  std::string file = std::string(65536, '\0');
  OPENFILENAMEA ofn;
};

TEST_F(QtFinishTest, OneFile) {
  const QString path = dir.filePath("name.grf");
  EXPECT_EQ(1, FinishFileDialog(&ofn, {path}, 2));
  const std::string expected = QFile::encodeName(path).toStdString();
  EXPECT_EQ(expected + '\0', file.substr(0, expected.size() + 1));
  EXPECT_EQ(expected.size() - 8, ofn.nFileOffset);
  EXPECT_EQ(expected.size() - 3, ofn.nFileExtension);
  EXPECT_EQ(2u, ofn.nFilterIndex);
  // The current directory follows the choice.
  EXPECT_EQ(QDir(dir.path()), QDir(QDir::currentPath()));
}

TEST_F(QtFinishTest, NoChangeDirKeepsTheCurrentDirectory) {
  ofn.Flags = OFN_NOCHANGEDIR;
  EXPECT_EQ(1, FinishFileDialog(&ofn, {dir.filePath("name.grf")}, 0));
  EXPECT_EQ(before, QDir::currentPath());
  EXPECT_EQ(1u, ofn.nFilterIndex);  // 0: no filter to write back
}

TEST_F(QtFinishTest, SeveralFiles) {
  EXPECT_EQ(1, FinishFileDialog(&ofn, {dir.filePath("a.grf"), dir.filePath("b.grf")}, 1));
  const std::string folder = QFile::encodeName(dir.path()).toStdString();
  const std::string expected = folder + "\0a.grf\0b.grf\0\0"s;
  EXPECT_EQ(expected, file.substr(0, expected.size()));
  EXPECT_EQ(folder.size() + 1, ofn.nFileOffset);

  file.assign(65536, '\0');
  ofn.Flags = OFN_NOCHANGEDIR;
  EXPECT_EQ(1, FinishFileDialog(&ofn, {"/a.grf", "/b.grf"}, 1));
  EXPECT_EQ("/\0a.grf\0b.grf\0\0"s, file.substr(0, 15));
}

TEST_F(QtFinishTest, SelectionThatDoesNotFitFails) {
  const QString path = dir.filePath("name.grf");
  const size_t needed = QFile::encodeName(path).size() + 1;
  ofn.nMaxFile = static_cast<uint32_t>(needed - 1);
  EXPECT_EQ(0, FinishFileDialog(&ofn, {path}, 2));
  EXPECT_EQ(static_cast<char>(needed & 0xFF), file[0]);
  EXPECT_EQ(static_cast<char>(needed >> 8), file[1]);
  EXPECT_EQ('\0', file[2]);
  EXPECT_EQ(1u, ofn.nFilterIndex);
  EXPECT_EQ(before, QDir::currentPath());

  ofn.nMaxFile = static_cast<uint32_t>(needed);  // exactly fits
  EXPECT_EQ(1, FinishFileDialog(&ofn, {path}, 2));

  // Past 16 bits the size stays at its largest.
  QStringList many;
  for (int i = 0; i < 7000; ++i) many << QStringLiteral("/d/name%1.grf").arg(i, 5, 10, QChar('0'));
  ofn.nMaxFile = 65535;
  EXPECT_EQ(0, FinishFileDialog(&ofn, many, 1));
  EXPECT_EQ("\xFF\xFF"s, file.substr(0, 2));
}

TEST_F(QtFinishTest, NothingChosenOrNoBuffer) {
  EXPECT_EQ(0, FinishFileDialog(&ofn, {}, 1));
  EXPECT_EQ(std::string(65536, '\0'), file);
  ofn.lpstrFile = nullptr;
  EXPECT_EQ(0, FinishFileDialog(&ofn, {dir.filePath("a.grf")}, 1));
  EXPECT_EQ(0, FinishFileDialog(nullptr, {dir.filePath("a.grf")}, 1));
}

TEST_F(QtFinishTest, ExtensionDifferentFromTheDefault) {
  ofn.lpstrDefExt = "grf";
  ofn.Flags = OFN_NOCHANGEDIR;
  FinishFileDialog(&ofn, {dir.filePath("a.pcx")}, 1);
  EXPECT_EQ(uint32_t{OFN_NOCHANGEDIR | OFN_EXTENSIONDIFFERENT}, ofn.Flags);
  FinishFileDialog(&ofn, {dir.filePath("a.GRF")}, 1);
  EXPECT_EQ(uint32_t{OFN_NOCHANGEDIR}, ofn.Flags);
}

// --- clsBrowseForFolderDialog and BrowseCallbackProc ----------------------------------------

class FolderDialogTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ops.LocalAlloc = [this](uint32_t flags, size_t size) -> void* {
      log.push_back("alloc " + std::to_string(flags) + " " + std::to_string(size));
      if (allocFails) return nullptr;
      block.assign(size, 'x');  // not zero-filled, so the NUL behind the path must be written
      return block.data();
    };
    ops.LocalFree = [this](void* p) -> void* {
      log.push_back(p == block.data() ? "free block" : "free other");
      return nullptr;
    };
    ops.SHBrowseForFolder = [this](BROWSEINFOA* bi) -> ITEMIDLIST* {
      log.push_back("browse");
      seen = *bi;
      title = Raw(bi->lpszTitle, windowTitleLength);
      atBrowse = bi->lParam != 0 ? Raw(reinterpret_cast<const char*>(bi->lParam), 261) : "<null>";
      if (bi->lpfn != nullptr) callbackResult = bi->lpfn(4242, BFFM_INITIALIZED, 0, bi->lParam);
      return chosen;
    };
    ops.SHGetPathFromIDList = [this](ITEMIDLIST* item, char* buffer) {
      log.push_back(item == chosen ? "path" : "path of other");
      pathBuffer = Raw(buffer, 261);
      std::memcpy(buffer, written.data(), written.size());
      return pathResult;
    };
    ops.CoTaskMemFree = [this](ITEMIDLIST* item) {
      log.push_back(item == chosen ? "free item" : "free other item");
    };
    ops.SendMessageA = [this](int32_t hwnd, uint32_t msg, intptr_t wParam, intptr_t lParam) {
      log.push_back("send " + std::to_string(hwnd) + " " + std::to_string(msg) + " " +
                    std::to_string(wParam) + " " + (lParam == seen.lParam ? "block" : "other"));
      return intptr_t{0};
    };
    SetFolderBrowserOps(ops);
  }
  void TearDown() override { SetFolderBrowserOps({}); }

  // The browser confirms `item`, whose path is written as `text` with the given result.
  void Choose(const std::string& text, int32_t result = 1) {
    chosen = &item;
    written = text;
    pathResult = result;
  }

  clsBrowseForFolderDialog fd;
  FolderBrowserOps ops;
  std::vector<std::string> log;
  std::vector<char> block;
  bool allocFails = false;
  ITEMIDLIST item{"/games"};
  ITEMIDLIST* chosen = nullptr;
  std::string written;
  int32_t pathResult = 0;
  BROWSEINFOA seen;
  size_t windowTitleLength = 18;
  std::string title, atBrowse, pathBuffer;
  int32_t callbackResult = -1;
};

std::string Padded(const std::string& text) {
  return text + std::string(260 - text.size(), ' ') + '\0';
}

TEST_F(FolderDialogTest, StartValues) {
  EXPECT_EQ("/", fd.InitialDirectory());
  EXPECT_EQ("Select a folder:", fd.WindowMessage());
  const BROWSEINFO& r = fd.Record();
  EXPECT_EQ(0, r.hwndOwner);
  EXPECT_EQ(nullptr, r.pidlRoot);
  EXPECT_FALSE(r.pszDisplayName.has_value());
  EXPECT_FALSE(r.lpszTitle.has_value());
  EXPECT_EQ(0, r.ulFlags);
  EXPECT_EQ(nullptr, r.lpfn);
  EXPECT_EQ(0, r.lParam);
  EXPECT_EQ(0, r.iImage);

  // A new object opens on "/" with its line.
  std::string path;
  fd.FolderDialog(path);
  EXPECT_EQ(Padded("/"), atBrowse);
  EXPECT_EQ("Select a folder:\0\0"s, title);
}

TEST_F(FolderDialogTest, InitialDirectoryGetsOneFinalSeparator) {
  fd.InitialDirectory("/usr/share");
  EXPECT_EQ("/usr/share/", fd.InitialDirectory());
  fd.InitialDirectory("/usr/share/");
  EXPECT_EQ("/usr/share/", fd.InitialDirectory());
  fd.InitialDirectory("");
  EXPECT_EQ("/", fd.InitialDirectory());
  const std::string longDir = "/" + std::string(299, 'd');
  fd.InitialDirectory(longDir);
  EXPECT_EQ(longDir + "/", fd.InitialDirectory());  // stored whole
}

TEST_F(FolderDialogTest, WindowMessage) {
  fd.WindowMessage("Pick the game's folder");
  EXPECT_EQ("Pick the game's folder", fd.WindowMessage());
  fd.WindowMessage("");
  EXPECT_EQ("", fd.WindowMessage());
  windowTitleLength = 2;
  std::string path;
  fd.FolderDialog(path);
  EXPECT_EQ("\0\0"s, title);  // one NUL of its own, one for the platform
  EXPECT_EQ("\0"s, *fd.Record().lpszTitle);
}

TEST_F(FolderDialogTest, BrowseRecordPerKind) {
  OwnerWindow window;
  fd.ObjectOwner(&window);
  std::string path;
  fd.NewFolderDialog(path);
  EXPECT_EQ(HandleOfWindow(&window), seen.hwndOwner);
  EXPECT_EQ(nullptr, seen.pidlRoot);
  EXPECT_EQ(nullptr, seen.pszDisplayName);
  EXPECT_EQ(0x43u, seen.ulFlags);
  EXPECT_EQ(&BrowseCallbackProc, seen.lpfn);
  EXPECT_EQ(reinterpret_cast<intptr_t>(block.data()), seen.lParam);
  EXPECT_EQ(0x43, fd.Record().ulFlags);

  fd.FolderDialog(path);
  EXPECT_EQ(0u, seen.ulFlags);
  EXPECT_EQ(0, fd.Record().ulFlags);
}

TEST_F(FolderDialogTest, SelectionBlockIsTheDirectoryPaddedAndCut) {
  fd.InitialDirectory("/usr/share/games");
  std::string path;
  fd.FolderDialog(path);
  EXPECT_EQ("alloc 64 261", log.front());
  EXPECT_EQ(Padded("/usr/share/games/"), atBrowse);

  const std::string longDir = "/" + std::string(299, 'd');
  fd.InitialDirectory(longDir);
  fd.FolderDialog(path);
  EXPECT_EQ(longDir.substr(0, 260) + '\0', atBrowse);
}

TEST_F(FolderDialogTest, CallbackSelectsTheBlocksFolder) {
  std::string path;
  fd.FolderDialog(path);
  EXPECT_EQ(0, callbackResult);
  EXPECT_EQ(
      (std::vector<std::string>{"alloc 64 261", "browse", "send 4242 1126 -1 block", "free block"}),
      log);
}

TEST_F(FolderDialogTest, CallbackIgnoresOtherEvents) {
  for (uint32_t msg : {0u, BFFM_SELCHANGED, 3u, BFFM_SETSELECTIONA})
    EXPECT_EQ(0, BrowseCallbackProc(7, msg, 123, 456));
  EXPECT_TRUE(log.empty());
  EXPECT_EQ(0, BrowseCallbackProc(7, BFFM_INITIALIZED, 123, 456));
  EXPECT_EQ("send 7 1126 -1 other", log.at(0));
}

TEST_F(FolderDialogTest, ConfirmedFolder) {
  fd.InitialDirectory("/usr");
  Choose("/usr/share/games\0"s);
  std::string path = "/old";
  EXPECT_TRUE(fd.FolderDialog(path));
  EXPECT_EQ("/usr/share/games", path);
  // The path is written over the padded directory: 260 characters and a NUL.
  EXPECT_EQ(Padded("/usr/"), pathBuffer);
  EXPECT_EQ((std::vector<std::string>{"alloc 64 261", "browse", "send 4242 1126 -1 block", "path",
                                      "free item", "free block"}),
            log);
}

TEST_F(FolderDialogTest, PathIsTrimmedAndCutAtItsNul) {
  std::string path;
  Choose("  /games\0"s);
  EXPECT_TRUE(fd.NewFolderDialog(path));
  EXPECT_EQ("/games", path);

  // Without a NUL in its 260 characters the whole text stands, and nothing beyond it is read.
  Choose(std::string(260, 'p'));
  EXPECT_TRUE(fd.FolderDialog(path));
  EXPECT_EQ(std::string(260, 'p'), path);

  Choose("/a b\0 tail"s);  // what stands behind the NUL goes
  EXPECT_TRUE(fd.FolderDialog(path));
  EXPECT_EQ("/a b", path);
}

TEST_F(FolderDialogTest, CancelOverwritesPath) {
  std::string path = "/old";
  EXPECT_FALSE(fd.FolderDialog(path));
  EXPECT_EQ("", path);
  EXPECT_EQ(
      (std::vector<std::string>{"alloc 64 261", "browse", "send 4242 1126 -1 block", "free block"}),
      log);
}

TEST_F(FolderDialogTest, ItemWithoutFileSystemPathIsACancel) {
  Choose("/ignored\0"s, 0);
  std::string path = "/old";
  EXPECT_FALSE(fd.NewFolderDialog(path));
  EXPECT_EQ("", path);
  EXPECT_EQ((std::vector<std::string>{"alloc 64 261", "browse", "send 4242 1126 -1 block", "path",
                                      "free item", "free block"}),
            log);
}

TEST_F(FolderDialogTest, NoSelectionBlockStillBrowses) {
  allocFails = true;
  Choose("/games\0"s);
  std::string path;
  EXPECT_TRUE(fd.FolderDialog(path));
  EXPECT_EQ("/games", path);
  EXPECT_EQ(0, seen.lParam);
  EXPECT_EQ("<null>", atBrowse);
  // The callback passes the empty block on; nothing is freed that was not given.
  EXPECT_EQ((std::vector<std::string>{"alloc 64 261", "browse", "send 4242 1126 -1 block", "path",
                                      "free item"}),
            log);
}

// --- Qt's folder browser, unshown --------------------------------------------------------------

class QtFolderTest : public ::testing::Test {
 protected:
  void SetUp() override { SetFolderBrowserOps({}); }
};

TEST_F(QtFolderTest, PathFromItemList) {
  char buffer[261];
  std::memset(buffer, ' ', sizeof buffer);
  ITEMIDLIST games{"/games"};
  EXPECT_EQ(1, SHGetPathFromIDList(&games, buffer));
  EXPECT_EQ("/games\0 "s, std::string(buffer, 8));

  ITEMIDLIST longest{"/" + std::string(258, 'd')};
  EXPECT_EQ(1, SHGetPathFromIDList(&longest, buffer));
  EXPECT_EQ(longest.path + '\0', std::string(buffer, 260));

  std::memset(buffer, ' ', sizeof buffer);
  ITEMIDLIST tooLong{"/" + std::string(259, 'd')};
  ITEMIDLIST virtualItem{""};
  EXPECT_EQ(0, SHGetPathFromIDList(&tooLong, buffer));
  EXPECT_EQ(0, SHGetPathFromIDList(&virtualItem, buffer));
  EXPECT_EQ(0, SHGetPathFromIDList(nullptr, buffer));
  EXPECT_EQ(std::string(261, ' '), std::string(buffer, 261));
}

TEST_F(QtFolderTest, LocalAllocGivesAZeroFilledBlock) {
  auto* p = static_cast<unsigned char*>(LocalAlloc(LPTR, 261));
  ASSERT_NE(nullptr, p);
  for (int i = 0; i < 261; ++i) ASSERT_EQ(0, p[i]);
  EXPECT_EQ(nullptr, LocalFree(p));
}

TEST_F(QtFolderTest, BrowserItemsAreFreedByCoTaskMemFree) {
  // Under the address sanitizer a leak or a double free here fails the run.
  FolderBrowserOps ops;
  ops.SHBrowseForFolder = [](BROWSEINFOA*) { return new ITEMIDLIST{"/usr/share"}; };
  SetFolderBrowserOps(ops);
  clsBrowseForFolderDialog fd;
  std::string path;
  EXPECT_TRUE(fd.FolderDialog(path));
  EXPECT_EQ("/usr/share", path);
  SetFolderBrowserOps({});
}

TEST_F(QtFolderTest, SelectionMessageOpensTheBrowserOnTheFolder) {
  QTemporaryDir dir;
  ASSERT_TRUE(dir.isValid());
  QFileDialog browser;
  const int32_t hwnd = HandleOfWindow(&browser);
  std::string block = QFile::encodeName(dir.path()).toStdString() + "/";
  block = Padded(block);
  EXPECT_EQ(0,
            SendMessageA(hwnd, BFFM_SETSELECTIONA, -1, reinterpret_cast<intptr_t>(block.data())));
  EXPECT_EQ(QDir(dir.path()), browser.directory());

  // By item, and through the callback.
  ASSERT_TRUE(QDir(dir.path()).mkdir("sub"));
  ITEMIDLIST sub{QFile::encodeName(dir.filePath("sub")).toStdString()};
  SendMessageA(hwnd, BFFM_SETSELECTIONA, 0, reinterpret_cast<intptr_t>(&sub));
  EXPECT_EQ(QDir(dir.filePath("sub")), browser.directory());
  EXPECT_EQ(
      0, BrowseCallbackProc(hwnd, BFFM_INITIALIZED, 0, reinterpret_cast<intptr_t>(block.data())));
  EXPECT_EQ(QDir(dir.path()), browser.directory());

  // A folder whose name ends in a blank is taken as it is.
  ASSERT_TRUE(QDir(dir.path()).mkdir("blank "));
  const std::string blank = QFile::encodeName(dir.filePath("blank ")).toStdString();
  SendMessageA(hwnd, BFFM_SETSELECTIONA, 1, reinterpret_cast<intptr_t>(blank.c_str()));
  EXPECT_EQ(QDir(dir.filePath("blank ")), browser.directory());

  // No path, another message or no browser: nothing happens.
  EXPECT_EQ(0, BrowseCallbackProc(hwnd, BFFM_INITIALIZED, 0, 0));
  EXPECT_EQ(0, SendMessageA(hwnd, BFFM_SELCHANGED, -1, reinterpret_cast<intptr_t>(block.data())));
  EXPECT_EQ(QDir(dir.filePath("blank ")), browser.directory());
  EXPECT_EQ(0, SendMessageA(0, BFFM_SETSELECTIONA, -1, reinterpret_cast<intptr_t>(block.data())));
  QWidget notABrowser;
  EXPECT_EQ(0, SendMessageA(HandleOfWindow(&notABrowser), BFFM_SETSELECTIONA, -1,
                            reinterpret_cast<intptr_t>(block.data())));
}

TEST_F(QtFolderTest, ConfigureBrowserPerKind) {
  BROWSEINFOA bi;
  bi.lpszTitle = "Select a folder:";
  bi.ulFlags = 0x43;
  QFileDialog newStyle;
  ConfigureFolderBrowser(newStyle, bi);
  EXPECT_EQ(QFileDialog::Directory, newStyle.fileMode());
  EXPECT_TRUE(newStyle.testOption(QFileDialog::ShowDirsOnly));
  EXPECT_TRUE(newStyle.testOption(QFileDialog::DontUseNativeDialog));
  EXPECT_FALSE(newStyle.testOption(QFileDialog::ReadOnly));
  // The message is the line above the tree, not the title.
  EXPECT_EQ("Browse For Folder", newStyle.windowTitle());
  auto* message = newStyle.findChild<QLabel*>("message");
  ASSERT_NE(message, nullptr);
  EXPECT_EQ("Select a folder:", message->text());
  newStyle.resize(600, 400);
  newStyle.layout()->activate();
  for (QWidget* w : newStyle.findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
    if (w == message || !w->isVisibleTo(&newStyle)) continue;
    EXPECT_GE(w->y(), message->geometry().bottom());
  }

  bi.ulFlags = 0;
  bi.lpszTitle = "";
  QFileDialog plain;
  ConfigureFolderBrowser(plain, bi);
  EXPECT_TRUE(plain.testOption(QFileDialog::ReadOnly));
  EXPECT_EQ("Browse For Folder", plain.windowTitle());
  EXPECT_EQ(plain.findChild<QLabel*>("message"), nullptr);
  EXPECT_EQ(QDir(QDir::rootPath()), plain.directory());
}

}  // namespace

int main(int argc, char** argv) {
  // Nothing here is shown; the offscreen platform also serves the listing of the tests.
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication app(argc, argv);
  ::testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}

#include "test_dialogs.moc"
