// vossel-cli export FILE DIR: every sprite of FILE, and every alternative of a version-2 sprite,
// as its own file in DIR, for image editors and scripts. Pictures become PNG files,
// pseudo-sprites files of their bytes.
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <QByteArray>
#include <QCommandLineParser>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QSaveFile>

#include "commands.h"
#include "palette.h"
#include "renderer.h"

namespace vossel {

namespace {

const char kExportUsage[] =
    "Usage: vossel-cli export FILE DIR [--palette windows|dos|declared|PAL] [--company COLOUR] "
    "[--base-set FILE] [--force]\n";

enum class ExportKind : uint8_t { Picture, Bytes };

// One file to write: its name in DIR and the sprite (and alternative) it comes from.
struct ExportItem {
  QString Name;
  int32_t Sprite = 0;        // from 0
  int32_t Alternative = -1;  // among the sprite's alternatives; -1 for a pseudo-sprite
  ExportKind Kind = ExportKind::Picture;
};

// What one file holds: a picture with the sprite's offsets, or bytes. A null picture of a
// Picture item gives no file: it has no pixels, or could not be decoded for `Problem`.
struct ExportContent {
  QImage Picture;
  int32_t XOffset = 0;
  int32_t YOffset = 0;
  QByteArray Bytes;
  std::string Problem;
  int32_t Quality = -1;  // the PNG encoder's: -1 its default, up to 100 the fastest and largest
};

struct ExportTally {
  int32_t Pictures = 0;
  int32_t ByteFiles = 0;
  int32_t WithoutPixels = 0;
  int32_t Undecoded = 0;
};

int UsageError(const QString& why) {
  std::fprintf(stderr, "vossel-cli: %s\n%s", qPrintable(why), kExportUsage);
  return kExitUsage;
}

// Sprite numbers padded to at least four digits, and to as many as the largest takes, so that
// the names sort in sprite order.
int NameDigits(int32_t count) {
  int digits = 4;
  for (int32_t n = count; n >= 10000; n /= 10) ++digits;
  return digits;
}

QString NumberStem(int32_t index, int digits) {
  return QString::number(index + 1).rightJustified(digits, QLatin1Char('0'));
}

// A sprite's files: a pseudo-sprite as its bytes, and every alternative as its own file; the
// 8-bit one at normal zoom, the only kind a file without alternatives has, under the number alone.
void PlanSprite(const GrfFile& file, int32_t i, const QString& stem, std::vector<ExportItem>& items,
                ExportTally& tally) {
  const int32_t count = AlternativeCount(file, i);
  if (count == 0) {
    if (FactsOf(file, i, -1).Kind == SpriteKind::Pseudo)
      items.push_back({stem + QStringLiteral(".bin"), i, -1, ExportKind::Bytes});
    else
      ++tally.WithoutPixels;
    return;
  }
  QStringList taken;
  for (int32_t k = 0; k < count; ++k) {
    const AlternativeInfo a = AlternativeOf(file, i, k);
    QString name = stem;
    if (!a.Data && (a.Zoom != kZoomNormal || a.Depth != 8))
      name += QLatin1Char('-') +
              QString::fromStdString(AlternativeText(a)).replace(QLatin1Char(' '), '-');
    // Two alternatives of one kind keep apart by their place.
    if (taken.contains(name)) name += QLatin1Char('-') + QString::number(k + 1);
    taken << name;
    const SpriteFacts f = FactsOf(file, i, k);
    if (!a.Data && (f.Width <= 0 || f.Height <= 0))
      ++tally.WithoutPixels;
    else
      items.push_back({name + (a.Data ? QStringLiteral(".bin") : QStringLiteral(".png")), i, k,
                       a.Data ? ExportKind::Bytes : ExportKind::Picture});
  }
}

// The files of every sprite, in sprite order.
std::vector<ExportItem> PlanFiles(const GrfFile& file, ExportTally& tally) {
  const int32_t count = SpriteCount(file);
  const int digits = NameDigits(count);
  std::vector<ExportItem> items;
  for (int32_t i = 0; i < count; ++i) PlanSprite(file, i, NumberStem(i, digits), items, tally);
  return items;
}

// A picture decoded now: 8-bit through the palette, 32-bit as RGBA (the mask layer is not
// applied); pseudo-sprites and non-image data as their bytes.
ExportContent SpriteContent(const GrfFile& file, const CliColours& colours,
                            const ExportItem& item) {
  ExportContent content;
  SpritePicture picture;
  const GrfResult result = PictureOf(file, item.Sprite, item.Alternative, picture);
  if (result != GrfResult::Ok) {
    content.Problem = "sprite " + std::to_string(item.Sprite + 1) + ": " +
                      PictureProblem(file, item.Sprite, item.Alternative, result);
    return content;
  }
  if (item.Kind == ExportKind::Bytes) {
    content.Bytes = QByteArray(reinterpret_cast<const char*>(picture.Indices.data()),
                               static_cast<qsizetype>(picture.Indices.size()));
    return content;
  }
  content.Picture = CliPicture(picture, colours);
  content.XOffset = picture.XOffset;
  content.YOffset = picture.YOffset;
  return content;
}

// Writes the whole file under a temporary name and renames it into place, so that a failure
// never leaves a part of it. False with the reason in `error`.
bool WriteAtomically(const QString& path, const ExportContent& content, QString& error) {
  QSaveFile file(path);
  if (!file.open(QIODevice::WriteOnly)) {
    error = file.errorString();
    return false;
  }
  bool written = false;
  if (content.Picture.isNull()) {
    written = file.write(content.Bytes) == content.Bytes.size();
  } else {
    QImage picture = content.Picture;
    picture.setText(QString::fromLatin1(kXOffsetKey), QString::number(content.XOffset));
    picture.setText(QString::fromLatin1(kYOffsetKey), QString::number(content.YOffset));
    written = picture.save(&file, "PNG", content.Quality);
  }
  if (!written) {
    error = file.error() != QFileDevice::NoError ? file.errorString()
                                                 : QStringLiteral("the PNG encoder failed");
    return false;  // the temporary file goes with `file`
  }
  if (!file.commit()) {
    error = file.errorString();
    return false;
  }
  return true;
}

// The first planned file that is there already, and how many are; an empty name when none is.
QString FirstExisting(const QDir& dir, const std::vector<ExportItem>& items, int32_t& count) {
  QString first;
  count = 0;
  for (const ExportItem& item : items) {
    if (!QFileInfo::exists(dir.filePath(item.Name))) continue;
    if (count++ == 0) first = dir.filePath(item.Name);
  }
  return first;
}

// A line on standard error that counts the files, while it is a terminal.
class ProgressLine {
 public:
  explicit ProgressLine(int32_t total) : shown_(isatty(STDERR_FILENO) != 0), total_(total) {}
  void Step(int32_t done) {
    const int32_t percent = total_ > 0 ? static_cast<int32_t>(int64_t{done} * 100 / total_) : 100;
    if (!shown_ || percent == last_) return;
    last_ = percent;
    std::fprintf(stderr, "\rExporting: %d of %d files (%d%%)", done, total_, percent);
    std::fflush(stderr);
  }
  // A message on a line of its own; the count comes back with the next step.
  void Say(const std::string& text) {
    Clear();
    std::fprintf(stderr, "vossel-cli: %s\n", text.c_str());
  }
  ~ProgressLine() { Clear(); }

