#include "companymaps.h"

#include <algorithm>

#include "fileio.h"
#include "grf.h"
#include "grf2.h"

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

// The readers below are the only part that knows the containers; each fills the 16 views or says
// why not.
CompanyMapsResult ViewsOfVersion1(const std::vector<uint8_t>& file, SpriteStore& store,
                                  SpriteViews& views) {
  LoadSprites(file.data(), static_cast<int32_t>(file.size()), store, [](const std::string&) {});
  if (store.SpriteTable.empty()) return CompanyMapsResult::NotGrf;
  if (store.SpriteTable.size() < kFirstCompanyMapSprite + kCompanyColourCount)
    return CompanyMapsResult::TooFewSprites;
  for (int32_t i = 0; i < kCompanyColourCount; ++i) {
    const SpriteRecord& r = store.SpriteTable[kFirstCompanyMapSprite + i];
    const int64_t end = int64_t{r.DataOffset} + r.Size;
    if (r.Flags != kActionFlags || r.DataOffset < 0 || r.Size < 0 ||
        end > static_cast<int64_t>(store.SpriteData.size()))
      return CompanyMapsResult::NotRecolour;
    views[i] = std::span<const uint8_t>(store.SpriteData.data() + r.DataOffset,
                                        static_cast<size_t>(r.Size));
  }
  return CompanyMapsResult::Ok;
}

CompanyMapsResult ViewsOfVersion2(const std::vector<uint8_t>& file, SpriteViews& views) {
  GrfV2Index index;
  IndexGrfV2(file.data(), file.size(), index, [](const std::string&) {});
  if (index.Sprites.empty()) return CompanyMapsResult::NotGrf;
  if (index.Sprites.size() < kFirstCompanyMapSprite + kCompanyColourCount)
    return CompanyMapsResult::TooFewSprites;
  for (int32_t i = 0; i < kCompanyColourCount; ++i) {
    const GrfV2Sprite& s = index.Sprites[kFirstCompanyMapSprite + i];
    if (s.Info != kV2Pseudo || s.DataOffset < 0 || s.DataSize < 0 ||
        s.DataOffset + s.DataSize > static_cast<int64_t>(file.size()))
      return CompanyMapsResult::NotRecolour;
    views[i] =
        std::span<const uint8_t>(file.data() + s.DataOffset, static_cast<size_t>(s.DataSize));
  }
  return CompanyMapsResult::Ok;
}

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

CompanyMapsResult LoadCompanyMaps(const std::string& path, CompanyMaps& maps) {
  const FileReadResult read = ReadWholeFile(path);
  if (!read.Ok) return CompanyMapsResult::CannotRead;
  SpriteViews views;
  SpriteStore store;  // holds the version-1 views until the maps are copied
  const CompanyMapsResult found = IsGrfV2(read.Bytes.data(), read.Bytes.size())
                                      ? ViewsOfVersion2(read.Bytes, views)
                                      : ViewsOfVersion1(read.Bytes, store, views);
  if (found != CompanyMapsResult::Ok) return found;
  return CompanyMapsFromSprites(views, maps);
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
