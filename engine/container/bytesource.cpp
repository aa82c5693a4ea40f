#include "bytesource.h"

#include <algorithm>
#include <limits>

#include "reader.h"

namespace vossel {

GrfProblem ReadProblem(const ByteSource& source, int64_t at, const ReadOutcome& read) {
  if (read.End == ReadEnd::Changed)
    return {GrfResult::FileChanged, source.Length, 0, 0, read.LengthNow};
  return {GrfResult::ReadFailed, at, 0, 0, read.ErrorNumber};
}

ByteSource MemorySource(const uint8_t* file, size_t length) {
  return {file, nullptr,
          static_cast<int64_t>(
              std::min<size_t>(length, static_cast<size_t>(std::numeric_limits<int64_t>::max())))};
}

ByteSource FileSource(const OpenedFile& file) {
  return {nullptr, &file, file.Length};
}

GrfResult ReadSource(const ByteSource& source, int64_t at, int64_t n, std::vector<uint8_t>& bytes) {
  bytes.clear();
  // Only a file that has changed can make an index point outside it.
  if (!Fits(at, n, source.Length)) return GrfResult::FileChanged;
  if (source.Memory != nullptr) {
    bytes.assign(source.Memory + at, source.Memory + at + n);
    return GrfResult::Ok;
  }
  bytes.resize(static_cast<size_t>(n));
  const ReadOutcome read = ReadAt(*source.File, at, bytes.data(), n);
  if (read.End == ReadEnd::Ok) return GrfResult::Ok;
  bytes.clear();
  return ReadProblem(source, at, read).Kind;
}

}  // namespace vossel
