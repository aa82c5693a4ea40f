// Reading files: a whole file in one request, or a file kept open and read at positions.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace vossel {

struct FileReadResult {
  bool Ok = false;
  int32_t ErrorNumber = 0;  // errno of the failing call
  std::string Description;  // its text
  std::vector<uint8_t> Bytes;
};

// A file kept open, with its length and modification time when it was opened: a read that finds
// either changed tells that the file is no longer the one indexed.
struct OpenedFile {
  int Descriptor = -1;
  int64_t Length = 0;
  int64_t Modified = 0;  // nanoseconds
};
// Shared by every copy of what was read from the file; the last one to let go closes it.
using FileHandle = std::shared_ptr<const OpenedFile>;

struct FileOpenResult {
  bool Ok = false;
  int32_t ErrorNumber = 0;
  std::string Description;
  FileHandle File;
};

// Opens the file read-only. A directory, something other than a regular file, or a file of no
// bytes is a failure.
FileOpenResult OpenForReading(const std::string& path);

enum class ReadEnd : uint8_t {
  Ok,
  Changed,  // the file is shorter, longer or newer than when it was opened
  Failed,   // the system refused the read
};
struct ReadOutcome {
  ReadEnd End = ReadEnd::Ok;
  int32_t ErrorNumber = 0;  // Failed: errno
  int64_t LengthNow = 0;    // Changed: the file's length now
};

// Reads exactly n bytes at `at` into `to`. Safe to call from several threads on one file.
ReadOutcome ReadAt(const OpenedFile& file, int64_t at, uint8_t* to, int64_t n);
// The file's state now: Ok while it is as it was opened.
ReadOutcome CheckUnchanged(const OpenedFile& file);

// All of an opened file; one larger than a signed 32-bit length is a failure.
FileReadResult ReadAll(const OpenedFile& file);
// Opens the file, reads all of it and closes it.
FileReadResult ReadWholeFile(const std::string& path);

}  // namespace vossel
