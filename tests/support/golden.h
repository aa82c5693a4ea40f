// Checked-in expected texts: a result is compared with tests/golden/<name>, and written there
// instead when VOSSEL_UPDATE_GOLDEN is set, to be reviewed as a diff.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

#ifndef VOSSEL_TESTS_DIR
#error "VOSSEL_TESTS_DIR must name the tests folder"
#endif

inline void ExpectGolden(const std::string& name, const std::string& text) {
  const std::string path = std::string(VOSSEL_TESTS_DIR) + "/golden/" + name;
  if (std::getenv("VOSSEL_UPDATE_GOLDEN") != nullptr) {
    std::ofstream(path, std::ios::binary) << text;
    return;
  }
  std::ifstream in(path, std::ios::binary);
  ASSERT_TRUE(in) << path << " is missing; VOSSEL_UPDATE_GOLDEN=1 writes it";
  std::stringstream want(std::string(std::istreambuf_iterator<char>(in), {})), got(text);
  std::string a, b;
  for (int line = 1;; ++line) {
    const bool inWant = static_cast<bool>(std::getline(want, a));
    const bool inGot = static_cast<bool>(std::getline(got, b));
    if (!inWant && !inGot) break;
    ASSERT_EQ(inWant ? a : "<end>", inGot ? b : "<end>") << path << " line " << line;
  }
}
