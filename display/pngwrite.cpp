#include "pngwrite.h"

#include <png.h>

#include <csetjmp>

namespace vossel {

namespace {

void Append(png_structp png, png_bytep data, png_size_t size) {
  auto* out = static_cast<std::vector<uint8_t>*>(png_get_io_ptr(png));
  out->insert(out->end(), data, data + size);
}

void NoFlush(png_structp) {}

// Everything libpng needs kept alive until png_write_end, beside its own structures.
struct Encoding {
  png_structp Png = nullptr;
  png_infop Info = nullptr;
  ~Encoding() { png_destroy_write_struct(&Png, &Info); }
};

}  // namespace

bool EncodePng(const QImage& picture, const PngTexts& texts, std::vector<uint8_t>& png) {
  png.clear();
  if (picture.isNull()) return false;
  const bool indexed = picture.format() == QImage::Format_Indexed8;
  const bool alpha = !indexed && picture.hasAlphaChannel();
  // One byte a colour, in the order PNG wants them.
  const QImage rows =
      indexed ? picture
              : picture.convertToFormat(alpha ? QImage::Format_RGBA8888 : QImage::Format_RGB888);
  Encoding e;
  e.Png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  if (e.Png == nullptr) return false;
  e.Info = png_create_info_struct(e.Png);
  if (e.Info == nullptr) return false;
  // Everything the chunks point at is made before libpng may jump back past it.
  std::vector<png_color> colours;
  std::vector<png_byte> opacity;
  for (const QRgb c : indexed ? rows.colorTable() : QList<QRgb>()) {
    colours.push_back({static_cast<png_byte>(qRed(c)), static_cast<png_byte>(qGreen(c)),
                       static_cast<png_byte>(qBlue(c))});
    opacity.push_back(static_cast<png_byte>(qAlpha(c)));
  }
  if (indexed && colours.empty()) colours.push_back({0, 0, 0});
  // Only a table with a colour that is not opaque needs its alpha written.
  while (!opacity.empty() && opacity.back() == 255) opacity.pop_back();
  std::vector<png_text> chunks;
  for (const auto& [key, value] : texts)
    chunks.push_back({PNG_TEXT_COMPRESSION_NONE, const_cast<char*>(key.c_str()),
                      const_cast<char*>(value.c_str()), value.size(), 0, nullptr, nullptr});
  if (setjmp(png_jmpbuf(e.Png))) {
    png.clear();
    return false;
  }
  png_set_write_fn(e.Png, &png, Append, NoFlush);
  png_set_IHDR(e.Png, e.Info, static_cast<png_uint_32>(rows.width()),
               static_cast<png_uint_32>(rows.height()), 8,
               indexed ? PNG_COLOR_TYPE_PALETTE
               : alpha ? PNG_COLOR_TYPE_RGB_ALPHA
                       : PNG_COLOR_TYPE_RGB,
               PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  if (indexed) png_set_PLTE(e.Png, e.Info, colours.data(), static_cast<int>(colours.size()));
  if (!opacity.empty())
    png_set_tRNS(e.Png, e.Info, opacity.data(), static_cast<int>(opacity.size()), nullptr);
  if (!chunks.empty()) png_set_text(e.Png, e.Info, chunks.data(), static_cast<int>(chunks.size()));
  png_set_filter(e.Png, 0, PNG_FILTER_NONE);
  png_set_compression_level(e.Png, 2);
  png_write_info(e.Png, e.Info);
  for (int y = 0; y < rows.height(); ++y)
    png_write_row(e.Png, const_cast<png_bytep>(rows.constScanLine(y)));
  png_write_end(e.Png, e.Info);
  return true;
}

}  // namespace vossel
