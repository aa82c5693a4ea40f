#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include "commands.h"
#include "fileio.h"
#include "text.h"

int LoadForCli(const std::string& fileName, CliLoad& load) {
  const int32_t start = GetTickCount();
  FileReadResult file = ReadWholeFile(fileName);
  if (!file.Ok) {
    std::fprintf(stderr, "%s\n",
                 ReadFailureText(file.ErrorNumber, file.Description, fileName).c_str());
    return kExitFailure;
  }
  const int32_t readTicks = GetTickCount() - start;
  if (file.Bytes.size() < static_cast<size_t>(kMinFileSize)) {
    std::fprintf(stderr, "%s\n", kMsgTooSmall);
    return kExitFailure;
  }
  load.FileName = fileName;
  load.FileLength = static_cast<int32_t>(file.Bytes.size());
  // The window shows these as message boxes; here they go to standard error as they come.
  load.Outcome =
      LoadSprites(file.Bytes.data(), load.FileLength, load.Store,
                  [](const std::string& text) { std::fprintf(stderr, "%s\n", text.c_str()); });
  load.Outcome.PrepareTicks += readTicks;
  return kExitOk;
}

bool ParseSpriteNumber(const std::string& text, int32_t count, int32_t& index) {
  errno = 0;
  char* end = nullptr;
  const long value = std::strtol(text.c_str(), &end, 10);
  const bool number = !text.empty() && end != nullptr && *end == '\0' && errno == 0;
  if (!number || value < 1 || value > count) {
    if (count < 1)
      std::fprintf(stderr, "vossel-cli: sprite %s does not exist: the file holds no sprite\n",
                   text.c_str());
    else
      std::fprintf(stderr, "vossel-cli: sprite %s does not exist: give a number from 1 to %d\n",
                   text.c_str(), static_cast<int>(count));
    return false;
  }
  index = static_cast<int32_t>(value - 1);
  return true;
}
