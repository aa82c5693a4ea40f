// vossel-cli export FILE DIR: every sprite of FILE, and every alternative of a version-2 sprite,
// as its own file in DIR, for image editors and scripts. Pictures become PNG files,
// pseudo-sprites files of their bytes.
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstdio>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <QBuffer>
#include <QByteArray>
#include <QCommandLineParser>
#include <QDir>
#include <QImage>
#include <QImageWriter>
#include <QSet>

#include "commands.h"
#include "filewrite.h"
#include "palette.h"
#include "renderer.h"

namespace {

const char kExportUsage[] = "Usage: vossel-cli export FILE DIR [--palette PAL] [--force]\n";

// Qt gives PNG quality 80 to 89 zlib's fastest level.
constexpr int kPngQuality = 85;

enum class ExportKind : uint8_t { Picture, Bytes };

// One file to write: its name in DIR and the sprite (and alternative) it comes from.
struct ExportItem {
  QString Name;
  int32_t Sprite = 0;        // from 0
  int32_t Alternative = -1;  // version 2: index in the file's alternatives; -1 for data entries
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

// A version-1 sprite: one file, or none without pixels.
void PlanSprite(const CliLoad& load, int32_t i, const QString& stem, std::vector<ExportItem>& items,
                ExportTally& tally) {
  const SpriteRecord& r = load.Store.SpriteTable[static_cast<size_t>(i)];
  if (r.Flags == kActionFlags)
    items.push_back({stem + QStringLiteral(".bin"), i, -1, ExportKind::Bytes});
  else if (r.Width > 0 && r.Height > 0)
    items.push_back({stem + QStringLiteral(".png"), i, -1, ExportKind::Picture});
  else
    ++tally.WithoutPixels;
}

// A version-2 sprite: a data entry as its bytes, and every alternative as its own file; the
// 8-bit one at normal zoom, the only kind a version-1 file has, under the number alone.
void PlanAlternatives(const CliLoad& load, int32_t i, const QString& stem,
                      std::vector<ExportItem>& items, ExportTally& tally) {
  const GrfV2Sprite& s = load.Index.Sprites[static_cast<size_t>(i)];
  if (s.Info != kV2Reference) {
    items.push_back({stem + QStringLiteral(".bin"), i, -1, ExportKind::Bytes});
    return;
  }
  if (s.AlternativeCount == 0) ++tally.WithoutPixels;
  QStringList taken;
  for (int32_t k = 0; k < s.AlternativeCount; ++k) {
    const int32_t index = s.FirstAlternative + k;
    const GrfV2Alternative& a = load.Index.Alternatives[static_cast<size_t>(index)];
    const bool data = a.Info == kV2Pseudo;
    QString name = stem;
    if (!data && (a.Zoom != kZoomNormal || AlternativeDepth(a) != 8))
      name += QLatin1Char('-') +
              QString::fromStdString(AlternativeName(a)).replace(QLatin1Char(' '), '-');
    // Two alternatives of one kind keep apart by their place.
    if (taken.contains(name)) name += QLatin1Char('-') + QString::number(k + 1);
    taken << name;
    if (!data && (a.Width == 0 || a.Height == 0))
      ++tally.WithoutPixels;
    else
      items.push_back({name + (data ? QStringLiteral(".bin") : QStringLiteral(".png")), i, index,
                       data ? ExportKind::Bytes : ExportKind::Picture});
  }
}

// The files of every sprite, in sprite order.
std::vector<ExportItem> PlanFiles(const CliLoad& load, ExportTally& tally) {
  const int32_t count = SpriteCount(load);
  const int digits = NameDigits(count);
  std::vector<ExportItem> items;
  for (int32_t i = 0; i < count; ++i) {
    if (load.V2)
      PlanAlternatives(load, i, NumberStem(i, digits), items, tally);
    else
      PlanSprite(load, i, NumberStem(i, digits), items, tally);
  }
  return items;
}

// `size` bytes from `offset` of `bytes`, as far as they lie inside.
QByteArray BytesAt(const uint8_t* bytes, int64_t length, int64_t offset, int64_t size) {
  const int64_t begin = std::clamp<int64_t>(offset, 0, length);
  const int64_t end = begin + std::clamp<int64_t>(size, 0, length - begin);
  return QByteArray(reinterpret_cast<const char*>(bytes + begin), end - begin);
}

ExportContent SpriteContent(const CliLoad& load, const PaletteBuffer& palette,
                            const ExportItem& item) {
  const SpriteRecord& r = load.Store.SpriteTable[static_cast<size_t>(item.Sprite)];
  const uint8_t* data = load.Store.SpriteData.data();
  const auto dataSize = static_cast<int32_t>(load.Store.SpriteData.size());
  ExportContent content;
  if (item.Kind == ExportKind::Bytes) {
    content.Bytes = BytesAt(data, dataSize, r.DataOffset, r.Size);
    return content;
  }
  content.Picture = SpriteBitmap(r, data, dataSize, palette);
  content.XOffset = r.XOffset;
  content.YOffset = r.YOffset;
  return content;
}

// An alternative decoded now: 8-bit through the palette, 32-bit as RGBA (the mask layer is not
// applied); data entries and non-image data as their bytes.
ExportContent AlternativeContent(const CliLoad& load, const PaletteBuffer& palette,
                                 const ExportItem& item) {
  const auto length = static_cast<int64_t>(load.Bytes.size());
  ExportContent content;
  if (item.Alternative < 0) {
    const GrfV2Sprite& s = load.Index.Sprites[static_cast<size_t>(item.Sprite)];
    content.Bytes = BytesAt(load.Bytes.data(), length, s.DataOffset, s.DataSize);
    return content;
  }
  const GrfV2Alternative& a = load.Index.Alternatives[static_cast<size_t>(item.Alternative)];
  if (item.Kind == ExportKind::Bytes) {
    content.Bytes = BytesAt(load.Bytes.data(), length, a.StreamOffset, a.StreamSize);
    return content;
  }
  GrfV2Image image;
  const GrfV2Result result = DecodeAlternative(load.Bytes.data(), load.Bytes.size(), a, image);
  if (result != GrfV2Result::Ok) {
    content.Problem = "sprite " + std::to_string(item.Sprite + 1) + ": " + DecodeText(result, a);
    return content;
  }
  content.Picture = ImageBitmap(image, palette);
  content.XOffset = image.XOffset;
  content.YOffset = image.YOffset;
  return content;
}

// The file's bytes: PNG for a picture, with the offsets in its text chunks. The pictures are
// small and mostly indexed, so the fastest zlib level costs little in size and much less time.
bool FileBytes(const ExportContent& content, QByteArray& bytes) {
  if (content.Picture.isNull()) {
    bytes = content.Bytes;
    return true;
  }
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  QImageWriter writer(&buffer, "PNG");
  writer.setQuality(kPngQuality);
  writer.setText(QString::fromLatin1(kXOffsetKey), QString::number(content.XOffset));
  writer.setText(QString::fromLatin1(kYOffsetKey), QString::number(content.YOffset));
  return writer.write(content.Picture);
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
    if (!there.contains(item.Name)) continue;
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

// What the workers share; the lock guards everything behind it.
struct WriteRun {
  std::atomic<size_t> Next{0};
  std::atomic<bool> Failed{false};
  std::mutex Lock;
  ExportTally Tally;
  int32_t Done = 0;
  std::string Error;  // the first failure's message
};

void WriteSome(vossel::WriteFolder& folder, const std::vector<ExportItem>& items,
               const ContentFn& contentOf, ProgressLine& progress, WriteRun& run) {
  for (size_t i = run.Next++; i < items.size() && !run.Failed; i = run.Next++) {
    const ExportItem& item = items[i];
    const ExportContent content = contentOf(item);
    const bool empty = item.Kind == ExportKind::Picture && content.Picture.isNull();
    QByteArray bytes;
    vossel::WriteFailure failure;
    std::string error;
    if (!empty && !FileBytes(content, bytes))
      error = "cannot encode " + item.Name.toStdString() + " as PNG";
    else if (!empty && !vossel::WriteWhole(folder, item.Name.toStdString(), bytes.constData(),
                                           static_cast<size_t>(bytes.size()), failure))
      error = vossel::WriteFailureText(failure);
    const std::lock_guard lock(run.Lock);
    if (!content.Problem.empty()) {
      progress.Say(content.Problem);
      ++run.Tally.Undecoded;
      continue;
    }
    if (!error.empty()) {
      if (!run.Failed.exchange(true)) run.Error = error;
      return;
    }
    ++(empty                              ? run.Tally.WithoutPixels
       : item.Kind == ExportKind::Picture ? run.Tally.Pictures
                                          : run.Tally.ByteFiles);
    progress.Step(++run.Done);
  }
}

// Encodes and writes every item on all cores, then puts them in place after one sync. On the
// first failure the workers stop and what this run began is removed; false with the message.
bool WriteItems(vossel::WriteFolder& folder, const std::vector<ExportItem>& items,
                const ContentFn& contentOf, ExportTally& tally, std::string& error) {
  WriteRun run;
  run.Tally = tally;
  {
    ProgressLine progress(static_cast<int32_t>(items.size()));
    std::vector<std::jthread> workers(std::max(1U, std::thread::hardware_concurrency()));
    for (std::jthread& worker : workers)
      worker = std::jthread([&] { WriteSome(folder, items, contentOf, progress, run); });
  }
  vossel::WriteFailure failure;
  if (!run.Failed && !vossel::PlaceWritten(folder, failure)) {
    run.Failed = true;
    run.Error = vossel::WriteFailureText(failure);
  }
  if (run.Failed) vossel::UndoWritten(folder);
  tally = run.Tally;
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
  parser.addOptions({paletteOption, forceOption});
  QStringList arguments{QStringLiteral("vossel-cli export")};
  for (const std::string& a : args) arguments << QString::fromLocal8Bit(a);
  if (!parser.parse(arguments)) return UsageError(parser.errorText());
  const QStringList positional = parser.positionalArguments();
  if (positional.size() != 2) return UsageError(QStringLiteral("export needs FILE and DIR"));
  const std::string fileName = positional[0].toLocal8Bit().toStdString();
  const QString dirName = positional[1];

  PaletteBuffer palette{};
  const std::string named = parser.value(paletteOption).toLocal8Bit().toStdString();
  if (!LoadCliPalette(parser.isSet(paletteOption) ? &named : nullptr, palette)) return kExitFailure;

  CliLoad load;
  if (LoadForCli(fileName, load) != kExitOk) return kExitFailure;
  ExportTally tally;
  const std::vector<ExportItem> items = PlanFiles(load, tally);

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
    std::fprintf(stderr, "vossel-cli: cannot make the folder '%s'\n", qPrintable(dirName));
    return kExitFailure;
  }

  vossel::WriteFolder folder;
  vossel::WriteFailure failure;
  if (!vossel::OpenWriteFolder(dirName.toLocal8Bit().toStdString(), folder, failure)) {
    std::fprintf(stderr, "vossel-cli: %s\n", vossel::WriteFailureText(failure).c_str());
    return kExitFailure;
  }
  // Past a file size limit a write is to fail with its reason, not to end the program.
  std::signal(SIGXFSZ, SIG_IGN);
  std::string error;
  const bool done = WriteItems(
      folder, items,
      [&](const ExportItem& item) {
        return load.V2 ? AlternativeContent(load, palette, item)
                       : SpriteContent(load, palette, item);
      },
      tally, error);
  vossel::CloseWriteFolder(folder);
  if (!done) {
    std::fprintf(stderr, "vossel-cli: %s\n", error.c_str());
    return kExitFailure;
  }
  PrintSummary(tally, SpriteCount(load), dirName);
  return kExitOk;
}
