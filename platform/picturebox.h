// A picture box: a client area inside an optional one-pixel flat border, with a persistent image
// that the box shows and that survives being covered.
#pragma once

#include <cstdint>
#include <functional>

#include <QFrame>
#include <QImage>
#include <QSize>

namespace vossel {

// How the controls inside a container measure.
enum class ScaleMode { Twips, Pixels };

class PictureBox : public QFrame {
  Q_OBJECT

 public:
  PictureBox(QWidget* parent, bool border);

  ScaleMode Scale = ScaleMode::Twips;
  // Runs when the box's size has changed: inside the move that changed it, or when the window
  // system gives the box its first or a new size.
  std::function<void()> Resize;

  uint32_t BackColor() const { return backColor_; }
  // 0x00BBGGRR. Every assignment, of the colour it already has too, erases the persistent image to
  // the colour with the box's picture at its top left corner.
  void SetBackColor(uint32_t bgr);
  // A picture at the top left corner of the client area, not stretched.
  void SetPicture(const QImage& picture);
  // The persistent image: one pixel for each pixel of the client area.
  QImage& Image() { return image_; }
  // Shows the persistent image on the screen now.
  void Refresh();
  // Makes the image follow the client area and raises Resize where the size has changed.
  void SyncSize();

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  void Wipe(QImage& image) const;

  uint32_t backColor_ = 0x00FFFFFF;
  QImage picture_;
  QImage image_;
  QSize raisedSize_;  // the size Resize last ran for; invalid until the first one
};

}  // namespace vossel
