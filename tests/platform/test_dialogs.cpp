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
  const struct {
    const char* What;
    int32_t Returned;
    std::string Buffer, Before, After;
    bool Result;
  } cases[] = {
      {"cancel", 0, "", "/old", "/old", false},
      {"one file replaces", 1, "/g/a.grf\0"s, "/a/much/longer/name.grf", "/g/a.grf", true},
      {"blanks trimmed in front only", 1, "   /g/my a.grf  \0"s, "", "/g/my a.grf  ", true},
      {"blanks alone", 1, "      \0"s, "/old", "/old", false},
      {"empty first piece", 1, "\0/g/a.grf\0"s, "/old", "/old", false},
      {"several", 1, "/g\0a.grf\0b.grf\0\0"s, "", "/g/a.grf|/g/b.grf", true},
      {"several in the root", 1, "/\0a.grf\0b.grf\0\0"s, "", "/a.grf|/b.grf", true},
      {"empty pieces skipped", 1, "/g\0a.grf\0\0\0b.grf\0"s, "", "/g/a.grf|/g/b.grf", true},
      {"several, not cleared first", 1, "/g\0a.grf\0\0"s, "old", "ld|/g/a.grf", true},
      {"second piece ends the first", 1, "/g/a.grf\0a.grf\0"s, "", "/g/a.grf", true},
      {"failed with a list left", 0, "/g\0a.grf\0b.grf\0\0"s, "", "/g/a.grf|/g/b.grf", false},
      {"no NUL at all", 1, std::string(65535, 'x'), "", std::string(65535, 'x'), true},
      {"a name behind 39,999 empty pieces", 1, "/d\0a"s + std::string(39999, '\0') + "z", "",
       "/d/a|/d/z", true},
  };
  for (const auto& c : cases) {
    Fake(c.Returned, c.Buffer);
    std::string name = c.Before;
    EXPECT_EQ(fd.FileOpen(name), c.Result) << c.What;
    EXPECT_EQ(name, c.After) << c.What;
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
    WhenShown<QMessageBox>([&](QMessageBox* box) {
      EXPECT_EQ(
          std::make_tuple(box->windowTitle(), box->text(), box->icon(), box->buttons().size()),
          std::make_tuple(QString(shownTitle), QString("Text"), shownIcon, qsizetype{1}));
      box->button(QMessageBox::Ok)->click();
      return true;
    });
    MsgBox("Text", title, icon);
  }
}
