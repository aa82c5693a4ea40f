#include "scrollbar.h"

#include <algorithm>

#include <QKeyEvent>

namespace vossel {

ScrollBar::ScrollBar(Qt::Orientation orientation, QWidget* parent)
    : QScrollBar(orientation, parent) {
  setRange(0, 0);
  setSingleStep(1);
  setPageStep(1);
  setTracking(true);
  connect(this, &QAbstractSlider::valueChanged, this, [this] { ValueChanged(); });
  connect(this, &QAbstractSlider::sliderPressed, this, [this] { dragStart_ = value(); });
  connect(this, &QAbstractSlider::sliderReleased, this, [this] { DragEnded(); });
}

void ScrollBar::SetValue(int32_t value) {
  setValue(std::clamp<int>(value, minimum(), maximum()));
}

void ScrollBar::SetMin(int32_t min) {
  quiet_ = true;
  setRange(min, std::max<int>(min, maximum()));
  quiet_ = false;
}

void ScrollBar::SetMax(int32_t max) {
  quiet_ = true;
  setRange(minimum(), std::max<int>(minimum(), max));
  quiet_ = false;
}

void ScrollBar::ValueChanged() {
  if (quiet_) return;
  if (isSliderDown()) {
    if (Scroll) Scroll();
  } else if (Change) {
    Change();
  }
}

void ScrollBar::DragEnded() {
  if (value() != dragStart_ && Change) Change();
}

void ScrollBar::keyPressEvent(QKeyEvent* event) {
  static constexpr struct {
    int Key;
    SliderAction Action;
  } kKeys[] = {
      {Qt::Key_Left, SliderSingleStepSub},  {Qt::Key_Up, SliderSingleStepSub},
      {Qt::Key_Right, SliderSingleStepAdd}, {Qt::Key_Down, SliderSingleStepAdd},
      {Qt::Key_PageUp, SliderPageStepSub},  {Qt::Key_PageDown, SliderPageStepAdd},
      {Qt::Key_Home, SliderToMinimum},      {Qt::Key_End, SliderToMaximum},
  };
  for (const auto& k : kKeys) {
    if (k.Key != event->key()) continue;
    triggerAction(k.Action);
    event->accept();
    return;
  }
  QScrollBar::keyPressEvent(event);
}

}  // namespace vossel
