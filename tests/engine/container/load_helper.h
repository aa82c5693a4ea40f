// Loads byte buffers through both passes, keeping the messages they raise; and the real files.
#pragma once

#include <string>
#include <tuple>
#include <vector>

#include "grf.h"
#include "grf_writer.h"
#include "load_sprites.h"

namespace vossel {

struct Loaded {
  SpriteStore Store;
  LoadOutcome Outcome;
  std::vector<std::string> Messages;

  int Count() const { return Outcome.Totals.Count; }
  const SpriteRecord& At(int i) const { return Store.SpriteTable.at(static_cast<size_t>(i)); }
};

inline Loaded Load(const grfw::Bytes& bytes) {
  Loaded l;
  // A copy takes exactly its bytes, so that the address sanitizer sees a read past the end.
  const grfw::Bytes file(bytes);
  l.Outcome = LoadSprites(file.data(), static_cast<int32_t>(file.size()), l.Store,
                          [&l](const std::string& m) { l.Messages.push_back(m); });
  return l;
}

// Every field of an entry, to compare two at once.
inline auto Facts(const SpriteRecord& r) {
  return std::make_tuple(r.DataOffset, r.Size, r.Flags, r.CompressedSize, r.XOffset, r.YOffset,
                         r.Width, r.Height);
}

}  // namespace vossel
