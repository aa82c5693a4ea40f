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

TwoColourMapsResult TwoColourMapsOf(const FileReading& reading, TwoColourMaps& maps) {
  const std::vector<SpriteRole>& roles = reading.Actions.Sprites;
  std::vector<RecolourMap> found(kTwoColourMapCount);
  std::vector<bool> have(kTwoColourMapCount, false);
  bool action = false;
  for (size_t s = 0; s < roles.size() && s < reading.Bytes.size(); ++s) {
    const SpriteRole& role = roles[s];
    if (role.Kind != RoleKind::BaseGraphics || role.Feature != kTwoColourMapsType) continue;
    action = true;
    if (role.Index >= static_cast<uint32_t>(kTwoColourMapCount)) continue;
    const std::vector<uint8_t>& bytes = reading.Bytes[s];
    if (bytes.size() != kRecolourSpriteSize || bytes[0] != 0x00)
      return TwoColourMapsResult::NotRecolour;
    std::copy(bytes.begin() + 1, bytes.end(), found[role.Index].begin());
    have[role.Index] = true;
  }
  if (!action) return TwoColourMapsResult::NoAction;
  if (std::find(have.begin(), have.end(), false) != have.end())
    return TwoColourMapsResult::TooFewMaps;
  maps.Maps = std::move(found);
  return TwoColourMapsResult::Ok;
}

TwoColourMapsResult LoadTwoColourMaps(const std::string& path, TwoColourMaps& maps) {
  GrfFile file;
  const OpenOutcome opened = LoadGrfFile(path, file, nullptr, nullptr);
  if (opened.End == OpenEnd::ReadFailure) return TwoColourMapsResult::CannotRead;
  if (opened.End == OpenEnd::TooSmall || SpriteCount(file) == 0) return TwoColourMapsResult::NotGrf;
  FileReading reading;
  ReadFileActions(file, reading);
  return TwoColourMapsOf(reading, maps);
}

std::string FindInstalledTwoColourMaps(const std::vector<InstalledBaseSet>& sets,
                                       TwoColourMaps& maps) {
  for (const InstalledBaseSet& set : sets)
    for (const std::string* path : {&set.ExtraPath, &set.BasePath})
      if (!path->empty() && LoadTwoColourMaps(*path, maps) == TwoColourMapsResult::Ok) return *path;
  return {};
}

std::string TwoColourMapsText(TwoColourMapsResult result) {
  switch (result) {
    case TwoColourMapsResult::Ok:
      return "two-company-colour maps read";
    case TwoColourMapsResult::CannotRead:
      return "the file cannot be read";
    case TwoColourMapsResult::NotGrf:
      return "the file holds no sprites";
    case TwoColourMapsResult::NoAction:
      return "the file has no Action 05 of type 0A";
    case TwoColourMapsResult::TooFewMaps:
      return "its Action 05 of type 0A brings fewer than 256 maps";
    case TwoColourMapsResult::NotRecolour:
      return "a sprite of its Action 05 of type 0A is not a recolour sprite";
  }
  return "unknown result";
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
