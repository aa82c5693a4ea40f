#include <cstdio>
#include <string>

#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QJsonObject>

#include "commands.h"
#include "nfo_encoder.h"
#include "output.h"
#include "palette.h"
#include "pngwrite.h"
#include "renderer.h"
#include "text.h"

namespace vossel {

namespace {

const char kSpriteUsage[] =
    "Usage: vossel-cli sprite FILE N [--png OUT|- [--force]] [--palette windows|dos|declared|PAL] "
    "[--company COLOUR] [--company2 COLOUR] [--base-set FILE] "
    "[--zoom normal|in4|in2|out2|out4|out8] [--depth 8|32] [--json]\n";

int UsageError(const std::string& why) {
  std::fprintf(stderr, "vossel-cli: %s\n%s", why.c_str(), kSpriteUsage);
  return kExitUsage;
}

// What the command tells of the sprite; the picture is written apart.
struct SpriteTelling {
  bool Text = true;   // the facts as lines
  bool Json = false;  // the facts as one JSON document
};

void PrintFacts(int32_t index, const SpriteFacts& f) {
  std::printf("%s\n", ViewingCaption(index, f.Width, f.Height).c_str());
  std::printf("Number: %s\n", SpriteNumberText(index).c_str());
  std::printf("Flags: %s\n", FlagsText(f.Flags).c_str());
  std::printf("Size: %s\n", std::to_string(f.Size).c_str());
  std::printf("Compressed: %s\n", std::to_string(f.Compressed).c_str());
  std::printf("Offset: %s\n", OffsetText(f.XOffset, f.YOffset).c_str());
}

QString Text(const std::string& text) {
  return QString::fromStdString(text);
}

// The same facts as the lines, numbers as numbers.
QJsonObject FactsJson(const GrfFile& file, int32_t index, int32_t alternative,
                      const FileReading& reading, const Look& look) {
  const SpriteFacts f = FactsOf(file, index, alternative);
  QJsonObject object = SpriteKeys(index);
  object.insert("file", Text(file.Path));
  object.insert("kind", f.Kind == SpriteKind::Pseudo ? "pseudo"
                        : f.Kind == SpriteKind::Data ? "data"
                                                     : "picture");
  object.insert("width", static_cast<qint64>(f.Width));
  object.insert("height", static_cast<qint64>(f.Height));
  object.insert("flags", f.Flags);
  object.insert("size", static_cast<qint64>(f.Size));
  object.insert("compressed", static_cast<qint64>(f.Compressed));
  object.insert("xOffset", f.XOffset);
  object.insert("yOffset", f.YOffset);
  const AlternativeInfo a = AlternativeOf(file, index, alternative);
  if (alternative >= 0 && !a.Data && file.HasAlternatives) {
    object.insert("zoom", Text(ZoomName(a.Zoom)));
    object.insert("depth", a.Depth);
  }
  if (f.Kind != SpriteKind::Pseudo) object.insert("palette", Text(look.PaletteText));
  const SpriteRole& role = reading.Actions.Sprites[static_cast<size_t>(index)];
  const std::vector<ActionRecord>& actions = reading.Actions.Actions;
  const bool own = role.Kind == RoleKind::Action || role.Kind == RoleKind::SpriteCount;
  if (own && role.ActionIndex >= 0 && static_cast<size_t>(role.ActionIndex) < actions.size()) {
    const ActionRecord& action = actions[static_cast<size_t>(role.ActionIndex)];
    if (!action.IsSpriteCount) {
      object.insert("action", action.Action);
      object.insert("actionName", Text(ActionName(action.Action)));
    }
    object.insert("summary", Text(ActionSummary(action)));
  } else {
    object.insert("role", Text(RoleText(role, actions)));
  }
  const std::vector<uint8_t>& bytes = reading.Bytes[static_cast<size_t>(index)];
  if (f.Kind == SpriteKind::Pseudo)
    object.insert("nfoLine", Text(NfoPseudoLine(index, bytes.data(), bytes.size())));
  return object;
}

// The picture as a PNG file, or on standard output for "-".
int WritePicture(const std::string& fileName, const std::string& png, bool force,
                 const QImage& bitmap, const SpritePicture& picture) {
  std::string error;
  if (png == "-") {
    std::vector<uint8_t> bytes;
    if (!EncodePng(bitmap,
                   {{kXOffsetKey, std::to_string(picture.XOffset)},
                    {kYOffsetKey, std::to_string(picture.YOffset)}},
                   bytes)) {
      FileError(fileName, "the PNG encoder failed");
      return kExitFailure;
    }
    std::fwrite(bytes.data(), 1, bytes.size(), stdout);
    return FinishOutput();
  }
  if (!force && QFileInfo::exists(QFile::decodeName(png.c_str()))) {
    std::fprintf(stderr, "vossel-cli: %s is there already; give --force to overwrite\n",
                 png.c_str());
    return kExitFailure;
  }
  if (!WritePngFile(png, bitmap, picture.XOffset, picture.YOffset, error)) {
    std::fprintf(stderr, "vossel-cli: cannot write '%s': %s\n", png.c_str(), error.c_str());
    return kExitFailure;
  }
  return kExitOk;
}

// The chosen alternative's facts (with its zoom and depth where sprites have several) and its
// picture: an image decoded now, data as a strip of palette indices as an action sprite is shown.
int ShowSprite(const GrfFile& file, const std::string& fileName, int32_t index, int32_t alternative,
               const std::string* png, bool force, SpriteTelling telling,
               const FileReading& reading, const Look& look) {
  const SpriteFacts f = FactsOf(file, index, alternative);
  const AlternativeInfo a = AlternativeOf(file, index, alternative);
  // A pseudo-sprite is told by what it says, not drawn.
  const bool pseudo = f.Kind == SpriteKind::Pseudo;
  if (telling.Json) {
    if (const int status = PrintJson(FactsJson(file, index, alternative, reading, look));
        status != kExitOk)
      return status;
  } else if (telling.Text) {
    PrintFacts(index, f);
    if (alternative >= 0 && !a.Data && file.HasAlternatives) {
      std::printf("Zoom: %s\n", ZoomName(a.Zoom).c_str());
      std::printf("Depth: %dbpp\n", static_cast<int>(a.Depth));
    }
    if (!pseudo) std::printf("Palette: %s\n", look.PaletteText.c_str());
    // What the sprite is: a pseudo-sprite's action, summary and NFO line, a picture's role.
    for (const auto& [key, value] : SpriteDetails(file, reading, index))
      std::printf("%s: %s\n", key.c_str(), value.c_str());
    if (const int status = FinishOutput(); status != kExitOk) return status;
  }
  if (pseudo && png != nullptr) {
    FileError(fileName,
              "sprite " + std::to_string(index + 1) + " is a pseudo-sprite; it has no pixels");
    return kExitFailure;
  }
  SpritePicture picture;
  const GrfResult result = PictureOf(file, index, alternative, picture);
  if (result != GrfResult::Ok) {
    FileError(fileName, PictureProblem(file, index, alternative, result));
    return kExitFailure;
  }
  if (png == nullptr) return LoadStatus(file);
  const QImage bitmap = LookPixels(look, picture);
  if (bitmap.isNull()) {
    FileError(fileName, "sprite " + std::to_string(index + 1) + " has no pixels (" +
                            std::to_string(f.Width) + " x " + std::to_string(f.Height) +
                            "); no PNG written");
    return kExitFailure;
  }
  if (const int status = WritePicture(fileName, *png, force, bitmap, picture); status != kExitOk)
    return status;
  return LoadStatus(file);
}

}  // namespace

int CmdSprite(const std::vector<std::string>& args) {
  const CommandArgs parsed =
      ParseCommand(args, 2, {"png", "palette", "zoom", "depth", "company", "company2", "base-set"},
                   {"force", "json"});
  if (parsed.TooFew) return UsageError("sprite needs FILE and N");
  if (!parsed.Error.empty()) return UsageError(parsed.Error);
  if (!IsSpriteNumberText(args[1])) return UsageError("'" + args[1] + "' is not a sprite number");
  AlternativeWish wish;
  std::string why;
  if (!ParseWish(parsed, wish, why)) return UsageError(why);
  const auto png = parsed.Values.find("png");
  const bool wantPng = png != parsed.Values.end();
  SpriteTelling telling;
  telling.Json = parsed.Values.count("json") > 0;
  // A picture on standard output leaves no room there for the facts.
  telling.Text = !wantPng || png->second != "-";
  if (telling.Json && !telling.Text)
    return UsageError("--json and --png - would both write to standard output");

  GrfFile file;
  FileReading reading;
  if (LoadForCli(args[0], file, &reading) != kExitOk) return kExitFailure;
  int32_t index = 0, alternative = -1;
  if (!ParseSpriteNumber(args[0], args[1], SpriteCount(file), index)) return kExitFailure;
  if (!PickAlternative(file, index, wish, alternative)) return kExitFailure;
  // The palette is read whatever is asked, so that a wrong one is told at once.
  Look look;
  if (const int status = ChooseLook(file, reading, parsed.Values, look, &wish); status != kExitOk)
    return status;
  return ShowSprite(file, args[0], index, alternative, wantPng ? &png->second : nullptr,
                    parsed.Values.count("force") > 0, telling, reading, look);
}

}  // namespace vossel
