// Where a file's bytes are read from when it is not held whole: a buffer, or a file kept open.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "fileio.h"
#include "problems.h"

namespace vossel {

// Where a version-2 file's bytes are read: a buffer that holds all of it, or a file kept open and
// read at positions, so that a file of any size is indexed and shown without being held.
struct ByteSource {
  const uint8_t* Memory = nullptr;
  const OpenedFile* File = nullptr;
  int64_t Length = 0;
};
ByteSource MemorySource(const uint8_t* file, size_t length);
ByteSource FileSource(const OpenedFile& file);

// n bytes at `at` into `bytes` (replaced): Ok, FileChanged or ReadFailed.
GrfResult ReadSource(const ByteSource& source, int64_t at, int64_t n, std::vector<uint8_t>& bytes);
// The problem a refused read of n bytes at `at` stands for: FileChanged or ReadFailed.
GrfProblem ReadProblem(const ByteSource& source, int64_t at, const ReadOutcome& read);

}  // namespace vossel
