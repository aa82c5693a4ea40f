// vossel-cli: a headless companion of the desktop program.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "grf.h"

// Exit statuses.
constexpr int kExitOk = 0;
constexpr int kExitFailure = 1;  // the file cannot be read or is too small, a bad argument value
constexpr int kExitUsage = 2;

// A loaded file for the commands that show sprites.
struct CliLoad {
  std::string FileName;
  int32_t FileLength = 0;
  SpriteStore Store;
  LoadOutcome Outcome;
};

// Reads and loads FILE as the window does, with its message boxes on standard error. Gives
// kExitOk, or kExitFailure after printing the read failure or the too-small message.
int LoadForCli(const std::string& fileName, CliLoad& load);

// Reads a sprite number counted from 1; prints a message and gives false when it is not a number
// within 1..count.
bool ParseSpriteNumber(const std::string& text, int32_t count, int32_t& index);

int CmdList(const std::vector<std::string>& args);
int CmdInfo(const std::vector<std::string>& args);
int CmdSprite(const std::vector<std::string>& args);
int CmdChunks(const std::vector<std::string>& args);
int CmdExport(const std::vector<std::string>& args);

// The text chunks of an exported PNG that carry the sprite's offsets.
inline constexpr const char kXOffsetKey[] = "XOffset";
inline constexpr const char kYOffsetKey[] = "YOffset";
