// vossel: the desktop program. `vossel FILE` opens FILE at start, as Open would.
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>

#include <QApplication>
#include <QCommandLineParser>
#include <QFile>
#include <QFileInfo>

#include "desktop.h"
#include "frmMain.h"
#include "text.h"

using namespace vossel;

namespace {

// Whether the command line asks for --help or --version. Those answer without a display, so a
// core application is enough for them.
bool AsksHelpOrVersion(int argc, char** argv) {
  for (int i = 1; i < argc; ++i) {
    const std::string_view argument = argv[i];
    if (argument == "--") break;
    for (const std::string_view name : {"-h", "-?", "--help", "-v", "--version"})
      if (argument == name) return true;
  }
  return false;
}

// Reads the application's command line into `file`, made absolute before the start moves the
// current directory. Gives the status to end with when the program is not to go on: --help and
// --version end it through the parser, wrong usage with status 2, as for vossel-cli.
std::optional<int> ParseCommandLine(std::string& file) {
  QCommandLineParser parser;
  parser.setApplicationDescription(
      QStringLiteral("Looks into GRF files, the sprite collections of "
                     "Transport Tycoon Deluxe and TTDPatch."));
  const QCommandLineOption help = parser.addHelpOption();
  const QCommandLineOption version = parser.addVersionOption();
  parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("a GRF file to open"),
                               QStringLiteral("[FILE]"));
  const bool parsed = parser.parse(QCoreApplication::arguments());
  const QStringList files = parser.positionalArguments();
  if (!parsed || files.size() > 1) {
    const QString why = parsed ? QStringLiteral("give one FILE at most") : parser.errorText();
    std::fprintf(stderr, "vossel: %s\n\n%s", qPrintable(why), qPrintable(parser.helpText()));
    return 2;
  }
  if (parser.isSet(help)) parser.showHelp();
  if (parser.isSet(version)) parser.showVersion();
  if (!files.isEmpty())
    file = QFile::encodeName(QFileInfo(files[0]).absoluteFilePath()).toStdString();
  return std::nullopt;
}

}  // namespace

int main(int argc, char** argv) {
  QCoreApplication::setApplicationName(QString::fromLatin1(kAppTitle));
  QCoreApplication::setApplicationVersion(QString::fromLatin1(kAppVersion));
  std::string file;
  if (AsksHelpOrVersion(argc, argv)) {
    const QCoreApplication app(argc, argv);
    return ParseCommandLine(file).value_or(0);
  }
  QApplication app(argc, argv);
  QGuiApplication::setDesktopFileName(QStringLiteral("org.vossel.Vossel"));
  if (const std::optional<int> status = ParseCommandLine(file)) return *status;

  frmMain Form;
  // A refused palette has been reported and the window unloaded: it is never shown.
  if (!Form.Form_Load()) return 1;
  Form.show();
  if (!file.empty()) Form.OpenFile(file);
  return QApplication::exec();
}
