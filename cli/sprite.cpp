#include <cstdio>
#include <string>
#include <vector>

#include <QFile>
#include <QImage>

#include "commands.h"
#include "palette.h"
#include "renderer.h"
#include "text.h"

namespace {

const char kSpriteUsage[] =
    "Usage: vossel-cli sprite FILE N [--png OUT] [--palette PAL] "
    "[--zoom normal|in4|in2|out2|out4|out8] [--depth 8|32]\n";

int UsageError(const std::string& why) {
  std::fprintf(stderr, "vossel-cli: %s\n%s", why.c_str(), kSpriteUsage);
  return kExitUsage;
}

void PrintFacts(int32_t index, int64_t width, int64_t height, uint8_t flags, int64_t size,
                int64_t compressed, int32_t x, int32_t y) {
  std::printf("%s\n", ViewingCaption(index, width, height).c_str());
  std::printf("Flags: %s\n", FlagsText(flags).c_str());
  std::printf("Size: %s\n", std::to_string(size).c_str());
  std::printf("Compressed: %s\n", std::to_string(compressed).c_str());
  std::printf("Offset: %s\n", OffsetText(x, y).c_str());
}

int WritePng(const QImage& bitmap, int32_t index, int64_t width, int64_t height,
             const std::string& path) {
  if (bitmap.isNull()) {
    std::fprintf(stderr, "vossel-cli: sprite %d has no pixels (%lld x %lld); no PNG written\n",
                 index + 1, static_cast<long long>(width), static_cast<long long>(height));
    return kExitFailure;
  }
  if (!bitmap.save(QFile::decodeName(path.c_str()), "PNG")) {
    std::fprintf(stderr, "vossel-cli: cannot write the PNG file '%s'\n", path.c_str());
    return kExitFailure;
  }
  return kExitOk;
}

int ShowV1(const CliLoad& load, int32_t index, const std::string* png,
           const PaletteBuffer& palette) {
  const SpriteRecord& r = load.Store.SpriteTable[static_cast<size_t>(index)];
  PrintFacts(index, r.Width, r.Height, r.Flags, r.Size, r.CompressedSize, r.XOffset, r.YOffset);
  std::fflush(stdout);
  if (png == nullptr) return kExitOk;
  return WritePng(SpriteBitmap(r, load.Store.SpriteData.data(),
                               static_cast<int32_t>(load.Store.SpriteData.size()), palette),
                  index, r.Width, r.Height, *png);
}

// The chosen alternative's facts with its zoom and depth, and its picture: an image decoded now,
// data as a strip of palette indices as an action sprite is shown.
int ShowV2(const CliLoad& load, int32_t index, int32_t alternative, const std::string* png,
           const PaletteBuffer& palette) {
  const GrfV2Sprite& s = load.Index.Sprites[static_cast<size_t>(index)];
  const GrfV2Facts f = SpriteFacts(load.Index, s, alternative);
  PrintFacts(index, f.Width, f.Height, f.Flags, f.Size, f.Compressed, f.XOffset, f.YOffset);
  const GrfV2Alternative* a =
      alternative >= 0 ? &load.Index.Alternatives[static_cast<size_t>(alternative)] : nullptr;
  const bool image = a != nullptr && a->Info != kV2Pseudo;
  if (image) {
    std::printf("Zoom: %s\n", ZoomName(a->Zoom).c_str());
    std::printf("Depth: %dbpp\n", static_cast<int>(AlternativeDepth(*a)));
  }
  std::fflush(stdout);
  GrfV2Image picture;
  if (image) {
    const GrfV2Result result = DecodeAlternative(load.Bytes.data(), load.Bytes.size(), *a, picture);
    if (result != GrfV2Result::Ok) {
      std::fprintf(stderr, "vossel-cli: %s\n", DecodeText(result, *a).c_str());
      return kExitFailure;
    }
  }
  if (png == nullptr) return kExitOk;
  QImage bitmap = ImageBitmap(picture, palette);
  if (!image && (a != nullptr || s.Info != kV2Reference)) {
    const int64_t from = a != nullptr ? a->StreamOffset : s.DataOffset;
    bitmap = IndexedPicture(load.Bytes.data() + from, f.Width, 1, palette);
  }
  return WritePng(bitmap, index, f.Width, f.Height, *png);
}

}  // namespace

int CmdSprite(const std::vector<std::string>& args) {
  const CommandArgs parsed = ParseCommand(args, 2, {"png", "palette", "zoom", "depth"});
  if (parsed.TooFew) return UsageError("sprite needs FILE and N");
  if (!parsed.Error.empty()) return UsageError(parsed.Error);
  if (!IsSpriteNumberText(args[1])) return UsageError("'" + args[1] + "' is not a sprite number");
  AlternativeWish wish;
  std::string why;
  if (!ParseWish(parsed, wish, why)) return UsageError(why);
  const auto png = parsed.Values.find("png");
  const auto ownPalette = parsed.Values.find("palette");
  const bool wantPng = png != parsed.Values.end();

  // As at the window's start: the palette beside the program unless another is named. It is
  // read only when it is used or named.
  PaletteBuffer palette{};
  const bool named = ownPalette != parsed.Values.end();
  if ((wantPng || named) && !LoadCliPalette(named ? &ownPalette->second : nullptr, palette))
    return kExitFailure;

  CliLoad load;
  if (LoadForCli(args[0], load) != kExitOk) return kExitFailure;
  int32_t index = 0, alternative = -1;
  if (!ParseSpriteNumber(args[1], SpriteCount(load), index)) return kExitFailure;
  if (!PickAlternative(load, index, wish, alternative)) return kExitFailure;
  const std::string* pngPath = wantPng ? &png->second : nullptr;
  return load.V2 ? ShowV2(load, index, alternative, pngPath, palette)
                 : ShowV1(load, index, pngPath, palette);
}
