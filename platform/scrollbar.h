// A scroll bar, vertical or horizontal, whose Value is kept within its minimum and maximum. Both
// step sizes are 1. Its range is 32 bits wide: a version-1 file never takes it past 32,766, a
// version-2 file has as many sprites as it holds.
#pragma once

#include <cstdint>
#include <functional>

#include <QScrollBar>

namespace vossel {

class ScrollBar : public QScrollBar {
  Q_OBJECT

 public:
  ScrollBar(Qt::Orientation orientation, QWidget* parent);

  int32_t Value() const { return value(); }
  // A value outside the range is taken as the nearest end of it.
  void SetValue(int32_t value);
  int32_t Min() const { return minimum(); }
  int32_t Max() const { return maximum(); }
  // A new range pulls the value inside it without a change event: whoever sets the range shows
  // what it needs itself. A maximum below the minimum is taken as the minimum.
  void SetMin(int32_t min);
  void SetMax(int32_t max);

  // Runs when the value really changes: by a program, a click or a key, and when a thumb drag
  // ends on another value than it started from.
  std::function<void()> Change;
  // Runs for every position the thumb passes while it is dragged; Value is then that position.
  std::function<void()> Scroll;

 protected:
  // Right and Down step up, Left and Up step down, on both kinds of bar.
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void ValueChanged();
  void DragEnded();

  bool quiet_ = false;  // a range change is pulling the value in
  int dragStart_ = 0;
};

}  // namespace vossel
