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

const char kSpriteUsage[] = "Usage: vossel-cli sprite FILE N [--png OUT] [--palette PAL]\n";

int UsageError(const std::string& why) {
  std::fprintf(stderr, "vossel-cli: %s\n%s", why.c_str(), kSpriteUsage);
  return kExitUsage;
}

}  // namespace

int CmdSprite(const std::vector<std::string>& args) {
  if (args.size() < 2) return UsageError("sprite needs FILE and N");
  for (size_t i = 0; i < 2; ++i)
    if (args[i] == "--png" || args[i] == "--palette")
      return UsageError("FILE and N come before the options");
  std::string pngPath, palettePath;
  bool wantPng = false, ownPalette = false;
  for (size_t i = 2; i < args.size(); i += 2) {
    const std::string& option = args[i];
    std::string* value = nullptr;
    bool* given = nullptr;
    if (option == "--png") {
      value = &pngPath;
      given = &wantPng;
    } else if (option == "--palette") {
      value = &palettePath;
      given = &ownPalette;
    } else {
      return UsageError("unknown option '" + option + "'");
    }
    if (*given) return UsageError(option + " given twice");
    if (i + 1 >= args.size()) return UsageError(option + " needs a value");
    *value = args[i + 1];
    *given = true;
  }

  // As at the window's start: the palette beside the program unless another is named. It is
  // read only when it is used or named.
  PaletteBuffer palette{};
  if (wantPng || ownPalette) {
    if (!ownPalette) palettePath = JoinPath(ProgramFolder(), kPaletteFileName);
    if (LoadPalette(palettePath, palette) == 0) {
      std::fprintf(stderr, "%s\n", kMsgBadPalette);
      return kExitFailure;
    }
  }

  CliLoad load;
  if (LoadForCli(args[0], load) != kExitOk) return kExitFailure;
  // The sprites decoded, as the window's scroll bar counts them; entries behind are never shown.
  int32_t index = 0;
  if (!ParseSpriteNumber(args[1], load.Outcome.Totals.Count, index)) return kExitFailure;

  const SpriteRecord& r = load.Store.SpriteTable[static_cast<size_t>(index)];
  std::printf("%s\n", ViewingCaption(index, r).c_str());
  std::printf("Flags: %s\n", FlagsText(r).c_str());
  std::printf("Size: %s\n", std::to_string(r.Size).c_str());
  std::printf("Compressed: %s\n", std::to_string(r.CompressedSize).c_str());
  std::printf("Offset: %s\n", OffsetText(r).c_str());
  std::fflush(stdout);
  if (!wantPng) return kExitOk;

  const QImage bitmap = SpriteBitmap(r, load.Store.SpriteData.data(),
                                     static_cast<int32_t>(load.Store.SpriteData.size()), palette);
  if (bitmap.isNull()) {
    std::fprintf(stderr, "vossel-cli: sprite %d has no pixels (%d x %d); no PNG written\n",
                 index + 1, r.Width, r.Height);
    return kExitOk;
  }
  if (!bitmap.save(QFile::decodeName(pngPath.c_str()), "PNG")) {
    std::fprintf(stderr, "vossel-cli: cannot write the PNG file '%s'\n", pngPath.c_str());
    return kExitFailure;
  }
  return kExitOk;
}
