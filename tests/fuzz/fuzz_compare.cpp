// Two files compared on any bytes: the input against itself must be equal, and against a copy with
// one byte changed (the last byte's value picks which) compares without reading outside anything;
// every text is made.
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "compare.h"

using namespace vossel;

namespace {

std::string Write(const char* which, const uint8_t* data, size_t size) {
  const std::string path =
      "/tmp/vossel-fuzz-compare-" + std::to_string(getpid()) + "-" + which + ".grf";
  std::ofstream(path, std::ios::binary | std::ios::trunc)
      .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
  return path;
}

struct Opened {
  GrfFile File;
  FileReading Reading;
  bool Ok = false;
};

void Open(const std::string& path, Opened& o) {
  const MessageFn quiet = [](const std::string&) {};
  o.Ok = LoadGrfFile(path, o.File, quiet, quiet).End == OpenEnd::Ok;
  if (o.Ok) ReadFileActions(o.File, o.Reading);
}

void Texts(const GrfComparison& c) {
  ComparisonSummary(c);
  IdentityChangeLines(c);
  for (const SpriteDifference& d : c.Sprites) {
    SpriteChangeText(d);
    if (d.Change == SpriteChange::Bytes) OldNfoLine(d), NewNfoLine(d);
  }
  for (const ItemDifference& d : c.Items) ItemDifferenceName(d), ItemChangeText(d);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  std::vector<uint8_t> changed(data, data + size);
  changed[(size_t{data[size - 1]} * 131) % size] ^= 0x5A;
  Opened a, b, c;
  Open(Write("a", data, size), a);
  Open(Write("b", data, size), b);
  Open(Write("c", changed.data(), changed.size()), c);
  CompareOptions options;
  options.CountPixels = true;
  if (a.Ok && b.Ok) {
    const GrfComparison same = CompareFiles(a.File, a.Reading, b.File, b.Reading, options);
    if (!IsEqual(same)) std::abort();
    Texts(same);
  }
  if (a.Ok && c.Ok) Texts(CompareFiles(a.File, a.Reading, c.File, c.Reading, options));
  return 0;
}
