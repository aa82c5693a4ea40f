// vossel-cli sheet FILE OUT.png: the sprites of FILE as a grid of cells in one or more PNG files,
// as the Sprite Sheet window shows them.
#include <algorithm>
#include <atomic>
#include <cstdio>
#include <deque>
#include <string>
#include <thread>
#include <vector>

#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QPainter>

#include "commands.h"
#include "output.h"
#include "sheet.h"

namespace vossel {

namespace {

const char kSheetUsage[] =
    "Usage: vossel-cli sheet FILE OUT.png [--columns N] [--cell PX] [--first A] [--last B] "
    "[--palette windows|dos|declared|PAL] [--company COLOUR] [--base-set FILE] [--zoom LEVEL] "
    "[--depth 8|32] [--force]\n";

// No sheet is larger than this across or down; the sprites that do not fit go to further sheets.
constexpr int32_t kMaxSheetSide = 8192;
constexpr int32_t kDefaultColumns = 16;
// A light compression: a sheet is large, and the encoder's default costs four times as long.

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

// The colour choices of the command line, drawn as the window draws them; --company (empty when
// not given) joins them here as the window's company colour does.
SheetLook CliLook(const CliColours& colours, const AlternativeWish& wish) {
  SheetChoices choices;
  choices.Palette = colours.Palette;
  choices.Zoom = wish.Zoom;
  choices.Depth = wish.Depth;
  choices.Company = colours.Company;
  choices.Map = colours.Map;
  return LookOf(choices);
}

// The cells' pictures of `sprites`, decoded and scaled on every core; `failed` counts the
// pictures that could not be made.
std::vector<QImage> CellPictures(const GrfFile& file, const std::vector<SheetEntry>& entries,
                                 const std::vector<int32_t>& sprites, const SheetLook& look,
                                 int32_t cell, std::vector<std::string>& problems) {
  std::vector<QImage> pictures(sprites.size());
  std::vector<GrfResult> results(sprites.size(), GrfResult::Ok);
  std::atomic<size_t> next{0};
  {
    std::vector<std::jthread> workers;
    const unsigned count = std::max(1u, std::thread::hardware_concurrency());
    for (unsigned k = 0; k < count; ++k)
      workers.emplace_back([&] {
        for (size_t i = next++; i < sprites.size(); i = next++)
          pictures[i] = SheetPicture(file, sprites[i], entries[static_cast<size_t>(sprites[i])],
                                     look, cell, results[i]);
      });
  }
  for (size_t i = 0; i < sprites.size(); ++i)
    if (results[i] != GrfResult::Ok)
      problems.push_back("sprite " + std::to_string(sprites[i] + 1) + ": " +
                         PictureProblem(file, sprites[i],
                                        entries[static_cast<size_t>(sprites[i])].Alternative,
                                        results[i]));
  return pictures;
}

// A sheet on its way to its file.
struct SheetWrite {
  std::string Name;
  QImage Sheet;
  int32_t First = 0, Last = 0;
  bool Ok = false;
  std::string Error;
  std::jthread Thread;
};

// Waits for the sheet's file and says how it went.
bool Finish(SheetWrite& w) {
  w.Thread.join();
  if (!w.Ok) {
    std::fprintf(stderr, "vossel-cli: cannot write '%s': %s\n", w.Name.c_str(), w.Error.c_str());
    return false;
  }
  std::printf("%s: sprites %d to %d, %d x %d pixels\n", w.Name.c_str(), w.First + 1, w.Last + 1,
              w.Sheet.width(), w.Sheet.height());
  w.Sheet = QImage();
  return true;
}

QImage PaintSheet(const SheetLayout& layout, const std::vector<SheetEntry>& entries,
                  const std::vector<int32_t>& sprites, const std::vector<QImage>& pictures) {
  const auto count = static_cast<int32_t>(sprites.size());
  const int32_t rows = (count + layout.Columns - 1) / layout.Columns;
  QImage sheet(layout.Columns * layout.PitchX, rows * layout.PitchY, QImage::Format_RGB32);
  sheet.fill(Qt::white);
  QPainter painter(&sheet);
  for (int32_t i = 0; i < count; ++i)
    PaintSheetCell(painter, layout, SheetCellOrigin(layout, i), sprites[static_cast<size_t>(i)],
                   entries[static_cast<size_t>(sprites[static_cast<size_t>(i)])],
                   pictures[static_cast<size_t>(i)], false);
  return sheet;
}

}  // namespace

int CmdSheet(const std::vector<std::string>& args) {
  const CommandArgs parsed = ParseCommand(
      args, 2,
      {"columns", "cell", "first", "last", "palette", "company", "base-set", "zoom", "depth"},
      {"force"});
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
  const SheetLayout layout = MakeSheetLayout(cell, columns);
  if (int64_t{layout.Columns} * layout.PitchX > kMaxSheetSide)
    return UsageError("at most " + std::to_string(kMaxSheetSide / layout.PitchX) + " columns of " +
                      std::to_string(cell) + " pixels fit in a sheet of " +
                      std::to_string(kMaxSheetSide) + " pixels");

  const std::string& fileName = args[0];
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

  CliColours colours;
  if (const int status = ChooseColours(file, reading, parsed.Values, true, colours);
      status != kExitOk)
    return status;
  const SheetLook look = CliLook(colours, wish);
  const std::vector<SheetEntry> entries = SheetEntries(file, reading, wish.Zoom, wish.Depth);
  const std::vector<int32_t> all = FilterSheet(entries, {}, SheetFilter{}, first, last);
  const int32_t perSheet = kMaxSheetSide / layout.PitchY * layout.Columns;
  const auto pages = static_cast<int32_t>((all.size() + perSheet - 1) / perSheet);
  if (parsed.Values.count("force") == 0) {
    for (int32_t page = 0; page < pages; ++page) {
      const std::string name = SheetName(parsed.Positional[1], page);
      if (!QFileInfo::exists(QFile::decodeName(name.c_str()))) continue;
      std::fprintf(stderr,
                   "vossel-cli: %s is there already; nothing was written. Give --force "
                   "to overwrite.\n",
                   name.c_str());
      return kExitFailure;
    }
  }

  // Encoding takes longest, so sheets are encoded and written on their own threads, a few at once;
  // they are reported in order.
  std::vector<std::string> problems;
  std::deque<SheetWrite> writes;
  const size_t writers = std::max(1u, std::thread::hardware_concurrency());
  bool written = true;
  for (int32_t page = 0; page < pages && written; ++page) {
    const auto from = all.begin() + int64_t{page} * perSheet;
    const std::vector<int32_t> sprites(from, std::min(from + perSheet, all.end()));
    if (writes.size() >= writers) {
      written = Finish(writes.front());
      writes.pop_front();
    }
    SheetWrite& w = writes.emplace_back();
    w.Name = SheetName(parsed.Positional[1], page);
    w.First = sprites.front();
    w.Last = sprites.back();
    w.Sheet = PaintSheet(layout, entries, sprites,
                         CellPictures(file, entries, sprites, look, layout.Cell, problems));
    w.Thread = std::jthread([&w] { w.Ok = WritePngFile(w.Name, w.Sheet, 0, 0, w.Error); });
  }
  for (; !writes.empty(); writes.pop_front()) written = Finish(writes.front()) && written;
  if (!written) return kExitFailure;
  for (const std::string& problem : problems) FileError(fileName, problem);
  return FinishOutput(LoadStatus(file));
}

}  // namespace vossel
