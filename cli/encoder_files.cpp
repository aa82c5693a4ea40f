#include "encoder_files.h"

#include "renderer.h"

namespace vossel {

QImage EncoderImage(const SpritePicture& picture, const CliColours& colours, bool mask) {
  if (!mask && !picture.Rgba.empty()) return ImageBitmap(picture, colours.Palette);
  if (mask && picture.Rgba.empty()) return QImage();
  QImage image =
      IndexedPicture(picture.Indices.data(), picture.Width, picture.Height, colours.Palette);
  if (colours.Company && !image.isNull()) {
    const QList<QRgb> drawn = image.colorTable();
    QList<QRgb> table(drawn.size());
    for (qsizetype i = 0; i < drawn.size(); ++i) table[i] = drawn[colours.Map[size_t(i)]];
    image.setColorTable(table);
  }
  return image;
}

}  // namespace vossel
