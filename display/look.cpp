#include "look.h"

#include "baseset.h"
#include "renderer.h"

namespace vossel {

PaletteChoiceKind StartingPalette(FirstPalette rule, const GrfFile& file) {
  if (rule == FirstPalette::Declared || DrawsDeclaredPalette(file))
    return PaletteChoiceKind::Declared;
  return PaletteChoiceKind::Windows;
}

FoundMaps NearMaps(const GrfFile& file, const std::string& named) {
  FoundMaps found;
  if (!named.empty()) {
    const CompanyMapsResult read = LoadCompanyMaps(named, found.Maps);
    found.Found = read == CompanyMapsResult::Ok;
    if (found.Found)
      found.From = named;
    else
      found.Problem = CompanyMapsText(read);
    return found;
  }
  found.Found = CompanyMapsOfFile(file, found.Maps) == CompanyMapsResult::Ok;
  if (found.Found) found.From = file.Path;
  return found;
}

FoundMaps InstalledMaps() {
  FoundMaps found;
  found.From = FindInstalledCompanyMaps(FindInstalledBaseSets(), found.Maps);
  found.Found = !found.From.empty();
  return found;
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
  look.Company = choices.Company >= 0 && choices.Company < kCompanyColourCount && maps.Found;
  if (look.Company) look.Map = MapOf(maps.Maps, static_cast<CompanyColour>(choices.Company));
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
