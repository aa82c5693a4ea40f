// The dialog wrappers: what the platform's dialog is given and what comes back from its buffer,
// with a fake in its place; and the real Qt dialogs and message box, driven offscreen.
#include <gtest/gtest.h>

#include <cstring>
#include <functional>

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTimer>

#include "case_file.h"
#include "filedialog.h"
#include "folderdialog.h"
#include "hwnd.h"
#include "msgbox.h"

using namespace vossel;

using namespace std::string_literals;

namespace {

// Runs `act` on the modal dialog of that kind once it is shown and `act` says it is done with it.
template <typename Dialog>
void WhenShown(std::function<bool(Dialog*)> act) {
  auto* timer = new QTimer;
  QObject::connect(timer, &QTimer::timeout, [timer, act] {
    auto* dialog = qobject_cast<Dialog*>(QApplication::activeModalWidget());
    if (dialog == nullptr || !act(dialog)) return;
    timer->stop();
    timer->deleteLater();
  });
  timer->start(5);
}

// A case file's text: "-" is none, and "\\*N;" makes N of the character before it.
std::string Text(const std::string& field) {
  const size_t star = field.find("\\*"), end = field.find(';', star);
  if (field == "-" || star == std::string::npos) return field == "-" ? "" : Unescape(field);
  std::string text = Unescape(field.substr(0, star));
  text.append(std::stoul(field.substr(star + 2)) - 1, text.back());
  return text + Text(field.substr(end + 1));
}

class FileDialog : public ::testing::Test {
 protected:
  void TearDown() override { SetFileDialogOps({}); }
  // Both dialogs leave `buffer` at the front of the file buffer and return `result`; what they
  // were handed is kept: the filter list and the file buffer.
  void Fake(int32_t result, const std::string& buffer) {
    const FileDialogProc dialog = [=, this](OPENFILENAMEA* ofn) {
      seen.push_back({"", std::string(ofn->lpstrFile, ofn->nMaxFile + 1)});
      for (const char* p = ofn->lpstrFilter; p && (p[0] || p[1]); ++p) seen.back().first += *p;
      std::memcpy(ofn->lpstrFile, buffer.data(), std::min<size_t>(buffer.size(), ofn->nMaxFile));
      return result;
    };
    SetFileDialogOps({dialog, dialog});
  }
  clsFileDialog fd;
  std::vector<std::pair<std::string, std::string>> seen;
};

}  // namespace

TEST_F(FileDialog, OpenReadsTheBufferIntoTheFileName) {
  for (const std::string& line : CaseLines("platform/file_open_cases.txt")) {
    const std::vector<std::string> f = Fields(line, 6);
    ASSERT_EQ(f.size(), 6u) << line;
    Fake(std::stoi(f[1]), Text(f[2]));
    std::string name = Text(f[3]);
    EXPECT_EQ(fd.FileOpen(name), f[5] == "1") << f[0];
    EXPECT_EQ(name, Text(f[4])) << f[0];
  }
}

TEST_F(FileDialog, SaveTakesTheNameUntrimmed) {
  Fake(1, " /games/b.grf\0tail\0"s);
  std::string name;
  EXPECT_TRUE(fd.FileSave(name));
  EXPECT_EQ(seen.back().second, "\0"s + std::string(65534, ' ') + '\0');  // a new object: no name
  EXPECT_EQ(name, " /games/b.grf");
  fd.Filter("Text|*.txt|");
  fd.FileSave(name);
  EXPECT_EQ(seen.back().first, "Text\0*.txt"s);  // no second NUL of its own
}

TEST(QtDialogs, OpenOnTheRealFileDialog) {
  QTemporaryDir dir;
  QFile(dir.filePath("a.grf")).open(QIODevice::WriteOnly);
  const QString before = QDir::currentPath();
  clsFileDialog fd;
  fd.InitialDirectory(dir.path().toStdString());
  fd.WindowTitle("Open a GRF file...");
  fd.Filter("Transport Tycoon GRF file (*.grf)|*.grf|All files (*.*)|*.*");
  fd.Flags(OFN_HIDEREADONLY);
  WhenShown<QFileDialog>([&](QFileDialog* d) {
    EXPECT_EQ(d->windowTitle(), "Open a GRF file...");
    EXPECT_EQ(d->directory(), QDir(dir.path()));
    EXPECT_EQ(d->nameFilters(),
              QStringList({"Transport Tycoon GRF file (*.grf) (*.grf)", "All files (*.*) (*)"}));
    d->selectNameFilter(d->nameFilters()[1]);
    d->selectFile(dir.filePath("a.grf"));
    static_cast<QDialog*>(d)->accept();  // as the Open button does
    return true;
  });
  std::string name;
  EXPECT_TRUE(fd.FileOpen(name));
  EXPECT_EQ(name, dir.filePath("a.grf").toStdString());
  EXPECT_EQ(fd.FilterIndex(), 2);
  EXPECT_EQ(QDir::current(), QDir(dir.path()));  // where the next dialog opens
  QDir::setCurrent(before);
}

TEST(QtDialogs, FolderBrowserOpensOnTheInitialDirectory) {
  QTemporaryDir dir;
  QDir(dir.path()).mkdir("sub");
  clsBrowseForFolderDialog fd;
  fd.InitialDirectory(dir.path().toStdString());
  fd.WindowMessage("Pick the game's folder");
  EXPECT_EQ(fd.InitialDirectory(), dir.path().toStdString() + "/");
  WhenShown<QFileDialog>([&](QFileDialog* d) {
    if (d->directory() != QDir(dir.path())) return false;  // not yet selected
    // The message is a line above the tree; the title is the browser's own.
    auto* message = d->findChild<QLabel*>("message");
    EXPECT_EQ(d->windowTitle(), "Browse For Folder");
    EXPECT_EQ(message ? message->text() : "", "Pick the game's folder");
    for (const QWidget* w : d->findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
      EXPECT_TRUE(w == message || !w->isVisible() || w->y() >= message->geometry().bottom());
    d->selectFile(dir.filePath("sub"));
    static_cast<QDialog*>(d)->accept();
    return true;
  });
  std::string path = "/old";
  EXPECT_TRUE(fd.NewFolderDialog(path));
  EXPECT_EQ(path, dir.filePath("sub").toStdString());
  WhenShown<QFileDialog>([](QFileDialog* d) { return d->close(); });
  EXPECT_FALSE(fd.FolderDialog(path));
  EXPECT_EQ(path, "");
}

TEST(QtDialogs, MessageBoxShowsItsTextTitleIconAndOneButton) {
  for (const auto& [title, icon, shownTitle, shownIcon] :
       {std::tuple{"", MsgBoxIcon::None, "Vossel", QMessageBox::NoIcon},
        {"Error", MsgBoxIcon::Exclamation, "Error", QMessageBox::Warning},
        {"Error", MsgBoxIcon::Information, "Error", QMessageBox::Information}}) {
    const auto want =
        std::make_tuple(QString(shownTitle), QString("Text"), shownIcon, qsizetype{1});
    WhenShown<QMessageBox>([&](QMessageBox* box) {
      EXPECT_EQ(
          std::make_tuple(box->windowTitle(), box->text(), box->icon(), box->buttons().size()),
          want);
      box->button(QMessageBox::Ok)->click();
      return true;
    });
    MsgBox("Text", title, icon);
  }
}
