// The mistakes a GRF file carries, as findings: a stable code, a severity, where, and the values
// concerned. Standard library only; the sentences are made in check_text.cpp.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "actions.h"
#include "grffile.h"
#include "items.h"

namespace vossel {

enum class Severity : uint8_t { Error, Warning, Note };

// The codes, grouped by hundreds: 1xx how the file is built, 2xx what refers to what, 3xx what
// the file says about itself, 4xx pictures. A code keeps its meaning once given.
enum class CheckCode : uint16_t {
  CutPseudo = 101,           // Values: bytes present, bytes needed
  SpriteCountDiffers = 102,  // Values: declared, sprites after sprite 0
  BlockShort = 103,          // Values: sprites claimed, sprites present
  PictureForRecolour = 104,
  NotAPicture = 105,        // Values[0]: 0 a pseudo-sprite, 1 non-image data
  NotASound = 106,          // Values[0]: 0 a picture, 1 data with no sound head
  FileCut = 107,            // Values: the byte where it ends, sprites lost (-1: not known)
  UnknownProperty = 108,    // Values: property
  ContainerProblem = 109,   // Problem: what the container's reader found
  PictureUnreadable = 110,  // Problem: why the shown picture cannot be decoded
  RecolourCount = 111,      // Values: sprites, offset (-1: none), maps there are
  UndefinedGroup = 201,     // Values: group ID
  UndefinedSet = 202,       // Values: set, 1 when no Action 01 of the feature came before
  SetOutsideFile = 203,     // Values: set
  GroupLoop = 204,          // Values: group ID
  GraphicsNoProperties = 205,
  PropertiesNoGraphics = 206,
  GroupUnreached = 207,    // Values: group ID
  SetUnreached = 208,      // Values: set
  RangeOverlaps = 209,     // Values: low, high, the earlier range's index (from 0)
  RangeUnreachable = 210,  // Values: low, high
  UnknownGroupType = 211,  // Values: type byte
  NoAction8 = 301,
  Action8Late = 302,      // Values: the first sprite that needs it (from 0)
  MinAboveVersion = 303,  // Values: version, minimum version
  BadUtf8 = 304,          // Values: text ID (-1: Action 08's name, -2 its description), byte, value
  Transparent = 401,      // Values: width, height
  No8Bit = 402,           // Values: sprites with 32-bit pictures alone
  ZoomGaps = 403,         // Values: zoom level missing, sprites lacking a level, sprites in all
  // Values: set, view k, then for views k and k + 4 the middle of the bottom edge: twice its x, y.
  ViewsAsymmetric = 404,
  BoxOutsideTile = 405,  // Values: first layout sprite, x, y, x and y extent, sprites out
};

struct Finding {
  CheckCode Code = CheckCode::CutPseudo;
  Severity Level = Severity::Error;
  int32_t Sprite = -1;  // from 0; -1 for the file as a whole
  uint8_t Action = 0;   // the action concerned, where one is
  bool HasItem = false;
  uint8_t Feature = 0;
  uint32_t Id = 0;
  int64_t Values[6] = {0, 0, 0, 0, 0, 0};
  GrfProblem Problem;  // 109 and 110
};

// Every finding, ordered by sprite (the file's own first). Linear in the file's sprites and
// pseudo-sprite bytes, plus one decode of each picture's shown alternative and one walk of each
// item's graphics.
std::vector<Finding> CheckGrf(const GrfFile& file, const FileReading& reading,
                              const GrfItems& items);

// --- Texts (check_text.cpp) ----------------------------------------------------------------------

// "V101".
std::string CodeText(CheckCode code);
// "error", "warning", "note".
std::string SeverityText(Severity level);
// The finding as a sentence, without its code or sprite.
std::string FindingText(const Finding& f);
// Reads "V101" (any case) or "101".
bool ParseCheckCode(const std::string& text, CheckCode& code);
// Every code, in order, with its severity, for tables.
struct CodeRow {
  CheckCode Code;
  Severity Level;
  const char* Title;
};
const std::vector<CodeRow>& CheckCodes();

}  // namespace vossel
