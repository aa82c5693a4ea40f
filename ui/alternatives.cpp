#include "alternatives.h"

#include <cstdlib>

namespace {

int32_t Find(const std::vector<AltKey>& alts, int32_t zoom, int32_t depth) {
  for (size_t i = 0; i < alts.size(); ++i)
    if (alts[i].Zoom == zoom && alts[i].Depth == depth) return static_cast<int32_t>(i);
  return -1;
}

bool Valid(const std::vector<AltKey>& alts, int32_t index) {
  return index >= 0 && static_cast<size_t>(index) < alts.size();
}

}  // namespace

int32_t ZoomScale(int32_t zoom) {
  static constexpr int32_t kScale[] = {0, 2, 1, -1, -2, -3};
  return zoom >= 0 && zoom < 6 ? kScale[zoom] : 0;
}

int32_t PickAlternative(const std::vector<AltKey>& alts, int32_t defaultIndex,
                        const AltChoice& choice) {
  const int32_t chosen = Find(alts, choice.Zoom, choice.Depth);
  if (chosen >= 0) return chosen;
  if (Valid(alts, defaultIndex)) return defaultIndex;
  return alts.empty() ? -1 : 0;
}

AltChoice ChooseZoom(const std::vector<AltKey>& alts, int32_t shown, const AltChoice& choice,
                     int32_t zoom) {
  if (Valid(alts, shown) && Find(alts, zoom, alts[shown].Depth) >= 0)
    return {zoom, alts[shown].Depth};
  for (const AltKey& a : alts)
    if (a.Zoom == zoom) return {zoom, a.Depth};
  return choice;
}

AltChoice ChooseDepth(const std::vector<AltKey>& alts, int32_t shown, const AltChoice& choice,
                      int32_t depth) {
  const int32_t onView = Valid(alts, shown) ? ZoomScale(alts[shown].Zoom) : 0;
  int32_t best = -1;
  for (size_t i = 0; i < alts.size(); ++i) {
    if (alts[i].Depth != depth) continue;
    const int32_t distance = std::abs(ZoomScale(alts[i].Zoom) - onView);
    if (best < 0 || distance < std::abs(ZoomScale(alts[static_cast<size_t>(best)].Zoom) - onView))
      best = static_cast<int32_t>(i);
  }
  if (best < 0) return choice;
  return {alts[static_cast<size_t>(best)].Zoom, depth};
}
