// What the windows ask of the process: the pump and the current directory.
#pragma once

#include <string>

namespace vossel {

// Lets the window events that are waiting run to their end, then returns.
void DoEvents();

// Makes `folder` the current directory. False, with the current directory as it was, when the
// folder cannot be entered (the empty text included).
bool ChDir(const std::string& folder);
// The current directory, empty when it cannot be had.
std::string CurDir();

}  // namespace vossel
