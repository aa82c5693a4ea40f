#include "picturebox.h"

#include <algorithm>

#include <QPaintEvent>
#include <QPainter>
#include <QResizeEvent>

#include "controls.h"

namespace vossel {

PictureBox::PictureBox(QWidget* parent, bool border) : QFrame(parent) {
  if (border) {
    setFrameStyle(QFrame::Box | QFrame::Plain);
    setLineWidth(1);
  } else {
    setFrameStyle(QFrame::NoFrame);
  }
  SyncSize();
  raisedSize_ = QSize();
}

void PictureBox::Wipe(QImage& image) const {
  if (image.isNull()) return;
  image.fill(ColourOfBgr(backColor_));
  if (picture_.isNull()) return;
  QPainter painter(&image);
  painter.drawImage(0, 0, picture_);
}

void PictureBox::SetBackColor(uint32_t bgr) {
  backColor_ = bgr & 0x00FFFFFF;
  Wipe(image_);
  update();
}

void PictureBox::SetPicture(const QImage& picture) {
  picture_ = picture;
  Wipe(image_);
  update();
}

void PictureBox::Refresh() {
  repaint();
}

void PictureBox::SyncSize() {
  const QSize client(std::max(0, contentsRect().width()), std::max(0, contentsRect().height()));
  if (image_.size() != client) {
    // A grown box keeps what its image showed and gets the background in the new part.
    QImage grown(client, QImage::Format_RGB32);
    Wipe(grown);
    if (!grown.isNull() && !image_.isNull()) {
      QPainter painter(&grown);
      painter.drawImage(0, 0, image_);
    }
    image_ = grown;
  }
  if (size() == raisedSize_) return;
  raisedSize_ = size();
  if (Resize) Resize();
}

void PictureBox::resizeEvent(QResizeEvent* event) {
  QFrame::resizeEvent(event);
  SyncSize();
}

void PictureBox::paintEvent(QPaintEvent* event) {
  QFrame::paintEvent(event);
  if (image_.isNull()) return;
  QPainter painter(this);
  painter.drawImage(contentsRect().topLeft(), image_);
}

}  // namespace vossel
