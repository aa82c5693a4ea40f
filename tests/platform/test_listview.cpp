// The list view: columns, rows with keys, byte-wise stable sorting, click events.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <QHeaderView>
#include <QTest>

#include "listview.h"

namespace {

std::vector<std::string> Column(const ListView& lv, size_t column) {
  std::vector<std::string> texts;
  for (int32_t i = 1; i <= lv.ItemCount(); ++i) texts.push_back(lv.Item(i).Texts[column]);
  return texts;
}

std::vector<std::string> Keys(const ListView& lv) {
  std::vector<std::string> keys;
  for (int32_t i = 1; i <= lv.ItemCount(); ++i) keys.push_back(lv.Item(i).Key);
  return keys;
}

void SortBy(ListView& lv, int16_t key, int32_t order) {
  lv.SortKey = key;
  lv.SortOrder = order;
  lv.SetSorted(true);
  lv.SetSorted(false);
}

void Fill(ListView& lv, const std::vector<std::string>& names) {
  for (size_t i = 0; i < names.size(); ++i)
    lv.AddItem("k" + std::to_string(i), {names[i], std::to_string(i % 2)});
}

}  // namespace

TEST(ListView, ColumnsHaveTextsAndWidthsFromHundredthsOfAMillimetre) {
  ListView lv(nullptr);
  lv.AddColumn("#", 838);
  lv.AddColumn("Width", 1058);
  lv.AddColumn("Height", 1130);
  lv.AddColumn("Flags", 1668);
  ASSERT_EQ(lv.ColumnCount(), 4);
  EXPECT_EQ(lv.Column(2).Text, "Width");
  EXPECT_EQ(lv.Column(2).Index, 2);
  EXPECT_EQ(lv.header()->sectionSize(0), 32);
  EXPECT_EQ(lv.header()->sectionSize(1), 40);
  EXPECT_EQ(lv.header()->sectionSize(2), 43);
  EXPECT_EQ(lv.header()->sectionSize(3), 63);
  EXPECT_EQ(lv.model()->headerData(3, Qt::Horizontal).toString(), "Flags");
  EXPECT_EQ(lv.Column(9).Text, "");
}

TEST(ListView, RowsAddedWhileHiddenReachTheViewWhenShown) {
  ListView lv(nullptr);
  lv.AddColumn("#", 838);
  lv.AddColumn("Size", 1130);
  lv.show();
  lv.AddItem("k0", {"0001", "00004"});
  EXPECT_EQ(lv.model()->rowCount(), 1);
  lv.setVisible(false);
  lv.AddItem("k1", {"0002", "00010"});
  lv.AddItem("k2", {"0003"});  // fewer texts than columns: the rest are empty
  EXPECT_EQ(lv.ItemCount(), 3);
  EXPECT_EQ(lv.model()->rowCount(), 1);
  lv.setVisible(true);
  ASSERT_EQ(lv.model()->rowCount(), 3);
  EXPECT_EQ(lv.model()->index(1, 1).data().toString(), "00010");
  EXPECT_EQ(lv.model()->index(2, 1).data().toString(), "");
  EXPECT_EQ(lv.Item(2).Key, "k1");
  lv.Clear();
  EXPECT_EQ(lv.ItemCount(), 0);
  EXPECT_EQ(lv.model()->rowCount(), 0);
}