 private:
  void Clear() {
    if (shown_ && last_ >= 0) std::fputs("\r\033[K", stderr);
    last_ = -1;
  }

  bool shown_;
  int32_t total_;
  int32_t last_ = -1;
};

using ContentFn = std::function<ExportContent(const ExportItem&)>;

// A file waits on the disk for a while before it is complete (QSaveFile syncs it), so several
// writers work at once.
constexpr int kWriters = 8;

// What the writers share; the lock guards everything behind it.
struct WriteRun {
  std::atomic<size_t> Next{0};
  std::mutex Lock;
  ExportTally Tally;
  int32_t Done = 0;
  bool Failed = false;
  QString FailedPath, Error;
};

void WriteSome(const QDir& dir, const std::vector<ExportItem>& items, const ContentFn& contentOf,
               ProgressLine& progress, WriteRun& run) {
  for (size_t i = run.Next++; i < items.size(); i = run.Next++) {
    {
      const std::lock_guard lock(run.Lock);
      if (run.Failed) return;
    }
    const ExportItem& item = items[i];
    const ExportContent content = contentOf(item);
    const bool empty = item.Kind == ExportKind::Picture && content.Picture.isNull();
    QString error;
    const bool written = empty || WriteAtomically(dir.filePath(item.Name), content, error);
    const std::lock_guard lock(run.Lock);
    if (!content.Problem.empty()) {
      progress.Say(content.Problem);
      ++run.Tally.Undecoded;
      continue;
    }
    if (!written) {
      if (!run.Failed) {
        run.FailedPath = dir.filePath(item.Name);
        run.Error = error;
      }
      run.Failed = true;
      return;
    }
    ++(empty                              ? run.Tally.WithoutPixels
       : item.Kind == ExportKind::Picture ? run.Tally.Pictures
                                          : run.Tally.ByteFiles);
    progress.Step(++run.Done);
  }
}

// Writes every item, each complete or not at all. False when one cannot be written, with its
// path and the reason; the files written before stay, and no new one is begun.
bool WriteItems(const QDir& dir, const std::vector<ExportItem>& items, const ContentFn& contentOf,
                ExportTally& tally, QString& failed, QString& error) {
  WriteRun run;
  run.Tally = tally;
  {
    ProgressLine progress(static_cast<int32_t>(items.size()));
    std::vector<std::jthread> writers;
    for (int k = 0; k < kWriters; ++k)
      writers.emplace_back([&] { WriteSome(dir, items, contentOf, progress, run); });
  }
  tally = run.Tally;
  failed = run.FailedPath;
  error = run.Error;
  return !run.Failed;
}

void PrintSummary(const ExportTally& tally, int32_t sprites, const QString& dir) {
  std::printf("Wrote %d files for %d sprites to %s: %d PNG, %d BIN",
              tally.Pictures + tally.ByteFiles, sprites, qPrintable(dir), tally.Pictures,
              tally.ByteFiles);
  if (tally.WithoutPixels > 0) std::printf("; %d without pixels have no file", tally.WithoutPixels);
  if (tally.Undecoded > 0) std::printf("; %d could not be decoded", tally.Undecoded);
  std::printf("\n");
}

}  // namespace

int CmdExport(const std::vector<std::string>& args) {
  QCommandLineParser parser;
  const QCommandLineOption paletteOption(QStringLiteral("palette"),
                                         QStringLiteral("the palette for 8-bit sprites"),
                                         QStringLiteral("PAL"));
  const QCommandLineOption forceOption(QStringLiteral("force"),
                                       QStringLiteral("overwrite files that are there already"));
  const QCommandLineOption companyOption(
      QStringLiteral("company"), QStringLiteral("a company colour"), QStringLiteral("NAME"));
  const QCommandLineOption baseSetOption(QStringLiteral("base-set"),
                                         QStringLiteral("the base set with the colour maps"),
                                         QStringLiteral("FILE"));
  parser.addOptions({paletteOption, forceOption, companyOption, baseSetOption});
  QStringList arguments{QStringLiteral("vossel-cli export")};
  for (const std::string& a : args) arguments << QString::fromLocal8Bit(a);
  if (!parser.parse(arguments)) return UsageError(parser.errorText());
  const QStringList positional = parser.positionalArguments();
  if (positional.size() != 2) return UsageError(QStringLiteral("export needs FILE and DIR"));
  const std::string fileName = positional[0].toLocal8Bit().toStdString();
  const QString dirName = positional[1];

  GrfFile file;
  if (LoadForCli(fileName, file) != kExitOk) return kExitFailure;
  std::map<std::string, std::string> values;
  for (const QCommandLineOption* option : {&paletteOption, &companyOption, &baseSetOption})
    if (parser.isSet(*option))
      values[option->names().front().toStdString()] =
          parser.value(*option).toLocal8Bit().toStdString();
  CliColours colours;
  if (const int status = ChooseColours(file, values, true, colours); status != kExitOk)
    return status;
  ExportTally tally;
  const std::vector<ExportItem> items = PlanFiles(file, tally);

  const QDir dir(dirName);
  int32_t existing = 0;
  const QString first = parser.isSet(forceOption) ? QString() : FirstExisting(dir, items, existing);
  if (!first.isEmpty()) {
    std::fprintf(stderr, "vossel-cli: %s is there already", qPrintable(first));
    if (existing > 1) std::fprintf(stderr, " (and %d more of the files to write)", existing - 1);
    std::fputs("; nothing was written. Give --force to overwrite.\n", stderr);
    return kExitFailure;
  }
  if (!dir.mkpath(QStringLiteral("."))) {
    // QDir does not say why; the system does.
    const int reason = errno;
    std::fprintf(stderr, "vossel-cli: cannot make the folder '%s': %s\n", qPrintable(dirName),
                 std::strerror(reason));
    return kExitFailure;
  }

  QString failed, error;
  const bool done = WriteItems(
      dir, items, [&](const ExportItem& item) { return SpriteContent(file, colours, item); }, tally,
      failed, error);
  if (!done)
    std::fprintf(stderr, "vossel-cli: cannot write '%s': %s\n", qPrintable(failed),
                 qPrintable(error));
  PrintSummary(tally, SpriteCount(file), dirName);
  return done ? LoadStatus(file) : kExitFailure;
}

bool WritePngFile(const std::string& path, const QImage& picture, int32_t x, int32_t y,
                  std::string& error, int32_t quality) {
  ExportContent content;
  content.Quality = quality;
  content.Picture = picture;
  content.XOffset = x;
  content.YOffset = y;
  QString why;
  const bool written = WriteAtomically(QFile::decodeName(path.c_str()), content, why);
  error = why.toStdString();
  return written;
}

}  // namespace vossel
