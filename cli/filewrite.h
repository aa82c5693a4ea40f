// Files written into one folder so that each is whole under its final name or absent, whatever
// happens (a full disk, a kill, a power cut). Each is written under a hidden temporary name; at the
// end one sync makes all of them durable before any is renamed into place, so that no name ever
// points at data the disk has not got. One sync for all files instead of one per file.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

namespace vossel {

// A failed call: the path it was about and the system's errno.
struct WriteFailure {
  std::string Path;
  int32_t ErrorNumber = 0;
};

// A file written under its temporary name, waiting for its own.
struct PendingFile {
  std::string Temporary;
  std::string Name;
};

// A file put in place; the file it replaced is kept under Backup until the run has succeeded.
struct PlacedFile {
  std::string Name;
  std::string Backup;  // empty when nothing was replaced
};

// A folder being written into by one run. WriteWhole may be called from several threads at once.
struct WriteFolder {
  std::string Path;
  int32_t Descriptor = -1;
  std::mutex Lock;  // guards the lists
  std::vector<PendingFile> Pending;
  std::vector<PlacedFile> Placed;  // files this run renamed into place
};

// Opens the folder, which must exist, and removes the temporary files that runs killed before
// they could finish left in it.
bool OpenWriteFolder(const std::string& path, WriteFolder& folder, WriteFailure& failure);

// Writes `size` bytes as the file `name` of the folder, under a temporary name until
// PlaceWritten. No sync. On failure nothing of it is left.
bool WriteWhole(WriteFolder& folder, const std::string& name, const void* bytes, size_t size,
                WriteFailure& failure);

// Syncs the folder's file system once, then renames every written file into place, then syncs the
// folder. A file that is there is replaced, and kept under a temporary name until every file is in
// place. Call it once no WriteWhole is under way. On failure some files may be in place already;
// UndoWritten puts back what was there.
bool PlaceWritten(WriteFolder& folder, WriteFailure& failure);

// Undoes what this run began: the files still under temporary names go, those put in place go,
// and the files they replaced come back, whole. Call it once no WriteWhole is under way.
void UndoWritten(WriteFolder& folder);

void CloseWriteFolder(WriteFolder& folder);

// "cannot write 'PATH': the system's reason".
std::string WriteFailureText(const WriteFailure& failure);

}  // namespace vossel
