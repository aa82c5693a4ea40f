// vossel-cli sheet FILE OUT.png: the sprites of FILE as a grid of cells in one or more PNG files,
// as the Sprite Sheet window shows them.
#include <algorithm>
#include <cstdio>
#include <deque>
#include <string>
#include <vector>

#include <QFile>
#include <QFileInfo>
#include <QFuture>
#include <QImage>
#include <QPainter>
#include <QThread>
#include <QThreadPool>
#include <QtConcurrent/QtConcurrentRun>

#include "commands.h"
#include "output.h"
#include "pngwrite.h"
#include "sheet.h"

namespace vossel {

namespace {

const char kSheetUsage[] =
    "Usage: vossel-cli sheet FILE OUT.png|- [--columns N] [--cell PX] [--first A] [--last B] "
    "[--pictures|--pseudo-sprites] [--role any|action-sprites|base-sprites|recolour-maps|glyphs] "
    "[--palette windows|dos|declared|PAL] [--company COLOUR] [--company2 COLOUR] [--base-set FILE] "
    "[--zoom LEVEL] [--depth 8|32] [--transparent] [--force]\n";

// No sheet is larger than this across or down; the sprites that do not fit go to further sheets.
constexpr int32_t kMaxSheetSide = 8192;
constexpr int32_t kDefaultColumns = 16;

int UsageError(const std::string& why) {
  std::fprintf(stderr, "vossel-cli: %s\n%s", why.c_str(), kSheetUsage);
  return kExitUsage;
}

// A whole number within min..max from an option, or `fallback` when it is not given.
bool ParseCount(const CommandArgs& args, const char* name, int32_t min, int32_t max,
                int32_t fallback, int32_t& value, std::string& why) {
  value = fallback;
  const auto found = args.Values.find(name);
  if (found == args.Values.end()) return true;
  char* end = nullptr;
  const long long v = std::strtoll(found->second.c_str(), &end, 10);
  if (found->second.empty() || *end != '\0' || v < min || v > max) {
    why = "--" + std::string(name) + " takes a whole number from " + std::to_string(min) + " to " +
          std::to_string(max) + ", not '" + found->second + "'";
    return false;
  }
  value = static_cast<int32_t>(v);
  return true;
}

// OUT.png, then OUT-2.png, OUT-3.png, ... beside it.
std::string SheetName(const std::string& out, int32_t page) {
  if (page == 0) return out;
  const size_t name = out.rfind('/') == std::string::npos ? 0 : out.rfind('/') + 1;
  size_t dot = out.rfind('.');
  if (dot == std::string::npos || dot <= name) dot = out.size();
  return out.substr(0, dot) + "-" + std::to_string(page + 1) + out.substr(dot);
}

// The role of --role: the window's word for it, or its caption, in any case.
bool ParseRole(const std::string& text, SheetRole& role) {
  const QString given = QString::fromStdString(text).trimmed();
  for (const SheetRoleName& name : kSheetRoleNames)
    if (given.compare(QLatin1String(name.Word), Qt::CaseInsensitive) == 0 ||
        given.compare(QLatin1String(name.Caption), Qt::CaseInsensitive) == 0) {
      role = name.Role;
      return true;
    }
  return false;
}

// One row of cells, drawn apart from the rest of its sheet.
struct Band {
  QImage Pixels;
  std::vector<std::string> Problems;
};

// What every band of a run shares.
struct SheetRun {
  const GrfFile* File = nullptr;
  const std::vector<SheetEntry>* Entries = nullptr;
  const Look* Drawn = nullptr;
  SheetLayout Layout;
  std::vector<int32_t> Sprites;  // every sprite on the sheets, in order
  int32_t PerSheet = 0;          // sprites a sheet
};

int32_t RowsOf(const SheetRun& run, int32_t page) {
  const int64_t first = int64_t{page} * run.PerSheet;
  const int64_t count =
      std::min<int64_t>(run.PerSheet, static_cast<int64_t>(run.Sprites.size()) - first);
  return static_cast<int32_t>((count + run.Layout.Columns - 1) / run.Layout.Columns);
}

// The cells of row `row` of sheet `page`, painted as the window paints them.
Band DrawBand(const SheetRun& run, int32_t page, int32_t row) {
  Band band;
  const SheetLayout& layout = run.Layout;
  band.Pixels = QImage(layout.Columns * layout.PitchX, layout.PitchY, QImage::Format_RGB32);
  band.Pixels.fill(Qt::white);
  QPainter painter(&band.Pixels);
  const int64_t pageFirst = int64_t{page} * run.PerSheet;
  const int64_t end = std::min<int64_t>(pageFirst + run.PerSheet, run.Sprites.size());
  for (int64_t slot = int64_t{row} * layout.Columns;
       slot < int64_t{row + 1} * layout.Columns && pageFirst + slot < end; ++slot) {
    const int32_t sprite = run.Sprites[static_cast<size_t>(pageFirst + slot)];
    const SheetEntry& entry = (*run.Entries)[static_cast<size_t>(sprite)];
    GrfResult result = GrfResult::Ok;
    const QImage picture = SheetPicture(*run.File, sprite, entry, *run.Drawn, layout.Cell, result);
    if (result != GrfResult::Ok)
      band.Problems.push_back("sprite " + std::to_string(sprite + 1) + ": " +
                              PictureProblem(*run.File, sprite, entry.Alternative, result));
    PaintSheetCell(painter, layout, SheetCellOrigin(layout, slot) - QPoint(0, row * layout.PitchY),
                   sprite, entry, picture, false);
  }
  return band;
}

// One sheet encoded: its PNG's bytes (empty when the encoder failed) and the pictures that could
// not be made.
struct EncodedSheet {
  std::vector<uint8_t> Png;
  std::vector<std::string> Problems;
};

// Sheet `page`: its rows of cells drawn on the global thread pool, a few ahead, while this thread
// encodes them in order, so that the sheet is never held whole.
EncodedSheet EncodeSheet(const SheetRun& run, int32_t page) {
  EncodedSheet sheet;
  const int32_t rows = RowsOf(run, page);
  PngRowsPtr encoder =
      StartPngRows(run.Layout.Columns * run.Layout.PitchX, rows * run.Layout.PitchY, {}, sheet.Png);
  const int32_t ahead = 2 * std::max(QThread::idealThreadCount(), 1);
  std::deque<QFuture<Band>> drawing;
  int32_t next = 0;
  for (int32_t row = 0; row < rows; ++row) {
    for (; next < rows && next < row + ahead; ++next)
      drawing.push_back(QtConcurrent::run(DrawBand, std::cref(run), page, next));
    const Band band = drawing.front().result();
    drawing.pop_front();
    sheet.Problems.insert(sheet.Problems.end(), band.Problems.begin(), band.Problems.end());
    for (int32_t y = 0; y < band.Pixels.height() && encoder; ++y)
      AddPngRow(*encoder, band.Pixels.constScanLine(y));
  }
  if (!encoder || !FinishPngRows(*encoder)) sheet.Png.clear();
  return sheet;
}

// Every sheet of the run, a few encoded at once on a pool of their own (their rows are drawn on
// the global one, so that neither waits for the other), then written and told in order. False
// once a sheet could not be written.
bool WriteSheets(const SheetRun& run, const std::string& out, std::vector<std::string>& problems) {
  const auto pages = static_cast<int32_t>((run.Sprites.size() + run.PerSheet - 1) / run.PerSheet);
  QThreadPool encoders;
  encoders.setMaxThreadCount(std::max(QThread::idealThreadCount(), 1));
  std::deque<QFuture<EncodedSheet>> encoding;
  int32_t next = 0;
  const auto fill = [&] {
    for (; next < pages && static_cast<int32_t>(encoding.size()) < encoders.maxThreadCount();
         ++next)
      encoding.push_back(QtConcurrent::run(&encoders, EncodeSheet, std::cref(run), next));
  };
  bool written = true;
  for (int32_t page = 0; page < pages && written; ++page) {
    fill();
    const EncodedSheet sheet = encoding.front().result();
    encoding.pop_front();
    problems.insert(problems.end(), sheet.Problems.begin(), sheet.Problems.end());
    const std::string name = SheetName(out, page);
    if (sheet.Png.empty()) {
      std::fprintf(stderr, "vossel-cli: cannot write '%s': the PNG encoder failed\n", name.c_str());
      written = false;
    } else if (!DeliverPng(name, sheet.Png)) {
      written = false;
    } else if (name != "-") {
      const int64_t first = int64_t{page} * run.PerSheet;
      const int64_t last =
          std::min<int64_t>(first + run.PerSheet, static_cast<int64_t>(run.Sprites.size())) - 1;
      std::printf("%s: sprites %d to %d, %d x %d pixels\n", name.c_str(),
                  run.Sprites[static_cast<size_t>(first)] + 1,
                  run.Sprites[static_cast<size_t>(last)] + 1,
                  run.Layout.Columns * run.Layout.PitchX, RowsOf(run, page) * run.Layout.PitchY);
    }
  }
  // Sheets still being encoded use the run; they end before it goes.
  encoders.waitForDone();
  return written;
}

}  // namespace

int CmdSheet(const std::vector<std::string>& args) {
  const CommandArgs parsed = ParseCommand(args, 2,
                                          {"columns", "cell", "first", "last", "palette", "company",
                                           "company2", "base-set", "zoom", "depth", "role"},
                                          {"force", "pictures", "pseudo-sprites", "transparent"});
  if (parsed.TooFew) return UsageError("sheet needs FILE and OUT.png");
  if (!parsed.Error.empty()) return UsageError(parsed.Error);
  std::string why;
  int32_t columns = 0, cell = 0;
  AlternativeWish wish;
  if (!ParseCount(parsed, "columns", 1, kMaxSheetSide, kDefaultColumns, columns, why) ||
      !ParseCount(parsed, "cell", kMinSheetCell, kMaxSheetCell, kDefaultSheetCell, cell, why) ||
      !ParseWish(parsed, wish, why))
    return UsageError(why);
  for (const char* name : {"first", "last"})
    if (parsed.Values.count(name) > 0 && !IsSpriteNumberText(parsed.Values.at(name)))
      return UsageError("'" + parsed.Values.at(name) + "' is not a sprite number");
  SheetFilter filter;
  if (parsed.Values.count("pictures") > 0 && parsed.Values.count("pseudo-sprites") > 0)
    return UsageError("--pictures and --pseudo-sprites leave nothing to show; give one of them");
  if (parsed.Values.count("pictures") > 0) filter.Kinds = SheetKinds::Pictures;
  if (parsed.Values.count("pseudo-sprites") > 0) filter.Kinds = SheetKinds::PseudoSprites;
  if (const auto role = parsed.Values.find("role");
      role != parsed.Values.end() && !ParseRole(role->second, filter.Role))
    return UsageError(
        "--role takes any, action-sprites, base-sprites, recolour-maps or glyphs, "
        "not '" +
        role->second + "'");
  const SheetLayout layout = MakeSheetLayout(cell, columns);
  if (int64_t{layout.Columns} * layout.PitchX > kMaxSheetSide)
    return UsageError("at most " + std::to_string(kMaxSheetSide / layout.PitchX) + " columns of " +
                      std::to_string(cell) + " pixels fit in a sheet of " +
                      std::to_string(kMaxSheetSide) + " pixels");

  const std::string& fileName = args[0];
  const std::string& out = parsed.Positional[1];
  GrfFile file;
  FileReading reading;
  if (LoadForCli(fileName, file, &reading) != kExitOk) return kExitFailure;
  const int32_t count = SpriteCount(file);
  int32_t first = 0, last = count - 1;
  if ((parsed.Values.count("first") > 0 &&
       !ParseSpriteNumber(fileName, parsed.Values.at("first"), count, first)) ||
      (parsed.Values.count("last") > 0 &&
       !ParseSpriteNumber(fileName, parsed.Values.at("last"), count, last)))
    return kExitFailure;
  if (count == 0 || first > last) {
    FileError(fileName, count == 0 ? "the file holds no sprite; no sheet written"
                                   : "--first comes after --last; no sheet written");
    return kExitFailure;
  }

  Look look;
  if (const int status = ChooseLook(file, reading, parsed.Values, look, &wish); status != kExitOk)
    return status;
  const std::vector<SheetEntry> entries = SheetEntries(file, reading, wish.Zoom, wish.Depth);
  SheetRun run;
  run.File = &file;
  run.Entries = &entries;
  run.Drawn = &look;
  run.Layout = layout;
  run.Sprites = FilterSheet(entries, SheetRolesOf(reading), filter, first, last);
  run.PerSheet = kMaxSheetSide / layout.PitchY * layout.Columns;
  if (run.Sprites.empty()) {
    FileError(fileName, "no sprite passes the filters; no sheet written");
    return kExitFailure;
  }
  const auto pages = static_cast<int32_t>((run.Sprites.size() + run.PerSheet - 1) / run.PerSheet);
  if (out == "-" && pages > 1) {
    FileError(fileName, "the sprites take " + std::to_string(pages) +
                            " sheets, and standard output takes one; give --first and --last, "
                            "or a file name");
    return kExitFailure;
  }
  if (parsed.Values.count("force") == 0 && out != "-") {
    for (int32_t page = 0; page < pages; ++page) {
      const std::string name = SheetName(out, page);
      if (!QFileInfo::exists(QFile::decodeName(name.c_str()))) continue;
      std::fprintf(stderr,
                   "vossel-cli: %s is there already; nothing was written. Give --force "
                   "to overwrite.\n",
                   name.c_str());
      return kExitFailure;
    }
  }
  std::vector<std::string> problems;
  if (!WriteSheets(run, out, problems)) return kExitFailure;
  for (const std::string& problem : problems) FileError(fileName, problem);
  return FinishOutput(LoadStatus(file));
}

}  // namespace vossel
