// The program on the desktop: the GRF type that file managers learn from data/vossel-mime.xml,
// and files dropped on frmMain.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include <QApplication>
#include <QDropEvent>
#include <QMimeData>
#include <QMimeDatabase>
#include <QUrl>

#include "desktop.h"
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
  for (const auto& [name, bytes, grf] : {std::tuple{"m.grf", uitest::FiveSprites(), true},
                                         {"M.GRF", uitest::FiveSprites(), true},
                                         {"m-v2", v2, true},
                                         {"m-almost", almost, false}})
    EXPECT_EQ(db.mimeTypeForFile(TempUrl(name, bytes).toLocalFile()).name() == kGrfMimeType, grf)
        << name;
  // The desktop entry offers the program for that type and hands it the file.
  std::ifstream file(fs::path(VOSSEL_SOURCE_DIR) / "data" / "vossel.desktop");
  const std::string entry(std::istreambuf_iterator<char>(file), {});
  EXPECT_NE(entry.find(std::string("\nMimeType=") + kGrfMimeType + ";\n"), std::string::npos);
  EXPECT_NE(entry.find("\nExec=vossel %f\n"), std::string::npos);
}

TEST(Desktop, ADroppedGrfFileLoadsAsOpenDoesAndNothingElseIsTaken) {
  uitest::StartedForm opened, dropped;
  uitest::WindowLog openLog(opened.Form.get()), dropLog(dropped.Form.get());
  // Loaded as Open loads the file its dialog gives.
  const QUrl grf = QUrl::fromLocalFile(
      QString::fromStdString(opened.Load("dropped.grf", uitest::FiveSprites())));
  const QUrl text = TempUrl("dropped.txt", {'h', 'i'});
  for (const QList<QUrl>& refused :
       {QList<QUrl>{grf, grf}, {text}, {QUrl(QStringLiteral("https://example.org/a.grf"))}, {}})
    EXPECT_FALSE(Drop(*dropped, refused)) << refused.size();
  EXPECT_TRUE(dropLog.Entries.empty());
  EXPECT_TRUE(Drop(*dropped, {grf}));
  EXPECT_EQ(dropLog.Entries, openLog.Entries);
  EXPECT_EQ(Caption(dropped->lblStatus), Caption(opened->lblStatus));
  EXPECT_EQ(dropped->Store.SpriteData, opened->Store.SpriteData);
}
