// One opened GRF file, whatever its container. The windows and the CLI hold a GrfFile and ask it:
// how many sprites, each sprite's facts and alternatives, a picture, a chunk list, the problems
// found. Only the engine knows how the container stores them.
#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "alternatives.h"
#include "chunks.h"
#include "fileio.h"
#include "grf.h"
#include "grf2.h"
#include "picture.h"

namespace vossel {

enum class SpriteKind : uint8_t {
  Picture,  // a real sprite: pixels in one or more alternatives
  Pseudo,   // a pseudo-sprite: action data
  Data,     // non-image data in place of a picture, such as a sound
};

// One alternative of a sprite: a picture at a zoom level and colour depth, or non-image data.
struct AlternativeInfo {
  uint8_t Zoom = kZoomNormal;
  uint8_t Depth = 8;  // 8 or 32
  bool Mask = false;  // a 32-bit picture with a mask layer
  bool Data = false;
};

// What the list, the labels and the CLI show for a sprite through one of its alternatives. Data
// shows as an action sprite does: its bytes as Width and Size, Height 1, Flags 255.
struct SpriteFacts {
  SpriteKind Kind = SpriteKind::Picture;
  int64_t Width = 0;
  int64_t Height = 0;
  int64_t Size = 0;        // decoded bytes
  int64_t Compressed = 0;  // bytes in the file
  int32_t XOffset = 0;
  int32_t YOffset = 0;
  uint8_t Flags = 0;  // the flags byte, or the info byte
};

// A version-2 file: the index, and the file kept open; a sprite's bytes are read as they are asked.
struct GrfV2File {
  FileHandle Source;
  GrfV2Index Index;
};

// What the opened file holds: nothing, a version-1 sprite store, or a version-2 index.
using GrfContents = std::variant<std::monostate, SpriteStore, GrfV2File>;

struct GrfFile {
  std::string Path;
  uint8_t Container = 0;  // 1 or 2, to tell the user; 0 while nothing is open
  // Sprites come in zoom levels and colour depths, so lists and facts name the alternative.
  bool HasAlternatives = false;
  int64_t FileLength = 0;
  int32_t Sprites = 0;
  int64_t CompressedTotal = 0;
  int64_t DecodedTotal = 0;
  int32_t PrepareTicks = 0;  // reading, counting and reserving, in milliseconds
  int32_t DecodeTicks = 0;
  // Every problem found by the load or the scan, with where it lies.
  std::vector<GrfProblem> Problems;
  int64_t ProblemCount = 0;

