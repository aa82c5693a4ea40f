#include <cstdio>
#include <string>
#include <vector>

#include <QFile>
#include <QFileInfo>
#include <QImage>

#include "commands.h"
#include "palette.h"
#include "renderer.h"
#include "text.h"

namespace vossel {

namespace {

const char kSpriteUsage[] =
    "Usage: vossel-cli sprite FILE N [--png OUT [--force]] [--palette windows|dos|declared|PAL] "
    "[--company COLOUR] [--base-set FILE] "
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

// The chosen alternative's facts (with its zoom and depth where sprites have several) and its
// picture: an image decoded now, data as a strip of palette indices as an action sprite is shown.
int ShowSprite(const GrfFile& file, int32_t index, int32_t alternative, const std::string* png,
               bool force, const FileReading& reading, const Look& look) {
  const SpriteFacts f = FactsOf(file, index, alternative);
  PrintFacts(index, f.Width, f.Height, f.Flags, f.Size, f.Compressed, f.XOffset, f.YOffset);
  const AlternativeInfo a = AlternativeOf(file, index, alternative);
  const bool image = alternative >= 0 && !a.Data;
  if (image && file.HasAlternatives) {
    std::printf("Zoom: %s\n", ZoomName(a.Zoom).c_str());
    std::printf("Depth: %dbpp\n", static_cast<int>(a.Depth));
  }
  // A pseudo-sprite is told by what it says, not drawn.
  const bool pseudo = f.Kind == SpriteKind::Pseudo;
  if (!pseudo) std::printf("Palette: %s\n", look.PaletteText.c_str());
  // What the sprite is: a pseudo-sprite's action, summary and NFO line, a picture's role.
  for (const auto& [key, value] : SpriteDetails(file, reading, index))
    std::printf("%s: %s\n", key.c_str(), value.c_str());
  std::fflush(stdout);
  if (pseudo && png != nullptr) {
    std::fprintf(stderr, "vossel-cli: sprite %d is a pseudo-sprite; it has no pixels\n", index + 1);
    return kExitFailure;
  }
  SpritePicture picture;
  const GrfResult result = PictureOf(file, index, alternative, picture);
  if (result != GrfResult::Ok) {
    std::fprintf(stderr, "vossel-cli: %s\n",
                 PictureProblem(file, index, alternative, result).c_str());
    return kExitFailure;
  }
  if (png == nullptr) return LoadStatus(file);
  const QImage bitmap = LookPixels(look, std::move(picture));
  if (bitmap.isNull()) {
    std::fprintf(stderr, "vossel-cli: sprite %d has no pixels (%lld x %lld); no PNG written\n",
                 index + 1, static_cast<long long>(f.Width), static_cast<long long>(f.Height));
    return kExitFailure;
  }
  if (!force && QFileInfo::exists(QFile::decodeName(png->c_str()))) {
    std::fprintf(stderr, "vossel-cli: %s is there already; give --force to overwrite\n",
                 png->c_str());
    return kExitFailure;
  }
  std::string error;
  if (!WritePngFile(*png, bitmap, picture.XOffset, picture.YOffset, error)) {
    std::fprintf(stderr, "vossel-cli: cannot write '%s': %s\n", png->c_str(), error.c_str());
    return kExitFailure;
  }
  return LoadStatus(file);
}

}  // namespace

int CmdSprite(const std::vector<std::string>& args) {
  const CommandArgs parsed =
      ParseCommand(args, 2, {"png", "palette", "zoom", "depth", "company", "base-set"}, {"force"});
  if (parsed.TooFew) return UsageError("sprite needs FILE and N");
  if (!parsed.Error.empty()) return UsageError(parsed.Error);
  if (!IsSpriteNumberText(args[1])) return UsageError("'" + args[1] + "' is not a sprite number");
  AlternativeWish wish;
  std::string why;
  if (!ParseWish(parsed, wish, why)) return UsageError(why);
  const auto png = parsed.Values.find("png");
  const bool wantPng = png != parsed.Values.end();

  GrfFile file;
  FileReading reading;
  if (LoadForCli(args[0], file, &reading) != kExitOk) return kExitFailure;
  int32_t index = 0, alternative = -1;
  if (!ParseSpriteNumber(args[1], SpriteCount(file), index)) return kExitFailure;
  if (!PickAlternative(file, index, wish, alternative)) return kExitFailure;
  // The palette is read only when a picture is written.
  Look look;
  if (const int status = ChooseLook(file, reading, parsed.Values, wantPng, look, &wish);
      status != kExitOk)
    return status;
  return ShowSprite(file, index, alternative, wantPng ? &png->second : nullptr,
                    parsed.Values.count("force") > 0, reading, look);
}

}  // namespace vossel
