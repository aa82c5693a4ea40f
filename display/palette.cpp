#include "palette.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <system_error>

namespace vossel {

namespace {

// A line longer than this cannot belong to a palette file; stopping there keeps an endless input
// (a device, a huge file without CR) from being read forever.
constexpr size_t kMaxLineLength = 1 << 20;

bool IsBlank(char c) {
  return c == ' ' || c == '\t';
}

// One line of sequential text input: CR LF or a lone CR ends it, a lone LF is part of it. False at
// the end of the file, on a read error and for an overlong line.
bool ReadLine(std::FILE* f, std::string& line) {
  line.clear();
  int c = std::getc(f);
  if (c == EOF) return false;
  while (c != EOF && c != '\r') {
    if (line.size() >= kMaxLineLength) return false;
    line.push_back(static_cast<char>(c));
    c = std::getc(f);
  }
  if (c == '\r') {
    const int next = std::getc(f);
    if (next != '\n' && next != EOF) std::ungetc(next, f);
  }
  return !std::ferror(f);
}

// The first `wanted` tokens of a line split at every single blank; gives how many were found.
int SplitTokens(const std::string& line, std::string* tokens, int wanted) {
  if (line.empty()) return 0;
  int found = 0;
  size_t start = 0;
  while (found < wanted) {
    const size_t blank = line.find(' ', start);
    tokens[found++] =
        line.substr(start, blank == std::string::npos ? std::string::npos : blank - start);
    if (blank == std::string::npos) break;
    start = blank + 1;
  }
  return found;
}

bool ParseRadix(const char* first, const char* last, int base, double& value) {
  // At most 8 hex or 11 octal digits: the range of a 32-bit number.
  const ptrdiff_t maxDigits = base == 16 ? 8 : 11;
  if (first == last || last - first > maxDigits) return false;
  uint64_t v = 0;
  const auto [ptr, ec] = std::from_chars(first, last, v, base);
  if (ec != std::errc() || ptr != last) return false;
  value = static_cast<double>(v);
  return true;
}

struct FileCloser {
  std::FILE* f;
  ~FileCloser() {
    if (f) std::fclose(f);
  }
};

}  // namespace

bool TextToNumber(const std::string& text, double& value) {
  const char* p = text.data();
  const char* end = p + text.size();
  while (p < end && IsBlank(*p)) ++p;
  while (end > p && IsBlank(end[-1])) --end;
  if (p == end) return false;

  if (*p == '&' && end - p >= 2) {
    if (p[1] == 'H' || p[1] == 'h') return ParseRadix(p + 2, end, 16, value);
    if (p[1] == 'O' || p[1] == 'o') return ParseRadix(p + 2, end, 8, value);
    return false;
  }

  bool negative = false;
  if (*p == '+' || *p == '-') {
    negative = *p == '-';
    ++p;
  }
  // Checked by hand so that from_chars sees only the forms accepted here (no "inf", "nan", hex).
  const char* q = p;
  bool digits = false;
  while (q < end && *q >= '0' && *q <= '9') ++q, digits = true;
  if (q < end && *q == '.') {
    ++q;
    while (q < end && *q >= '0' && *q <= '9') ++q, digits = true;
  }
  if (!digits) return false;
  if (q < end && (*q == 'E' || *q == 'e')) {
    ++q;
    if (q < end && (*q == '+' || *q == '-')) ++q;
    const char* expDigits = q;
    while (q < end && *q >= '0' && *q <= '9') ++q;
    if (q == expDigits) return false;
  }
  if (q != end) return false;

  double v = 0;
  const auto [ptr, ec] = std::from_chars(p, end, v, std::chars_format::general);
  if (ec != std::errc() || ptr != end) return false;  // also a value beyond the range of double
  value = negative ? -v : v;
  return true;
}

bool TextToByte(const std::string& text, uint8_t& value) {
  double v = 0;
  if (!TextToNumber(text, v)) return false;
  const double rounded = std::nearbyint(v);  // half to even
  if (!(rounded >= 0 && rounded <= 255)) return false;
  value = static_cast<uint8_t>(rounded);
  return true;
}

std::string JoinPath(const std::string& folder, const std::string& fileName) {
  if (!folder.empty() && folder.back() == '/') return folder + fileName;
  return folder + "/" + fileName;
}

int16_t LoadPalette(const std::string& fileName, PaletteBuffer& palette) {
  FileCloser file{std::fopen(fileName.c_str(), "rb")};
  if (!file.f) return 0;

  std::string line;
  if (!ReadLine(file.f, line) || line != "JASC-PAL") return 0;
  if (!ReadLine(file.f, line) || line != "0100") return 0;
  if (!ReadLine(file.f, line)) return 0;
  double count = 0;
  if (!TextToNumber(line, count)) return 0;
  const double last = std::nearbyint(count - 1);
  if (!(last >= -32768 && last <= 32767)) return 0;
  const int16_t lastIndex = static_cast<int16_t>(last);

  for (int32_t i = 0; i <= lastIndex; ++i) {
    if (!ReadLine(file.f, line)) return 0;
    std::string tokens[3];
    if (SplitTokens(line, tokens, 3) < 3) return 0;
    const int32_t at = 4 * i;
    // The 257th entry's first store would fall outside the buffer.
    if (at >= static_cast<int32_t>(palette.size())) return 0;
    uint8_t b = 0;
    if (!TextToByte(tokens[2], b)) return 0;
    palette[at] = b;
    if (!TextToByte(tokens[1], b)) return 0;
    palette[at + 1] = b;
    if (!TextToByte(tokens[0], b)) return 0;
    palette[at + 2] = b;
    palette[at + 3] = 0;
  }
  return -1;
}

std::string ProgramFolder() {
  std::error_code ec;
  const std::filesystem::path exe = std::filesystem::read_symlink("/proc/self/exe", ec);
  if (ec || !exe.has_parent_path()) return ".";
  return exe.parent_path().string();
}

}  // namespace vossel
