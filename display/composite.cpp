#include "composite.h"

#include <cstring>
#include <vector>

namespace vossel {

namespace {

inline int32_t Blend(int32_t pixel, int32_t check, int32_t alpha) {
  return (pixel * alpha + check * (255 - alpha) + 127) / 255;
}

// Floor division, so that a pattern origin left of or above 0 keeps the squares whole.
inline int32_t SquareOf(int32_t position) {
  return position >= 0 ? position / kCheckerSquare
                       : -((kCheckerSquare - 1 - position) / kCheckerSquare);
}

}  // namespace

QImage MagnifiedPart(const QImage& picture, int32_t magnification, const QRect& part) {
  const bool indexed = picture.format() == QImage::Format_Indexed8;
  const QImage::Format format = picture.format();
  const bool wide = format == QImage::Format_ARGB32 || format == QImage::Format_RGB32 ||
                    format == QImage::Format_RGBA8888;
  const int64_t m = magnification;
  if ((!indexed && !wide) || m < 1 || part.isEmpty() || part.left() < 0 || part.top() < 0 ||
      part.right() >= picture.width() * m || part.bottom() >= picture.height() * m)
    return QImage();

  QImage out(part.size(), picture.format());
  if (indexed) out.setColorTable(picture.colorTable());
  std::vector<int32_t> column(static_cast<size_t>(part.width()));
  for (int32_t i = 0; i < part.width(); ++i)
    column[static_cast<size_t>(i)] = static_cast<int32_t>((part.left() + i) / m);

  int32_t lastSource = -1;
  for (int32_t row = 0; row < part.height(); ++row) {
    const auto source = static_cast<int32_t>((part.top() + row) / m);
    uchar* to = out.scanLine(row);
    // Rows magnified from the same source row are alike: copy the one above.
    if (source == lastSource) {
      std::memcpy(to, out.constScanLine(row - 1), static_cast<size_t>(out.bytesPerLine()));
      continue;
    }
    lastSource = source;
    const uchar* from = picture.constScanLine(source);
    if (indexed) {
      for (size_t i = 0; i < column.size(); ++i) to[i] = from[column[i]];
    } else {
      const auto* from32 = reinterpret_cast<const QRgb*>(from);
      auto* to32 = reinterpret_cast<QRgb*>(to);
      for (size_t i = 0; i < column.size(); ++i) to32[i] = from32[column[i]];
    }
  }
  return out;
}

QImage CompositeOverChecker(const QImage& image, QPoint origin) {
  if (image.isNull()) return QImage();
  const QImage argb = image.format() == QImage::Format_ARGB32
                          ? image
                          : image.convertToFormat(QImage::Format_ARGB32);
  QImage out(argb.size(), QImage::Format_RGB32);
  for (int32_t y = 0; y < argb.height(); ++y) {
    const auto* from = reinterpret_cast<const QRgb*>(argb.constScanLine(y));
    auto* to = reinterpret_cast<QRgb*>(out.scanLine(y));
    const int32_t squareRow = SquareOf(origin.y() + y);
    for (int32_t x = 0; x < argb.width(); ++x) {
      const QRgb check =
          ((SquareOf(origin.x() + x) + squareRow) & 1) != 0 ? kCheckerDark : kCheckerLight;
      const QRgb p = from[x];
      const int32_t a = qAlpha(p);
      to[x] = qRgb(Blend(qRed(p), qRed(check), a), Blend(qGreen(p), qGreen(check), a),
                   Blend(qBlue(p), qBlue(check), a));
    }
  }
  return out;
}

}  // namespace vossel
