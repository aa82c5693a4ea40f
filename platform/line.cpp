#include "line.h"

#include <algorithm>

#include <QPainter>

#include "controls.h"

namespace vossel {

LineControl::LineControl(QWidget* parent) : QWidget(parent), colour_(Qt::black) {
  // A line is drawn on its container; clicks go through it.
  setAttribute(Qt::WA_TransparentForMouseEvents);
  SetEnds(0, 0, 0, 0);
}

void LineControl::SetEnds(int32_t x1, int32_t y1, int32_t x2, int32_t y2) {
  x1_ = x1;
  y1_ = y1;
  x2_ = x2;
  y2_ = y2;
  // The widget is the box round both ends.
  const QWidget* container = parentWidget();
  const int px1 = UnitsToPixels(container, x1), py1 = UnitsToPixels(container, y1);
  const int px2 = UnitsToPixels(container, x2), py2 = UnitsToPixels(container, y2);
  const QPoint origin = ClientOrigin(container);
  setGeometry(origin.x() + std::min(px1, px2), origin.y() + std::min(py1, py2),
              std::abs(px1 - px2) + 1, std::abs(py1 - py2) + 1);
  update();
}

void LineControl::SetBorderColor(uint32_t bgr) {
  colour_ = ColourOfBgr(bgr);
  update();
}

void LineControl::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setPen(colour_);
  const QWidget* container = parentWidget();
  const int px1 = UnitsToPixels(container, x1_), py1 = UnitsToPixels(container, y1_);
  const int px2 = UnitsToPixels(container, x2_), py2 = UnitsToPixels(container, y2_);
  const int left = std::min(px1, px2), top = std::min(py1, py2);
  painter.drawLine(px1 - left, py1 - top, px2 - left, py2 - top);
}

}  // namespace vossel
