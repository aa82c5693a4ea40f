// frmItems: what a NewGRF makes. A non-modal window beside the main one: a tree of the file's items
// by feature, then by ID and name, with a filter box; the item chosen shows its properties and its
// graphics as an indented tree whose sprite sets are rows of thumbnails in the main window's
// colours, and beside it what the item draws, composed as the game places it, with a picker for
// each branch the way could take. A click on a thumbnail or on a sprite of the composed picture
// hands the sprite to Choose.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include <QFuture>
#include <QWidget>

#include "compose.h"
#include "item_compose.h"
#include "items.h"
#include "sheet.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QScrollArea;
class QSpinBox;
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
  // The composed view: which graphics, then the drawing options, a combo box per branch point
  // (named "pick" and its group's sprite from 1), the picture and a line saying what it shows.
  QComboBox* cboGraphics;
  QCheckBox* chkLoading;
  QCheckBox* chkBoxes;
  QCheckBox* chkOrigins;
  QCheckBox* chkSharedOrigin;
  QSpinBox* spnMagnify;  // screen pixels per picture pixel
  QWidget* fraPickers;
  QScrollArea* scrView;
  QLabel* picView;
  QLabel* lblView;

  const Composition& Composed() const { return composition_; }
  const ComposedPicture& Picture() const { return picture_; }
  // Whether the base sprites are in (or turned out not to be had).
  bool BaseArrived() const { return baseArrived_; }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void Refill();
  void ShowItem(int32_t index);
  QWidget* ThumbnailRow(const std::vector<int32_t>& sprites);
  // The one call into the drawing of sprites.
  QImage Thumbnail(int32_t sprite) const;
  // The graphics the item offers, the request's chosen.
  void FillGraphics(const Item& item);
  // Composes the item on view for the request and makes its pickers; then Redraw.
  void Recompose();
  void FillPickers();
  void Pick(int32_t sprite, int32_t choice);
  // Draws the composition in the look with the options.
  void Redraw();
  void ShowPicture();
  void ClickView(QPoint at);
  void OpenBaseOnce();

  const GrfFile* file_ = nullptr;
  const FileReading* reading_ = nullptr;
  const GrfItems* items_ = nullptr;
  Look look_;
  std::vector<SheetEntry> entries_;
  int32_t shown_ = -1;  // the item on view, an index into items_->Items
  // The request follows the item through reloads and changes of look; another item starts anew.
  uint64_t requestOf_ = UINT64_MAX;
  ComposeRequest request_;
  Composition composition_;
  ComposedPicture picture_;
  // Opened on the first layout, off this thread; until then base sprites draw as outlines.
  QFuture<BaseSprites> baseLoad_;
  BaseSprites base_;
  bool baseArrived_ = false;
};

}  // namespace vossel
