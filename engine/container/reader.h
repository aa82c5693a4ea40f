// The one bounded reader under every reader of outside bytes: a buffer and its end, and one helper
// per field width, little-endian. A field that would reach past the end reads nothing and gives
// false.
#pragma once

#include <cstdint>

namespace vossel {

// n bytes at `at` lie inside [0, end). Taken by subtraction, so that no sum can wrap whatever a
// field claims.
inline bool Fits(int64_t at, int64_t n, int64_t end) {
  return at >= 0 && n >= 0 && at <= end && n <= end - at;
}

struct Reader {
  const uint8_t* Data;
  int64_t End;
};

inline bool U8(const Reader& r, int64_t at, uint8_t& v) {
  if (!Fits(at, 1, r.End)) return false;
  v = r.Data[at];
  return true;
}

inline bool U16(const Reader& r, int64_t at, uint16_t& v) {
  if (!Fits(at, 2, r.End)) return false;
  v = static_cast<uint16_t>(r.Data[at] | (r.Data[at + 1] << 8));
  return true;
}

inline bool S16(const Reader& r, int64_t at, int16_t& v) {
  uint16_t u = 0;
  if (!U16(r, at, u)) return false;
  v = static_cast<int16_t>(u);
  return true;
}

inline bool U32(const Reader& r, int64_t at, uint32_t& v) {
  if (!Fits(at, 4, r.End)) return false;
  v = static_cast<uint32_t>(r.Data[at]) | (static_cast<uint32_t>(r.Data[at + 1]) << 8) |
      (static_cast<uint32_t>(r.Data[at + 2]) << 16) | (static_cast<uint32_t>(r.Data[at + 3]) << 24);
  return true;
}

}  // namespace vossel
