// The list box: lines at an index or at the end, NewIndex, ListIndex, ItemData.
#include <gtest/gtest.h>

#include "listbox.h"

TEST(ListBox, AddItemAtTheTopOrAtTheEndTellsWhereItWent) {
  ListBox li(nullptr);
  EXPECT_EQ(li.NewIndex(), -1);
  li.AddItem("first");
  EXPECT_EQ(li.NewIndex(), 0);
  li.AddItem("second", 0);
  EXPECT_EQ(li.NewIndex(), 0);
  li.AddItem("end");
  EXPECT_EQ(li.NewIndex(), 2);
  li.AddItem("past the end", 9);
  EXPECT_EQ(li.NewIndex(), 3);
  ASSERT_EQ(li.ListCount(), 4);
  EXPECT_EQ(li.List(0), "second");
  EXPECT_EQ(li.List(1), "first");
  EXPECT_EQ(li.List(3), "past the end");
  EXPECT_EQ(li.List(4), "");
  li.Clear();
  EXPECT_EQ(li.ListCount(), 0);
  EXPECT_EQ(li.NewIndex(), -1);
}

TEST(ListBox, ListIndexSelectsAndMovesWithItsLine) {
  ListBox li(nullptr);
  EXPECT_EQ(li.ListIndex(), -1);
  li.AddItem("a");
  li.AddItem("b");
  li.SetListIndex(0);
  EXPECT_EQ(li.ListIndex(), 0);
  li.AddItem("newest", 0);  // the selected line keeps its selection one place lower
  EXPECT_EQ(li.ListIndex(), 1);
  li.SetListIndex(0);
  EXPECT_EQ(li.ListIndex(), 0);
  li.SetListIndex(7);
  EXPECT_EQ(li.ListIndex(), -1);
  li.SetListIndex(2);
  li.SetListIndex(-1);
  EXPECT_EQ(li.ListIndex(), -1);
}

TEST(ListBox, ItemDataIsASigned32BitNumberBesideEachLine) {
  ListBox li(nullptr);
  li.AddItem("a");
  li.AddItem("b");
  EXPECT_EQ(li.ItemData(0), 0);
  li.SetItemData(0, -2147483647 - 1);
  li.SetItemData(1, 2147483647);
  li.SetItemData(5, 1);  // outside the list: nothing
  EXPECT_EQ(li.ItemData(0), -2147483647 - 1);
  EXPECT_EQ(li.ItemData(1), 2147483647);
  EXPECT_EQ(li.ItemData(5), 0);
  li.AddItem("top", 0);  // the numbers stay with their lines
  EXPECT_EQ(li.ItemData(2), 2147483647);
}
