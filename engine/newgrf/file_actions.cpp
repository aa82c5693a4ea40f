#include "actions.h"

namespace vossel {

void ReadFileActions(const GrfFile& file, FileReading& reading) {
  const int32_t count = SpriteCount(file);
  reading.Bytes.assign(static_cast<size_t>(count), {});
  std::vector<SpriteInput> inputs(static_cast<size_t>(count));
  for (int32_t i = 0; i < count; ++i) {
    SpriteInput& in = inputs[static_cast<size_t>(i)];
    std::vector<uint8_t>& bytes = reading.Bytes[static_cast<size_t>(i)];
    const int32_t shown = DefaultAlternative(file, i);
    // A sprite whose only form is non-image data (a sound, say) is data among the pictures.
    if (FactsOf(file, i, -1).Kind == SpriteKind::Pseudo &&
        SpriteBytes(file, i, -1, bytes) == GrfResult::Ok)
      in.Kind = SpriteKind::Pseudo;
    else if (shown >= 0 && AlternativeOf(file, i, shown).Data &&
             SpriteBytes(file, i, shown, bytes) == GrfResult::Ok)
      in.Kind = SpriteKind::Data;
    in.Data = bytes.data();
    in.Size = bytes.size();
  }
  reading.Actions = ReadActions(inputs);
  reading.Descriptor = FindDescriptorFor(file.Path);
}

PaletteDeclaration DeclaredPaletteOf(const FileReading& reading) {
  const StaticInfo& info = reading.Actions.Identity.Info;
  std::optional<uint8_t> pals;
  if (info.HasPalette) pals = static_cast<uint8_t>(info.Palette);
  return DeclaredPalette(pals, reading.Descriptor);
}

std::vector<NfoAlternative> NfoAlternativesOf(const GrfFile& file, int32_t sprite) {
  std::vector<NfoAlternative> list;
  for (int32_t k = 0; k < AlternativeCount(file, sprite); ++k) {
    const AlternativeInfo a = AlternativeOf(file, sprite, k);
    const SpriteFacts f = FactsOf(file, sprite, k);
    NfoAlternative n;
    n.IsData = a.Data;
    n.Depth = a.Depth;
    n.Zoom = a.Zoom;
    n.Width = static_cast<uint16_t>(f.Width);
    n.Height = static_cast<uint16_t>(f.Height);
    n.X = static_cast<int16_t>(f.XOffset);
    n.Y = static_cast<int16_t>(f.YOffset);
    n.DataSize = f.Size;
    // The same bit marks the tile form in both containers' flags.
    n.Chunked = !a.Data && (f.Flags & kV2Tile) != 0;
    n.Mask = a.Mask;
    list.push_back(n);
  }
  return list;
}

std::string NfoText(const GrfFile& file, const FileReading& reading, int32_t sprite,
                    const std::vector<NfoAlternative>& alternatives) {
  const size_t i = static_cast<size_t>(sprite);
  if (sprite < 0 || i >= reading.Actions.Sprites.size()) return std::string();
  const SpriteRole& role = reading.Actions.Sprites[i];
  if (FactsOf(file, sprite, -1).Kind != SpriteKind::Pseudo)
    return NfoSpriteLine(sprite, alternatives, role, reading.Actions.Actions);
  const std::vector<uint8_t>& bytes = reading.Bytes[i];
  return NfoComment(role, reading.Actions.Actions) + "\n" +
         NfoPseudoLine(sprite, bytes.data(), bytes.size());
}

}  // namespace vossel
