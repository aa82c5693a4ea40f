#include "listbox.h"

#include "controls.h"

namespace vossel {

ListBox::ListBox(QWidget* parent) : QListWidget(parent) {
  setSelectionMode(QAbstractItemView::SingleSelection);
  setUniformItemSizes(true);
}

void ListBox::AddItem(const std::string& item, int32_t index) {
  if (index < 0 || index > count()) index = count();
  insertItem(index, ToQt(item));
  newIndex_ = index;
}

void ListBox::Clear() {
  clear();
  newIndex_ = -1;
}

std::string ListBox::List(int32_t index) const {
  const QListWidgetItem* line = item(index);
  return line == nullptr ? std::string() : FromQt(line->text());
}

int32_t ListBox::ListIndex() const {
  const QListWidgetItem* line = currentItem();
  return line != nullptr && line->isSelected() ? row(line) : -1;
}

void ListBox::SetListIndex(int32_t index) {
  if (index < 0 || index >= count()) {
    clearSelection();
    setCurrentItem(nullptr);
    return;
  }
  setCurrentRow(index);
  scrollToItem(item(index));
}

int32_t ListBox::ItemData(int32_t index) const {
  const QListWidgetItem* line = item(index);
  return line == nullptr ? 0 : line->data(Qt::UserRole).toInt();
}

void ListBox::SetItemData(int32_t index, int32_t data) {
  if (QListWidgetItem* line = item(index)) line->setData(Qt::UserRole, data);
}

}  // namespace vossel
