// The chunk viewer's own reader of GRF files: one walk over the records into three parallel
// tables, and the chunk list of one sprite, line by line, read straight from the file's bytes.
// Standard library only; the window shows the results.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace vossel {

// The fields of frmChunk that the scanner writes and the list reads. The tables are parallel:
// index i is the sprite the viewer shows as number i + 1.
struct ChunkScan {
  std::vector<uint8_t> FileData;      // the whole file, byte for byte
  std::vector<int32_t> SpriteOffset;  // where in FileData the sprite's stored data begins
  std::vector<int32_t> SpriteSize;    // the count at which its chunk list stops; an action
                                      // sprite's data size
  std::vector<uint8_t> SpriteFlags;   // the flags byte, whole
  int32_t FileLength = 0;
  // Raised whenever FileData or the tables are replaced or erased, so that a list that lets events
  // run between its lines can see that what it was reading has gone.
  uint32_t Generation = 0;
};

// The four ways a scan ends.
enum class ScanEnd : uint8_t {
  Complete,       // a zero length word or the end of the file
  InvalidStream,  // a record that cannot be taken in; the sprites before it stay
  TooSmall,       // FileData holds the new file, the tables still those of the earlier one
  ReadFailure,    // nothing has changed
};

struct ScanOutcome {
  ScanEnd End = ScanEnd::Complete;
  // Sprites that can be chosen (Complete, InvalidStream): scrSprite's maximum is Count - 1. The
  // tables hold Count entries, or Count + 1 when a refused record got its entry.
  int16_t Count = 0;
  // InvalidStream: kMsgOutOfBuffer, for a box with the application's title and no icon.
  // TooSmall: kMsgTooSmall, for a box titled "Error" with an exclamation icon.
  // ReadFailure: the window's new title, "Error " + number + ": " + description + " (" + path +
  // ")". Complete: empty.
  std::string Message;
};

// Reads the whole file into scan.FileData and walks it (ScanBuffer). A file that cannot be opened
// or read, or has no bytes, leaves every field of `scan` as it was.
ScanOutcome ScanGRF(const std::string& fileName, ChunkScan& scan);

// Takes `bytes` as the new FileData, refuses fewer than 17 bytes, and walks the records into the
// tables: the first record cuts earlier tables to one entry and each further record adds one.
ScanOutcome ScanBuffer(std::vector<uint8_t> bytes, ChunkScan& scan);

// Erases FileData and the three tables, as the window does when it unloads.
void EraseChunkScan(ChunkScan& scan);

// Two upper-case hexadecimal digits: 10 gives "0A".
std::string ByteToHex(uint8_t value);

// One line of the chunk list and its item value: the position in FileData of the chunk's control
// byte, or of an action sprite's first data byte.
struct ChunkLine {
  int32_t ItemData = 0;
  std::string Text;
};

// Where the list of one sprite stands between two lines.
struct ChunkCursor {
  int32_t Sprite = -1;
  int64_t P = 0;            // position of the next control byte
  int32_t S = 0;            // the count at which the list stops
  int32_t C = 0;            // bytes decoded by the chunks listed so far
  int64_t End = INT64_MAX;  // the stream's bytes end before this position (and the buffer's end)
  bool Action = false;
  bool Done = true;  // no further line
  // The list stopped because its file could no longer be read as it was opened.
  bool Unreadable = false;
  uint32_t Generation = 0;
};

// Starts the list of the sprite at index v. A v outside the tables gives a finished cursor.
ChunkCursor StartChunkList(const ChunkScan& scan, int32_t v);

// Gives the next line and moves the cursor behind it; false when the list is over. A window lets
// pending events run before each call while !cursor.Done (for a non-action sprite: once before
// each chunk); if those events have replaced or erased `scan`, the call stops the list and reads
// nothing. Never reads outside FileData: a data chunk cut by the end of the buffer shows the bytes
// that are there and ends the list; an offset chunk without its second byte shows no line.
bool NextChunkLine(const ChunkScan& scan, ChunkCursor& cursor, ChunkLine& line);

// One chunk of the list as data: what the viewer's line says, in numbers.
enum class ChunkKind : uint8_t { Data, Offset, Action };
struct ChunkRecord {
  ChunkKind Kind = ChunkKind::Data;
  int64_t Position = 0;        // the control byte, or an action sprite's first data byte
  int32_t Length = 0;          // bytes it decodes to; an action sprite's data bytes
  int32_t Distance = 0;        // an offset chunk's distance back
  int32_t Decoded = 0;         // bytes the chunks before it decode to
  std::vector<uint8_t> Bytes;  // a data chunk's bytes, as far as the stream holds them
};

// The chunk at cursor.P as a record, moving the cursor behind it; false when the list is over.
// Reads nothing at or behind min(length, cursor.End).
bool NextChunk(const uint8_t* bytes, size_t length, ChunkCursor& cursor, ChunkRecord& chunk);

// The viewer's line for a chunk: "Data chunk of N bytes, 0A 0B", "Offset chunk, N bytes of data
// from position P", "Action sprite, N bytes".
std::string ChunkText(const ChunkRecord& chunk);

// The same on the scan's FileData, stopping where NextChunkLine stops.
bool NextChunk(const ChunkScan& scan, ChunkCursor& cursor, ChunkRecord& chunk);
// A chunk as the viewer lists it: its position as the item value, and its line.
ChunkLine LineOf(const ChunkRecord& chunk);

// The line rule itself, on any buffer: the line at cursor.P, reading nothing at or behind
// min(length, cursor.End). An action cursor gives its one line, "Action sprite, S bytes" at P.
bool NextChunkLineIn(const uint8_t* bytes, size_t length, ChunkCursor& cursor, ChunkLine& line);

// All lines of the sprite at index v at once.
std::vector<ChunkLine> ChunkList(const ChunkScan& scan, int32_t v);

}  // namespace vossel
