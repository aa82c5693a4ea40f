// What items draw, on any file: the input is a whole GRF file, opened as the file and as its own
// base set. Every item is composed with its defaults and with picks taken from the input's first
// bytes, and drawn with boxes and origins; every sprite placed lies in its file or is an outline.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include <unistd.h>

#include "actions.h"
#include "compose.h"
#include "item_compose.h"
#include "items.h"

using namespace vossel;

namespace {

void Check(const GrfFile& file, const BaseSprites& base, const GrfItems& items,
           const Composition& c, const Look& look, const ComposeOptions& options) {
  for (int32_t v : c.Views)
    if (v < 0 || v >= SpriteCount(file)) std::abort();
  ComposeEndText(items, c);
  for (const BranchPoint& b : c.Branches) {
    BranchText(items, b);
    for (int32_t k = -1; k < b.Choices && k < 8; ++k) BranchChoiceText(items, b, k);
  }
  const ComposedPicture p = DrawComposition(file, items, c, look, &base, options);
  for (const PlacedSprite& s : p.Sprites) {
    if (s.Outline) continue;
    const GrfFile& from = s.Source == SpriteSource::Base ? base.File : file;
    if (s.Source == SpriteSource::None || s.Sprite < 0 || s.Sprite >= SpriteCount(from))
      std::abort();
  }
  if (p.Image.width() > 20000 || p.Image.height() > 20000) std::abort();
}

// The file each input is written to, removed when the process ends.
struct TempFile {
  std::string Path =
      std::string(P_tmpdir) + "/vossel-fuzz-compose-" + std::to_string(getpid()) + ".grf";
  ~TempFile() { std::remove(Path.c_str()); }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const TempFile temp;
  const std::string& path = temp.Path;
  std::ofstream(path, std::ios::binary)
      .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
  const BaseSprites base = OpenBaseSprites(path);
  if (!base.Open) return 0;
  FileReading reading;
  ReadFileActions(base.File, reading);
  const GrfItems items = ReadItems(reading);
  Look look;
  look.Zoom = size > 0 ? data[0] % 7 - 1 : -1;
  size_t n = 0;
  for (const Item& item : items.Items) {
    if (++n > 32) break;
    ComposeRequest request;
    const Composition first = Compose(items, item, request);
    Check(base.File, base, items, first, look, {});
    // Every branch met takes a pick from the input, in range or not.
    request.Loading = true;
    request.Entry = size > 1 && data[1] & 1 ? EntryKind::Purchase : EntryKind::Cargo;
    for (size_t i = 0; i < first.Branches.size(); ++i)
      request.Picks.push_back({items.Groups[static_cast<size_t>(first.Branches[i].Group)].Sprite,
                               size > i + 2 ? int32_t(data[i + 2] % 10) - 1 : 0});
    Check(base.File, base, items, Compose(items, item, request), look,
          {.Boxes = true, .Origins = true, .SharedOrigin = size > 2 && data[2] & 1});
  }
  return 0;
}
