// The sprite browser: what the scroll bar shows, clicks in the list, sorting by column, a drag of
// the thumb, and the redraw after a resize.
#include <gtest/gtest.h>

#include <QHeaderView>
#include <QStyle>
#include <QStyleOptionSlider>
#include <QTest>

#include "listview.h"
#include "picturebox.h"
#include "scrollbar.h"
#include "ui_support.h"

using uitest::ColumnTexts;

namespace {

// A click on a column header by its index from 1, and on the row with a key.
void ClickColumn(frmMain& form, int index) {
  QHeaderView* header = form.lvwSprite->header();
  const QPoint at(header->sectionViewportPosition(index - 1) + 4, header->height() / 2);
  QTest::mouseClick(header->viewport(), Qt::LeftButton, Qt::NoModifier, at);
}

void ClickRow(frmMain& form, const std::string& key) {
  ListView* lv = form.lvwSprite;
  for (int32_t i = 1; i <= lv->ItemCount(); ++i) {
    if (lv->Item(i).Key != key) continue;
    const QModelIndex index = lv->model()->index(i - 1, 0);
    lv->scrollTo(index);
    QTest::mouseClick(lv->viewport(), Qt::LeftButton, Qt::NoModifier,
                      lv->visualRect(index).center());
    return;
  }
  ADD_FAILURE() << "no row " << key;
}

struct Facts {
  std::string Caption, Flags, Size, Compressed, Offset;
  bool operator==(const Facts&) const = default;
};

void PrintTo(const Facts& f, std::ostream* os) {
  *os << f.Caption << " | " << f.Flags << " | " << f.Size << " | " << f.Compressed << " | "
      << f.Offset;
}

Facts Shown(frmMain& form) {
  return {Caption(&form), Caption(form.lblFlags), Caption(form.lblSize),
          Caption(form.lblCompressed), Caption(form.lblOffset)};
}

}  // namespace

TEST(Browser, EachKindOfSpriteShowsItsFacts) {
  uitest::StartedForm form;
  form.Load("five.grf", uitest::FiveSprites());
  EXPECT_EQ(Shown(*form),
            (Facts{"Viewing sprite 1 (2 x 2)", "00000000 (0)", "4",
                   std::to_string(form->Store.SpriteTable[0].CompressedSize), "-2 x 1"}));
  form->scrSprite->SetValue(1);
  EXPECT_EQ(Shown(*form),
            (Facts{"Viewing sprite 2 (10 x 1)", "11111111 (255)", "10", "10", "0 x 0"}));
  form->scrSprite->SetValue(3);
  EXPECT_EQ(Shown(*form).Flags, "00010000 (16)");
  form->scrSprite->SetValue(4);
  EXPECT_EQ(Shown(*form),
            (Facts{"Viewing sprite 5 (64 x 31)", "00001000 (8)", "1984",
                   std::to_string(form->Store.SpriteTable[4].CompressedSize), "-31 x 0"}));
  EXPECT_GT(form->Store.SpriteTable[4].CompressedSize, 0);
}

TEST(Browser, TheSpriteIsDrawnCentredInTheFreeArea) {
  uitest::StartedForm form;
  form.Load("five.grf", uitest::FiveSprites());
  // scrSprite.Left 333, ScaleHeight 318: x = (333 - 2 - 2) / 2, y = (318 - 2 + 1) / 2.
  const QImage& image = form->picSprite->Image();
  EXPECT_EQ(image.pixelColor(164, 158), uitest::PaletteColour(*form, 0x40));
  EXPECT_EQ(image.pixelColor(165, 158), uitest::PaletteColour(*form, 0x50));
  EXPECT_EQ(image.pixelColor(164, 159), uitest::PaletteColour(*form, 0xA0));
  EXPECT_EQ(image.pixelColor(165, 159), uitest::PaletteColour(*form, 0xC5));
  EXPECT_EQ(image.pixelColor(163, 158), QColor(Qt::white));
  EXPECT_EQ(image.pixelColor(166, 159), QColor(Qt::white));
  // What is shown on the screen is that image, inside the border.
  const QImage shown = form->picSprite->grab().toImage();
  EXPECT_EQ(shown.pixelColor(165, 159), uitest::PaletteColour(*form, 0x40));
  // The next sprite wipes the last one.
  form->scrSprite->SetValue(3);
  EXPECT_EQ(form->picSprite->Image().pixelColor(165, 159), QColor(Qt::white));
}

