// frmMain on the desktop: a file given at start or dropped on the window, and Help > About.
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFile>
#include <QFileInfo>
#include <QMimeData>
#include <QMimeDatabase>
#include <QTimer>
#include <QUrl>

#include "desktop.h"
#include "frmMain.h"
#include "msgbox.h"
#include "text.h"

namespace vossel {

bool IsGrfFile(const QString& path) {
  const QFileInfo info(path);
  if (!info.isFile()) return false;
  return QMimeDatabase().mimeTypeForFile(info).inherits(QString::fromLatin1(kGrfMimeType)) ||
         info.suffix().compare(QStringLiteral("grf"), Qt::CaseInsensitive) == 0;
}

QString DroppedGrfFile(const QMimeData* data) {
  if (data == nullptr || !data->hasUrls()) return {};
  const QList<QUrl> urls = data->urls();
  if (urls.size() != 1 || !urls[0].isLocalFile()) return {};
  const QString path = urls[0].toLocalFile();
  return IsGrfFile(path) ? path : QString();
}

std::string AboutText() {
  return std::string(kAppTitle) + " " + kAppVersion +
         "\n\nLooks into GRF files, the sprite collections of Transport Tycoon Deluxe and "
         "TTDPatch.\n\nBuilt with Qt " QT_VERSION_STR ".";
}

void frmMain::OpenFile(const std::string& path) {
  FileName = path;
  LoadGRF();
}

void frmMain::dragEnterEvent(QDragEnterEvent* event) {
  if (!DroppedGrfFile(event->mimeData()).isEmpty()) event->acceptProposedAction();
}

void frmMain::dropEvent(QDropEvent* event) {
  const QString path = DroppedGrfFile(event->mimeData());
  if (path.isEmpty()) return;
  event->acceptProposedAction();
  // Loaded once the drop has ended, so that the file manager is not kept waiting.
  QTimer::singleShot(0, this,
                     [this, name = QFile::encodeName(path).toStdString()] { OpenFile(name); });
}

void frmMain::mnuAbout_Click() {
  MsgBox(AboutText(), "About Vossel", MsgBoxIcon::Information);
}

}  // namespace vossel
