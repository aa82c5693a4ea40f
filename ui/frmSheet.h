// frmSheet: the Sprite Sheet. A non-modal window beside the main one that shows every sprite of
// the main window's file as a cell of a grid, in file order, with filters and a Go To box. It
// follows the main window (the sprite on view is highlighted and kept in sight) and drives it (a
// click hands the sprite to Choose). Pictures are decoded off the user-interface thread, only for
// the cells in sight, into a bounded cache; a cell waits as an empty frame.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include <QCache>
#include <QImage>
#include <QThreadPool>
#include <QWidget>

#include "grffile.h"
#include "roles.h"
#include "sheet.h"

class QComboBox;
class QLabel;
class QLineEdit;
class QScrollBar;
class QSlider;
class QSpinBox;

namespace vossel {

class SheetGrid;

inline constexpr const char kSheetCaption[] = "Vossel - Sprite Sheet";

class frmSheet : public QWidget {
 public:
  explicit frmSheet(QWidget* owner = nullptr);
  ~frmSheet() override;

  // A file was loaded. `file` and what it says of itself (`reading`: roles and actions) must stay
  // as they are until Detach;
  // `sprite` is the one on view.
  void Attach(const GrfFile& file, const FileReading& reading, int32_t sprite, const Look& look);
  // The file is about to change or close: returns once no picture of it is being decoded, and
  // the sheet is empty.
  void Detach();
  bool Attached() const { return file_ != nullptr; }
  // The main window shows `sprite` (-1: none) with `look`: the cell is highlighted and kept in
  // sight, and every cell is drawn anew when the look's choices changed.
  void Follow(int32_t sprite, const Look& look);
  // Called with the sprite (from 0) the user picks by a click or the Go To box.
  std::function<void(int32_t)> Choose;

  // Controls, by their names.
  QSlider* sldCell;
  QLabel* lblCell;
  QComboBox* cboKinds;
  QComboBox* cboRole;
  QSpinBox* spnMinWidth;
  QSpinBox* spnMinHeight;
  QLineEdit* txtGoTo;
  QWidget* Grid;  // the cells, painted by hand
  QScrollBar* scrGrid;
  QLabel* lblStatus;

  // What the grid holds: the sprites that pass the filters, in file order; the highlighted one.
  const std::vector<int32_t>& Shown() const { return shown_; }
  int32_t Highlighted() const { return highlighted_; }
  const SheetLayout& Layout() const { return layout_; }
  // Where sprite's cell stands in Grid (it may lie outside the part in sight); empty when the
  // sprite is not shown.
  QRect CellRect(int32_t sprite) const;
  // The sprite whose cell is at `at` in Grid; -1 for none.
  int32_t SpriteAt(QPoint at) const;
  // Cells in sight whose pictures are not ready yet.
  int32_t Waiting() const;

 private:
  friend class SheetGrid;
  void BuildControls();
  // The filters' values into the shown list; keeps the highlighted sprite in sight.
  void Refilter();
  // The columns and the scroll bar for the grid's size and the cell size.
  void Relayout();
  void KeepInSight(int32_t sprite);
  void GoTo();
  void UpdateStatus();
  // A new generation: what is cached or being decoded for the old one is dropped.
  void Invalidate();
  int32_t SlotOf(int32_t sprite) const;  // -1 when not shown
  void PaintGrid(QPainter& painter, const QRect& area);
  // Asks for the pictures of `sprites`, newest wish first: what waits from an older wish is
  // dropped.
  void Want(const std::vector<int32_t>& sprites);
  void Delivered(uint64_t generation, int32_t sprite, QImage picture);
  // Where the grid's first row starts: scrolled up by the scroll bar.
  QPoint GridOrigin() const;

  const GrfFile* file_ = nullptr;
  const FileReading* reading_ = nullptr;
  std::vector<SheetEntry> entries_;
  std::vector<SheetRole> roles_;
  std::vector<int32_t> shown_;
  int32_t highlighted_ = -1;
  std::shared_ptr<const Look> look_;
  SheetLayout layout_;
  uint64_t generation_ = 1;
  // The scaled pictures, their cost in bytes; a cell without pixels is held as a null image.
  QCache<int32_t, QImage> cache_;
  // Sprites asked for under this generation and not delivered yet.
  std::vector<int32_t> asked_;
  // Last, so that it goes first: its tasks end before anything they use.
  QThreadPool pool_;
};

}  // namespace vossel
