// A list box of text lines, each with a signed 32-bit number beside it.
#pragma once

#include <cstdint>
#include <string>

#include <QListWidget>

namespace vossel {

class ListBox : public QListWidget {
  Q_OBJECT

 public:
  explicit ListBox(QWidget* parent);

  // A line at `index` (0 for the top), or at the end for -1 or an index past the end.
  void AddItem(const std::string& item, int32_t index = -1);
  // Where the last AddItem put its line; -1 before the first and after Clear.
  int32_t NewIndex() const { return newIndex_; }
  void Clear();
  int32_t ListCount() const { return count(); }
  std::string List(int32_t index) const;
  // The selected line, -1 for none. Setting it selects that line and brings it into view; -1 or an
  // index outside the list selects none.
  int32_t ListIndex() const;
  void SetListIndex(int32_t index);
  // 0 for a line without a number and for an index outside the list.
  int32_t ItemData(int32_t index) const;
  void SetItemData(int32_t index, int32_t data);

 private:
  int32_t newIndex_ = -1;
};

}  // namespace vossel
