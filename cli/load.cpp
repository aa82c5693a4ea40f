#include <algorithm>
#include <cstdio>

#include "commands.h"
#include "fileio.h"
#include "palette.h"
#include "text.h"

namespace vossel {

void FileError(const std::string& fileName, const std::string& text) {
  std::fprintf(stderr, "vossel-cli: %s: %s\n", fileName.c_str(), text.c_str());
}

int LoadForCli(const std::string& fileName, GrfFile& file, FileReading* reading, bool sayProblems) {
  const MessageFn say = [&fileName](const std::string& text) { FileError(fileName, text); };
  const MessageFn loadSays = sayProblems ? say : [](const std::string&) {};
  const OpenOutcome outcome = LoadGrfFile(fileName, file, loadSays, loadSays);
  if (outcome.End == OpenEnd::ReadFailure) {
    // The read failure's text names the file already.
    std::fprintf(stderr, "vossel-cli: %s\n", outcome.Message.c_str());
    return kExitFailure;
  }
  if (outcome.End == OpenEnd::TooSmall) {
    say(outcome.Message);
    return kExitFailure;
  }
  if (reading != nullptr) ReadFileActions(file, *reading);
  return kExitOk;
}

int LoadStatus(const GrfFile& file) {
  return file.ProblemCount > 0 ? kExitFailure : kExitOk;
}

bool PickAlternative(const GrfFile& file, int32_t index, const AlternativeWish& wish,
                     int32_t& alternative) {
  alternative = DefaultAlternative(file, index);
  if (wish.Zoom < 0 && wish.Depth == 0) return true;
  // Without alternatives every sprite is 8bpp at normal zoom, a pseudo-sprite too.
  const bool single = !file.HasAlternatives && (wish.Zoom < 0 || wish.Zoom == kZoomNormal) &&
                      (wish.Depth == 0 || wish.Depth == 8);
  if (!single) alternative = FindAlternative(file, index, wish.Zoom, wish.Depth);
  if (single || alternative >= 0) return true;
  // A sprite of a file without alternatives is one 8-bit picture at normal zoom.
  const std::string present =
      file.HasAlternatives ? AlternativeList(file, index) : AlternativeText(AlternativeInfo{});
  // What was asked, in the words of AlternativeText: either part alone where only one was given.
  AlternativeInfo asked;
  asked.Zoom = static_cast<uint8_t>(std::max(wish.Zoom, 0));
  asked.Depth = static_cast<uint8_t>(wish.Depth);
  std::string wanted = AlternativeText(asked);
  if (wish.Depth == 0) wanted = wanted.substr(wanted.find(' ') + 1);
  if (wish.Zoom < 0) wanted = wanted.substr(0, wanted.find(' '));
  FileError(file.Path, "sprite " + std::to_string(index + 1) + " has no " + wanted +
                           " alternative; it has: " + (present.empty() ? "none" : present));
  return false;
}

}  // namespace vossel
