// vossel: the desktop program.
#include <QApplication>

#include "frmMain.h"
#include "text.h"

int main(int argc, char** argv) {
  QApplication app(argc, argv);
  QApplication::setApplicationName(QString::fromLatin1(kAppTitle));
  QGuiApplication::setDesktopFileName(QStringLiteral("vossel"));
  frmMain Form;
  // A refused palette has been reported and the window unloaded: it is never shown.
  if (!Form.Form_Load()) return 1;
  Form.show();
  return QApplication::exec();
}
