// The reader of items and the walk of their graphs on any bytes. The input is a list of sprites as
// for the actions target: a kind byte (mod 3: picture, pseudo-sprite, data), a length byte (FF: a
// word follows), then the bytes, each in an allocation of its own. Every item's graph must reach
// only sprites of the file, and every text is made.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <vector>

#include "fuzz_sprites.h"
#include "items.h"

using namespace vossel;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const FuzzSprites input = SpritesOf(data, size);
  const std::vector<SpriteInput>& sprites = input.Sprites;
  const GrfActions actions = ReadActions(sprites);
  const GrfItems items = ReadItems(sprites, actions);
  for (const Item& item : items.Items) {
    const ItemGraph graph = GraphOf(items, item);
    for (int32_t s : graph.Sprites)
      if (s < 0 || static_cast<size_t>(s) >= sprites.size()) std::abort();
    for (const GraphNode& n : graph.Nodes) NodeText(items, item, n);
    for (const ItemProperty& p : item.Properties) {
      PropertyName(p);
      PropertyValueText(p);
      PropertySizeText(p);
    }
  }
  for (const ItemProblem& p : items.Problems) ItemProblemText(p);
  for (const SpriteGroup& g : items.Groups) GroupText(g);
  ItemsBySprite(items);
  return 0;
}
