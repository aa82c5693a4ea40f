// Data kept as text beside the tests. Case lists: one case a line, with fields split at " |";
// empty lines and lines that start with '#' are skipped; texts may hold \r \n \t \\ and \xHH;
// bytes are written in hex. Expected results: a result is compared with tests/golden/<name>, and
// written there instead when VOSSEL_UPDATE_GOLDEN is set, to be reviewed as a diff.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

inline std::vector<std::string> CaseLines(const std::string& file) {
  std::ifstream in(std::string(VOSSEL_TESTS_DIR) + "/" + file, std::ios::binary);
  EXPECT_TRUE(in) << file;
  std::vector<std::string> lines;
  for (std::string line; std::getline(in, line);)
    if (!line.empty() && line[0] != '#') lines.push_back(line);
  return lines;
}

// A case file of blocks, each opened by a line that starts "==" and holding the lines up to the
// next one.
inline std::vector<std::vector<std::string>> CaseBlocks(const std::string& file) {
  std::vector<std::vector<std::string>> blocks;
  for (const std::string& line : CaseLines(file)) {
    if (line.rfind("==", 0) == 0 || blocks.empty()) blocks.emplace_back();
    blocks.back().push_back(line);
  }
  return blocks;
}

// The first `count` - 1 fields end at " |", and each field after one loses a single blank.
inline std::vector<std::string> Fields(const std::string& line, size_t count) {
  std::vector<std::string> fields;
  size_t at = 0;
  for (size_t bar; fields.size() + 1 < count && (bar = line.find(" |", at)) != std::string::npos;
       at = bar + 2 + (line.compare(bar + 2, 1, " ") == 0)) {
    fields.push_back(line.substr(at, bar - at));
  }
  fields.push_back(line.substr(at));
  return fields;
}

inline std::string Unescape(const std::string& s) {
  std::string out;
  for (size_t i = 0; i < s.size(); ++i) {
    if (s[i] != '\\' || i + 1 == s.size()) {
      out += s[i];
    } else if (s[++i] == 'x') {
      out += static_cast<char>(std::stoi(s.substr(i + 1, 2), nullptr, 16));
      i += 2;
    } else {
      out += s[i] == 'r' ? '\r' : s[i] == 'n' ? '\n' : s[i] == 't' ? '\t' : s[i];
    }
  }
  return out;
}

// Hex pairs, blanks between them as they read best; "AAxN" is N bytes AA; "-" is no byte.
inline std::vector<uint8_t> Hex(const std::string& text) {
  std::vector<uint8_t> out;
  std::istringstream words(text == "-" ? "" : text);
  for (std::string w; words >> w;) {
    const size_t x = std::min(w.find('x'), w.size());
    for (size_t i = 0; i + 1 < x; i += 2)
      out.push_back(static_cast<uint8_t>(std::stoi(w.substr(i, 2), nullptr, 16)));
    if (x < w.size()) out.insert(out.end(), std::stoul(w.substr(x + 1)) - 1, out.back());
  }
  return out;
}

inline void ExpectGolden(const std::string& name, const std::string& text) {
  const std::string path = std::string(VOSSEL_TESTS_DIR) + "/golden/" + name;
  if (std::getenv("VOSSEL_UPDATE_GOLDEN") != nullptr) {
    std::ofstream(path, std::ios::binary) << text;
    return;
  }
  std::ifstream in(path, std::ios::binary);
  const std::string want(std::istreambuf_iterator<char>(in), {});
  const size_t at =
      std::mismatch(want.begin(), want.end(), text.begin(), text.end()).first - want.begin();
  EXPECT_TRUE(in && want == text) << path << " differs from line "
                                  << 1 + std::count(want.begin(), want.begin() + at, '\n')
                                  << "; VOSSEL_UPDATE_GOLDEN=1 writes it anew";
}
