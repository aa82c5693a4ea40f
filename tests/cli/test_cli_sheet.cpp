// vossel-cli sheet, run as the real binary: the sheet's size for a range, each cell's pixels
// against our writer's pixels through the palette file, and a file spread over several sheets.
#include <gtest/gtest.h>

#include <filesystem>

#include <QImage>

#include "grf_writer.h"
#include "renderer.h"
#include "run_cli.h"
#include "sheet.h"

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
