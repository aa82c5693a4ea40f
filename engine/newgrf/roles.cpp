#include "roles.h"

namespace vossel {

std::vector<SheetRole> SheetRolesOf(const FileReading& reading) {
  std::vector<SheetRole> roles;
  roles.reserve(reading.Actions.Sprites.size());
  for (const SpriteRole& role : reading.Actions.Sprites) {
    SheetRole kind = SheetRole::ActionSprite;
    if (role.Recolour || role.Kind == RoleKind::Recolour)
      kind = SheetRole::RecolourMap;
    else if (role.Kind == RoleKind::Action || role.Kind == RoleKind::SpriteCount)
      kind = SheetRole::Action;
    else if (role.Kind == RoleKind::Glyph)
      kind = SheetRole::Glyph;
    else if (role.Kind == RoleKind::BaseSprite)
      kind = SheetRole::BaseSprite;
    roles.push_back(kind);
  }
  return roles;
}

}  // namespace vossel
