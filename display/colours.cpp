#include "colours.h"

#include <algorithm>

#include "renderer.h"

namespace vossel {

namespace {

inline uint8_t Shade(uint8_t colour, int32_t brightness) {
  return static_cast<uint8_t>(std::min(colour * brightness / 128, 255));
}

}  // namespace

bool ParsePaletteChoice(const std::string& token, PaletteChoice& choice) {
  if (token.empty()) return false;
  choice = PaletteChoice{};
  if (token == "windows") {
    choice.Kind = PaletteChoiceKind::Windows;
  } else if (token == "dos") {
    choice.Kind = PaletteChoiceKind::Dos;
  } else if (token != "declared") {
    choice.Kind = PaletteChoiceKind::File;
    choice.Path = token;
  }
  return true;
}

const char* PaletteFileName(PaletteKind kind, bool toyland) {
  if (kind == PaletteKind::Dos) return toyland ? kDosToylandPaletteFileName : kDosPaletteFileName;
  return toyland ? kWindowsToylandPaletteFileName : kPaletteFileName;
}

std::string PaletteFileFor(const PaletteChoice& choice, const PaletteDeclaration& declared,
                           const std::string& folder) {
  const std::string shipped = folder.empty() ? ProgramFolder() : folder;
  switch (choice.Kind) {
    case PaletteChoiceKind::Windows:
      return JoinPath(shipped, kPaletteFileName);
    case PaletteChoiceKind::Dos:
      return JoinPath(shipped, kDosPaletteFileName);
    case PaletteChoiceKind::Declared:
      return JoinPath(shipped, PaletteFileName(declared.Kind, declared.Toyland));
    case PaletteChoiceKind::File:
      break;
  }
  return choice.Path;
}

std::string PaletteChoiceText(const PaletteChoice& choice, const PaletteDeclaration& declared) {
  switch (choice.Kind) {
    case PaletteChoiceKind::Windows:
      return PaletteName(PaletteKind::Windows, false) + " (chosen)";
    case PaletteChoiceKind::Dos:
      return PaletteName(PaletteKind::Dos, false) + " (chosen)";
    case PaletteChoiceKind::Declared:
      return DeclarationText(declared);
    case PaletteChoiceKind::File:
      break;
  }
  return choice.Path + " (chosen)";
}

std::string DeclaredMenuText(const PaletteDeclaration& declared) {
  return "As the file declares (" + PaletteName(declared.Kind, declared.Toyland) + ")";
}

int16_t LoadChosenPalette(const PaletteChoice& choice, const PaletteDeclaration& declared,
                          PaletteBuffer& palette) {
  return LoadPalette(PaletteFileFor(choice, declared), palette);
}

void RecolourIndices(uint8_t* indices, size_t count, const RecolourMap& map) {
  for (size_t i = 0; i < count; ++i) indices[i] = map[indices[i]];
}

void RecolourColourTable(QImage& indexed, const RecolourMap& map) {
  const QList<QRgb> colours = indexed.colorTable();
  if (colours.size() != 256) return;
  QList<QRgb> recoloured(256);
  for (size_t i = 0; i < 256; ++i) recoloured[static_cast<qsizetype>(i)] = colours[map[i]];
  indexed.setColorTable(recoloured);
}

void ShadeMaskedPixels(const uint8_t* rgba, const uint8_t* mask, size_t count,
                       const RecolourMap& map, const PaletteBuffer& palette, uint8_t* out) {
  for (size_t i = 0; i < count; ++i, rgba += 4, out += 4) {
    if (mask[i] == 0) {
      if (out != rgba) std::copy(rgba, rgba + 4, out);
      continue;
    }
    const uint8_t* colour = &palette[4 * size_t{map[mask[i]]}];  // blue, green, red
    const int32_t brightness = std::max({rgba[0], rgba[1], rgba[2]});
    const uint8_t alpha = rgba[3];
    out[0] = Shade(colour[2], brightness);
    out[1] = Shade(colour[1], brightness);
    out[2] = Shade(colour[0], brightness);
    out[3] = alpha;
  }
}

QImage ImageBitmapInColour(const SpritePicture& image, const PaletteBuffer& palette,
                           const RecolourMap& map) {
  QImage bitmap = ImageBitmap(image, palette);
  if (bitmap.isNull()) return bitmap;
  if (bitmap.format() == QImage::Format_Indexed8) {
    RecolourColourTable(bitmap, map);
    return bitmap;
  }
  const size_t width = static_cast<size_t>(image.Width);
  if (image.Indices.size() != width * static_cast<size_t>(image.Height)) return bitmap;
  for (int32_t y = 0; y < image.Height; ++y) {
    uint8_t* row = bitmap.scanLine(y);
    ShadeMaskedPixels(row, image.Indices.data() + width * static_cast<size_t>(y), width, map,
                      palette, row);
  }
  return bitmap;
}

QImage DrawnPicture(SpritePicture picture, const PaletteBuffer& palette, const RecolourMap* map) {
  if (map == nullptr) return ImageBitmap(picture, palette);
  if (picture.Rgba.empty()) {
    RecolourIndices(picture.Indices.data(), picture.Indices.size(), *map);
    return ImageBitmap(picture, palette);
  }
  return ImageBitmapInColour(picture, palette, *map);
}

QImage ViewPixels(SpritePicture picture, const PaletteBuffer& palette, bool mask,
                  const RecolourMap* map) {
  const bool hasMask = !picture.Rgba.empty() &&
                       picture.Indices.size() == size_t(picture.Width) * size_t(picture.Height);
  if (mask && hasMask)
    return IndexedPicture(picture.Indices.data(), picture.Width, picture.Height, palette);
  return DrawnPicture(std::move(picture), palette, map);
}

}  // namespace vossel
