#include "problems.h"

#include <cstring>

#include "text.h"

namespace vossel {

std::string GrfV2Text(const GrfProblem& p) {
  const std::string at = " at byte " + std::to_string(p.Position);
  const std::string sprite = "Sprite " + std::to_string(p.Sprite);
  const std::string entry = "The entry of id " + std::to_string(p.Id) + at;
  const std::string stream = "The image stream of id " + std::to_string(p.Id) + at;
  const std::string value = std::to_string(p.Value);
  switch (p.Kind) {
    case GrfResult::Ok:
      return "";
    case GrfResult::NotVersion2:
      return "Not a GRF file of container version 2";
    case GrfResult::HeaderCut:
      return "The file's header is cut short: " + value + " bytes of 15";
    case GrfResult::UnknownCompression:
      return "The file's sections use the unknown compression " + value + "; nothing can be read";
    case GrfResult::SpriteSectionOutside:
      return "The sprite section would start at byte " + value + ", outside the file";
    case GrfResult::DataSectionCut:
      return sprite + at + " runs past the end of the data section; no sprite follows";
    case GrfResult::SpriteSectionCut:
      return entry + " runs past the end of the file; the sprite section ends there";
    case GrfResult::UnknownDataInfo:
      return sprite + at + " has the unknown info byte " + value + "; it is kept as data";
    case GrfResult::BadReference:
      return sprite + at + " is a reference of " + value + " bytes instead of 4";
    case GrfResult::MissingId:
      return sprite + " refers to id " + std::to_string(p.Id) + ", which the file lacks";
    case GrfResult::EmptyEntry:
      return entry + " is empty";
    case GrfResult::ImageHeaderCut:
      return entry + " is too short for an image header: " + value + " bytes";
    case GrfResult::UnknownZoom:
      return entry + " has the unknown zoom level " + value;
    case GrfResult::NoColour:
      return entry + " has no colour layer (info " + value + ")";
    case GrfResult::NotAnImage:
      return entry + " holds no image";
    case GrfResult::NotData:
      return sprite + " holds no data bytes";
    case GrfResult::TooLarge:
      return stream + " would need more than 64 MiB";
    case GrfResult::StreamOverrun:
      return stream + " decompresses past its size";
    case GrfResult::StreamShort:
      return stream + " ends before its decompressed size";
    case GrfResult::TileOutside:
      return stream + " has a row or a run outside its bounds";
    case GrfResult::FileChanged:
      return "The file has changed since it was opened: " +
             (p.Value != p.Position
                  ? "it holds " + value + " bytes now, " + std::to_string(p.Position) + " then"
                  : std::string("it has been rewritten")) +
             "; open it again to see it as it is";
    case GrfResult::ReadFailed:
      return "The file could not be read" + (p.Position >= 0 ? at : std::string()) +
             (p.Value > 0 ? ": " + std::string(std::strerror(static_cast<int>(p.Value))) : "");
    case GrfResult::OutOfBuffer:
      return kMsgOutOfBuffer;
  }
  return "";
}

std::string MoreProblemsText(int64_t count) {
  return "And " + std::to_string(count) + " more problems in this file";
}

}  // namespace vossel
