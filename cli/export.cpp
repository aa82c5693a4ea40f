// vossel-cli export FILE DIR: every picture of FILE, and every alternative of a sprite, as a PNG
// file of its own in DIR, sounds as the WAV files they are, and the whole file as one NFO listing
// that names each picture's file. Encoded on all cores; every file whole or absent.
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <functional>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include <QCommandLineParser>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QSet>
#include <QtConcurrent/QtConcurrentMap>

#include "commands.h"
#include "encoder_files.h"
#include "filewrite.h"
#include "nfo_encoder.h"
#include "output.h"
#include "palette.h"
#include "pngwrite.h"
#include "renderer.h"

namespace vossel {

namespace {

const char kExportUsage[] =
    "Usage: vossel-cli export FILE DIR [--palette windows|dos|declared|PAL] [--company COLOUR] "
    "[--company2 COLOUR] [--base-set FILE] [--force]\n";

enum class ExportKind : uint8_t { Picture, Sound, Bytes, Listing };

// One file to write: its name in DIR and the sprite (and alternative) it comes from.
struct ExportItem {
  std::string Name;
  int32_t Sprite = 0;        // from 0
  int32_t Alternative = -1;  // among the sprite's alternatives; -1 for a pseudo-sprite
  ExportKind Kind = ExportKind::Picture;
  bool Mask = false;  // a picture's mask layer, in a file of its own
};

// What one file holds. An empty Picture item gives no file: it has no pixels, or could not be
// decoded for `Problem`.
struct ExportContent {
  std::vector<uint8_t> Bytes;
  bool Empty = false;
  std::string Problem;
};

struct ExportTally {
  int32_t Pictures = 0;
  int32_t Sounds = 0;
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

std::string NumberStem(int32_t index, int digits) {
  return QString::number(index + 1).rightJustified(digits, QLatin1Char('0')).toStdString();
}

// A sound's own name as a file name in DIR: no folders, and ending in .wav.
std::string SoundFileName(const std::string& name, int32_t sprite, int digits) {
  std::string base = QFileInfo(QString::fromStdString(name)).fileName().toStdString();
  if (base.empty() || base == "." || base == "..") base = NumberStem(sprite, digits);
  if (!QString::fromStdString(base).endsWith(QStringLiteral(".wav"), Qt::CaseInsensitive))
    base += ".wav";
  return base;
}

// A sprite's files: every alternative as its own file, the 8-bit one at normal zoom (the only kind
// a file without alternatives has) under the number alone; a named sound as its WAV file. The
// NFO listing names each picture's file.
void PlanSprite(const GrfFile& file, const FileReading& reading, int32_t i, int digits,
                std::vector<ExportItem>& items, std::vector<NfoAlternative>& listed,
                std::set<std::string>& taken, ExportTally& tally) {
  const std::string stem = NumberStem(i, digits);
  const SpriteRole& role = reading.Actions.Sprites[static_cast<size_t>(i)];
  const bool sound = role.Kind == RoleKind::Sound && role.Sound == SoundForm::Named;
  listed = NfoAlternativesOf(file, i);
  const int32_t count = AlternativeCount(file, i);
  if (count == 0) {
    if (sound && taken.insert(SoundFileName(role.SoundName, i, digits)).second)
      items.push_back({SoundFileName(role.SoundName, i, digits), i, -1, ExportKind::Sound});
    if (FactsOf(file, i, -1).Kind != SpriteKind::Pseudo) ++tally.WithoutPixels;
    return;
  }
  for (int32_t k = 0; k < count; ++k) {
    const AlternativeInfo a = AlternativeOf(file, i, k);
    std::string name = stem;
    if (!a.Data && (a.Zoom != kZoomNormal || a.Depth != 8)) {
      std::string kind = AlternativeText(a);
      std::replace(kind.begin(), kind.end(), ' ', '-');
      name += "-" + kind;
    }
    // Two alternatives of one kind keep apart by their place.
    if (taken.count(name + ".png") > 0 || taken.count(name + ".bin") > 0)
      name += "-" + std::to_string(k + 1);
    const SpriteFacts f = FactsOf(file, i, k);
    if (a.Data) {
      const bool named = sound && taken.insert(SoundFileName(role.SoundName, i, digits)).second;
      name = named ? SoundFileName(role.SoundName, i, digits) : name + ".bin";
      if (!named) taken.insert(name);
      items.push_back({name, i, k, named ? ExportKind::Sound : ExportKind::Bytes});
    } else if (f.Width <= 0 || f.Height <= 0) {
      ++tally.WithoutPixels;
      continue;
    } else {
      name += ".png";
      taken.insert(name);
      items.push_back({name, i, k, ExportKind::Picture});
      // The encoder takes a 32-bit picture's mask from an 8-bit file of its own.
      if (a.Mask) {
        std::string& mask = listed[static_cast<size_t>(k)].MaskFile;
        mask = name.substr(0, name.size() - 4) + "-mask.png";
        taken.insert(mask);
        items.push_back({mask, i, k, ExportKind::Picture, true});
      }
    }
    listed[static_cast<size_t>(k)].File = name;
  }
}

// Every file of the export, in sprite order, and the NFO listing's text.
std::vector<ExportItem> PlanFiles(const GrfFile& file, const FileReading& reading,
                                  const std::string& listingName, std::string& listing,
                                  ExportTally& tally) {
  const int32_t count = SpriteCount(file);
  const int digits = NameDigits(count);
  std::vector<ExportItem> items;
  std::set<std::string> taken{listingName};
  std::vector<NfoAlternative> listed;
  listing = EncoderHead();
  for (int32_t i = 0; i < count; ++i) {
    PlanSprite(file, reading, i, digits, items, listed, taken, tally);
    listing += EncoderText(file, reading, i, listed) + "\n";
  }
  items.push_back({listingName, -1, -1, ExportKind::Listing});
  return items;
}

// The WAV file inside a sound sprite, behind its name.
std::vector<uint8_t> WavBytes(const std::vector<uint8_t>& sprite) {
  SoundParts parts;
  if (!SplitNamedSound(sprite.data(), sprite.size(), parts)) return {};
  return std::vector<uint8_t>(parts.Wav, parts.Wav + parts.WavSize);
}

// A picture decoded now, as the encoder reads it (indices, RGBA, or the mask apart), as PNG with
// the offsets in its text chunks; sounds and other data as their bytes.
ExportContent ItemContent(const GrfFile& file, const Look& look, const std::string& listing,
                          const ExportItem& item) {
  ExportContent content;
  if (item.Kind == ExportKind::Listing) {
    content.Bytes.assign(listing.begin(), listing.end());
    return content;
  }
  if (item.Kind != ExportKind::Picture) {
    SpriteBytes(file, item.Sprite, item.Alternative, content.Bytes);
    if (item.Kind == ExportKind::Sound) content.Bytes = WavBytes(content.Bytes);
    return content;
  }
  SpritePicture picture;
  const GrfResult result = PictureOf(file, item.Sprite, item.Alternative, picture);
  if (result != GrfResult::Ok) {
    content.Problem = "sprite " + std::to_string(item.Sprite + 1) + ": " +
                      PictureProblem(file, item.Sprite, item.Alternative, result);
    content.Empty = true;
    return content;
  }
  const PngTexts texts{{kXOffsetKey, std::to_string(picture.XOffset)},
                       {kYOffsetKey, std::to_string(picture.YOffset)}};
  content.Empty = !EncodePng(EncoderImage(picture, look, item.Mask), texts, content.Bytes);
  return content;
}

// The first planned file that is there already, and how many are; an empty name when none is.
QString FirstExisting(const QDir& dir, const std::vector<ExportItem>& items, int32_t& count) {
  // One listing of the folder rather than a look-up per file.
  const QStringList listed =
      dir.entryList(QDir::AllEntries | QDir::Hidden | QDir::System, QDir::Unsorted);
  const QSet<QString> there(listed.begin(), listed.end());
  QString first;
  count = 0;
  for (const ExportItem& item : items) {
    if (!there.contains(QString::fromStdString(item.Name))) continue;
    if (count++ == 0) first = dir.filePath(QString::fromStdString(item.Name));
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

// What the tasks share; the lock guards everything behind it.
struct WriteRun {
  std::atomic<bool> Failed{false};
  std::mutex Lock;
  ExportTally Tally;
  int32_t Done = 0;
  std::string Error;  // the first failure's message
};

void WriteOne(WriteFolder& folder, const ExportItem& item, const ContentFn& contentOf,
              ProgressLine& progress, WriteRun& run) {
  if (run.Failed) return;
  const ExportContent content = contentOf(item);
  WriteFailure failure;
  std::string error;
  if (!content.Empty &&
      !WriteWhole(folder, item.Name, content.Bytes.data(), content.Bytes.size(), failure))
    error = WriteFailureText(failure);
  const std::lock_guard lock(run.Lock);
  if (!content.Problem.empty()) {
    progress.Say(content.Problem);
    ++run.Tally.Undecoded;
    return;
  }
  if (!error.empty()) {
    if (!run.Failed.exchange(true)) run.Error = error;
    return;
  }
  ++(content.Empty                      ? run.Tally.WithoutPixels
     : item.Kind == ExportKind::Picture ? run.Tally.Pictures
     : item.Kind == ExportKind::Sound   ? run.Tally.Sounds
                                        : run.Tally.ByteFiles);
  progress.Step(++run.Done);
}

// Encodes and writes every item on the thread pool, then puts them in place after one sync. On
// the first failure the rest is skipped and what this run began is undone; false with the
// message.
bool WriteItems(WriteFolder& folder, const std::vector<ExportItem>& items,
                const ContentFn& contentOf, ExportTally& tally, std::string& error) {
  WriteRun run;
  run.Tally = tally;
  {
    ProgressLine progress(static_cast<int32_t>(items.size()));
    QtConcurrent::blockingMap(items.begin(), items.end(), [&](const ExportItem& item) {
      WriteOne(folder, item, contentOf, progress, run);
    });
  }
  WriteFailure failure;
  if (!run.Failed && !PlaceWritten(folder, failure)) {
    run.Failed = true;
    run.Error = WriteFailureText(failure);
  }
  if (run.Failed) UndoWritten(folder);
  tally = run.Tally;
  error = run.Error;
  return !run.Failed;
}

void PrintSummary(const ExportTally& tally, int32_t sprites, const QString& dir) {
  // The listing is one of the files, and counted apart.
  const int32_t files = tally.Pictures + tally.Sounds + tally.ByteFiles;
  std::printf("Wrote %d %s for %d %s to %s: %d PNG", files, files == 1 ? "file" : "files", sprites,
              sprites == 1 ? "sprite" : "sprites", qPrintable(dir), tally.Pictures);
  if (tally.Sounds > 0) std::printf(", %d WAV", tally.Sounds);
  if (tally.ByteFiles > 1) std::printf(", %d BIN", tally.ByteFiles - 1);
  std::printf(", 1 NFO");
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
  const QCommandLineOption company2Option(QStringLiteral("company2"),
                                          QStringLiteral("a second company colour"),
                                          QStringLiteral("NAME"));
  const QCommandLineOption baseSetOption(QStringLiteral("base-set"),
                                         QStringLiteral("the base set with the colour maps"),
                                         QStringLiteral("FILE"));
  parser.addOptions({paletteOption, forceOption, companyOption, company2Option, baseSetOption});
  QStringList arguments{QStringLiteral("vossel-cli export")};
  for (const std::string& a : args) arguments << QString::fromLocal8Bit(a);
  if (!parser.parse(arguments)) return UsageError(parser.errorText());
  const QStringList positional = parser.positionalArguments();
  if (positional.size() != 2) return UsageError(QStringLiteral("export needs FILE and DIR"));
  const std::string fileName = positional[0].toLocal8Bit().toStdString();
  const QString dirName = positional[1];

  GrfFile file;
  FileReading reading;
  if (LoadForCli(fileName, file, &reading) != kExitOk) return kExitFailure;
  std::map<std::string, std::string> values;
  for (const QCommandLineOption* option :
       {&paletteOption, &companyOption, &company2Option, &baseSetOption})
    if (parser.isSet(*option))
      values[option->names().front().toStdString()] =
          parser.value(*option).toLocal8Bit().toStdString();
  Look look;
  if (const int status = ChooseLook(file, reading, values, look); status != kExitOk) return status;
  ExportTally tally;
  std::string listing;
  const std::string listingName =
      QFileInfo(QString::fromStdString(fileName)).completeBaseName().toStdString() + ".nfo";
  const std::vector<ExportItem> items = PlanFiles(file, reading, listingName, listing, tally);

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
  WriteFolder folder;
  WriteFailure failure;
  if (!OpenWriteFolder(dirName.toLocal8Bit().toStdString(), folder, failure)) {
    std::fprintf(stderr, "vossel-cli: %s\n", WriteFailureText(failure).c_str());
    return kExitFailure;
  }
  // Past a file size limit a write is to fail with its reason, not to end the program.
  std::signal(SIGXFSZ, SIG_IGN);
  std::string error;
  const bool done = WriteItems(
      folder, items, [&](const ExportItem& item) { return ItemContent(file, look, listing, item); },
      tally, error);
  CloseWriteFolder(folder);
  if (!done) {
    std::fprintf(stderr, "vossel-cli: %s\n", error.c_str());
    return kExitFailure;
  }
  PrintSummary(tally, SpriteCount(file), dirName);
  return FinishOutput(LoadStatus(file));
}

bool WritePngFile(const std::string& path, const QImage& picture, int32_t x, int32_t y,
                  std::string& error) {
  std::vector<uint8_t> png;
  if (!EncodePng(picture, {{kXOffsetKey, std::to_string(x)}, {kYOffsetKey, std::to_string(y)}},
                 png)) {
    error = "the PNG encoder failed";
    return false;
  }
  return WriteFileWhole(path, png, error);
}

bool WriteFileWhole(const std::string& path, const std::vector<uint8_t>& bytes,
                    std::string& error) {
  const QFileInfo target(QFile::decodeName(path.c_str()));
  WriteFolder folder;
  WriteFailure failure;
  std::signal(SIGXFSZ, SIG_IGN);
  const bool written =
      OpenWriteFolder(target.absolutePath().toLocal8Bit().toStdString(), folder, failure) &&
      WriteWhole(folder, target.fileName().toLocal8Bit().toStdString(), bytes.data(), bytes.size(),
                 failure) &&
      PlaceWritten(folder, failure);
  if (!written) {
    UndoWritten(folder);
    error = std::strerror(failure.ErrorNumber);
  }
  CloseWriteFolder(folder);
  return written;
}

}  // namespace vossel
