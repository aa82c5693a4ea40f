// vossel-cli: a headless companion of the desktop program.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "actions.h"
#include "companymaps.h"
#include "grffile.h"
#include "look.h"
#include "palette.h"

class QImage;

namespace vossel {

// Exit statuses.
constexpr int kExitOk = 0;
constexpr int kExitFailure = 1;  // the file cannot be read or is too small, a bad argument value
constexpr int kExitUsage = 2;

// Reads and loads FILE as the window does. Its message boxes and problems go to standard error,
// each as "vossel-cli: FILE: ..."; a file that cannot be read or is too small gives kExitFailure
// after saying so. A load with problems still gives kExitOk: the command shows what was read and
// ends with LoadStatus.
// With `reading`, what the file says about itself is read too, once for the whole command.
// Without `sayProblems` the load's own messages are left out; the failures above are still said.
int LoadForCli(const std::string& fileName, GrfFile& file, FileReading* reading = nullptr,
               bool sayProblems = true);
// kExitFailure when the load reported a problem, else kExitOk.
int LoadStatus(const GrfFile& file);
// A failure about a file on standard error: "vossel-cli: FILE: text".
void FileError(const std::string& fileName, const std::string& text);

// A command's arguments: `count` positional ones first (FILE, N), then options, each with a value,
// parsed by QCommandLineParser.
struct CommandArgs {
  std::vector<std::string> Positional;
  std::map<std::string, std::string> Values;              // by option name, without dashes
  std::map<std::string, std::vector<std::string>> Lists;  // repeatable options, in order
  std::string Error;    // why the usage is wrong; empty when it is right
  bool TooFew = false;  // fewer than `count` arguments
};
// `flags` are options without a value; a flag that is set stands in Values with an empty value.
// `repeated` options may come more than once; their values stand in Lists.
CommandArgs ParseCommand(const std::vector<std::string>& args, size_t count,
                         const std::vector<std::string>& options,
                         const std::vector<std::string>& flags = {},
                         const std::vector<std::string>& repeated = {});

// The look of a command's pictures, for a loaded file: --palette (windows, dos, declared or a
// palette file; declared by default), --company and --base-set from `values`, and the wish's zoom
// level and depth. A palette that cannot be read is an error. kExitOk, or the status after saying
// why not.
struct AlternativeWish;
int ChooseLook(const GrfFile& file, const FileReading& reading,
               const std::map<std::string, std::string>& values, Look& look,
               const AlternativeWish* wish = nullptr);

// Usage of a command that takes FILE alone, and --json where `json` is given; false after saying
// what is wrong and printing the usage line.
bool OneFileArgument(const char* command, const std::vector<std::string>& args,
                     bool* json = nullptr);

// True for a text that reads as a whole number (a number out of range included).
bool IsSpriteNumberText(const std::string& text);

// Reads a sprite number counted from 1; prints a message naming the file and gives false when it
// is not a number within 1..count.
bool ParseSpriteNumber(const std::string& fileName, const std::string& text, int32_t count,
                       int32_t& index);

// The alternative asked for by --zoom and --depth.
struct AlternativeWish {
  int32_t Zoom = -1;  // -1: any
  int32_t Depth = 0;  // 0: any
};
// Reads the two options; false, with `why` set, on a value that is not one of theirs.
bool ParseWish(const CommandArgs& args, AlternativeWish& wish, std::string& why);
// The alternative of sprite `index` (from 0) that the wish picks, its default without one: gives
// false after printing the alternatives present when the sprite has none such.
bool PickAlternative(const GrfFile& file, int32_t index, const AlternativeWish& wish,
                     int32_t& alternative);

// Writes a picture as a PNG file with the sprite's offsets in its text chunks, whole or not at
// all. False with the system's reason in `error`.
bool WritePngFile(const std::string& path, const QImage& picture, int32_t x, int32_t y,
                  std::string& error);
// Writes the bytes as the file `path`, whole or not at all; false with the system's reason.
bool WriteFileWhole(const std::string& path, const std::vector<uint8_t>& bytes, std::string& error);

// An item's ID, decimal or 0x hex.
bool ParseId(const std::string& text, uint32_t& id);

int CmdList(const std::vector<std::string>& args);
int CmdInfo(const std::vector<std::string>& args);
int CmdSprite(const std::vector<std::string>& args);
int CmdChunks(const std::vector<std::string>& args);
int CmdExport(const std::vector<std::string>& args);
int CmdAbout(const std::vector<std::string>& args);
int CmdNfo(const std::vector<std::string>& args);
int CmdSheet(const std::vector<std::string>& args);
int CmdItems(const std::vector<std::string>& args);
int CmdItem(const std::vector<std::string>& args);
int CmdDiff(const std::vector<std::string>& args);
int CmdCheck(const std::vector<std::string>& args);
int CmdView(const std::vector<std::string>& args);

// The text chunks of an exported PNG that carry the sprite's offsets.
inline constexpr const char kXOffsetKey[] = "XOffset";
inline constexpr const char kYOffsetKey[] = "YOffset";

}  // namespace vossel
