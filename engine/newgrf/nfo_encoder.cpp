#include "nfo_encoder.h"

#include <algorithm>
#include <cstdio>

namespace vossel {

namespace {

constexpr size_t kBytesPerLine = 32;

std::string PictureFields(const NfoAlternative& a) {
  // The picture fills its PNG from the top-left corner.
  std::string text = std::string(kEncoderFolder) + "/" + a.File + " " + std::to_string(a.Depth) +
                     "bpp 0 0 " + std::to_string(a.Width) + " " + std::to_string(a.Height) + " " +
                     std::to_string(a.X) + " " + std::to_string(a.Y) + " " +
                     EncoderZoomName(a.Zoom);
  if (a.Chunked) text += " chunked";
  // Transparent borders are part of the sprite as stored: the encoder is not to crop them.
  return text + " nocrop";
}

}  // namespace

std::string EncoderHead() {
  return "// (Info version 32)\n"
         "// Format: spritenum imagefile depth xpos ypos xsize ysize xrel yrel zoom flags\n";
}

std::string EncoderZoomName(uint8_t zoom) {
  static const char* const kNames[] = {"normal", "zi4", "zi2", "zo2", "zo4", "zo8"};
  return zoom < std::size(kNames) ? kNames[zoom] : "zoom" + std::to_string(zoom);
}

std::string SpriteNumberText(int32_t index) {
  return "Sprite " + std::to_string(int64_t{index} + 1) + " (NFO " + std::to_string(index) + ")";
}

std::string EncoderPseudoLines(int32_t number, const uint8_t* data, size_t size) {
  std::string text = std::to_string(number) + " * " + std::to_string(size);
  for (size_t i = 0; i < size; ++i) {
    char pair[4];
    std::snprintf(pair, sizeof pair, "%02X", data[i]);
    text += i == 0 ? " " : i % kBytesPerLine == 0 ? "\n\t" : " ";
    text += pair;
  }
  return text;
}

std::string EncoderPictureLines(int32_t number, const std::vector<NfoAlternative>& pictures) {
  std::string text;
  for (const NfoAlternative& a : pictures) {
    if (a.IsData || a.File.empty()) continue;
    text += text.empty() ? std::to_string(number) + " " : "\n    | ";
    text += PictureFields(a);
    if (a.Mask && !a.MaskFile.empty())
      text += "\n    | " + std::string(kEncoderFolder) + "/" + a.MaskFile + " mask 0 0";
  }
  return text;
}

std::string EncoderText(const GrfFile& file, const FileReading& reading, int32_t sprite,
                        const std::vector<NfoAlternative>& pictures) {
  const size_t i = static_cast<size_t>(sprite);
  if (sprite < 0 || i >= reading.Actions.Sprites.size()) return std::string();
  const std::vector<ActionRecord>& actions = reading.Actions.Actions;
  const std::string comment = "// " + SpriteNumberText(sprite) + ": " +
                              NfoComment(reading.Actions.Sprites[i], actions).substr(3) + "\n";
  const std::vector<uint8_t>& bytes = reading.Bytes[i];
  if (FactsOf(file, sprite, -1).Kind == SpriteKind::Pseudo)
    return comment + EncoderPseudoLines(sprite, bytes.data(), bytes.size());
  const std::string lines = EncoderPictureLines(sprite, pictures);
  if (!lines.empty()) return comment + lines;
  const bool data = std::any_of(pictures.begin(), pictures.end(),
                                [](const NfoAlternative& a) { return a.IsData; });
  if (data && !bytes.empty())
    return comment + "// non-image data in the sprite section\n" +
           EncoderPseudoLines(sprite, bytes.data(), bytes.size());
  return comment + "// " + SpriteNumberText(sprite) + " has no picture to list";
}

}  // namespace vossel
