// Where the user was in a file that is read again. The sprite they chose stays wanted while a
// shorter copy of the file holds back what is shown, and comes back with a longer one; browsing
// makes the sprite on view the wanted one.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string>

namespace vossel {

struct SpritePlace {
  std::string File;
  int32_t Wanted = -1;
  int32_t Shown = -1;  // what the last reading of File showed
};

// Before reading `file` again with the sprite `current` on view.
inline void BeforeReading(SpritePlace& place, const std::string& file, int32_t current) {
  if (place.File != file || current != place.Shown) place.Wanted = current;
  place.File = file;
}

// After the reading, with `highest` the highest sprite index now: the sprite to show.
inline int32_t SpriteToShow(const SpritePlace& place, int32_t highest) {
  return std::max(0, std::min(place.Wanted, highest));
}

}  // namespace vossel
