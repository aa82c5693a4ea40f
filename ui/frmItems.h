// frmItems: what a NewGRF makes. A non-modal window beside the main one: a tree of the file's items
// by feature, then by ID and name, with a filter box; the item chosen shows its properties and its
// graphics as an indented tree whose sprite sets are rows of thumbnails in the main window's
// colours. A click on a thumbnail hands the sprite to Choose.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include <QWidget>

#include "items.h"
#include "sheet.h"

class QLabel;
class QLineEdit;
class QTreeWidget;
class QTreeWidgetItem;

namespace vossel {

inline constexpr const char kItemsCaption[] = "Vossel - Items";

class frmItems : public QWidget {
 public:
  explicit frmItems(QWidget* owner = nullptr);

  // A file was loaded: `file`, `reading` and `items` must stay as they are until Detach.
  void Attach(const GrfFile& file, const FileReading& reading, const GrfItems& items,
              const Look& look);
  // The file is about to change or close: the window empties.
  void Detach();
  bool Attached() const { return items_ != nullptr; }
  // The main window's colours may have changed: thumbnails are drawn anew when they did.
  void Follow(const Look& look);
  // Selects an item in the tree and shows it; false when the file has no such item.
  bool SelectItem(uint8_t feature, uint32_t id);
  // Called with the sprite (from 0) of a thumbnail the user clicks.
  std::function<void(int32_t)> Choose;

  // Controls, by their names.
  QLineEdit* txtFilter;
  QTreeWidget* tvwItems;
  QLabel* lblItem;
  QTreeWidget* tvwProperties;
  QTreeWidget* tvwGraphics;

 private:
  void Refill();
  void ShowItem(int32_t index);
  QWidget* ThumbnailRow(const std::vector<int32_t>& sprites);
  // The one call into the drawing of sprites.
  QImage Thumbnail(int32_t sprite) const;

  const GrfFile* file_ = nullptr;
  const FileReading* reading_ = nullptr;
  const GrfItems* items_ = nullptr;
  Look look_;
  std::vector<SheetEntry> entries_;
  int32_t shown_ = -1;  // the item on view, an index into items_->Items
};

}  // namespace vossel
