// A list view in report form: column headers, rows with a key and a text for each column, and
// sorting by the text of one column.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include <QTreeView>

namespace vossel {

class ListViewModel;

struct ListItem {
  std::string Key;
  std::vector<std::string> Texts;  // one for each column: the item's text, then its sub-items
};

struct ColumnHeader {
  int32_t Index = 0;  // from 1
  std::string Text;
};

class ListView : public QTreeView {
  Q_OBJECT

 public:
  explicit ListView(QWidget* parent);

  // A column header at the end, its width in hundredths of a millimetre.
  void AddColumn(const std::string& text, int32_t widthHimetric);
  int32_t ColumnCount() const;
  ColumnHeader Column(int32_t index) const;  // from 1

  // A row at the end. Rows added while the control is hidden reach the screen in one step when
  // it is shown again.
  void AddItem(std::string key, std::vector<std::string> texts);
  void Clear();
  int32_t ItemCount() const;
  // The row at `index`, from 1, in the order shown.
  const ListItem& Item(int32_t index) const;

  // The column to sort by, from 0, and the order: 0 ascending, 1 descending.
  int16_t SortKey = 0;
  int32_t SortOrder = 0;
  bool Sorted() const { return sorted_; }
  // Switching it on sorts the rows by the bytes of column SortKey's texts; rows with equal texts
  // keep their order among themselves. Rows added later are not sorted in.
  void SetSorted(bool sorted);

  // A row clicked or chosen by key, and a column header clicked.
  std::function<void(const ListItem& Item)> ItemClick;
  std::function<void(const ColumnHeader& ColumnHeader)> ColumnClick;

  void setVisible(bool visible) override;

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void RaiseItemClick(const QModelIndex& index);

  ListViewModel* model_;
  bool sorted_ = false;
};

}  // namespace vossel
