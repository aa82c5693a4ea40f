#include <cstdio>

#include "commands.h"
#include "fileio.h"
#include "palette.h"
#include "text.h"

namespace {

void ToStandardError(const std::string& text) {
  std::fprintf(stderr, "%s\n", text.c_str());
}

}  // namespace

int LoadForCli(const std::string& fileName, CliLoad& load) {
  const int32_t start = GetTickCount();
  FileReadResult file = ReadWholeFile(fileName);
  if (!file.Ok) {
    ToStandardError(ReadFailureText(file.ErrorNumber, file.Description, fileName));
    return kExitFailure;
  }
  const int32_t readTicks = GetTickCount() - start;
  if (file.Bytes.size() < static_cast<size_t>(kMinFileSize)) {
    ToStandardError(kMsgTooSmall);
    return kExitFailure;
  }
  load.FileName = fileName;
  load.FileLength = static_cast<int32_t>(file.Bytes.size());
  if (IsGrfV2(file.Bytes.data(), file.Bytes.size())) {
    // Indexed now; an alternative is decoded when it is asked for.
    load.V2 = true;
    load.Bytes = std::move(file.Bytes);
    const int32_t indexStart = GetTickCount();
    IndexGrfV2(load.Bytes.data(), load.Bytes.size(), load.Index, ToStandardError);
    load.Outcome.DecodeTicks = GetTickCount() - indexStart;
    load.Outcome.PrepareTicks = readTicks;
    return kExitOk;
  }
  // The window shows these as message boxes; here they go to standard error as they come.
  load.Outcome = LoadSprites(file.Bytes.data(), load.FileLength, load.Store, ToStandardError);
  load.Outcome.PrepareTicks += readTicks;
  return kExitOk;
}

int32_t SpriteCount(const CliLoad& load) {
  if (load.V2) return static_cast<int32_t>(load.Index.Sprites.size());
  // The loader keeps exactly the sprites it decoded.
  return static_cast<int32_t>(load.Store.SpriteTable.size());
}

bool PickAlternative(const CliLoad& load, int32_t index, const AlternativeWish& wish,
                     int32_t& alternative) {
  alternative = -1;
  std::string present = "8bpp normal";
  if (load.V2) {
    const GrfV2Sprite& s = load.Index.Sprites[static_cast<size_t>(index)];
    alternative = s.Default;
    if (wish.Zoom < 0 && wish.Depth == 0) return true;
    alternative = ChooseAlternative(load.Index, s, wish.Zoom, wish.Depth);
    if (alternative >= 0) return true;
    present = AlternativeNames(load.Index, s);
  } else if ((wish.Zoom < 0 || wish.Zoom == kZoomNormal) && (wish.Depth == 0 || wish.Depth == 8)) {
    return true;
  }
  std::string wanted = wish.Depth != 0 ? std::to_string(wish.Depth) + "bpp" : "";
  if (wish.Zoom >= 0) {
    if (!wanted.empty()) wanted += ' ';
    wanted += ZoomName(static_cast<uint8_t>(wish.Zoom));
  }
  std::fprintf(stderr, "vossel-cli: sprite %d has no %s alternative; it has: %s\n",
               static_cast<int>(index + 1), wanted.c_str(),
               present.empty() ? "none" : present.c_str());
  return false;
}

bool LoadCliPalette(const std::string* named, PaletteBuffer& palette) {
  const std::string path = named ? *named : JoinPath(ProgramFolder(), kPaletteFileName);
  if (LoadPalette(path, palette) != 0) return true;
  std::fprintf(stderr, "%s\n", kMsgBadPalette);
  return false;
}
