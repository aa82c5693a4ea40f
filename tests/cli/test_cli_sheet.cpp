// vossel-cli sheet, run as the real binary: the sheet's size for a range, each cell's pixels
// against our writer's pixels through the palette file, and a file spread over several sheets.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include <QImage>

#include "grf_writer.h"
#include "renderer.h"
#include "run_cli.h"
#include "sheet.h"
#include "sheet_files.h"

using namespace vossel;

namespace fs = std::filesystem;
using grfw::Bytes;

namespace {

PaletteBuffer ProgramPalette() {
  PaletteBuffer p{};
  LoadPalette((fs::path(VOSSEL_CLI_PATH).parent_path() / kPaletteFileName).string(), p);
  return p;
}

Bytes Pixels(int n, uint8_t first) {
  Bytes b(static_cast<size_t>(n));
  for (int i = 0; i < n; ++i) b[static_cast<size_t>(i)] = static_cast<uint8_t>(first + i * 7);
  return b;
}

}  // namespace

TEST(CliSheet, ARangeGivesTheGridOfItsSpritesScaled) {
  // Sprite 1 is left out by --first; 3 is a pseudo-sprite; 5 is reduced, the others enlarged.
  const struct { int W, H; } sizes[] = {{4, 4}, {5, 3}, {0, 0}, {1, 7}, {90, 20}, {32, 32}};
  std::vector<Bytes> records;
  for (const auto& s : sizes)
    records.push_back(s.W == 0
                          ? grfw::ActionRecord({0x08, 1, 2})
                          : grfw::PlainSprite(static_cast<uint16_t>(s.W), static_cast<uint8_t>(s.H),
                                              Pixels(s.W * s.H, static_cast<uint8_t>(s.W))));
  const std::string grf = grfw::WriteTemp("sheet.grf", grfw::FileOf(records));
  const std::string out = (fs::path(grf).parent_path() / "sheet-range.png").string();
  fs::remove(out);
  const CliRun run =
      RunCli({"sheet", grf, out, "--first", "2", "--last", "6", "--columns", "2", "--cell", "32"});
  ASSERT_EQ(run.Status, 0) << run.Err;
  EXPECT_EQ(run.Out, out + ": sprites 2 to 6, 72 x 132 pixels\n");
  const QImage sheet = QImage(QString::fromStdString(out)).convertToFormat(QImage::Format_RGB32);
  const SheetLayout layout = MakeSheetLayout(32, 2);
  ASSERT_EQ(sheet.size(), QSize(2 * layout.PitchX, 3 * layout.PitchY));
  const PaletteBuffer palette = ProgramPalette();
  for (int slot = 0; slot < 5; ++slot) {
    const auto& s = sizes[slot + 1];
    if (s.W == 0) continue;
    const Bytes pixels = Pixels(s.W * s.H, static_cast<uint8_t>(s.W));
    const QImage expected = CellPicture(IndexedPicture(pixels.data(), s.W, s.H, palette), 32);
    const QRect square = SheetPictureSquare(layout, SheetCellOrigin(layout, slot));
    EXPECT_EQ(
        sheet.copy(square.x() + (32 - expected.width()) / 2,
                   square.y() + (32 - expected.height()) / 2, expected.width(), expected.height()),
        expected)
        << "sprite " << slot + 2;
  }
  // A sheet that is there stays without --force.
  EXPECT_EQ(RunCli({"sheet", grf, out}).Status, 1);
  EXPECT_EQ(QImage(QString::fromStdString(out)).size(), sheet.size());
}

TEST(CliSheet, AFileTooLargeForOneSheetGivesSeveralWithinTheLimit) {
  std::vector<Bytes> records(200, grfw::PlainSprite(1, 1, {9}));
  const std::string grf = grfw::WriteTemp("sheets.grf", grfw::FileOf(records));
  const fs::path dir = fs::path(grf).parent_path() / "sheets";
  fs::remove_all(dir);
  fs::create_directories(dir);
  const CliRun run =
      RunCli({"sheet", grf, (dir / "s.png").string(), "--cell", "256", "--columns", "3"});
  ASSERT_EQ(run.Status, 0) << run.Err;
  // 273 pixels a row, so 30 rows of 3 sprites a sheet.
  const std::pair<const char*, int> sheets[] = {{"s.png", 30}, {"s-2.png", 30}, {"s-3.png", 7}};
  for (const auto& [name, rows] : sheets) {
    const QImage png(QString::fromStdString((dir / name).string()));
    EXPECT_EQ(png.size(), QSize(3 * 260, rows * 273)) << name;
  }
  EXPECT_EQ(std::distance(fs::directory_iterator(dir), {}), 3);
  fs::remove_all(dir);
}

