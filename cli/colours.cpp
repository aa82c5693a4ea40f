// The look of vossel-cli's pictures: --palette, --company and --base-set.
#include <cstdio>

#include <QString>

#include "commands.h"
#include "companymaps.h"
#include "text.h"

namespace vossel {

namespace {

constexpr char kColourTokens[] =
    "dark-blue, pale-green, pink, yellow, red, light-blue, green, dark-green, blue, cream, mauve, "
    "purple, orange, brown, grey, white";

// The maps near the file, else those of an installed base set; false after saying why not.
bool FindMaps(const GrfFile& file, const std::map<std::string, std::string>& values,
              FoundMaps& maps) {
  const auto named = values.find("base-set");
  const std::string path = named != values.end() ? named->second : std::string();
  maps = NearMaps(file, path);
  if (!maps.Problem.empty()) {
    FileError(path, maps.Problem);
    return false;
  }
  if (SearchInstalled(maps)) maps = InstalledMaps();
  if (maps.Found) return true;
  std::fprintf(stderr, "vossel-cli: %s; give --base-set FILE\n", kMsgNoCompanyMaps);
  return false;
}

// Names in any case; a file's path as it is.
std::string Lower(const std::string& value) {
  return QString::fromStdString(value).toLower().toStdString();
}
std::string PaletteWord(const std::string& value) {
  const std::string lower = Lower(value);
  return lower == "windows" || lower == "dos" || lower == "declared" ? lower : value;
}

}  // namespace

int ChooseLook(const GrfFile& file, const FileReading& reading,
               const std::map<std::string, std::string>& values, Look& look,
               const AlternativeWish* wish) {
  LookChoices choices;
  if (const auto named = values.find("palette"); named != values.end()) {
    PaletteChoice palette;
    if (!ParsePaletteChoice(PaletteWord(named->second), palette)) {
      std::fprintf(stderr, "vossel-cli: --palette takes windows, dos, declared or a file\n");
      return kExitUsage;
    }
    choices.Palette = palette;
  }
  FoundMaps maps;
  if (const auto company = values.find("company"); company != values.end()) {
    CompanyColour colour{};
    if (!ParseCompanyColour(Lower(company->second), colour)) {
      std::fprintf(stderr, "vossel-cli: '%s' is not a company colour; give one of %s\n",
                   company->second.c_str(), kColourTokens);
      return kExitUsage;
    }
    if (!FindMaps(file, values, maps)) return kExitFailure;
    choices.Company = static_cast<int32_t>(colour);
  }
  choices.Transparent = values.count("transparent") > 0;
  if (wish != nullptr) {
    choices.Zoom = wish->Zoom;
    choices.Depth = wish->Depth;
  }
  look = ResolveLook(choices, FirstPalette::Declared, file, DeclaredPaletteOf(reading), maps);
  if (!look.PaletteRead) {
    FileError(look.PaletteFile, kMsgBadPalette);
    return kExitFailure;
  }
  return kExitOk;
}

}  // namespace vossel
