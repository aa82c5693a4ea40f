#include "companymaps.h"

#include <algorithm>

#include "grffile.h"

namespace vossel {

namespace {

struct ColourName {
  std::string_view Token;
  std::string_view Caption;
};
constexpr ColourName kColourNames[kCompanyColourCount] = {
    {"dark-blue", "Dark Blue"},
    {"pale-green", "Pale Green"},
    {"pink", "Pink"},
    {"yellow", "Yellow"},
    {"red", "Red"},
    {"light-blue", "Light Blue"},
    {"green", "Green"},
    {"dark-green", "Dark Green"},
    {"blue", "Blue"},
    {"cream", "Cream"},
    {"mauve", "Mauve"},
    {"purple", "Purple"},
    {"orange", "Orange"},
    {"brown", "Brown"},
    {"grey", "Grey"},
    {"white", "White"},
};

using SpriteViews = std::array<std::span<const uint8_t>, kCompanyColourCount>;

}  // namespace

std::string_view CompanyColourToken(CompanyColour colour) {
  return kColourNames[static_cast<size_t>(colour) % kCompanyColourCount].Token;
}

std::string_view CompanyColourCaption(CompanyColour colour) {
  return kColourNames[static_cast<size_t>(colour) % kCompanyColourCount].Caption;
}

bool ParseCompanyColour(std::string_view token, CompanyColour& colour) {
  for (int32_t i = 0; i < kCompanyColourCount; ++i) {
    if (kColourNames[i].Token == token) {
      colour = static_cast<CompanyColour>(i);
      return true;
    }
  }
  return false;
}

CompanyMapsResult CompanyMapsFromSprites(const SpriteViews& sprites, CompanyMaps& maps) {
  for (const std::span<const uint8_t>& s : sprites)
    if (s.size() != kRecolourSpriteSize || s[0] != 0x00) return CompanyMapsResult::NotRecolour;
  for (size_t i = 0; i < sprites.size(); ++i)
    std::copy(sprites[i].begin() + 1, sprites[i].end(), maps.Maps[i].begin());
  return CompanyMapsResult::Ok;
}

CompanyMapsResult CompanyMapsOfFile(const GrfFile& file, CompanyMaps& maps) {
  if (SpriteCount(file) == 0) return CompanyMapsResult::NotGrf;
  if (SpriteCount(file) < kFirstCompanyMapSprite + kCompanyColourCount)
    return CompanyMapsResult::TooFewSprites;
  std::array<std::vector<uint8_t>, kCompanyColourCount> bytes;
  SpriteViews views;
  for (int32_t i = 0; i < kCompanyColourCount; ++i) {
    if (SpriteBytes(file, kFirstCompanyMapSprite + i, -1, bytes[i]) != GrfResult::Ok)
      return CompanyMapsResult::NotRecolour;
    views[i] = bytes[i];
  }
  return CompanyMapsFromSprites(views, maps);
}

CompanyMapsResult LoadCompanyMaps(const std::string& path, CompanyMaps& maps) {
  GrfFile file;
  const OpenOutcome opened = LoadGrfFile(path, file, nullptr, nullptr);
  if (opened.End == OpenEnd::ReadFailure) return CompanyMapsResult::CannotRead;
  if (opened.End == OpenEnd::TooSmall) return CompanyMapsResult::NotGrf;
  return CompanyMapsOfFile(file, maps);
}

std::string FindInstalledCompanyMaps(const std::vector<InstalledBaseSet>& sets, CompanyMaps& maps) {
  for (const InstalledBaseSet& set : sets)
    if (!set.BasePath.empty() && LoadCompanyMaps(set.BasePath, maps) == CompanyMapsResult::Ok)
      return set.BasePath;
  return {};
}

std::string CompanyMapsText(CompanyMapsResult result) {
  switch (result) {
    case CompanyMapsResult::Ok:
      return "company colour maps read";
    case CompanyMapsResult::CannotRead:
      return "the file cannot be read";
    case CompanyMapsResult::NotGrf:
      return "the file holds no sprites";
    case CompanyMapsResult::TooFewSprites:
      return "the file ends before sprite 790";
    case CompanyMapsResult::NotRecolour:
      return "sprites 775 to 790 are not all recolour sprites";
  }
  return "unknown result";
}

}  // namespace vossel
