#include "encoder_files.h"

#include "renderer.h"

namespace vossel {

QImage EncoderImage(const SpritePicture& picture, const Look& look, bool mask) {
  if (!mask && !picture.Rgba.empty()) return ImageBitmap(picture, look.Palette);
  if (mask && picture.Rgba.empty()) return QImage();
  QImage image =
      IndexedPicture(picture.Indices.data(), picture.Width, picture.Height, look.Palette);
  if (look.Company && !image.isNull()) {
    const QList<QRgb> drawn = image.colorTable();
    QList<QRgb> table(drawn.size());
    for (qsizetype i = 0; i < drawn.size(); ++i) table[i] = drawn[look.Map[size_t(i)]];
    image.setColorTable(table);
  }
  return image;
}

}  // namespace vossel
