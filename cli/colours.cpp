// The look of vossel-cli's pictures: --palette, --company, --company2 and --base-set.
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
// `two`: the maps of two colours are needed too.
bool FindMaps(const GrfFile& file, const FileReading& reading,
              const std::map<std::string, std::string>& values, bool two, FoundMaps& maps) {
  const auto named = values.find("base-set");
  const std::string path = named != values.end() ? named->second : std::string();
  maps = NearMaps(file, reading, path);
  if (!maps.Problem.empty()) {
    FileError(path, maps.Problem);
    return false;
  }
  if (SearchInstalled(maps, two)) maps = WithInstalled(std::move(maps), InstalledMaps(two));
  if (!maps.Found) {
    std::fprintf(stderr, "vossel-cli: %s; give --base-set FILE\n", kMsgNoCompanyMaps);
    return false;
  }
  if (two && !maps.TwoFound) {
    std::fprintf(stderr, "vossel-cli: %s; give --base-set FILE with them\n", kMsgNoTwoColourMaps);
    return false;
  }
  return true;
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
  int32_t colours[2] = {-1, -1};
  const char* names[2] = {"company", "company2"};
  for (int i = 0; i < 2; ++i) {
    const auto given = values.find(names[i]);
    if (given == values.end()) continue;
    CompanyColour colour{};
    if (!ParseCompanyColour(Lower(given->second), colour)) {
      std::fprintf(stderr, "vossel-cli: '%s' is not a company colour; give one of %s\n",
                   given->second.c_str(), kColourTokens);
      return kExitUsage;
    }
    colours[i] = static_cast<int32_t>(colour);
  }
  FoundMaps maps;
  if ((colours[0] >= 0 || colours[1] >= 0) &&
      !FindMaps(file, reading, values, colours[1] >= 0, maps))
    return kExitFailure;
  choices.Company = colours[0];
  choices.Company2 = colours[1];
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
