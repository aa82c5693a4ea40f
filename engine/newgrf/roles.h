// What each sprite of a file is for, in the few kinds the Sprite Sheet filters by.
#pragma once

#include <cstdint>
#include <vector>

#include "actions.h"
#include "grffile.h"

namespace vossel {

enum class SheetRole : uint8_t {
  Unknown,       // as a filter: any role
  Action,        // a pseudo-sprite read as an action
  ActionSprite,  // a picture (or sound) that belongs to an action
  BaseSprite,    // a picture that belongs to no action
  RecolourMap,   // a 257-byte recolour sprite
  Glyph,         // a character of a font
};

// Every sprite's kind, from what the file's actions say of it.
std::vector<SheetRole> SheetRolesOf(const FileReading& reading);

}  // namespace vossel
