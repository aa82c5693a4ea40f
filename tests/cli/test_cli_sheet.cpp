// vossel-cli sheet, run as the real binary: filtered sheets against the whole one, cell for cell,
// and the label of the sprite count. (Ranges, several sheets and refusals are in the transcript;
// the cells' pictures are held to the window's.)
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include <QImage>

#include "grf_writer.h"
#include "run_cli.h"
#include "sheet.h"
#include "sheet_files.h"

using namespace vossel;

using grfw::Bytes;

namespace {

QImage Sheet(const std::vector<std::string>& args) {
  const CliRun run = RunCli(args);
  EXPECT_EQ(run.Status, 0) << run.Err;
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
