// A line between two points of its container, in the container's scale, one pixel wide.
#pragma once

#include <cstdint>

#include <QColor>
#include <QWidget>

namespace vossel {

class LineControl : public QWidget {
  Q_OBJECT

 public:
  explicit LineControl(QWidget* parent);

  int32_t X1() const { return x1_; }
  int32_t Y1() const { return y1_; }
  int32_t X2() const { return x2_; }
  int32_t Y2() const { return y2_; }
  void SetEnds(int32_t x1, int32_t y1, int32_t x2, int32_t y2);
  void SetX1(int32_t x1) { SetEnds(x1, y1_, x2_, y2_); }
  // 0x00BBGGRR.
  void SetBorderColor(uint32_t bgr);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  int32_t x1_ = 0, y1_ = 0, x2_ = 0, y2_ = 0;
  QColor colour_;
};

}  // namespace vossel