TEST(Browser, AResizeRedrawsTheSpriteCentredAndChangesNoText) {
  uitest::StartedForm form;
  form.Load("five.grf", uitest::FiveSprites());
  const Facts before = Shown(*form);
  uitest::WindowLog log(form.Form.get());
  form->resize(form->width() + 100, form->height() + 40);
  QCoreApplication::processEvents();
  // 100 pixels wider and 40 higher: the sprite moves by 50 and 20.
  const QImage& image = form->picSprite->Image();
  EXPECT_EQ(image.pixelColor(214, 178), uitest::PaletteColour(*form, 0x40));
  EXPECT_EQ(image.pixelColor(164, 158), QColor(Qt::white));
  EXPECT_EQ(Shown(*form), before);
  EXPECT_TRUE(log.Entries.empty());
}

TEST(Browser, ScrollBarStaysAtNoFileAndLabelsShowDashes) {
  uitest::StartedForm form;
  EXPECT_EQ(form->scrSprite->Max(), 0);
  QTest::keyClick(form->scrSprite, Qt::Key_Down);
  EXPECT_EQ(form->scrSprite->Value(), 0);
  EXPECT_EQ(Caption(form.Form.get()), "Vossel (GRF loader engine)");
  EXPECT_EQ(Caption(form->lblFlags), "-");
  // A column click with no rows sorts nothing and keeps its state.
  ClickColumn(*form, 1);
  EXPECT_EQ(form->lvwSprite->SortOrder, 1);
}

TEST(Browser, FirstAndLastSpriteCountFromOne) {
  uitest::StartedForm form;
  form.Load("many.grf", uitest::ManySprites(14));
  EXPECT_EQ(Caption(form.Form.get()), "Viewing sprite 1 (1 x 2)");
  form->scrSprite->SetValue(13);
  EXPECT_EQ(Caption(form.Form.get()),
            "Viewing sprite 14 (" + std::to_string(13 * 7 % 13 + 1) + " x 2)");
}

TEST(Browser, ItemClickShowsTheRowsSpriteAlsoAfterASort) {
  uitest::StartedForm form;
  form.Load("many.grf", uitest::ManySprites(20));
  ClickRow(*form, "k12");
  EXPECT_EQ(form->scrSprite->Value(), 12);
  EXPECT_EQ(Caption(form.Form.get()),
            "Viewing sprite 13 (" + std::to_string(12 * 7 % 13 + 1) + " x 2)");
  ClickColumn(*form, 2);  // Width, ascending
  ASSERT_NE(form->lvwSprite->Item(13).Key, "k12");
  ClickRow(*form, "k3");
  EXPECT_EQ(form->scrSprite->Value(), 3);
  ClickRow(*form, "k12");
  EXPECT_EQ(form->scrSprite->Value(), 12);
  EXPECT_EQ(Caption(form.Form.get()).rfind("Viewing sprite 13 (", 0), 0u);
  // A click on the row on view changes no value and draws nothing again.
  uitest::WindowLog log(form.Form.get());
  form->picSprite->Image().fill(Qt::black);
  ClickRow(*form, "k12");
  EXPECT_TRUE(log.Entries.empty());
  EXPECT_EQ(form->picSprite->Image().pixelColor(0, 0), QColor(Qt::black));
}

TEST(Browser, ColumnClicksSortAsTheSortStateSays) {
  uitest::StartedForm form;
  form.Load("many.grf", uitest::ManySprites(14));
  ListView* lv = form->lvwSprite;
  const int16_t value = form->scrSprite->Value();
  const std::string caption = Caption(form.Form.get());
  const std::vector<std::string> numbers = ColumnTexts(*form, 0);
  std::vector<std::string> descending(numbers.rbegin(), numbers.rend());
  // The first click on "#" sorts descending, the state starting at key 0 and order 0.
  ClickColumn(*form, 1);
  EXPECT_EQ(lv->SortKey, 0);
  EXPECT_EQ(lv->SortOrder, 1);
  EXPECT_FALSE(lv->Sorted());
  EXPECT_EQ(ColumnTexts(*form, 0), descending);
  ClickColumn(*form, 1);
  EXPECT_EQ(ColumnTexts(*form, 0), numbers);
  // "Size" twice: ascending, then descending.
  ClickColumn(*form, 4);
  EXPECT_EQ(lv->SortKey, 3);
  EXPECT_EQ(lv->SortOrder, 0);
  std::vector<std::string> sizes = ColumnTexts(*form, 3);
  EXPECT_TRUE(std::is_sorted(sizes.begin(), sizes.end()));
  ClickColumn(*form, 4);
  EXPECT_EQ(lv->SortOrder, 1);
  sizes = ColumnTexts(*form, 3);
  EXPECT_TRUE(std::is_sorted(sizes.rbegin(), sizes.rend()));
  // "Width" in between starts ascending, and the next "Size" again.
  ClickColumn(*form, 2);
  EXPECT_EQ(lv->SortKey, 1);
  EXPECT_EQ(lv->SortOrder, 0);
  const std::vector<std::string> widths = ColumnTexts(*form, 1);
  EXPECT_TRUE(std::is_sorted(widths.begin(), widths.end()));
  ClickColumn(*form, 4);
  EXPECT_EQ(lv->SortKey, 3);
  EXPECT_EQ(lv->SortOrder, 0);
  // Sorting moves neither the scroll bar nor the picture.
  EXPECT_EQ(form->scrSprite->Value(), value);
  EXPECT_EQ(Caption(form.Form.get()), caption);
}

