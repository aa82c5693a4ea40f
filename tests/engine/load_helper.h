// Loads byte buffers through both passes, keeping the messages they raise; and the real files.
#pragma once

#include <algorithm>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "fileio.h"
#include "grf.h"
#include "grf_writer.h"

// A copy of the bytes in an allocation of exactly their size, so that the address sanitizer sees
// any read past the end (a vector's capacity may run further).
struct ExactBuffer {
  explicit ExactBuffer(const grfw::Bytes& bytes)
      : Data(new uint8_t[bytes.empty() ? 1 : bytes.size()]),
        Size(static_cast<int32_t>(bytes.size())) {
    std::copy(bytes.begin(), bytes.end(), Data.get());
  }
  std::unique_ptr<uint8_t[]> Data;
  int32_t Size;
};

struct Loaded {
  SpriteStore Store;
  LoadOutcome Outcome;
  std::vector<std::string> Messages;

  int Count() const { return Outcome.Totals.Count; }
  const SpriteRecord& At(int i) const { return Store.SpriteTable.at(static_cast<size_t>(i)); }
};

inline Loaded Load(const grfw::Bytes& bytes) {
  Loaded l;
  const ExactBuffer file(bytes);
  l.Outcome = LoadSprites(file.Data.get(), file.Size, l.Store,
                          [&l](const std::string& m) { l.Messages.push_back(m); });
  return l;
}

// Every field of an entry, for comparing two of them at once.
inline auto Facts(const SpriteRecord& r) {
  return std::make_tuple(r.DataOffset, r.Size, r.Flags, r.CompressedSize, r.XOffset, r.YOffset,
                         r.Width, r.Height);
}

// A file of Debian's openttd-data, or no bytes when it is not installed.
inline grfw::Bytes Baseset(const std::string& name) {
  return ReadWholeFile(std::string(VOSSEL_BASESET_DIR) + "/" + name).Bytes;
}
