// The colours of vossel-cli's pictures: --palette, --company and --base-set.
#include <cstdio>

#include <QString>

#include "colours.h"
#include "commands.h"
#include "companymaps.h"
#include "text.h"

namespace vossel {

namespace {

constexpr char kColourTokens[] =
    "dark-blue, pale-green, pink, yellow, red, light-blue, green, dark-green, blue, cream, mauve, "
    "purple, orange, brown, grey, white";

// The maps: from --base-set, else the file itself when it holds them, else an installed set.
bool FindMaps(const GrfFile& file, const std::map<std::string, std::string>& values,
              CompanyMaps& maps) {
  if (const auto named = values.find("base-set"); named != values.end()) {
    const CompanyMapsResult read = LoadCompanyMaps(named->second, maps);
    if (read == CompanyMapsResult::Ok) return true;
    FileError(named->second, CompanyMapsText(read));
    return false;
  }
  if (CompanyMapsOfFile(file, maps) == CompanyMapsResult::Ok) return true;
  if (!FindInstalledCompanyMaps(FindInstalledBaseSets(), maps).empty()) return true;
  std::fprintf(stderr, "vossel-cli: %s; give --base-set FILE\n", kMsgNoCompanyMaps);
  return false;
}

// The palette's names in any case; a file's path as it is.
std::string PaletteWord(const std::string& value) {
  const std::string lower = QString::fromStdString(value).toLower().toStdString();
  return lower == "windows" || lower == "dos" || lower == "declared" ? lower : value;
}

}  // namespace

int ChooseColours(const GrfFile& file, const FileReading& reading,
                  const std::map<std::string, std::string>& values, bool load,
                  CliColours& colours) {
  PaletteChoice choice;
  if (const auto named = values.find("palette");
      named != values.end() && !ParsePaletteChoice(PaletteWord(named->second), choice)) {
    std::fprintf(stderr, "vossel-cli: --palette takes windows, dos, declared or a file\n");
    return kExitUsage;
  }
  const PaletteDeclaration declared = DeclaredPaletteOf(reading);
  colours.PaletteText = PaletteChoiceText(choice, declared);
  if (load && LoadChosenPalette(choice, declared, colours.Palette) == 0) {
    FileError(PaletteFileFor(choice, declared), kMsgBadPalette);
    return kExitFailure;
  }
  const auto company = values.find("company");
  if (company == values.end()) return kExitOk;
  CompanyColour colour{};
  if (!ParseCompanyColour(QString::fromStdString(company->second).toLower().toStdString(),
                          colour)) {
    std::fprintf(stderr, "vossel-cli: '%s' is not a company colour; give one of %s\n",
                 company->second.c_str(), kColourTokens);
    return kExitUsage;
  }
  CompanyMaps maps;
  if (!FindMaps(file, values, maps)) return kExitFailure;
  colours.Company = true;
  colours.Map = MapOf(maps, colour);
  return kExitOk;
}

QImage CliPicture(const SpritePicture& picture, const CliColours& colours) {
  return DrawnPicture(picture, colours.Palette, colours.Company ? &colours.Map : nullptr);
}

}  // namespace vossel
