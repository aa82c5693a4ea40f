// The checker on any bytes, read as a GRF file of either container through the whole chain a
// command takes: load, actions, items, findings. Every finding names a sprite of the file (or the
// file as a whole), has a code of the table and a sentence.
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "check.h"

using namespace vossel;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > 1 << 20) return 0;
  static const std::string path = "/tmp/vossel-fuzz-check-" + std::to_string(getpid()) + ".grf";
  std::FILE* out = std::fopen(path.c_str(), "wb");
  if (out == nullptr) std::abort();
  if (size > 0 && std::fwrite(data, 1, size, out) != size) std::abort();
  std::fclose(out);
  GrfFile file;
  const MessageFn quiet = [](const std::string&) {};
  if (LoadGrfFile(path, file, quiet, quiet).End != OpenEnd::Ok) return 0;
  FileReading reading;
  ReadFileActions(file, reading);
  const std::vector<Finding> findings = CheckGrf(file, reading, ReadItems(reading));
  for (const Finding& f : findings) {
    if (f.Sprite < -1 || f.Sprite >= SpriteCount(file)) std::abort();
    CheckCode code{};
    if (!ParseCheckCode(CodeText(f.Code), code) || code != f.Code) std::abort();
    if (FindingText(f).empty()) std::abort();
  }
  return 0;
}
