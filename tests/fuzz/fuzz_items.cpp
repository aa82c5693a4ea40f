// The reader of items and the walk of their graphs on any bytes. The input is a list of sprites as
// for the actions target: a kind byte (mod 3: picture, pseudo-sprite, data), a length byte (FF: a
// word follows), then the bytes, each in an allocation of its own. Every item's graph must reach
// only sprites of the file, and every text is made.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <vector>

#include "items.h"

using namespace vossel;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::vector<std::unique_ptr<uint8_t[]>> owned;
  std::vector<SpriteInput> sprites;
  for (size_t at = 0; at + 2 <= size;) {
    const auto kind = static_cast<SpriteKind>(data[at] % 3);
    size_t length = data[at + 1];
    at += 2;
    if (length == 0xFF && at + 2 <= size) length = data[at] | (data[at + 1] << 8), at += 2;
    length = std::min(length, size - at);
    owned.emplace_back(new uint8_t[length]);
    std::copy(data + at, data + at + length, owned.back().get());
    sprites.push_back({kind, owned.back().get(), length});
    at += length;
  }
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