namespace {

QImage Sheet(const std::vector<std::string>& args, std::string* err = nullptr) {
  const CliRun run = RunCli(args);
  EXPECT_EQ(run.Status, 0) << run.Err;
  if (err != nullptr) *err = run.Err;
  return QImage(QString::fromStdString(args[2])).convertToFormat(QImage::Format_RGB32);
}

QImage Cell(const QImage& sheet, int32_t columns, int64_t slot) {
  const SheetLayout layout = MakeSheetLayout(kDefaultSheetCell, columns);
  return sheet.copy(QRect(SheetCellOrigin(layout, slot), QSize(layout.PitchX, layout.PitchY)));
}

}  // namespace

// The window's filters on the command line: a filtered sheet holds the same cells as the whole one,
// closed up; standard output takes one sheet and refuses more.
TEST(CliSheet, KindAndRoleFiltersAndStandardOutput) {
  const std::string grf = grfw::WriteTemp("filters.grf", sheetfiles::DosVersion1());
  const std::string all = grfw::WriteTemp("filters-all.png", {});
  const std::string some = grfw::WriteTemp("filters-some.png", {});
  const QImage whole = Sheet({"sheet", grf, all, "--force", "--last", "40", "--columns", "8"});
  // Sprites 1 and 2 are pseudo-sprites: the pictures start at sprite 3.
  const QImage pictures =
      Sheet({"sheet", grf, some, "--force", "--last", "40", "--columns", "8", "--pictures"});
  for (int64_t slot = 0; slot < 38; ++slot)
    ASSERT_EQ(Cell(pictures, 8, slot), Cell(whole, 8, slot + 2)) << slot;
  const QImage pseudo =
      Sheet({"sheet", grf, some, "--force", "--last", "40", "--columns", "8", "--pseudo-sprites"});
  EXPECT_EQ(pseudo.height(), MakeSheetLayout(kDefaultSheetCell, 8).PitchY);
  EXPECT_EQ(Cell(pseudo, 8, 1), Cell(whole, 8, 1));
  // The recolour maps are the sixteen from sprite 776, in either spelling of the role.
  for (const char* role : {"recolour-maps", "Recolour Maps"}) {
    const CliRun run = RunCli({"sheet", grf, some, "--force", "--role", role});
    EXPECT_EQ(run.Status, 0) << run.Err;
    EXPECT_EQ(run.Out, some + ": sprites 776 to 791, 1088 x " +
                           std::to_string(MakeSheetLayout(kDefaultSheetCell, 16).PitchY) +
                           " pixels\n");
  }
  EXPECT_EQ(RunCli({"sheet", grf, some, "--role", "hats"}).Status, 2);
  EXPECT_EQ(RunCli({"sheet", grf, some, "--pictures", "--pseudo-sprites"}).Status, 2);

  // '-' is standard output: the same PNG, and nothing else on it.
  const CliRun out = RunCli({"sheet", grf, "-", "--last", "40", "--columns", "8"});
  ASSERT_EQ(out.Status, 0) << out.Err;
  std::ifstream file(all, std::ios::binary);
  EXPECT_EQ(out.Out, std::string(std::istreambuf_iterator<char>(file), {}));
  // The whole file takes two sheets of 16 columns of 256-pixel cells.
  const CliRun two = RunCli({"sheet", grf, "-", "--cell", "256"});
  EXPECT_EQ(two.Status, 1);
  EXPECT_TRUE(two.Out.empty());
  EXPECT_NE(two.Err.find("standard output takes one"), std::string::npos) << two.Err;
}

// The sprite count that opens a file is labelled as the count whatever its first byte; a
// pseudo-sprite of another length in its place is labelled with its action.
TEST(CliSheet, TheSpriteCountIsLabelledAsTheCount) {
  const auto first = [](const Bytes& pseudo) {
    const std::string grf = grfw::WriteTemp(
        "count.grf", grfw::File({grfw::ActionRecord(pseudo), grfw::PlainSprite(1, 1, {9})}));
    const std::string png = grfw::WriteTemp("count.png", {});
    return Cell(Sheet({"sheet", grf, png, "--force"}), 16, 0);
  };
  const QImage count = first({0x9C, 0x01, 0x00, 0x00});
  EXPECT_EQ(first({0xBF, 0x12, 0x00, 0x00}), count);
  EXPECT_NE(first({0x9C, 0x01, 0x00, 0x00, 0x00}), count);
  EXPECT_NE(first({0xBF, 0x01, 0x00, 0x00, 0x00}), first({0x9C, 0x01, 0x00, 0x00, 0x00}));
}
