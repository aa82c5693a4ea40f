#include "roles.h"

namespace vossel {

namespace {

constexpr size_t kRecolourMapBytes = 257;

}  // namespace

int32_t ActionOf(const GrfFile& file, int32_t sprite) {
  std::vector<uint8_t> bytes;
  if (FactsOf(file, sprite, -1).Kind != SpriteKind::Pseudo ||
      !SpriteBytes(file, sprite, -1, bytes) || bytes.empty())
    return -1;
  return bytes[0];
}

std::vector<SpriteRole> RolesFromSprites(const GrfFile& file) {
  const int32_t count = SpriteCount(file);
  std::vector<SpriteRole> roles(static_cast<size_t>(count), SpriteRole::Unknown);
  bool pseudo = false;
  std::vector<uint8_t> bytes;
  for (int32_t i = 0; i < count; ++i) {
    if (FactsOf(file, i, -1).Kind != SpriteKind::Pseudo) continue;
    pseudo = true;
    SpriteBytes(file, i, -1, bytes);
    roles[static_cast<size_t>(i)] = bytes.size() == kRecolourMapBytes && bytes[0] == 0
                                        ? SpriteRole::RecolourMap
                                        : SpriteRole::Action;
  }
  if (pseudo) return roles;
  for (int32_t i = 0; i < count; ++i)
    if (AlternativeCount(file, i) > 0) roles[static_cast<size_t>(i)] = SpriteRole::BaseSprite;
  return roles;
}

}  // namespace vossel
