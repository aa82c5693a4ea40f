// What each sprite of a file is for, as far as the sprites themselves tell: the Sprite Sheet's
// role filter reads one role a sprite.
#pragma once

#include <cstdint>
#include <vector>

#include "grffile.h"

namespace vossel {

enum class SpriteRole : uint8_t {
  Unknown,       // nothing more is known; as a filter: any role
  Action,        // a pseudo-sprite
  ActionSprite,  // a picture that belongs to an action
  BaseSprite,    // a picture in place of one of the game's own
  RecolourMap,   // a pseudo-sprite of 257 bytes starting 00
  Glyph,         // a character of a font
};

// The first byte of a pseudo-sprite (its action), -1 for anything else or an empty one.
int32_t ActionOf(const GrfFile& file, int32_t sprite);

// A role for every sprite from the sprites alone: recolour maps, other pseudo-sprites as actions,
// and every picture of a file without pseudo-sprites as a base sprite; the rest Unknown.
std::vector<SpriteRole> RolesFromSprites(const GrfFile& file);

}  // namespace vossel
