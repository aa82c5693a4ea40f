#include "text.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>

namespace vossel {

std::string FormatFixed2(double value) {
  if (!std::isfinite(value)) value = 0.0;
  // Halves round away from zero; a value that rounds to zero shows no sign.
  const long long hundredths = std::llround(value * 100.0);
  const unsigned long long magnitude = hundredths < 0
                                           ? 0ULL - static_cast<unsigned long long>(hundredths)
                                           : static_cast<unsigned long long>(hundredths);
  std::string text = hundredths < 0 ? "-" : "";
  text += std::to_string(magnitude / 100);
  const unsigned fraction = static_cast<unsigned>(magnitude % 100);
  text += '.';
  text += static_cast<char>('0' + fraction / 10);
  text += static_cast<char>('0' + fraction % 10);
  return text;
}

std::string FormatZeroFilled(int64_t value, int digits) {
  // The magnitude of the lowest value does not fit 64 bits; no count reaches it.
  const int64_t wide = std::max<int64_t>(value, -INT64_MAX);
  const std::string digitsText = std::to_string(wide < 0 ? -wide : wide);
  std::string text = wide < 0 ? "-" : "";
  if (static_cast<int>(digitsText.size()) < digits)
    text.append(static_cast<size_t>(digits) - digitsText.size(), '0');
  return text + digitsText;
}

std::string SecondsText(int32_t ticks) {
  return FormatFixed2(ticks / 1000.0);
}

std::string FormatSize(int64_t bytes) {
  // Both held in single precision and compared with 0.9 in single precision: that decides the
  // unit at 922 bytes and at 943,719 bytes.
  const float kilobytes = static_cast<float>(bytes / 1024.0);
  const float megabytes = static_cast<float>(bytes / 1024.0 / 1024.0);
  if (megabytes > 0.9f) return FormatFixed2(megabytes) + " MB";
  if (kilobytes > 0.9f) return FormatFixed2(kilobytes) + "kB";
  return std::to_string(bytes) + " bytes";
}

std::string ByteToBinary(int32_t value, uint8_t digits) {
  std::string text;
  int64_t mask = 1;
  do {
    text.insert(text.begin(), (value & mask) > 0 ? '1' : '0');
    mask *= 2;
  } while (mask <= value);
  if (digits > 0 && text.size() < digits) text.insert(0, digits - text.size(), '0');
  return text;
}

std::string StatusText(const std::string& fileName, int64_t compressedTotal, int64_t decodedTotal,
                       int64_t fileLength) {
  // With nothing decoded there is nothing to compare with: the ratio reads 0.00. The product is
  // taken in floating point, so that no total can overflow it.
  double ratio = 0.0;
  if (decodedTotal != 0)
    ratio =
        100.0 - static_cast<double>(compressedTotal) * 100.0 / static_cast<double>(decodedTotal);
  return fileName + "\r\n" + "- Compression ratio: " + FormatFixed2(ratio) + " %\r\n" + "- " +
         FormatSize(compressedTotal) + " compressed of " + FormatSize(decodedTotal) +
         " uncompressed\r\n" + "- Filesize " + FormatSize(fileLength);
}

std::string PreparedMessage(int32_t ticks) {
  return "Prepared memory in " + SecondsText(ticks) + " seconds";
}

std::string LoadedMessage(int32_t count, int32_t ticks) {
  return "Loaded " + std::to_string(count) + " sprites in " + SecondsText(ticks) + " seconds";
}

std::string FileLoadedMessage(const std::string& fileName) {
  return "*** '" + fileName + "' loaded ***";
}

std::string FileGoneMessage(const std::string& fileName) {
  return "'" + fileName + "' is gone; the last loaded sprites stay on view";
}

std::string ReadFailureText(int32_t number, const std::string& description,
                            const std::string& path) {
  return "Error " + std::to_string(number) + ": " + description + " (" + path + ")";
}

SpriteRowTexts SpriteRow(int32_t index, const SpriteRecord& r) {
  return SpriteRow(index, r.Width, r.Height, r.Size, r.Flags);
}

SpriteRowTexts SpriteRow(int32_t index, int64_t width, int64_t height, int64_t size,
                         uint8_t flags) {
  SpriteRowTexts row;
  row.Key = 'k';
  row.Key += std::to_string(index);
  row.Number = FormatZeroFilled(int64_t{index} + 1, 4);
  row.Width = FormatZeroFilled(width, 3);
  row.Height = FormatZeroFilled(height, 3);
  row.Size = FormatZeroFilled(size, 5);
  row.Flags = ByteToBinary(flags, 8);
  return row;
}

std::string ViewingCaption(int32_t index, const SpriteRecord& r) {
  return ViewingCaption(index, r.Width, r.Height);
}

std::string ViewingCaption(int32_t index, int64_t width, int64_t height) {
  return "Viewing sprite " + std::to_string(int64_t{index} + 1) + " (" + std::to_string(width) +
         " x " + std::to_string(height) + ")";
}

std::string FlagsText(const SpriteRecord& r) {
  return FlagsText(r.Flags);
}

std::string FlagsText(uint8_t flags) {
  return ByteToBinary(flags, 8) + " (" + std::to_string(flags) + ")";
}

std::string OffsetText(const SpriteRecord& r) {
  return OffsetText(r.XOffset, r.YOffset);
}

std::string OffsetText(int32_t x, int32_t y) {
  return std::to_string(x) + " x " + std::to_string(y);
}

}  // namespace vossel
