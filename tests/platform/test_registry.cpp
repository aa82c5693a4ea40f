// GetRegString against the case list in registry_cases.txt, each file in a Wine prefix of its own;
// and files that cannot be read. (Windows folders as Wine shows them are in the start-up test.)
#include "registry.h"

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

#include "case_file.h"

using namespace vossel;

namespace fs = std::filesystem;

namespace {

const std::string kTtdKey = "SOFTWARE\\FISH Technology Group\\Transport Tycoon Deluxe";

// %HH is the byte HH.
std::string Bytes(const std::string& text) {
  std::string out;
  for (size_t i = 0; i < text.size(); ++i) {
    const bool escape = text[i] == '%' && i + 2 < text.size();
    out += escape ? static_cast<char>(std::stoi(text.substr(i + 1, 2), nullptr, 16)) : text[i];
    if (escape) i += 2;
  }
  return out;
}

class Registry : public ::testing::Test {
 protected:
  void SetUp() override { setenv("WINEPREFIX", prefix.c_str(), 1); }
  void TearDown() override {
    unsetenv("WINEPREFIX");
    std::error_code ignored;
    fs::permissions(prefix, fs::perms::owner_all, fs::perm_options::add, ignored);
    fs::remove_all(prefix, ignored);
  }
  void Write(const std::string& text) {
    std::ofstream(prefix / "system.reg", std::ios::binary) << text;
  }
  static std::string Ttd() { return GetRegString(HKEY_LOCAL_MACHINE, kTtdKey, "HDPath", "none"); }

  fs::path prefix = fs::temp_directory_path() / ("vossel-registry-" + std::to_string(getpid()));
};

}  // namespace

TEST_F(Registry, CaseList) {
  std::ifstream in(std::string(VOSSEL_TESTS_DIR) + "/platform/registry_cases.txt",
                   std::ios::binary);
  ASSERT_TRUE(in);
  std::string name, text, separator;
  bool body = false;
  fs::create_directories(prefix);
  for (std::string line; std::getline(in, line);) {
    if (line.rfind("== ", 0) == 0) {
      name = line.substr(3);
      separator = name.find("[crlf]") != std::string::npos ? "\r\n" : "\n";
      text.clear();
      body = true;
    } else if (line.rfind("? ", 0) == 0) {
      if (body) Write(text);
      body = false;
      std::vector<std::string> f = Fields(line.substr(2), 3);  // key, value, expected
      ASSERT_EQ(f.size(), 3u) << line;
      if (f[0].rfind("TTD", 0) == 0) f[0].replace(0, 3, kTtdKey);
      EXPECT_EQ(GetRegString(HKEY_LOCAL_MACHINE, Bytes(f[0]), Bytes(f[1]), "<default>"),
                Bytes(f[2]))
          << name << ": " << line;
    } else if (body) {
      text += (text.empty() ? "" : separator) + line;
    }
  }
}

TEST_F(Registry, FilesThatCannotBeReadAreARegistryWithoutKeys) {
  EXPECT_EQ(Ttd(), "none");  // no prefix folder at all
  fs::create_directories(prefix / "system.reg");
  EXPECT_EQ(Ttd(), "none");
  fs::remove(prefix / "system.reg");
  ASSERT_EQ(mkfifo((prefix / "system.reg").c_str(), 0600), 0);  // must not wait for a writer
  EXPECT_EQ(Ttd(), "none");
  fs::remove(prefix / "system.reg");
  Write(
      "WINE REGISTRY Version 2\n\n[Software\\\\FISH Technology Group\\\\Transport Tycoon "
      "Deluxe] 1\n\"HDPath\"=\"" +
      std::string(40000, 'c') + "\\0tail\"\n");
  EXPECT_EQ(Ttd(), std::string(40000, 'c'));  // all the text before the first NUL, past 16 bits
}
