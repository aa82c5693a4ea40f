// Pseudo-sprites ("actions") of a GRF file: what each one is, which real sprites belong to which
// action, and what the file says about itself. Standard library only: the sprites come in as byte
// views, records come out; every sentence about them is made in action_text.cpp.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "baseset.h"
#include "grffile.h"

namespace vossel {

// One sprite of the file as stored, numbered from 0 by its place in the list.
struct SpriteInput {
  SpriteKind Kind = SpriteKind::Picture;
  const uint8_t* Data = nullptr;
  size_t Size = 0;
};

// A GRF ID in file order.
struct GrfId {
  uint8_t Bytes[4] = {0, 0, 0, 0};
};

// A run of things an action hands out in order: Action 0A's sets (first base sprite, count),
// Action 12's blocks (first character, count, font).
struct ActionRange {
  uint32_t First = 0;
  uint32_t Count = 0;
  uint8_t Font = 0;
};

// What Action 14's INFO container says. Flags tell which chunks were present.
struct StaticInfo {
  bool HasName = false, HasDescription = false, HasVersion = false, HasMinVersion = false;
  bool HasPalette = false, HasDepth = false;
  // In all languages (7F), else English (01, then 00), else the first given; with that language.
  std::string Name, Description;
  uint8_t NameLanguage = 0, DescriptionLanguage = 0;
  uint32_t Version = 0, MinVersion = 0;
  char Palette = 0;  // 'D' DOS, 'W' Windows, 'A' either
  char Depth = 0;    // '8' 8-bit, '3' 32-bit
};

// A pseudo-sprite read as an action (or as the sprite count that opens a NewGRF). Which fields
// are filled depends on the action:
//   00 Feature, Count properties, Number IDs from First
//   01 Feature, Count sets of Number sprites (HasOffset: the newer form, from set First)
//   02 Feature, Id (the group's set ID), Type (group type byte)
//   03 Feature, Count IDs (Override: livery override; 0: generic callback), Number cargo entries
//   04 Feature, Language, Count texts from text ID First (WideId: a word), Text: the first text
//   05 Type (with bit 7), Count sprites, First offset (HasOffset)
//   06 Count changes
//   07/09 Id variable, Size of the value, Type condition, Value, Count sprites to skip
//   08 Version, Grf, Text name, Text2 description
//   0A Ranges: sets of base sprites
//   0B Type severity, Language, Id message, Text custom message (Id FF), Text2 data
//   0C Text: the comment
//   0D Id target, Type operation, Sources, Value data (HasOffset when present)
//   0E Count GRF IDs, Grfs
//   0F Id (bit 7: final definition)
//   10 Id label, Text comment
//   11 Count sounds
//   12 Count blocks, Ranges, Number glyphs in all
//   13 Grf
//   14 Info, Count chunks
//   sprite count: Value
struct ActionRecord {
  int32_t Sprite = 0;          // its number in the file
  bool IsSpriteCount = false;  // sprite 0 of 4 bytes: the file's sprite count
  uint8_t Action = 0;
  uint8_t Feature = 0;
  uint8_t Type = 0;
  uint8_t Language = 0;
  uint8_t Size = 0;
  uint8_t Version = 0;
  uint32_t Id = 0;
  uint32_t Count = 0;
  uint32_t Number = 0;
  uint32_t First = 0;
  uint32_t Value = 0;
  uint8_t Sources[2] = {0, 0};
  bool Override = false, WideId = false, HasOffset = false;
  bool ChangedAtLoad = false;  // an Action 06 sets some of its bytes when the game loads the file
  std::string Text, Text2;     // decoded (DecodeGrfText)
  GrfId Grf;
  std::vector<GrfId> Grfs;
  std::vector<ActionRange> Ranges;
  StaticInfo Info;
  // Fields read whole, the action byte the first: what the summary of a cut one can show.
  uint8_t Fields = 0;
  // Bytes present and bytes the header needs as far as it could be read; cut when Need > Have.
  uint64_t Have = 0, Need = 0;
};

// Trains, road vehicles, ships and aircraft: their IDs in Action 03 are extended bytes.
inline bool HasExtendedIds(uint8_t feature) {
  return feature <= 0x03;
}

inline bool IsCut(const ActionRecord& a) {
  return a.Need > a.Have;
}

// The sprites an Action 01, 05, 0A, 11 or 12 takes after it; 0 for other actions and for a cut
// one, but for the sets a cut 0A or 12 read whole.
uint64_t BlockSize(const ActionRecord& a);

enum class RoleKind : uint8_t {
  Action,        // a pseudo-sprite read as an action: Actions[ActionIndex]
  SpriteCount,   // the sprite count: Actions[ActionIndex]
  SetSprite,     // Action 01: sprite Index of set Set
  BaseGraphics,  // Action 05: sprite Index of its type
  Replacement,   // Action 0A: replaces base sprite Number
  Sound,         // Action 11: sound Index
  Glyph,         // Action 12: character Number of font Font
  Recolour,      // a recolour map outside any action
  BaseSprite,    // belongs to no action: base sprite Number
};

// How a sound sprite names its sound.
enum class SoundForm : uint8_t {
  None,    // no readable head
  Named,   // FF, then a name: SoundName
  Import,  // FE 00, a GRF ID and a sound number: SoundGrf, Number
};

// What one sprite is in the file.
struct SpriteRole {
  RoleKind Kind = RoleKind::BaseSprite;
  int32_t ActionIndex = -1;  // the entry in Actions of the action it is, or of its owner
  int32_t Owner = -1;        // the number of that pseudo-sprite
  uint8_t Action = 0;        // the owner's action byte
  uint8_t Feature = 0;       // Action 01: feature; Action 05: type without bit 7
  uint8_t Font = 0;
  bool Recolour = false;  // a recolour map (257 bytes, first 00)
  SoundForm Sound = SoundForm::None;
  uint32_t Set = 0, Index = 0;
  uint32_t Number = 0;  // base sprite, character, or imported sound number
  GrfId SoundGrf;
  std::string SoundName;
};

// What the file says about itself. The first Action 08 and the first Action 14 with INFO count.
struct GrfIdentity {
  bool HasAction8 = false;
  int32_t Action8Sprite = -1;
  GrfId Grf;
  uint8_t GrfVersion = 0;
  std::string Name, Description;
  bool HasInfo = false;
  int32_t InfoSprite = -1;
  StaticInfo Info;
};

struct GrfActions {
  std::vector<SpriteRole> Sprites;  // one per input sprite
  std::vector<ActionRecord> Actions;
  GrfIdentity Identity;
};

// Reads every pseudo-sprite and gives each sprite its role. The sprites after actions 01, 05, 0A,
// 11 and 12 are theirs, in order, whatever they are; a cut one hands out only the sets it read
// whole (0A, 12) or none. Sprite 0 of 4 bytes is the sprite count. Outside the blocks, a
// 257-byte pseudo-sprite starting 00 is a recolour map until an Action 08 has come (a base set),
// an Action 00 after. Actions 06, 07 and 09 change nothing here: the file is shown as stored.
// Linear in the number of sprites; never reads outside a view.
GrfActions ReadActions(const std::vector<SpriteInput>& sprites);

// --- Texts (action_text.cpp) ---------------------------------------------------------------------

// "GRF ID and name"; "unknown action" for bytes outside the table.
std::string ActionName(uint8_t action);
// "Trains", "Road vehicles", ...; "Original texts" for 48; "feature XX" for others.
std::string FeatureName(uint8_t feature);
// "signals", ...; "type XX" for others. Bit 7 is ignored.
std::string BaseGraphicsName(uint8_t type);
// "Action 01: trains, 4 sets of 8 sprites"; "Sprite count: 4416"; a cut one ends with
// " (cut: N of M bytes)".
std::string ActionSummary(const ActionRecord& a);
// "set 2, sprite 5 of Action 01 (trains)", "replaces base sprite 1240", "base sprite 775", ...
// An action's role is its summary; `actions` gives it.
std::string RoleText(const SpriteRole& role, const std::vector<ActionRecord>& actions);
// Game text to UTF-8: UTF-8 after a leading C3 9E, else Latin-1; control codes as {XX}.
std::string DecodeGrfText(const uint8_t* text, size_t size);
// "4E4D4C00 (NML\00)": hex in file order, and the text when the first three bytes are printable.
std::string GrfIdText(const uint8_t id[4]);
// "1 sprite", "3 sprites": a count and the word in the number it takes.
std::string CountText(uint64_t n, const char* one, const char* many);
// A value in upper-case hex of at least `digits` digits: "0F", "D000".
std::string HexDigits(uint32_t v, int digits);
// "DOS", "Windows", "either"; "'X'" for others.
std::string PaletteName(char palette);

// NFO form of a pseudo-sprite's bytes: upper-case hex pairs, runs of printable ASCII (other than
// " and \) as "quoted" text, separated by blanks.
std::string NfoBytes(const uint8_t* data, size_t size);
// "12 * 9 01 00 04 08": number, length, bytes.
std::string NfoPseudoLine(int32_t number, const uint8_t* data, size_t size);
// The comment line before a pseudo-sprite: "// " + its action name and summary, or its role.
std::string NfoComment(const SpriteRole& role, const std::vector<ActionRecord>& actions);

// One alternative of a real sprite as the NFO listing shows it.
struct NfoAlternative {
  bool IsData = false;  // non-image data of DataSize bytes
  uint8_t Depth = 8, Zoom = 0;
  uint16_t Width = 0, Height = 0;
  int16_t X = 0, Y = 0;
  int64_t DataSize = 0;
  std::string File;      // where an export wrote it, if it did
  bool Chunked = false;  // stored in the tile (run) form
  bool Mask = false;     // a 32-bit picture with a mask layer
  std::string MaskFile;  // where an export wrote its mask
};
// "15 8bpp normal 64x31 at -31,0; 32bpp in4 256x124 at -124,0 // set 2, sprite 5 of Action 01
// (trains)".
std::string NfoSpriteLine(int32_t number, const std::vector<NfoAlternative>& alternatives,
                          const SpriteRole& role, const std::vector<ActionRecord>& actions);

// --- On an opened file ---------------------------------------------------------------------------

// What a whole opened file says about itself: its pseudo-sprites read, with their bytes kept for
// the records' sake.
struct FileReading {
  std::vector<std::vector<uint8_t>> Bytes;  // per sprite; empty for pictures
  GrfActions Actions;
  // The base-set descriptor beside the file that names it, if any.
  std::optional<DescriptorMatch> Descriptor;
};
void ReadFileActions(const GrfFile& file, FileReading& reading);

// The palette the file is drawn in: its Action 14, else a descriptor beside it, else Windows.
PaletteDeclaration DeclaredPaletteOf(const FileReading& reading);

// A named sound sprite's parts: FF, the name's length, the name (with its zero, or followed by
// it), then the WAV file. False for bytes that do not start FF and a length.
struct SoundParts {
  const uint8_t* Name = nullptr;
  uint64_t NameSize = 0;  // the name's own zeros at its end left out
  const uint8_t* Wav = nullptr;
  uint64_t WavSize = 0;
};
bool SplitNamedSound(const uint8_t* data, uint64_t size, SoundParts& parts);

// A real sprite's alternatives as the NFO listing names them.
std::vector<NfoAlternative> NfoAlternativesOf(const GrfFile& file, int32_t sprite);
// The NFO text of one sprite: for a pseudo-sprite its comment line and its bytes' line, for a
// real sprite its one line. No line break at the end.
std::string NfoText(const GrfFile& file, const FileReading& reading, int32_t sprite,
                    const std::vector<NfoAlternative>& alternatives);

// The file's identity as "Key: value" pairs, in the order the CLI and the Details window show them.
using FactLines = std::vector<std::pair<std::string, std::string>>;
FactLines IdentityFacts(const GrfFile& file, const FileReading& reading);
// What one sprite is: a pseudo-sprite's action, summary and NFO line; a real sprite's role.
FactLines SpriteDetails(const GrfFile& file, const FileReading& reading, int32_t sprite);

}  // namespace vossel
