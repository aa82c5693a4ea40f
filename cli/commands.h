// vossel-cli: a headless companion of the desktop program.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "grf.h"
#include "grf2.h"
#include "palette.h"

// Exit statuses.
constexpr int kExitOk = 0;
constexpr int kExitFailure = 1;  // the file cannot be read or is too small, a bad argument value
constexpr int kExitUsage = 2;

// A loaded file for the commands that show sprites: a version-1 file decoded into the store as
// the window does, or a version-2 file kept with its index.
struct CliLoad {
  std::string FileName;
  int32_t FileLength = 0;
  SpriteStore Store;
  LoadOutcome Outcome;
  bool V2 = false;
  std::vector<uint8_t> Bytes;  // version 2: the whole file
  GrfV2Index Index;
};

// Reads and loads FILE as the window does, with its message boxes (and the problems of a
// version-2 file) on standard error. Gives kExitOk, or kExitFailure after printing the read
// failure or the too-small message.
int LoadForCli(const std::string& fileName, CliLoad& load);

// Sprites the loaded file shows.
int32_t SpriteCount(const CliLoad& load);

// A command's arguments: `count` positional ones first (FILE, N), then options, each with a value,
// parsed by QCommandLineParser.
struct CommandArgs {
  std::vector<std::string> Positional;
  std::map<std::string, std::string> Values;  // by option name, without dashes
  std::string Error;                          // why the usage is wrong; empty when it is right
  bool TooFew = false;                        // fewer than `count` arguments
};
CommandArgs ParseCommand(const std::vector<std::string>& args, size_t count,
                         const std::vector<std::string>& options);

// The palette named by --palette, or without one (nullptr) the one beside the program, as the
// window reads it at its start; prints the refusal and gives false when it cannot be read.
bool LoadCliPalette(const std::string* named, PaletteBuffer& palette);

// True for a text that reads as a whole number (a number out of range included).
bool IsSpriteNumberText(const std::string& text);

// Reads a sprite number counted from 1; prints a message and gives false when it is not a number
// within 1..count.
bool ParseSpriteNumber(const std::string& text, int32_t count, int32_t& index);

// The alternative asked for by --zoom and --depth.
struct AlternativeWish {
  int32_t Zoom = -1;  // -1: any
  int32_t Depth = 0;  // 0: any
};
// Reads the two options; false, with `why` set, on a value that is not one of theirs.
bool ParseWish(const CommandArgs& args, AlternativeWish& wish, std::string& why);
// The alternative of sprite `index` (from 0) that the wish picks, its default without one: gives
// false after printing the alternatives present when the sprite has none such. A version-1
// sprite has one alternative, 8bpp normal, and `alternative` stays -1.
bool PickAlternative(const CliLoad& load, int32_t index, const AlternativeWish& wish,
                     int32_t& alternative);

int CmdList(const std::vector<std::string>& args);
int CmdInfo(const std::vector<std::string>& args);
int CmdSprite(const std::vector<std::string>& args);
int CmdChunks(const std::vector<std::string>& args);
int CmdExport(const std::vector<std::string>& args);

// The text chunks of an exported PNG that carry the sprite's offsets.
inline constexpr const char kXOffsetKey[] = "XOffset";
inline constexpr const char kYOffsetKey[] = "YOffset";
