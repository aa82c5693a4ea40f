// The cell rule against sizes and pixels worked out by hand, and the grid's filters.
#include <gtest/gtest.h>

#include "sheet.h"

using namespace vossel;

TEST(SheetCell, SmallPicturesGrowByWholeNumbersAndLargeOnesShrinkToFit) {
  const struct {
    int32_t W, H, Cell, ExpectW, ExpectH;
  } cases[] = {
      {2, 2, 16, 16, 16},    {3, 1, 16, 15, 5},    {16, 16, 16, 16, 16},   {5, 7, 64, 45, 63},
      {128, 64, 32, 32, 16}, {1000, 1, 16, 16, 1}, {1, 1000, 256, 1, 256}, {0, 5, 16, 0, 0},
  };
  for (const auto& c : cases) {
    const QSize size = CellPictureSize(c.W, c.H, c.Cell);
    EXPECT_EQ(QSize(size.width(), size.height()),
              c.ExpectW == 0 ? QSize() : QSize(c.ExpectW, c.ExpectH))
        << c.W << "x" << c.H << " in " << c.Cell;
  }
  // Enlarged: each pixel a square; reduced: two equal halves stay equal; alpha over the checks.
  QImage two(2, 1, QImage::Format_Indexed8);
  two.setColorTable({qRgb(255, 0, 0), qRgb(0, 0, 255)});
  two.setPixel(0, 0, 0);
  two.setPixel(1, 0, 1);
  const QImage big = CellPicture(two, 16);
  ASSERT_EQ(big.size(), QSize(16, 8));
  for (int y = 0; y < 8; ++y)
    for (int x = 0; x < 16; ++x)
      ASSERT_EQ(big.pixel(x, y), x < 8 ? qRgb(255, 0, 0) : qRgb(0, 0, 255));
  QImage wide(64, 32, QImage::Format_RGBA8888);
  wide.fill(QColor(0, 200, 0, 255));
  EXPECT_EQ(CellPicture(wide, 16).pixel(5, 3), qRgb(0, 200, 0));
  wide.fill(QColor(0, 0, 0, 0));
  EXPECT_EQ(CellPicture(wide, 16).pixel(0, 0), 0xFFCCCCCCu);  // the light check
}