TEST(Browser, SortComparesTextsSoAnOutgrownMaskStandsFirst) {
  uitest::StartedForm form;
  const grfw::Bytes big(100000, 1), below(99999, 2);
  // Sizes past a length word need the stored-size flag.
  form.Load("sizes.grf", grfw::File({grfw::PlainSprite(11111, 9, below, 0, 0, 2),
                                     grfw::PlainSprite(400, 250, big, 0, 0, 2),
                                     grfw::PlainSprite(2, 2, {1, 2, 3, 4})}));
  EXPECT_EQ(ColumnTexts(*form, 3), (std::vector<std::string>{"99999", "100000", "00004"}));
  EXPECT_EQ(ColumnTexts(*form, 1), (std::vector<std::string>{"11111", "400", "002"}));
  ClickColumn(*form, 4);
  EXPECT_EQ(ColumnTexts(*form, 3), (std::vector<std::string>{"00004", "100000", "99999"}));
  EXPECT_TRUE(form.Boxes.Boxes.empty());
}

TEST(Browser, TheNextLoadShowsFileOrderWhileTheSortStateStays) {
  uitest::StartedForm form;
  form.Load("many.grf", uitest::ManySprites(14));
  ClickColumn(*form, 3);  // Height ascending
  ClickColumn(*form, 2);  // Width ascending
  form.Load("many.grf", uitest::ManySprites(14));
  EXPECT_EQ(form->lvwSprite->Item(1).Key, "k0");
  EXPECT_EQ(form->lvwSprite->Item(14).Key, "k13");
  EXPECT_EQ(form->lvwSprite->SortKey, 1);
  ClickColumn(*form, 2);  // the column sorted last: reversed
  EXPECT_EQ(form->lvwSprite->SortOrder, 1);
  const std::vector<std::string> widths = ColumnTexts(*form, 1);
  EXPECT_TRUE(std::is_sorted(widths.rbegin(), widths.rend()));
}

TEST(Browser, ThumbDragShowsEveryPositionItPasses) {
  uitest::StartedForm form;
  form.Load("many.grf", uitest::ManySprites(10));
  uitest::WindowLog log(form.Form.get());
  ScrollBar* bar = form->scrSprite;
  bar->setSliderDown(true);
  for (int position : {1, 2, 3, 4}) bar->setSliderPosition(position);
  const std::vector<std::string> captions = log.Captions();
  ASSERT_EQ(captions.size(), 4u);
  for (int i = 0; i < 4; ++i)
    EXPECT_EQ(
        captions[static_cast<size_t>(i)].rfind("Viewing sprite " + std::to_string(i + 2) + " (", 0),
        0u);
  // The drag ends on a new value: the change event shows that sprite once more.
  form->picSprite->Image().fill(Qt::black);
  bar->setSliderDown(false);
  EXPECT_EQ(form->picSprite->Image().pixelColor(0, 0), QColor(Qt::white));
  EXPECT_EQ(bar->Value(), 4);
}

TEST(Browser, MouseDragOfTheThumbFollowsThePointer) {
  uitest::StartedForm form;
  form.Load("many.grf", uitest::ManySprites(10));
  uitest::WindowLog log(form.Form.get());
  ScrollBar* bar = form->scrSprite;
  QStyleOptionSlider option;
  option.initFrom(bar);
  option.orientation = Qt::Vertical;
  option.maximum = bar->maximum();
  option.pageStep = bar->pageStep();
  option.singleStep = bar->singleStep();
  const QPoint grab =
      bar->style()
          ->subControlRect(QStyle::CC_ScrollBar, &option, QStyle::SC_ScrollBarSlider, bar)
          .center();
  QTest::mousePress(bar, Qt::LeftButton, Qt::NoModifier, grab);
  for (int dy = 10; dy <= 300; dy += 10) QTest::mouseMove(bar, grab + QPoint(0, dy));
  QTest::mouseRelease(bar, Qt::LeftButton, Qt::NoModifier, grab + QPoint(0, 300));
  EXPECT_EQ(bar->Value(), 9);
  const std::vector<std::string> captions = log.Captions();
  ASSERT_GE(captions.size(), 9u);
  EXPECT_EQ(captions.front().rfind("Viewing sprite 2 (", 0), 0u);
  EXPECT_EQ(captions.back().rfind("Viewing sprite 10 (", 0), 0u);
}