TEST(ListView, SortComparesBytesAndKeepsEqualTextsInTheirOrder) {
  ListView lv(nullptr);
  lv.AddColumn("Name", 1000);
  lv.AddColumn("Odd", 1000);
  Fill(lv, {"b", "a", "B", "100000", "99999", "a"});
  SortBy(lv, 0, 0);
  EXPECT_EQ(Column(lv, 0), (std::vector<std::string>{"100000", "99999", "B", "a", "a", "b"}));
  EXPECT_EQ(Keys(lv), (std::vector<std::string>{"k3", "k4", "k2", "k1", "k5", "k0"}));
  SortBy(lv, 0, 1);
  EXPECT_EQ(Keys(lv), (std::vector<std::string>{"k0", "k1", "k5", "k2", "k4", "k3"}));
  // Equal texts keep the order they had before this sort.
  SortBy(lv, 1, 0);
  EXPECT_EQ(Keys(lv), (std::vector<std::string>{"k0", "k2", "k4", "k1", "k5", "k3"}));
  EXPECT_FALSE(lv.Sorted());
  // Rows added after a sort stand at the end; a column past the last sorts nothing.
  lv.AddItem("k6", {"0", "0"});
  EXPECT_EQ(lv.Item(7).Key, "k6");
  SortBy(lv, 9, 0);
  EXPECT_EQ(lv.Item(1).Key, "k0");
  EXPECT_EQ(lv.Item(7).Key, "k6");
}

TEST(ListView, SelectionStaysWithItsRowThroughASort) {
  ListView lv(nullptr);
  lv.AddColumn("Name", 1000);
  Fill(lv, {"c", "a", "b"});
  lv.show();
  lv.setCurrentIndex(lv.model()->index(0, 0));  // "c", key k0
  SortBy(lv, 0, 0);
  ASSERT_TRUE(lv.currentIndex().isValid());
  EXPECT_EQ(lv.currentIndex().row(), 2);
  EXPECT_EQ(lv.Item(lv.currentIndex().row() + 1).Key, "k0");
}

TEST(ListView, ClicksOnRowsAndHeadersRaiseTheirEvents) {
  ListView lv(nullptr);
  lv.resize(300, 200);
  lv.AddColumn("Name", 1500);
  lv.AddColumn("Odd", 1500);
  Fill(lv, {"c", "a", "b"});
  std::vector<std::string> items;
  std::vector<int32_t> columns;
  lv.ItemClick = [&](const ListItem& item) { items.push_back(item.Key); };
  lv.ColumnClick = [&](const ColumnHeader& column) { columns.push_back(column.Index); };
  lv.show();
  SortBy(lv, 0, 0);  // a, b, c
  const QRect second = lv.visualRect(lv.model()->index(1, 0));
  QTest::mouseClick(lv.viewport(), Qt::LeftButton, Qt::NoModifier, second.center());
  EXPECT_EQ(items, (std::vector<std::string>{"k2"}));
  QTest::keyClick(&lv, Qt::Key_Down);  // choosing a row by key counts as a click on it
  EXPECT_EQ(items, (std::vector<std::string>{"k2", "k0"}));
  QHeaderView* header = lv.header();
  const QPoint onSecond(header->sectionViewportPosition(1) + 5, header->height() / 2);
  QTest::mouseClick(header->viewport(), Qt::LeftButton, Qt::NoModifier, onSecond);
  const QPoint onFirst(header->sectionViewportPosition(0) + 5, header->height() / 2);
  QTest::mouseClick(header->viewport(), Qt::LeftButton, Qt::NoModifier, onFirst);
  EXPECT_EQ(columns, (std::vector<int32_t>{2, 1}));
  // The header click alone sorts nothing.
  EXPECT_EQ(lv.Item(1).Key, "k1");
}

TEST(ListView, HoldsAndSortsTheLargestSpriteList) {
  ListView lv(nullptr);
  lv.AddColumn("#", 838);
  lv.AddColumn("Size", 1130);
  lv.setVisible(false);
  for (int32_t i = 0; i < 32767; ++i)
    lv.AddItem("k" + std::to_string(i), {std::to_string(10000 + i), std::to_string(i % 7)});
  lv.setVisible(true);
  EXPECT_EQ(lv.model()->rowCount(), 32767);
  SortBy(lv, 0, 1);
  EXPECT_EQ(lv.Item(1).Key, "k32766");
  SortBy(lv, 1, 0);
  EXPECT_EQ(lv.Item(1).Key, "k32760");  // the zeros in the order of the descending sort before
  EXPECT_EQ(lv.Item(32767).Key, "k6");
}
