// A straightforward decoder to measure the engine against and to check its bytes: both passes in
// plain byte loops, the store as a zero-filled vector, data chunks by the plain copy rule.
#pragma once

#include <cstdint>
#include <vector>

#include "grf.h"

struct ReferenceLoad {
  std::vector<SpriteRecord> Table;
  std::vector<uint8_t> Data;
  int32_t Count = 0;
  bool Failed = false;
};

// Loads well-formed files the way the format reads; on any record it cannot take in it stops
// and sets Failed, without the engine's care for hostile input.
ReferenceLoad ReferenceDecode(const uint8_t* file, int32_t length);
