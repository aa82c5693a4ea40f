// Reads back the bytes of an NFO byte text, as the commands write them: hex pairs and quoted runs.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vossel {

// Nothing for text it cannot read.
inline std::optional<std::vector<uint8_t>> ParseNfoBytes(const std::string& text) {
  const auto digit = [](char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return -1;
  };
  std::vector<uint8_t> bytes;
  for (size_t i = 0; i < text.size();) {
    if (text[i] == ' ' || text[i] == '\t') {
      ++i;
    } else if (text[i] == '"') {
      const size_t end = text.find('"', i + 1);
      if (end == std::string::npos) return std::nullopt;
      bytes.insert(bytes.end(), text.begin() + static_cast<long>(i) + 1,
                   text.begin() + static_cast<long>(end));
      i = end + 1;
    } else if (i + 1 < text.size() && digit(text[i]) >= 0 && digit(text[i + 1]) >= 0 &&
               (i + 2 == text.size() || text[i + 2] == ' ' || text[i + 2] == '\t')) {
      bytes.push_back(static_cast<uint8_t>(digit(text[i]) * 16 + digit(text[i + 1])));
      i += 2;
    } else {
      return std::nullopt;
    }
  }
  return bytes;
}

}  // namespace vossel
