// Inside the reader of items: a bounded cursor over one pseudo-sprite, and what the reader of
// Action 02 needs to know of the file at its point.
#pragma once

#include <cstdint>
#include <vector>

#include "items.h"
#include "reader.h"

namespace vossel {

// Forward-only and sticky: once a field reaches past the end, every later read fails too.
struct ItemCursor {
  Reader Bytes;
  int64_t At = 0;
  bool Cut = false;
  int64_t Need = 0;  // the furthest byte asked for

  bool Take(int64_t n) {
    if (Cut || !Fits(At, n, Bytes.End)) {
      if (!Cut) Need = At + n;
      Cut = true;
      return false;
    }
    At += n;
    return true;
  }
  // A little-endian value of 1, 2 or 4 bytes.
  bool Value(int size, uint32_t& v) {
    const int64_t at = At;
    if (!Take(size)) return false;
    v = 0;
    for (int i = 0; i < size; ++i) v |= static_cast<uint32_t>(Bytes.Data[at + i]) << (8 * i);
    return true;
  }
  bool Byte(uint8_t& v) {
    uint32_t w = 0;
    const bool ok = Value(1, w);
    v = static_cast<uint8_t>(w);
    return ok;
  }
  bool Ext(uint32_t& v) { return Value(1, v) && (v != 0xFF || Value(2, v)); }
};

// What the file has defined up to the Action 02 being read.
struct GroupContext {
  GrfItems* Items = nullptr;
  const int32_t* Current = nullptr;  // group ID -> index into Items->Groups, -1 for none
  // Per feature, set number -> index into Items->Sets (-1 none); Defined: an Action 01 came.
  const std::vector<int32_t>* SetsOf = nullptr;
  bool HasSets = false;
};

// Reads one Action 02 after its action byte into `g` (Sprite, Feature, Id and Type set by the
// caller after the cursor passed them); problems go to the context's items.
void ReadGroupBody(ItemCursor& c, SpriteGroup& g, const GroupContext& context);

// A sprite layout of the type byte g.Type (00 basic, n extended, 40+n advanced).
void ReadLayout(ItemCursor& c, SpriteGroup& g, const GroupContext& context);

// A group ID as a reference at the point of the context.
GroupRef GroupReference(uint32_t word, const int32_t* current);

void Problem(GrfItems& items, int32_t sprite, ItemProblemKind kind, uint8_t feature, uint32_t value,
             uint32_t need = 0);

}  // namespace vossel
