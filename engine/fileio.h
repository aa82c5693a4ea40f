// Reading a whole file in one request.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace vossel {

struct FileReadResult {
  bool Ok = false;
  int32_t ErrorNumber = 0;  // errno of the failing call
  std::string Description;  // its text
  std::vector<uint8_t> Bytes;
};

// Opens the file read-only, reads all of it and closes it. A file of no bytes, or one larger than
// a signed 32-bit length, is a failure: no buffer can be made for it.
FileReadResult ReadWholeFile(const std::string& path);

}  // namespace vossel
