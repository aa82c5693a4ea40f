// The Compare window on the real windows offscreen: File > Compare With... with the dialog
// injected, a real NewGRF against a copy whose one picture our writer wrote anew with a few pixels
// changed. The list must say what the CLI's diff says, and the marked picture must mark exactly
// the changed pixels; the window follows reloads and new files.
#include <gtest/gtest.h>

#include <map>
#include <sstream>

#include <QTest>
#include <QTreeWidget>

#include "frmCompare.h"
#include "run_cli.h"
#include "scrollbar.h"
#include "ui_support.h"

using namespace vossel;

namespace {

struct Changed {
  grfw::Bytes File;
  int32_t Sprite = -1;
  std::vector<std::pair<int, int>> Pixels;  // x, y
};

// The first 8-bit picture at least 8x8 whose id one sprite alone names, its entry replaced by our
// writer's with `count` pixels changed; every other byte stays as it was.
Changed ChangePixels(const grfw::Bytes& real, const GrfFile& file, int count) {
  const auto& index = std::get<GrfV2File>(file.Contents).Index;
  std::map<uint32_t, int> named;
  for (const GrfV2Sprite& s : index.Sprites)
    if (s.Info == kV2Reference) ++named[s.Id];
  Changed out;
  for (size_t i = 0; i < index.Sprites.size() && out.Sprite < 0; ++i) {
    const GrfV2Sprite& s = index.Sprites[i];
    if (s.Info != kV2Reference || named[s.Id] != 1 || s.AlternativeCount != 1) continue;
    const GrfV2Alternative& a = index.Alternatives[static_cast<size_t>(s.FirstAlternative)];
    if ((a.Info & 7) != 4 || a.Width < 8 || a.Height < 8) continue;
    SpritePicture p;
    if (PictureOf(file, static_cast<int32_t>(i), 0, p) != GrfResult::Ok) continue;
    out.Sprite = static_cast<int32_t>(i);
    grfw::Image2 im{a.Info, a.Zoom, a.Width, a.Height, a.XOffset, a.YOffset, p.Indices};
    for (int k = 0; k < count; ++k) {
      const int x = 1 + 2 * k, y = a.Height / 2;
      uint8_t& v = im.pixels[static_cast<size_t>(y * a.Width + x)];
      v = static_cast<uint8_t>(v == 0xC5 ? 0xC6 : 0xC5);
      out.Pixels.emplace_back(x, y);
    }
    // The entry: id, size, info, zoom, height, width, x, y, the tile form's size, the stream.
    const int64_t head = 18 + ((a.Info & 8) ? 4 : 0);
    out.File.assign(real.begin(), real.begin() + (a.StreamOffset - head));
    grfw::Append(out.File, grfw::V2Sprite(a.Id, im));
    out.File.insert(out.File.end(), real.begin() + (a.StreamOffset + a.StreamSize), real.end());
  }
  return out;
}

}  // namespace

TEST(CompareWindow, ListsWhatTheCliSaysAndMarksTheChangedPixels) {
  uitest::StartedForm form;
  const grfw::Bytes real = uitest::DataFile("ogfx-mars-rv.grf");
  const std::string a = form.Load("compare-a.grf", real);
  const Changed b = ChangePixels(real, form->File, 5);
  ASSERT_GE(b.Sprite, 0);
  form.Boxes.Next = grfw::WriteTemp("compare-b.grf", b.File);

  form->mnuCompare->trigger();
  ASSERT_TRUE(form->CompareWindow);
  frmCompare& window = *form->CompareWindow;
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
  EXPECT_EQ(std::get<0>(form.Boxes.Dialogs.back()), kCompareTitle);

  // Every line of the list is a line of the CLI's diff, and the CLI names nothing more.
  const CliRun cli = RunCli({"diff", a, form.Boxes.Next, "--pixels"});
  EXPECT_EQ(cli.Status, 1);
  QTreeWidget* list = window.tvwDifferences;
  std::string lines = window.lblFiles->text().toStdString() + "\n";
  for (int i = 0; i < list->topLevelItemCount(); ++i)
    lines += list->topLevelItem(i)->text(2).toStdString() + "\n";
  lines += window.lblSummary->text().toStdString() + "\n";
  EXPECT_EQ(lines, cli.Out);
  ASSERT_EQ(list->topLevelItemCount(), 1);
  QTreeWidgetItem* row = list->topLevelItem(0);
  EXPECT_EQ(row->text(0).toStdString(), std::to_string(b.Sprite + 1));
  EXPECT_EQ(row->text(1).toStdString(), "pixels");

  // Selecting it shows both pictures, and marks over B exactly the pixels changed.
  list->setCurrentItem(row);
  EXPECT_EQ(form->scrSprite->Value(), b.Sprite);
  ASSERT_FALSE(window.OldPicture.isNull());
  ASSERT_EQ(window.MarkedPicture.size(), window.NewPicture.size());
  std::vector<std::pair<int, int>> marked;
  const QImage shown = window.NewPicture.convertToFormat(QImage::Format_ARGB32);
  for (int y = 0; y < shown.height(); ++y)
    for (int x = 0; x < shown.width(); ++x)
      if (window.MarkedPicture.pixel(x, y) != shown.pixel(x, y)) {
        marked.emplace_back(x, y);
        EXPECT_GT(qRed(window.MarkedPicture.pixel(x, y)), 200);
      }
  EXPECT_EQ(marked, b.Pixels);
  if (const char* shot = std::getenv("VOSSEL_COMPARE_SCREENSHOT")) window.grab().save(shot);

  // A reload of A compares anew; B loaded as A is then equal to it.
  form->mnuReload->trigger();
  EXPECT_EQ(list->topLevelItemCount(), 1);
  form.Load("compare-b-open.grf", b.File);
  EXPECT_EQ(list->topLevelItemCount(), 0);
  EXPECT_EQ(window.lblSummary->text().toStdString(), "identical");
}
