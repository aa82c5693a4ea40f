// The program on the desktop: the GRF type that file managers learn from data/vossel-mime.xml,
// files dropped on frmMain, Help > About and --version of both programs.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <QAction>
#include <QApplication>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QMimeData>
#include <QMimeDatabase>
#include <QProcess>
#include <QUrl>

#include "desktop.h"
#include "filedialog.h"
#include "listbox.h"
#include "ui_support.h"

namespace {

namespace fs = std::filesystem;

// The MIME definition in a user's own data folder, as if installed there; made before anything
// asks the MIME database, which reads its folders once.
struct MimeHome {
  uitest::TempFolder Home{"mime"};
  MimeHome() {
    fs::create_directories(Home.Path / "mime" / "packages");
    fs::copy_file(fs::path(VOSSEL_SOURCE_DIR) / "data" / "vossel-mime.xml",
                  Home.Path / "mime" / "packages" / "vossel.xml");
    setenv("XDG_DATA_HOME", Home.Path.c_str(), 1);
  }
} const kMimeHome;

const grfw::Bytes kSignature = {0x00, 0x00, 'G', 'R', 'F', 0x82, 0x0D, 0x0A, 0x1A, 0x0A};

std::string ReadText(const fs::path& path) {
  std::ifstream in(path);
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

// Sends a drag onto the window and, when it is taken, the drop; then lets a deferred load run.
bool Drop(frmMain& form, QMimeData& data) {
  const QPoint middle = form.rect().center();
  QDragEnterEvent enter(middle, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(&form, &enter);
  QDropEvent drop(middle, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  drop.setAccepted(false);
  if (enter.isAccepted()) QApplication::sendEvent(&form, &drop);
  QApplication::processEvents();
  return enter.isAccepted() && drop.isAccepted();
}

QString RunProgram(const QString& program, const QStringList& args, int& status) {
  QProcess process;
  process.start(program, args);
  EXPECT_TRUE(process.waitForFinished(20000));
  status = process.exitCode();
  return QString::fromLocal8Bit(process.readAllStandardOutput()).trimmed();
}

}  // namespace

TEST(Desktop, MimeDefinitionKnowsGrfFilesByNameAndVersion2BySignature) {
  const grfw::Bytes v2 = [] {
    grfw::Bytes b = kSignature;
    b.resize(40, 0);
    return b;
  }();
  grfw::Bytes almost = v2;
  almost[5] = 0x83;
  const struct {
    const char* Name;
    grfw::Bytes Bytes;
    bool Grf;
  } cases[] = {
      {"mime-v1.grf", uitest::FiveSprites(), true},
      {"MIME-UPPER.GRF", uitest::FiveSprites(), true},
      {"mime-v2-unnamed", v2, true},
      {"mime-almost-v2", almost, false},
      {"mime-notes.txt", {'h', 'i', '\n'}, false},
  };
  const QMimeDatabase db;
  for (const auto& c : cases) {
    const QString path = QString::fromStdString(grfw::WriteTemp(c.Name, c.Bytes));
    EXPECT_EQ(db.mimeTypeForFile(path).name() == kGrfMimeType, c.Grf) << c.Name;
  }
  // The desktop entry offers the program for that type and hands it the file.
  const std::string entry = ReadText(fs::path(VOSSEL_SOURCE_DIR) / "data" / "vossel.desktop");
  EXPECT_NE(entry.find(std::string("\nMimeType=") + kGrfMimeType + ";\n"), std::string::npos);
  EXPECT_NE(entry.find("\nExec=vossel %f\n"), std::string::npos);
}

TEST(Desktop, ADroppedGrfFileLoadsAsOpenDoes) {
  const std::string grf = grfw::WriteTemp("dropped.grf", uitest::FiveSprites());
  // Open, with a dialog that gives the file's name.
  uitest::StartedForm opened;
  SetFileDialogOps({[&](OPENFILENAMEA* ofn) -> int32_t {
                      std::strcpy(ofn->lpstrFile, grf.c_str());
                      return 1;
                    },
                    {}});
  uitest::WindowLog openLog(opened.Form.get());
  opened->mnuOpen_Click();
  SetFileDialogOps({});

  uitest::StartedForm dropped;
  uitest::WindowLog dropLog(dropped.Form.get());
  QMimeData data;
  data.setUrls({QUrl::fromLocalFile(QString::fromStdString(grf))});
  EXPECT_TRUE(Drop(*dropped, data));

  EXPECT_EQ(dropLog.Entries, openLog.Entries);
  EXPECT_EQ(Caption(dropped.Form.get()), "Viewing sprite 1 (2 x 2)");
  EXPECT_EQ(Caption(dropped->lblStatus), Caption(opened->lblStatus));
  EXPECT_EQ(dropped->Store.SpriteData, opened->Store.SpriteData);
  EXPECT_EQ(dropped->Li->ListCount(), opened->Li->ListCount());
}

TEST(Desktop, DropsOfAnythingButOneGrfFileAreRefused) {
  const QString grf = QString::fromStdString(grfw::WriteTemp("drop-a.grf", uitest::FiveSprites()));
  const QString text = QString::fromStdString(grfw::WriteTemp("drop-a.txt", {'h', 'i'}));
  const fs::path folder = fs::path(grfw::WriteTemp("anchor", {})).parent_path() / "folder.grf";
  fs::create_directories(folder);
  const struct {
    const char* Why;
    QList<QUrl> Urls;
  } cases[] = {
      {"two files", {QUrl::fromLocalFile(grf), QUrl::fromLocalFile(grf)}},
      {"a text file", {QUrl::fromLocalFile(text)}},
      {"a folder", {QUrl::fromLocalFile(QString::fromStdString(folder.string()))}},
      {"a missing file", {QUrl::fromLocalFile(grf + QStringLiteral(".gone.grf"))}},
      {"a remote file", {QUrl(QStringLiteral("https://example.org/a.grf"))}},
      {"no file", {}},
  };
  uitest::StartedForm form;
  for (const auto& c : cases) {
    QMimeData data;
    if (c.Urls.isEmpty())
      data.setText(grf);
    else
      data.setUrls(c.Urls);
    EXPECT_FALSE(Drop(*form, data)) << c.Why;
  }
  EXPECT_EQ(Caption(form.Form.get()), kFormCaption);
  EXPECT_EQ(form->Li->ListCount(), 0);
  EXPECT_TRUE(form->FileName.empty());
  EXPECT_TRUE(form.Boxes.Boxes.empty());
}

TEST(Desktop, AboutAndBothProgramsTellOneVersion) {
  int status = -1;
  const QString cli =
      RunProgram(QStringLiteral(VOSSEL_CLI_PATH), {QStringLiteral("--version")}, status);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(cli, QStringLiteral("vossel-cli " VOSSEL_PROJECT_VERSION));
  const QString gui =
      RunProgram(QStringLiteral(VOSSEL_PATH), {QStringLiteral("--version")}, status);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(gui, QStringLiteral("Vossel " VOSSEL_PROJECT_VERSION));
  RunProgram(QStringLiteral(VOSSEL_PATH), {QStringLiteral("a.grf"), QStringLiteral("b.grf")},
             status);
  EXPECT_EQ(status, 2);

  uitest::StartedForm form;
  form->mnuAbout->trigger();
  ASSERT_EQ(form.Boxes.Boxes.size(), 1u);
  EXPECT_EQ(form.Boxes.Boxes[0].Title, "About Vossel");
  EXPECT_EQ(form.Boxes.Boxes[0].Text.rfind("Vossel " VOSSEL_PROJECT_VERSION "\n", 0), 0u);
}
