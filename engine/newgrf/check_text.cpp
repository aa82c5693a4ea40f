// The sentences of the checker's findings, and its table of codes.
#include <cctype>
#include <cstdlib>

#include "alternatives.h"
#include "check.h"

namespace vossel {
namespace {

std::string N(int64_t v) {
  return std::to_string(v);
}

// A value kept doubled, as a person reads it: "-3", "-2.5".
std::string Half(int64_t twice) {
  return (twice < 0 && twice > -2 ? "-" : "") + N(twice / 2) + (twice % 2 ? ".5" : "");
}

std::string ActionWord(uint8_t action) {
  return "Action " + HexDigits(action, 2);
}

std::string ItemWord(const Finding& f) {
  return FeatureWord(f.Feature) + " item " + N(f.Id);
}

}  // namespace

const std::vector<CodeRow>& CheckCodes() {
  static const std::vector<CodeRow> rows = {
      {CheckCode::CutPseudo, Severity::Error, "pseudo-sprite cut short"},
      {CheckCode::SpriteCountDiffers, Severity::Warning, "sprite count disagrees with the file"},
      {CheckCode::BlockShort, Severity::Error, "block with fewer sprites than it claims"},
      {CheckCode::PictureForRecolour, Severity::Error, "picture where a recolour map belongs"},
      {CheckCode::NotAPicture, Severity::Error, "pseudo-sprite or data where a picture belongs"},
      {CheckCode::NotASound, Severity::Error, "sound block member that is not a sound"},
      {CheckCode::FileCut, Severity::Error, "file cut short"},
      {CheckCode::UnknownProperty, Severity::Warning, "property of unknown size"},
      {CheckCode::ContainerProblem, Severity::Error, "entry the container cannot take in whole"},
      {CheckCode::PictureUnreadable, Severity::Error, "picture that cannot be decoded"},
      {CheckCode::RecolourCount, Severity::Warning, "two-colour maps not 256"},
      {CheckCode::UndefinedGroup, Severity::Error, "reference to a group never defined"},
      {CheckCode::UndefinedSet, Severity::Error, "set beyond the last Action 01"},
      {CheckCode::SetOutsideFile, Severity::Error, "set runs past the end of the file"},
      {CheckCode::GroupLoop, Severity::Error, "group reached again below itself"},
      {CheckCode::GraphicsNoProperties, Severity::Warning, "item with graphics but no properties"},
      {CheckCode::PropertiesNoGraphics, Severity::Note, "item with properties but no graphics"},
      {CheckCode::GroupUnreached, Severity::Warning, "group never reached from an Action 03"},
      {CheckCode::SetUnreached, Severity::Warning, "set never reached from an Action 03"},
      {CheckCode::RangeOverlaps, Severity::Warning, "variational range overlaps an earlier one"},
      {CheckCode::RangeUnreachable, Severity::Warning, "variational range never reached"},
      {CheckCode::UnknownGroupType, Severity::Error, "group of unknown type"},
      {CheckCode::NoAction8, Severity::Warning, "no Action 08"},
      {CheckCode::Action8Late, Severity::Error, "Action 08 after what needs it"},
      {CheckCode::MinAboveVersion, Severity::Warning, "minimum version above the version"},
      {CheckCode::BadUtf8, Severity::Error, "text marked UTF-8 that is not"},
      {CheckCode::Transparent, Severity::Warning, "wholly transparent sprite"},
      {CheckCode::No8Bit, Severity::Warning, "32-bit pictures alone for the 8-bit blitter"},
      {CheckCode::ZoomGaps, Severity::Warning, "zoom levels missing in some of an item's sprites"},
      {CheckCode::ViewsAsymmetric, Severity::Note, "opposite vehicle views that do not line up"},
      {CheckCode::BoxOutsideTile, Severity::Warning, "bounding box reaching out of the tile"},
  };
  return rows;
}

std::string CodeText(CheckCode code) {
  return "V" + N(static_cast<int64_t>(code));
}

std::string SeverityText(Severity level) {
  switch (level) {
    case Severity::Error:
      return "error";
    case Severity::Warning:
      return "warning";
    case Severity::Note:
      return "note";
  }
  return "error";
}

bool ParseCheckCode(const std::string& text, CheckCode& code) {
  std::string digits = text;
  if (!digits.empty() && std::toupper(static_cast<unsigned char>(digits[0])) == 'V')
    digits.erase(0, 1);
  if (digits.empty() || digits.size() > 4) return false;
  for (char c : digits)
    if (!std::isdigit(static_cast<unsigned char>(c))) return false;
  const int value = std::atoi(digits.c_str());
  for (const CodeRow& row : CheckCodes())
    if (static_cast<int>(row.Code) == value) {
      code = row.Code;
      return true;
    }
  return false;
}

std::string FindingText(const Finding& f) {
  const int64_t a = f.Values[0], b = f.Values[1], c = f.Values[2], d = f.Values[3], e = f.Values[4],
                g = f.Values[5];
  switch (f.Code) {
    case CheckCode::CutPseudo:
      return ActionWord(f.Action) + " is cut short: " + CountText(a, "byte", "bytes") + " of " +
             N(b) + " needed";
    case CheckCode::SpriteCountDiffers:
      return "the sprite count says " + N(a) + " sprites follow, the file has " + N(b);
    case CheckCode::BlockShort:
      return ActionWord(f.Action) + " claims " + CountText(a, "sprite", "sprites") +
             ", the file gives " + N(b);
    case CheckCode::PictureForRecolour:
      return "a picture where " + ActionWord(f.Action) + " needs a recolour map";
    case CheckCode::NotAPicture:
      return std::string(a == 1   ? "a recolour map"
                         : a == 2 ? "non-image data"
                                  : "a pseudo-sprite") +
             " where " + ActionWord(f.Action) + " needs a picture";
    case CheckCode::NotASound:
      return a == 0 ? "a picture where Action 11 needs a sound"
                    : "data without a sound's head where Action 11 needs a sound";
    case CheckCode::FileCut:
      return "the file is cut short: it ends at byte " + N(a) +
             (b < 0 ? std::string(", and the sprites after it are lost")
                    : ", and " + CountText(b, "sprite is", "sprites are") + " lost");
    case CheckCode::UnknownProperty:
      return "property " + HexDigits(static_cast<uint32_t>(a), 2) + " of " +
             FeatureWord(f.Feature) + " has no known size; the rest of the Action 00 is not read";
    case CheckCode::ContainerProblem:
    case CheckCode::PictureUnreadable:
      return GrfV2Text(f.Problem);
    case CheckCode::UndefinedGroup:
      return "refers to group " + HexDigits(static_cast<uint32_t>(a), 2) +
             ", which no Action 02 before it defines";
    case CheckCode::UndefinedSet:
      return b ? "refers to set " + N(a) + " with no Action 01 of " + FeatureWord(f.Feature) +
                     " before it"
               : "refers to set " + N(a) + ", beyond the sets of the last Action 01";
    case CheckCode::SetOutsideFile:
      return "set " + N(a) + " runs past the end of the file";
    case CheckCode::GroupLoop:
      return "group " + HexDigits(static_cast<uint32_t>(a), 2) + " is reached again below itself";
    case CheckCode::GraphicsNoProperties:
      return ItemWord(f) + " has graphics but no properties, so the game never defines it";
    case CheckCode::PropertiesNoGraphics:
      return ItemWord(f) + " has properties but no graphics, so the game never draws it";
    case CheckCode::GroupUnreached:
      return "group " + HexDigits(static_cast<uint32_t>(a), 2) + " of " + FeatureWord(f.Feature) +
             " is never reached from any Action 03";
    case CheckCode::SetUnreached:
      return "set " + N(a) + " of " + FeatureWord(f.Feature) +
             " is never reached from any Action 03";
    case CheckCode::RangeOverlaps:
      return "range " + HexDigits(static_cast<uint32_t>(a), 1) + ".." +
             HexDigits(static_cast<uint32_t>(b), 1) + " overlaps range " + N(c + 1) +
             " before it, which wins where they meet";
    case CheckCode::RangeUnreachable:
      return "range " + HexDigits(static_cast<uint32_t>(a), 1) + ".." +
             HexDigits(static_cast<uint32_t>(b), 1) +
             (a > b ? " is empty" : " is covered by the ranges before it") + " and never taken";
    case CheckCode::UnknownGroupType:
      return "Action 02 of unknown type " + HexDigits(static_cast<uint32_t>(a), 2);
    case CheckCode::NoAction8:
      return "the file defines graphics or items but has no Action 08 to name it";
    case CheckCode::Action8Late:
      return "Action 08 comes after sprite " + N(a + 1) + ", which needs it first";
    case CheckCode::MinAboveVersion:
      return "Action 14 gives version " + N(a) + " but minimum compatible version " + N(b) +
             ", above it";
    case CheckCode::Transparent:
      return "the " + N(a) + "x" + N(b) + " picture is wholly transparent";
    case CheckCode::RecolourCount:
      return "Action 05 type 0A brings " + CountText(a, "two-colour map", "two-colour maps") +
             (b >= 0 ? " from map " + N(b) + ", past the " + N(c) + " there are"
                     : ", not the " + N(c) + " there are");
    case CheckCode::BadUtf8:
      return (a == -1   ? std::string("the name")
              : a == -2 ? std::string("the description")
                        : "text ID " + HexDigits(static_cast<uint32_t>(a), 2)) +
             " is marked UTF-8 but is not: byte " + N(b) + " (" +
             HexDigits(static_cast<uint32_t>(c), 2) + ") starts no valid character";
    case CheckCode::No8Bit:
      return "Action 14 asks for the 8-bit blitter, but " +
             CountText(a, "sprite has", "sprites have") + " 32-bit pictures alone, from this one";
    case CheckCode::ZoomGaps:
      return ItemWord(f) + ": " + CountText(b, "picture lacks", "pictures lack") +
             " zoom levels others have (from this one, " + ZoomName(static_cast<uint8_t>(a)) +
             "); its graphics reach " + CountText(c, "picture", "pictures");
    case CheckCode::ViewsAsymmetric:
      return "views " + N(b) + " and " + N(b + 4) + " of set " + N(a) + " of " +
             FeatureWord(f.Feature) +
             " face opposite ways (view order inferred), but the middles "
             "of their bottom edges stand at " +
             Half(c) + "," + N(d) + " and " + Half(e) + "," + N(g) + " from the origin";
    case CheckCode::BoxOutsideTile:
      return "layout sprite " + N(a) + " of " + FeatureWord(f.Feature) + " has its box at " + N(b) +
             "," + N(c) + " with extents " + N(d) + "x" + N(e) + ", reaching out of the 16x16 tile";
  }
  return "";
}

}  // namespace vossel
