// vossel: the desktop program. `vossel FILE` opens FILE at start, as Open would.
#include <cstdio>

#include <QApplication>
#include <QCommandLineParser>
#include <QFile>
#include <QFileInfo>

#include "desktop.h"
#include "frmMain.h"
#include "text.h"

int main(int argc, char** argv) {
  QApplication app(argc, argv);
  QApplication::setApplicationName(QString::fromLatin1(kAppTitle));
  QApplication::setApplicationVersion(QString::fromLatin1(kAppVersion));
  QGuiApplication::setDesktopFileName(QStringLiteral("vossel"));

  QCommandLineParser parser;
  parser.setApplicationDescription(
      QStringLiteral("Looks into GRF files, the sprite collections of "
                     "Transport Tycoon Deluxe and TTDPatch."));
  const QCommandLineOption help = parser.addHelpOption();
  const QCommandLineOption version = parser.addVersionOption();
  parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("a GRF file to open"),
                               QStringLiteral("[FILE]"));
  // Wrong usage ends with status 2, as it does for vossel-cli.
  const bool parsed = parser.parse(QCoreApplication::arguments());
  const QStringList files = parser.positionalArguments();
  if (!parsed || files.size() > 1) {
    const QString why = parsed ? QStringLiteral("give one FILE at most") : parser.errorText();
    std::fprintf(stderr, "vossel: %s\n\n%s", qPrintable(why), qPrintable(parser.helpText()));
    return 2;
  }
  if (parser.isSet(help)) parser.showHelp();
  if (parser.isSet(version)) parser.showVersion();
  // Made absolute before the start moves the current directory.
  const std::string file =
      files.isEmpty() ? std::string()
                      : QFile::encodeName(QFileInfo(files[0]).absoluteFilePath()).toStdString();

  frmMain Form;
  // A refused palette has been reported and the window unloaded: it is never shown.
  if (!Form.Form_Load()) return 1;
  Form.show();
  if (!file.empty()) Form.OpenFile(file);
  return QApplication::exec();
}