  // The tables of the container; every procedure below asks them, never Container.
  GrfContents Contents;
  // Raised whenever the contents are closed or replaced, so that a chunk list that lets events run
  // between its chunks sees that what it was reading has gone.
  uint32_t Generation = 0;
};

// How reading a file for a load or a scan ends.
enum class OpenEnd : uint8_t { Ok, ReadFailure, TooSmall };
struct OpenOutcome {
  OpenEnd End = OpenEnd::Ok;
  std::string Message;  // the window's title after a read failure, or the too-small text
};

// One load, step by step, so that a window can show its captions and let events run between the
// steps. A version-1 file's bytes live here until FinishLoad; a version-2 file is only opened.
struct GrfLoad {
  std::string Path;
  std::vector<uint8_t> Bytes;
  FileHandle Source;
  bool Version2 = false;
  int16_t Counted = 0;
  DecodeTotals Totals;
};

// Reads the whole file of version 1; opens a file of version 2, of any size, and reads its first
// bytes only. Refuses fewer than 17 bytes.
OpenOutcome ReadForLoad(const std::string& path, GrfLoad& load);
// Counts the sprites. A version-2 file lets go of the file open before and is indexed now, each
// problem through `note`. A version-1 record that cannot
// be taken in raises `stop`.
void CountSprites(GrfLoad& load, GrfFile& file, const MessageFn& stop, const MessageFn& note);
// Makes the store anew; the file open before is let go here.
void ReserveSprites(GrfLoad& load, GrfFile& file);
// Decodes every sprite of a version-1 file; a version-2 file is decoded as its pictures are asked.
void DecodeSprites(GrfLoad& load, GrfFile& file, const MessageFn& stop);
// Drops what only the load needed.
void FinishLoad(GrfLoad& load, GrfFile& file);
// All steps at once, for callers without a window; the ticks are filled.
OpenOutcome LoadGrfFile(const std::string& path, GrfFile& file, const MessageFn& stop,
                        const MessageFn& note);

// Lets go of everything.
void CloseGrfFile(GrfFile& file);
// Whether an opened file is long enough to load and starts with the version-2 signature; only its
// first bytes are read.
bool IsVersion2File(const OpenedFile& file);

// Whether a window draws the file in the palette it declares unless the user chooses another;
// otherwise in the program's palette file, as the design has always drawn version-1 files.
bool DrawsDeclaredPalette(const GrfFile& file);

int32_t SpriteCount(const GrfFile& file);
// Whether a file is open (it may hold no sprite).
bool IsOpen(const GrfFile& file);

// The largest picture any sprite may need, and how many of a load's problems are told one by one.
constexpr int64_t kMaxPictureBytes = kV2MaxImageBytes;
constexpr int64_t kProblemMessages = kV2ProblemMessages;
int32_t AlternativeCount(const GrfFile& file, int32_t sprite);
AlternativeInfo AlternativeOf(const GrfFile& file, int32_t sprite, int32_t alternative);
// The alternative shown unless another is chosen: normal zoom, 32-bit before 8-bit, else the
// nearest zoom. -1 for a pseudo-sprite or a sprite without pictures.
int32_t DefaultAlternative(const GrfFile& file, int32_t sprite);
// The sprite's alternative at `zoom` (-1: any) and `depth` (0: any) by the same order; -1 when
// it has none such.
int32_t FindAlternative(const GrfFile& file, int32_t sprite, int32_t zoom, int32_t depth);
// The alternative a window shows for a chosen zoom (-1: none chosen) and depth: the chosen one
// where the sprite has it, else its default.
int32_t ChosenAlternative(const GrfFile& file, int32_t sprite, int32_t zoom, int32_t depth);
// "8bpp normal", "32bpp in4", "data"; and all of a sprite's, joined by ", ".
std::string AlternativeText(const AlternativeInfo& a);
std::string AlternativeList(const GrfFile& file, int32_t sprite);

SpriteFacts FactsOf(const GrfFile& file, int32_t sprite, int32_t alternative);

// The sprite's picture through one alternative (-1: none). Pseudo-sprites and data give their
// bytes as one row of palette indices, as the design draws action sprites. A version-2 file is
// read here, so a file changed since it was opened gives FileChanged. Safe to call from several
// threads at once.
GrfResult PictureOf(const GrfFile& file, int32_t sprite, int32_t alternative,
                    SpritePicture& picture);
// The bytes of a pseudo-sprite (alternative -1) or of a non-image alternative; NotData for a
// picture or a sprite that is not there, FileChanged or ReadFailed when the file is not as it
// was opened.
GrfResult SpriteBytes(const GrfFile& file, int32_t sprite, int32_t alternative,
                      std::vector<uint8_t>& bytes);

// Why a picture could not be made.
std::string PictureProblem(const GrfFile& file, int32_t sprite, int32_t alternative,
                           GrfResult result);
// Why the file can no longer be read as it was opened, for a list that stopped Unreadable.
std::string UnreadableText(const GrfFile& file);

// The chunk list of a sprite through one alternative, chunk by chunk, read from a version-2 file
// (a version-1 store keeps no streams: the chunk viewer lists those from its own scan). A cursor
// whose file has been replaced or closed lists nothing; one whose file has changed since it was
// opened stops with Unreadable.
ChunkCursor StartChunks(const GrfFile& file, int32_t sprite, int32_t alternative);
bool NextChunk(const GrfFile& file, ChunkCursor& cursor, ChunkRecord& chunk);
std::vector<ChunkRecord> ChunksOf(const GrfFile& file, int32_t sprite, int32_t alternative);

// The text of a problem as the message list shows it.
std::string ProblemText(const GrfProblem& problem);

}  // namespace vossel
