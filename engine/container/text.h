// Texts of the loader and the browser, shared by the window and the command line.
#pragma once

#include <cstdint>
#include <string>

#include "grf.h"

namespace vossel {

inline constexpr const char kMsgOutOfBuffer[] = "Error! Out of buffer size!";
inline constexpr const char kMsgTooSmall[] =
    "File is too small to be loaded. File must contain atleast one non-action sprite size of 1 "
    "pixel.";
inline constexpr const char kAppTitle[] = "Vossel";

// A byte count in the largest unit that fits: "921 bytes", "0.90kB", "1.00 MB".
std::string FormatSize(int64_t bytes);
// Binary digits of value, highest first, zero-filled on the left to `digits` (0: no filling).
std::string ByteToBinary(int32_t value, uint8_t digits);

// Number masks: "#0.00" and zero-filled whole numbers such as "0000" (never cut).
std::string FormatFixed2(double value);
std::string FormatZeroFilled(int64_t value, int digits);
// Seconds of a tick difference with the mask "#0.00".
std::string SecondsText(int32_t ticks);

// The four lines of lblStatus, joined by CR LF.
std::string StatusText(const std::string& fileName, int64_t compressedTotal, int64_t decodedTotal,
                       int64_t fileLength);

// The lines a load adds to the message list.
std::string PreparedMessage(int32_t ticks);
std::string LoadedMessage(int32_t count, int32_t ticks);
std::string FileLoadedMessage(const std::string& fileName);
// The line a followed file that has disappeared adds to the message list.
std::string FileGoneMessage(const std::string& fileName);
// The title after a failed read: "Error " + number + ": " + description + " (" + path + ")".
std::string ReadFailureText(int32_t number, const std::string& description,
                            const std::string& path);

// Texts and key of one row of the sprite list, for the sprite at `index` (from 0).
struct SpriteRowTexts {
  std::string Key;  // "k" + index
  std::string Number, Width, Height, Size, Flags;
};
SpriteRowTexts SpriteRow(int32_t index, const SpriteRecord& r);
// The same for any sprite's values, such as a version-2 sprite's.
SpriteRowTexts SpriteRow(int32_t index, int64_t width, int64_t height, int64_t size, uint8_t flags);

// What the main window shows for the sprite at `index` (from 0).
std::string ViewingCaption(int32_t index, const SpriteRecord& r);
std::string FlagsText(const SpriteRecord& r);
std::string OffsetText(const SpriteRecord& r);
std::string ViewingCaption(int32_t index, int64_t width, int64_t height);
std::string FlagsText(uint8_t flags);
std::string OffsetText(int32_t x, int32_t y);

}  // namespace vossel
