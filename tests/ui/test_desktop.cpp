// The program on the desktop: the GRF type that file managers learn from data/vossel-mime.xml,
// and files dropped on frmMain.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include <QApplication>
#include <QDropEvent>
#include <QMimeData>
#include <QMimeDatabase>
#include <QUrl>

#include "desktop.h"
#include "frmMain.h"
#include "ui_support.h"

using namespace vossel;

namespace {

namespace fs = std::filesystem;

// The MIME definition in a user's own data folder, as if installed there; made before anything
// asks the MIME database, which reads its folders once.
struct MimeHome {
  fs::path Home = fs::temp_directory_path() / ("vossel-ui-mime-" + std::to_string(getpid()));
  MimeHome() {
    fs::remove_all(Home);
    fs::create_directories(Home / "mime" / "packages");
    fs::copy_file(fs::path(VOSSEL_SOURCE_DIR) / "data" / "vossel-mime.xml",
                  Home / "mime" / "packages" / "vossel.xml");
    setenv("XDG_DATA_HOME", Home.c_str(), 1);
  }
} const kMimeHome;

// Drags `urls` onto the window and drops them where the drag is taken; then lets a load run.
bool Drop(frmMain& form, const QList<QUrl>& urls) {
  QMimeData data;
  data.setUrls(urls);
  QDragEnterEvent enter(form.rect().center(), Qt::CopyAction, &data, Qt::LeftButton, {});
  QDropEvent drop(form.rect().center(), Qt::CopyAction, &data, Qt::LeftButton, {});
  QApplication::sendEvent(&form, &enter);
  if (enter.isAccepted()) QApplication::sendEvent(&form, &drop);
  QApplication::processEvents();
  return enter.isAccepted() && drop.isAccepted();
}

QUrl TempUrl(const std::string& name, const grfw::Bytes& bytes) {
  return QUrl::fromLocalFile(QString::fromStdString(grfw::WriteTemp(name, bytes)));
}

}  // namespace

TEST(Desktop, MimeDefinitionKnowsGrfFilesByNameAndVersion2BySignature) {
  grfw::Bytes v2 = {0x00, 0x00, 'G', 'R', 'F', 0x82, 0x0D, 0x0A, 0x1A, 0x0A, 0, 0, 0, 0, 0, 0};
  grfw::Bytes almost = v2;
  almost[5] = 0x83;
  const QMimeDatabase db;
  for (const auto& [name, bytes, grf] : {std::tuple{"m.grf", grfw::SeventeenByteFile(), true},
                                         {"M.GRF", grfw::SeventeenByteFile(), true},
                                         {"m-v2", v2, true},
                                         {"m-almost", almost, false}})
    EXPECT_EQ(db.mimeTypeForFile(TempUrl(name, bytes).toLocalFile()).name() == kGrfMimeType, grf)
        << name;
  // The desktop entry offers the program for that type and hands it the file.
  std::ifstream file(fs::path(VOSSEL_SOURCE_DIR) / "data" / "org.vossel.Vossel.desktop");
  const std::string entry(std::istreambuf_iterator<char>(file), {});
  EXPECT_NE(entry.find(std::string("\nMimeType=") + kGrfMimeType + ";\n"), std::string::npos);
  EXPECT_NE(entry.find("\nExec=vossel %f\n"), std::string::npos);
}

TEST(Desktop, ADroppedGrfFileLoadsAsOpenDoesAndNothingElseIsTaken) {
  uitest::Fakes fakes;
  frmMain opened, dropped;
  std::vector<std::string> openLog, dropLog;
  for (const auto& [form, titles] : {std::pair{&opened, &openLog}, {&dropped, &dropLog}}) {
    form->AppPath = VOSSEL_BIN_DIR;
    ASSERT_TRUE(form->Form_Load());
    form->show();
    std::vector<std::string>* log = titles;  // a name the lambda below can capture
    QObject::connect(form, &QWidget::windowTitleChanged, form,
                     [log](const QString& title) { log->push_back(title.toStdString()); });
  }
  // Loaded as Open loads the file its dialog gives.
  fakes.Next = grfw::WriteTemp("dropped.grf", grfw::SeventeenByteFile());
  opened.mnuOpen_Click();
  const QUrl grf = QUrl::fromLocalFile(QString::fromStdString(fakes.Next));
  const QUrl text = TempUrl("dropped.txt", {'h', 'i'});
  for (const QList<QUrl>& refused :
       {QList<QUrl>{grf, grf}, {text}, {QUrl(QStringLiteral("https://example.org/a.grf"))}, {}})
    EXPECT_FALSE(Drop(dropped, refused)) << refused.size();
  EXPECT_TRUE(dropLog.empty());
  EXPECT_TRUE(Drop(dropped, {grf}));
  EXPECT_EQ(dropLog, openLog);
  EXPECT_EQ(Caption(dropped.lblStatus), Caption(opened.lblStatus));
  EXPECT_EQ(uitest::StoreOf(dropped.File).SpriteData, uitest::StoreOf(opened.File).SpriteData);
}
