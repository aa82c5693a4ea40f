#include "scrollbar.h"

#include <algorithm>

#include <QKeyEvent>

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

void ScrollBar::SetValue(int16_t value) {
  setValue(std::clamp<int>(value, minimum(), maximum()));
}

void ScrollBar::SetMin(int16_t min) {
  quiet_ = true;
  setRange(min, std::max<int>(min, maximum()));
  quiet_ = false;
}

void ScrollBar::SetMax(int16_t max) {
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
  SliderAction action = SliderNoAction;
  switch (event->key()) {
    case Qt::Key_Left:
    case Qt::Key_Up:
      action = SliderSingleStepSub;
      break;
    case Qt::Key_Right:
    case Qt::Key_Down:
      action = SliderSingleStepAdd;
      break;
    case Qt::Key_PageUp:
      action = SliderPageStepSub;
      break;
    case Qt::Key_PageDown:
      action = SliderPageStepAdd;
      break;
    case Qt::Key_Home:
      action = SliderToMinimum;
      break;
    case Qt::Key_End:
      action = SliderToMaximum;
      break;
    default:
      QScrollBar::keyPressEvent(event);
      return;
  }
  triggerAction(action);
  event->accept();
}
