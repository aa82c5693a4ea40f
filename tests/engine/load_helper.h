// Loads a byte buffer through both passes and keeps the messages they raised.
#pragma once

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "grf.h"
#include "grf_writer.h"

struct Loaded {
  SpriteStore Store;
  LoadOutcome Outcome;
  std::vector<std::string> Messages;

  int Count() const { return Outcome.Totals.Count; }
  const SpriteRecord& At(int i) const { return Store.SpriteTable.at(static_cast<size_t>(i)); }
  // The decoded bytes of sprite i.
  std::vector<uint8_t> Bytes(int i) const {
    const SpriteRecord& r = At(i);
    return std::vector<uint8_t>(Store.SpriteData.begin() + r.DataOffset,
                                Store.SpriteData.begin() + r.DataOffset + r.Size);
  }
};

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

inline Loaded Load(const grfw::Bytes& bytes) {
  Loaded l;
  const ExactBuffer file(bytes);
  l.Outcome = LoadSprites(file.Data.get(), file.Size, l.Store,
                          [&l](const std::string& m) { l.Messages.push_back(m); });
  return l;
}
