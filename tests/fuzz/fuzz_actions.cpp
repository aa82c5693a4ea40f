// The reader of pseudo-sprites on any bytes. The input is a list of sprites: a kind byte (its
// value mod 3: picture, pseudo-sprite, data), a length byte (FF: a word follows), then the bytes.
// Each sprite gets an allocation of its own, so that a read past one is seen. Every text is made,
// the NFO form of every pseudo-sprite must read back into its bytes, and the maps of two company
// colours are taken from whatever Action 05 blocks there are.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "actions.h"
#include "companymaps.h"
#include "fuzz_sprites.h"
#include "nfo_bytes.h"

using namespace vossel;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const FuzzSprites input = SpritesOf(data, size);
  const std::vector<SpriteInput>& sprites = input.Sprites;
  const GrfActions g = ReadActions(sprites);
  if (g.Sprites.size() != sprites.size()) std::abort();
  for (const ActionRecord& a : g.Actions) {
    const SpriteInput& s = sprites.at(static_cast<size_t>(a.Sprite));
    if (s.Kind != SpriteKind::Pseudo || a.Have != s.Size) std::abort();
    ActionSummary(a);
  }
  for (size_t i = 0; i < sprites.size(); ++i) {
    const SpriteRole& role = g.Sprites[i];
    if (role.ActionIndex >= static_cast<int32_t>(g.Actions.size())) std::abort();
    RoleText(role, g.Actions);
    const SpriteInput& s = sprites[i];
    if (s.Kind != SpriteKind::Pseudo) {
      NfoSpriteLine(static_cast<int32_t>(i), {NfoAlternative{}}, role, g.Actions);
      continue;
    }
    NfoComment(role, g.Actions);
    const auto bytes = ParseNfoBytes(NfoBytes(s.Data, s.Size));
    if (!bytes || !std::equal(bytes->begin(), bytes->end(), s.Data, s.Data + s.Size) ||
        bytes->size() != s.Size)
      std::abort();
  }
  FileReading reading;
  reading.Actions = g;
  for (const SpriteInput& s : sprites)
    reading.Bytes.emplace_back(s.Kind == SpriteKind::Pseudo ? s.Data : nullptr,
                               s.Kind == SpriteKind::Pseudo ? s.Data + s.Size : nullptr);
  TwoColourMaps maps;
  const TwoColourMapsResult two = TwoColourMapsOf(reading, maps);
  if ((two == TwoColourMapsResult::Ok) != (maps.Maps.size() == kTwoColourMapCount)) std::abort();
  TwoColourMapsText(two);
  DecodeGrfText(data, size);
  GrfIdText(g.Identity.Grf.Bytes);
  ParseNfoBytes(std::string(data, data + size));
  return 0;
}
