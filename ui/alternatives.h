// Which alternative of a sprite the picture shows: the user's choice of zoom level and colour
// depth, kept while browsing, and the default alternative where a sprite lacks the chosen one.
#pragma once

#include <cstdint>
#include <vector>

// One alternative as the View menu sees it. Zoom is the file's zoom byte (0 normal, 1 in 4x, 2 in
// 2x, 3 out 2x, 4 out 4x, 5 out 8x); Depth is 8 or 32 bits a pixel.
struct AltKey {
  int32_t Zoom = 0;
  int32_t Depth = 8;
  bool Mask = false;
};

// The user's choice; Zoom -1 (and Depth 0) until one is made, which shows every sprite's default.
struct AltChoice {
  int32_t Zoom = -1;
  int32_t Depth = 0;
};

// The alternative to show: the one the choice names, or else `defaultIndex`. -1 for a sprite
// without alternatives.
int32_t PickAlternative(const std::vector<AltKey>& alts, int32_t defaultIndex,
                        const AltChoice& choice);

// The choice after the user picks a zoom level on a sprite that shows alts[shown]: that level at
// the depth on view where the sprite has it, else at the depth it has. The choice stays as it was
// when the sprite has no such level.
AltChoice ChooseZoom(const std::vector<AltKey>& alts, int32_t shown, const AltChoice& choice,
                     int32_t zoom);
// The same for a colour depth: at the zoom level on view where the sprite has it, else at its
// level nearest to that one.
AltChoice ChooseDepth(const std::vector<AltKey>& alts, int32_t shown, const AltChoice& choice,
                      int32_t depth);

// How far a zoom level stands from normal, in steps of two: in 4x 2, in 2x 1, normal 0, out 2x -1.
int32_t ZoomScale(int32_t zoom);
