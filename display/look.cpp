#include "look.h"

#include "baseset.h"
#include "renderer.h"

namespace vossel {

PaletteChoiceKind StartingPalette(FirstPalette rule, const GrfFile& file) {
  if (rule == FirstPalette::Declared || DrawsDeclaredPalette(file))
    return PaletteChoiceKind::Declared;
  return PaletteChoiceKind::Windows;
}

FoundMaps NearMaps(const GrfFile& file, const FileReading& reading, const std::string& named) {
  FoundMaps found;
  if (!named.empty()) {
    const CompanyMapsResult read = LoadCompanyMaps(named, found.Maps);
    found.Found = read == CompanyMapsResult::Ok;
    if (found.Found)
      found.From = named;
    else
      found.Problem = CompanyMapsText(read);
    found.TwoFound = LoadTwoColourMaps(named, found.Two) == TwoColourMapsResult::Ok;
    if (found.TwoFound) found.TwoFrom = named;
    return found;
  }
  found.Found = CompanyMapsOfFile(file, found.Maps) == CompanyMapsResult::Ok;
  if (found.Found) found.From = file.Path;
  found.TwoFound = TwoColourMapsOf(reading, found.Two) == TwoColourMapsResult::Ok;
  if (found.TwoFound) found.TwoFrom = file.Path;
  return found;
}

FoundMaps InstalledMaps(bool two) {
  FoundMaps found;
  const std::vector<InstalledBaseSet> sets = FindInstalledBaseSets();
  found.From = FindInstalledCompanyMaps(sets, found.Maps);
  found.Found = !found.From.empty();
  if (two) found.TwoFrom = FindInstalledTwoColourMaps(sets, found.Two);
  found.TwoFound = !found.TwoFrom.empty();
  return found;
}

FoundMaps WithInstalled(FoundMaps near, const FoundMaps& installed) {
  if (!near.Found && near.Problem.empty()) {
    near.Found = installed.Found;
    near.Maps = installed.Maps;
    near.From = installed.From;
  }
  if (!near.TwoFound) {
    near.TwoFound = installed.TwoFound;
    near.Two = installed.Two;
    near.TwoFrom = installed.TwoFrom;
  }
  return near;
}

Look ResolveLook(const LookChoices& choices, FirstPalette rule, const GrfFile& file,
                 const PaletteDeclaration& declared, const FoundMaps& maps) {
  Look look;
  look.Chosen = choices.Palette.value_or(PaletteChoice{StartingPalette(rule, file), std::string()});
  look.PaletteFile = PaletteFileFor(look.Chosen, declared, choices.Folder);
  look.PaletteText = PaletteChoiceText(look.Chosen, declared);
  look.PaletteRead = LoadPalette(look.PaletteFile, look.Palette) != 0;
  look.Zoom = choices.Zoom;
  look.Depth = choices.Depth;
  look.Mask = choices.Mask;
  look.Transparent = choices.Transparent;
  const auto colour = [](int32_t c) { return c >= 0 && c < kCompanyColourCount; };
  const bool first = colour(choices.Company);
  look.TwoColours = colour(choices.Company2) && maps.TwoFound;
  if (look.TwoColours) {
    look.Map = PairMapOf(maps.Two, static_cast<CompanyColour>(first ? choices.Company : 0),
                         static_cast<CompanyColour>(choices.Company2));
    if (!first)
      for (int32_t i = 0; i < kColourIndexCount; ++i)
        look.Map[kFirstColourIndex + i] = static_cast<uint8_t>(kFirstColourIndex + i);
  } else if (first && maps.Found) {
    look.Map = MapOf(maps.Maps, static_cast<CompanyColour>(choices.Company));
  }
  look.Company = look.TwoColours || (first && maps.Found);
  return look;
}

QImage LookPixels(const Look& look, SpritePicture picture) {
  return ViewPixels(std::move(picture), look.Palette, look.Mask,
                    look.Company ? &look.Map : nullptr);
}

QImage LookPixelsCut(const Look& look, SpritePicture picture) {
  QImage pixels = LookPixels(look, std::move(picture));
  if (look.Transparent && pixels.format() == QImage::Format_Indexed8) {
    ClearIndex0(pixels);
    pixels = pixels.convertToFormat(QImage::Format_ARGB32);
  }
  return pixels;
}

}  // namespace vossel
