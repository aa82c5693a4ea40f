// GetRegString and the registry operations over a Wine prefix made for each test.
#include "registry.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace fs = std::filesystem;
using namespace std::string_literals;

namespace {

const std::string kTtdKey = "SOFTWARE\\FISH Technology Group\\Transport Tycoon Deluxe";
const std::string kTtdSection =
    R"([Software\\FISH Technology Group\\Transport Tycoon Deluxe] 1234567890)"
    "\n#time=1d5a2f3e4b5c6d7\n";

std::optional<std::string> GetEnv(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr ? std::optional<std::string>(value) : std::nullopt;
}

void SetEnv(const char* name, const std::optional<std::string>& value) {
  if (value) {
    setenv(name, value->c_str(), 1);
  } else {
    unsetenv(name);
  }
}

struct Queried {
  int32_t Code = -1;
  uint32_t Type = 0xFFFFFFFFu;
  std::string Data;
};

// Opens SubKey under HKLM and reads one value with its size asked first.
Queried Query(const std::string& subKey, const char* name) {
  Queried q;
  uint32_t key = 0;
  q.Code = RegOpenKeyA(HKEY_LOCAL_MACHINE, subKey.c_str(), &key);
  if (q.Code != ERROR_SUCCESS) return q;
  uint32_t size = 0;
  q.Code = RegQueryValueExA(key, name, nullptr, &q.Type, nullptr, &size);
  if (q.Code == ERROR_SUCCESS) {
    q.Data.assign(size, '\x7f');
    q.Code = RegQueryValueExA(key, name, nullptr, nullptr,
                              reinterpret_cast<uint8_t*>(q.Data.data()), &size);
    q.Data.resize(size);
  }
  EXPECT_EQ(RegCloseKey(key), ERROR_SUCCESS);
  return q;
}

class Registry : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string pattern = (fs::temp_directory_path() / "vossel-registry-XXXXXX").string();
    ASSERT_NE(mkdtemp(pattern.data()), nullptr);
    prefix_ = pattern;
    SetEnv("WINEPREFIX", prefix_);
  }
  void TearDown() override {
    SetEnv("WINEPREFIX", savedPrefix_);
    SetEnv("HOME", savedHome_);
    gRegistryCalls = savedCalls_;
    std::error_code error;
    fs::permissions(prefix_, fs::perms::owner_all, fs::perm_options::add, error);
    fs::remove_all(prefix_, error);
  }

  static void WriteFile(const std::string& path, const std::string& bytes) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << bytes;
  }
  // system.reg as Wine writes it, with the given keys behind its header.
  void WriteRegistry(const std::string& body) {
    WriteFile(
        prefix_ + "/system.reg",
        "WINE REGISTRY Version 2\n;; All keys relative to \\\\Machine\n\n#arch=win32\n\n" + body);
  }
  // One line of values in the game's key, beside a key of another program.
  void WriteTtdValues(const std::string& lines) {
    WriteRegistry("[Software\\\\Other] 1\n\"HDPath\"=\"D:\\\\Other\"\n\n" + kTtdSection + lines +
                  "\n\n[Software\\\\Wine] 2\n\"Version\"=\"win10\"\n");
  }
  static std::string Ttd(const std::string& valueName, const std::string& def = "fallback") {
    return GetRegString(HKEY_LOCAL_MACHINE, kTtdKey, valueName, def);
  }

  std::string prefix_;
  std::optional<std::string> savedPrefix_ = GetEnv("WINEPREFIX");
  std::optional<std::string> savedHome_ = GetEnv("HOME");
  RegistryCalls savedCalls_ = gRegistryCalls;
};

// ---- What GetRegString gives.

TEST_F(Registry, ReadsTheGameFolderExactlyAsStored) {
  WriteTtdValues(R"("HDPath"="C:\\TTD\\")");
  EXPECT_EQ(GetRegString(HKEY_LOCAL_MACHINE, kTtdKey, "HDPath", ""), "C:\\TTD\\");
  const Queried q = Query(kTtdKey, "HDPath");
  EXPECT_EQ(q.Code, ERROR_SUCCESS);
  EXPECT_EQ(q.Type, REG_SZ);
  EXPECT_EQ(q.Data, "C:\\TTD\\\0"s);  // the size counts the NUL
  // The key of the other program is not mixed in.
  EXPECT_EQ(GetRegString(HKEY_LOCAL_MACHINE, "Software\\Other", "HDPath", ""), "D:\\Other");
}

TEST_F(Registry, MissingKeyValueOrStringGivesTheDefaultUnchanged) {
  WriteTtdValues(
      "\"Number\"=dword:00000001\n\"Expand\"=str(2):\"%ProgramFiles%\\\\TTD\"\n"
      "\"Multi\"=str(7):\"a\\0b\\0\"\n\"Binary\"=hex:43,3a,5c,00\n"
      "\"HexExpand\"=hex(2):43,00,00,00\n\"HexMulti\"=hex(7):43,00,00,00,00,00\n"
      "\"None\"=hex(0):43,00\n\"HexNumber\"=hex(4):01,00,00,00\n");
  const std::string def = " C:\\Default Folder\\ ";
  EXPECT_EQ(GetRegString(HKEY_LOCAL_MACHINE, "SOFTWARE\\No Such Company", "HDPath", def), def);
  EXPECT_EQ(GetRegString(HKEY_LOCAL_MACHINE, kTtdKey + "\\Deeper", "HDPath", def), def);
  EXPECT_EQ(Ttd("HDPath", def), def);
  for (const char* name :
       {"Number", "Expand", "Multi", "Binary", "HexExpand", "HexMulti", "None", "HexNumber"})
    EXPECT_EQ(Ttd(name, def), def) << name;
  EXPECT_EQ(Ttd("Number", ""), "");
}

int gQueryCalls = 0;
int32_t FailSecondQuery(uint32_t key, const char* name, uint32_t* reserved, uint32_t* type,
                        uint8_t* data, uint32_t* size) {
  if (++gQueryCalls == 2) return ERROR_FILE_NOT_FOUND;
  return RegQueryValueExA(key, name, reserved, type, data, size);
}

TEST_F(Registry, FailingSecondQueryGivesDataSizeBlanks) {
  WriteTtdValues(R"("HDPath"="C:\\TTD\\")");
  gQueryCalls = 0;
  gRegistryCalls.QueryValueEx = FailSecondQuery;
  EXPECT_EQ(Ttd("HDPath"), std::string(8, ' '));
  EXPECT_EQ(gQueryCalls, 2);
}

TEST_F(Registry, EmptyAndSizeZeroStringsGiveEmptyTextNotTheDefault) {
  WriteTtdValues("\"Empty\"=\"\"\n\"Zero\"=hex(1):\n\"ZeroStr\"=str:\"\"");
  EXPECT_EQ(Ttd("Empty"), "");
  EXPECT_EQ(Query(kTtdKey, "Empty").Data, std::string(1, '\0'));
  EXPECT_EQ(Ttd("Zero"), "");
  const Queried zero = Query(kTtdKey, "Zero");
  EXPECT_EQ(zero.Type, REG_SZ);
  EXPECT_EQ(zero.Data, "");
  EXPECT_EQ(Ttd("ZeroStr"), "");
}

TEST_F(Registry, TextIsCutAtTheFirstNulOnly) {
  WriteTtdValues(
      "\"NoNul\"=hex(1):43,00,3a,00,5c,00\n"
      "\"Inner\"=\"C:\\\\TTD\\0junk\\0more\"\n"
      "\"HexInner\"=hex(1):41,00,00,00,42,00,00,00\n"
      "\"Leading\"=hex(1):00,00,41,00\n");
  EXPECT_EQ(Ttd("NoNul"), "C:\\");
  EXPECT_EQ(Query(kTtdKey, "NoNul").Data, "C:\\");
  EXPECT_EQ(Ttd("Inner"), "C:\\TTD");
  EXPECT_EQ(Query(kTtdKey, "Inner").Data, "C:\\TTD\0junk\0more\0"s);
  EXPECT_EQ(Ttd("HexInner"), "A");
  EXPECT_EQ(Ttd("Leading"), "");
}

// The first NUL's position is kept in 16 bits by the system; past 32,767 the text before the NUL
// still comes back whole.
TEST_F(Registry, LongValuesKeepAllTextBeforeTheirFirstNul) {
  const std::string body = "\"At32767\"=\"" + std::string(32767, 'a') + "\\0tail\"\n" +
                           "\"At32768\"=\"" + std::string(32768, 'b') + "\\0tail\"\n" +
                           "\"Long\"=\"" + std::string(40000, 'c') + "\\0tail\"\n";
  std::string noNul = "\"NoNul\"=hex(1):";
  for (int i = 0; i < 40000; ++i) noNul += i % 16 == 15 ? "64,00,\\\n  " : "64,00,";
  WriteTtdValues(body + noNul + "64,00");
  EXPECT_EQ(Ttd("At32767"), std::string(32767, 'a'));
  EXPECT_EQ(Ttd("At32768"), std::string(32768, 'b'));
  EXPECT_EQ(Ttd("Long"), std::string(40000, 'c'));
  EXPECT_EQ(Ttd("NoNul"), std::string(40001, 'd'));
}

// The steps of the call itself: the open's code is not looked at, the first query asks for size
// alone, the second gets a buffer of blanks and a type set to 0, and every path closes its key.
struct Call {
  std::string What;
  uint32_t Key = 0;
  bool WithBuffer = false;
  uint32_t TypeBefore = 0;
  std::string BufferBefore;
};
std::vector<Call> gCalls;
int32_t gOpenCode = 0;

int32_t RecordOpen(uint32_t root, const char* subKey, uint32_t* result) {
  const int32_t code = RegOpenKeyA(root, subKey, result);
  gCalls.push_back({"open", *result, false, 0, ""});
  return gOpenCode != 0 ? gOpenCode : code;
}
int32_t RecordQuery(uint32_t key, const char* name, uint32_t* reserved, uint32_t* type,
                    uint8_t* data, uint32_t* size) {
  Call call{"query", key, data != nullptr, type != nullptr ? *type : 0xFFFFFFFFu, ""};
  if (data != nullptr) call.BufferBefore.assign(reinterpret_cast<char*>(data), *size);
  gCalls.push_back(call);
  return RegQueryValueExA(key, name, reserved, type, data, size);
}
int32_t RecordClose(uint32_t key) {
  gCalls.push_back({"close", key, false, 0, ""});
  return RegCloseKey(key);
}

TEST_F(Registry, CallsFollowTheStepsAndCloseOnEveryPath) {
  WriteTtdValues("\"HDPath\"=\"C:\\\\TTD\"\n\"Number\"=dword:00000007");
  gRegistryCalls = {RecordOpen, RecordQuery, RecordClose};
  gOpenCode = 0;

  gCalls.clear();
  EXPECT_EQ(Ttd("HDPath"), "C:\\TTD");
  ASSERT_EQ(gCalls.size(), 4u);
  const uint32_t key = gCalls[0].Key;
  EXPECT_NE(key, 0u);
  EXPECT_EQ(gCalls[1].Key, key);
  EXPECT_FALSE(gCalls[1].WithBuffer);
  EXPECT_EQ(gCalls[2].Key, key);
  EXPECT_TRUE(gCalls[2].WithBuffer);
  EXPECT_EQ(gCalls[2].TypeBefore, 0u);
  EXPECT_EQ(gCalls[2].BufferBefore, std::string(7, ' '));
  EXPECT_EQ(gCalls[3].What, "close");
  EXPECT_EQ(gCalls[3].Key, key);
  EXPECT_EQ(RegCloseKey(key), ERROR_INVALID_HANDLE);  // really closed

  for (const char* name : {"Missing", "Number"}) {
    gCalls.clear();
    EXPECT_EQ(Ttd(name), "fallback");
    ASSERT_EQ(gCalls.size(), 3u) << name;
    EXPECT_EQ(gCalls[2].What, "close");
    EXPECT_EQ(gCalls[2].Key, gCalls[0].Key);
    EXPECT_EQ(RegCloseKey(gCalls[0].Key), ERROR_INVALID_HANDLE);
  }

  // A missing key: the query and the close still run, on the 0 handle.
  gCalls.clear();
  EXPECT_EQ(GetRegString(HKEY_LOCAL_MACHINE, "Software\\Nowhere", "HDPath", "fallback"),
            "fallback");
  ASSERT_EQ(gCalls.size(), 3u);
  EXPECT_EQ(gCalls[1].Key, 0u);
  EXPECT_EQ(gCalls[2].What, "close");
  EXPECT_EQ(gCalls[2].Key, 0u);

  // An open that reports failure but gives a handle is still used: its code is not looked at.
  gCalls.clear();
  gOpenCode = 5;
  EXPECT_EQ(Ttd("HDPath"), "C:\\TTD");
  ASSERT_EQ(gCalls.size(), 4u);
  EXPECT_EQ(gCalls[3].Key, gCalls[0].Key);
  gOpenCode = 0;
}

// ---- Wine's value forms.

TEST_F(Registry, StringEscapesAsWineWritesThem) {
  WriteTtdValues(R"("Esc"="a\\b\"c\n\r\t\a\b\e\f\v|\x0041B|\x41|\101|\1011|\x263a|\xzz|\q|\]")");
  const Queried q = Query(kTtdKey, "Esc");
  EXPECT_EQ(q.Type, REG_SZ);
  EXPECT_EQ(q.Data, "a\\b\"c\n\r\t\a\b\x1b\f\v|AB|A|A|A1|\xE2\x98\xBA|xzz|q|]\0"s);
}

TEST_F(Registry, NonAsciiTextComesOutAsUtf8) {
  WriteTtdValues(
      "\"Escaped\"=\"Caf\\xe9\"\n\"Raw\"=\"Caf\xC3\xA9\"\n\"Pair\"=\"\\xd83d\\xde00\"\n"
      "\"Lone\"=\"a\\xd800b\"\n\"Latin1Byte\"=\"\xE9t\xE9\"\n"
      "\"Hex\"=hex(1):43,00,61,00,66,00,e9,00,3d,d8,00,de,00,00\n");
  EXPECT_EQ(Ttd("Escaped"), "Caf\xC3\xA9");
  EXPECT_EQ(Query(kTtdKey, "Escaped").Data.size(), 6u);  // size in UTF-8 bytes with the NUL
  EXPECT_EQ(Ttd("Raw"), "Caf\xC3\xA9");
  EXPECT_EQ(Ttd("Pair"), "\xF0\x9F\x98\x80");
  EXPECT_EQ(Ttd("Lone"), "a?b");
  EXPECT_EQ(Ttd("Latin1Byte"), "\xC3\xA9t\xC3\xA9");  // a stray byte is read as Latin-1
  EXPECT_EQ(Ttd("Hex"), "Caf\xC3\xA9\xF0\x9F\x98\x80");
}

TEST_F(Registry, TypedFormsCarryTheirTypesAndBytes) {
  WriteTtdValues(
      "\"Str\"=str:\"x\"\n"
      "\"Expand\"=str(2):\"%SystemRoot%\"\n"
      "\"Multi\"=str(7):\"a\\0b\\0\"\n"
      "\"Dword\"=dword:8000002a\n"
      "\"Binary\"=hex:01,ff,\\\n  80 , 7,\\\n\t0a\n"
      "\"HexMulti\"=hex(7):61,00,00,00,62,00,00,00,00,00\n"
      "\"Qword\"=hex(b):01,00,00,00,00,00,00,00\n"
      "\"Odd\"=hex(1):41,00,42\n"
      "\"HexExpand\"=hex(2):25,00\n"
      "\"Big\"=hex(ffffffff):01\n"
      "\"Spaced\" = \"s\"");
  const auto expect = [](const char* name, uint32_t type, const std::string& data) {
    const Queried q = Query(kTtdKey, name);
    EXPECT_EQ(q.Code, ERROR_SUCCESS) << name;
    EXPECT_EQ(q.Type, type) << name;
    EXPECT_EQ(q.Data, data) << name;
  };
  expect("Str", REG_SZ, "x\0"s);
  expect("Expand", REG_EXPAND_SZ, "%SystemRoot%\0"s);
  expect("Multi", REG_MULTI_SZ, "a\0b\0\0"s);
  expect("Dword", REG_DWORD, "\x2a\x00\x00\x80"s);
  expect("Binary", REG_BINARY, "\x01\xff\x80\x07\x0a"s);
  expect("HexMulti", REG_MULTI_SZ, "a\0b\0\0"s);
  expect("Qword", 11, "\x01\0\0\0\0\0\0\0"s);
  expect("Odd", REG_SZ, "A");  // half a code unit is dropped
  expect("HexExpand", REG_EXPAND_SZ, "%");
  expect("Big", 0xFFFFFFFFu, "\x01");
  expect("Spaced", REG_SZ, "s\0"s);
  EXPECT_EQ(Ttd("Str"), "x");
  EXPECT_EQ(Ttd("Odd"), "A");
}

TEST_F(Registry, UnnamedValueIsTheAtValue) {
  WriteTtdValues("@=\"unnamed\"");
  EXPECT_EQ(Ttd(""), "unnamed");
  EXPECT_EQ(Query(kTtdKey, nullptr).Data, "unnamed\0"s);
  WriteTtdValues("@=\"unnamed\"\n\"\"=\"again\"");  // "" names the same value
  EXPECT_EQ(Ttd(""), "again");
}

TEST_F(Registry, LaterValuesWinAndRepeatedSectionsMerge) {
  WriteRegistry(kTtdSection +
                "\"HDPath\"=\"C:\\\\Old\"\n\"A\"=\"1\"\n\"hdpath\"=\"C:\\\\New\"\n\n" +
                "[Software\\\\Other] 5\n\"B\"=\"other\"\n\n" + kTtdSection + "\"B\"=\"2\"\n");
  EXPECT_EQ(Ttd("HDPath"), "C:\\New");
  EXPECT_EQ(Ttd("A"), "1");
  EXPECT_EQ(Ttd("B"), "2");
}

// ---- Names.

TEST_F(Registry, KeyAndValueNamesIgnoreCase) {
  WriteRegistry(kTtdSection + "\"HDPath\"=\"C:\\\\TTD\"\n\n[Software\\\\Caf\\xe9\\\\\\x0394] 3\n" +
                "\"N\\xc4me\"=\"accented\"\n");
  EXPECT_EQ(GetRegString(HKEY_LOCAL_MACHINE,
                         "software\\fish technology group\\TRANSPORT TYCOON DELUXE", "hdpath", ""),
            "C:\\TTD");
  EXPECT_EQ(GetRegString(HKEY_LOCAL_MACHINE, kTtdKey, "HDPATH", ""), "C:\\TTD");
  EXPECT_EQ(GetRegString(HKEY_LOCAL_MACHINE, "SOFTWARE\\CAF\xC3\x89\\\xCE\xB4", "n\xC3\xA4ME", ""),
            "accented");
  EXPECT_EQ(GetRegString(HKEY_LOCAL_MACHINE, kTtdKey, "HDPat", "fallback"), "fallback");
  EXPECT_EQ(GetRegString(HKEY_LOCAL_MACHINE, kTtdKey, "HDPath ", "fallback"), "fallback");
}

TEST_F(Registry, KeyPathsOpenAsWineDoes) {
  WriteTtdValues("\"HDPath\"=\"C:\\\\TTD\"");
  uint32_t key = 0;
  // A key that only lies on the way to a section exists; a part of a name does not.
  EXPECT_EQ(RegOpenKeyA(HKEY_LOCAL_MACHINE, "Software\\FISH Technology Group", &key),
            ERROR_SUCCESS);
  uint32_t below = 0;
  EXPECT_EQ(RegOpenKeyA(key, "Transport Tycoon Deluxe", &below), ERROR_SUCCESS);
  uint32_t size = 0;
  uint32_t type = 0;
  EXPECT_EQ(RegQueryValueExA(below, "HDPath", nullptr, &type, nullptr, &size), ERROR_SUCCESS);
  EXPECT_EQ(size, 7u);
  EXPECT_EQ(RegQueryValueExA(key, "HDPath", nullptr, &type, nullptr, &size), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(RegCloseKey(below), ERROR_SUCCESS);
  EXPECT_EQ(RegCloseKey(key), ERROR_SUCCESS);

  EXPECT_EQ(RegOpenKeyA(HKEY_LOCAL_MACHINE, "Software\\FISH", &key), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(key, 0u);
  EXPECT_EQ(RegOpenKeyA(HKEY_LOCAL_MACHINE, "\\Software", &key), ERROR_BAD_PATHNAME);
  EXPECT_EQ(RegOpenKeyA(HKEY_LOCAL_MACHINE, "", &key), ERROR_SUCCESS);
  EXPECT_EQ(RegCloseKey(key), ERROR_SUCCESS);
  EXPECT_EQ(GetRegString(HKEY_LOCAL_MACHINE, kTtdKey + "\\", "HDPath", ""), "C:\\TTD");
  EXPECT_EQ(
      GetRegString(HKEY_LOCAL_MACHINE, "Software\\\\FISH Technology Group\\Transport Tycoon Deluxe",
                   "HDPath", ""),
      "C:\\TTD");
  EXPECT_EQ(GetRegString(0x80000001u, kTtdKey, "HDPath", "fallback"), "fallback");
}

// A 32-bit installer in a 64-bit prefix writes under Software\Wow6432Node, and the game finds its
// key there; so does GetRegString.
TEST_F(Registry, SixtyFourBitPrefixShowsTheThirtyTwoBitView) {
  const std::string wow =
      "[Software\\\\Wow6432Node\\\\FISH Technology Group\\\\Transport Tycoon Deluxe] 7\n";
  const std::string native = kTtdSection + "\"HDPath\"=\"C:\\\\Native\"\n\"Only\"=\"native\"\n\n";
  const std::string header = "WINE REGISTRY Version 2\n;; All keys relative to \\\\Machine\n\n";
  const std::string file = prefix_ + "/system.reg";

  WriteFile(file, header + "#arch=win64\n\n" + native + wow + "\"HDPath\"=\"C:\\\\Wow\"\n");
  EXPECT_EQ(Ttd("HDPath"), "C:\\Wow");
  EXPECT_EQ(Ttd("Only"), "fallback");  // the view's key is the one opened
  EXPECT_EQ(GetRegString(HKEY_LOCAL_MACHINE,
                         "Software\\Wow6432Node\\FISH Technology Group\\"
                         "Transport Tycoon Deluxe",
                         "HDPath", ""),
            "C:\\Wow");
  uint32_t software = 0;
  uint32_t key = 0;
  ASSERT_EQ(RegOpenKeyA(HKEY_LOCAL_MACHINE, "SOFTWARE", &software), ERROR_SUCCESS);
  ASSERT_EQ(RegOpenKeyA(software, "FISH Technology Group\\Transport Tycoon Deluxe", &key),
            ERROR_SUCCESS);
  uint32_t size = 0;
  EXPECT_EQ(RegQueryValueExA(key, "HDPath", nullptr, nullptr, nullptr, &size), ERROR_SUCCESS);
  EXPECT_EQ(size, 7u);  // "C:\Wow" and its NUL
  EXPECT_EQ(RegCloseKey(key), ERROR_SUCCESS);
  EXPECT_EQ(RegCloseKey(software), ERROR_SUCCESS);

  // Without the view's key the key itself is read.
  WriteFile(file, header + "#arch=win64\n\n" + native);
  EXPECT_EQ(Ttd("HDPath"), "C:\\Native");
  // A 32-bit prefix has no such view.
  WriteFile(file, header + "#arch=win32\n\n" + wow + "\"HDPath\"=\"C:\\\\Wow\"\n");
  EXPECT_EQ(Ttd("HDPath"), "fallback");
}

TEST_F(Registry, OperationsRefuseBadHandlesAndArguments) {
  WriteTtdValues("\"HDPath\"=\"C:\\\\TTD\"");
  uint32_t type = 0;
  uint32_t size = 0;
  EXPECT_EQ(RegQueryValueExA(0, "HDPath", nullptr, &type, nullptr, &size), ERROR_INVALID_HANDLE);
  EXPECT_EQ(RegCloseKey(0), ERROR_INVALID_HANDLE);
  EXPECT_EQ(RegCloseKey(HKEY_LOCAL_MACHINE), ERROR_SUCCESS);
  EXPECT_EQ(RegOpenKeyA(HKEY_LOCAL_MACHINE, kTtdKey.c_str(), nullptr), ERROR_INVALID_PARAMETER);
  uint32_t key = 0;
  EXPECT_EQ(RegOpenKeyA(12345, "x", &key), ERROR_INVALID_HANDLE);

  ASSERT_EQ(RegOpenKeyA(HKEY_LOCAL_MACHINE, kTtdKey.c_str(), &key), ERROR_SUCCESS);
  uint32_t reserved = 0;
  EXPECT_EQ(RegQueryValueExA(key, "HDPath", &reserved, &type, nullptr, &size),
            ERROR_INVALID_PARAMETER);
  uint8_t buffer[8] = {'#', '#', '#', '#', '#', '#', '#', '#'};
  EXPECT_EQ(RegQueryValueExA(key, "HDPath", nullptr, &type, buffer, nullptr),
            ERROR_INVALID_PARAMETER);
  size = 6;  // one short of the NUL
  EXPECT_EQ(RegQueryValueExA(key, "HDPath", nullptr, &type, buffer, &size), ERROR_MORE_DATA);
  EXPECT_EQ(size, 7u);
  EXPECT_EQ(buffer[0], '#');
  EXPECT_EQ(RegQueryValueExA(key, "HDPath", nullptr, nullptr, nullptr, nullptr), ERROR_SUCCESS);
  EXPECT_EQ(RegCloseKey(key), ERROR_SUCCESS);
  EXPECT_EQ(RegCloseKey(key), ERROR_INVALID_HANDLE);
  EXPECT_EQ(RegQueryValueExA(key, "HDPath", nullptr, &type, nullptr, &size), ERROR_INVALID_HANDLE);
}

// ---- The file and where it is.

TEST_F(Registry, MissingOrUnreadableFileIsAMissingKey) {
  const std::string file = prefix_ + "/system.reg";
  EXPECT_EQ(Ttd("HDPath"), "fallback");  // no file at all
  uint32_t key = 7;
  EXPECT_EQ(RegOpenKeyA(HKEY_LOCAL_MACHINE, "", &key), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(key, 0u);

  SetEnv("WINEPREFIX", prefix_ + "/no/such/prefix");
  EXPECT_EQ(Ttd("HDPath"), "fallback");
  SetEnv("WINEPREFIX", prefix_);

  ASSERT_TRUE(fs::create_directory(file));
  EXPECT_EQ(Ttd("HDPath"), "fallback");
  fs::remove(file);

  ASSERT_EQ(mkfifo(file.c_str(), 0600), 0);  // must not wait for a writer
  EXPECT_EQ(Ttd("HDPath"), "fallback");
  fs::remove(file);

  const std::string good = kTtdSection + "\"HDPath\"=\"C:\\\\TTD\"\n";
  for (const std::string& text :
       {std::string(), "WINE REGISTRY Version 1\n" + good, "REGEDIT4\n\n" + good, good,
        " WINE REGISTRY Version 2\n" + good}) {
    WriteFile(file, text);
    EXPECT_EQ(Ttd("HDPath"), "fallback") << text;
  }

  if (geteuid() != 0) {  // root reads whatever the mode says
    WriteTtdValues("\"HDPath\"=\"C:\\\\TTD\"");
    ASSERT_EQ(chmod(file.c_str(), 0), 0);
    EXPECT_EQ(Ttd("HDPath"), "fallback");
  }

  // Far beyond any real registry: refused by its size, without reading it.
  WriteTtdValues("\"HDPath\"=\"C:\\\\TTD\"");
  ASSERT_EQ(truncate(file.c_str(), (int64_t{256} << 20) + 1), 0);
  EXPECT_EQ(Ttd("HDPath"), "fallback");
  ASSERT_EQ(truncate(file.c_str(), int64_t{256} << 20), 0);  // at the limit: read
  EXPECT_EQ(Ttd("HDPath"), "C:\\TTD");
}

TEST_F(Registry, WindowsLineEndsRead) {
  WriteFile(prefix_ + "/system.reg",
            "WINE REGISTRY Version 2\r\n\r\n"
            "[Software\\\\FISH Technology Group\\\\Transport Tycoon Deluxe] 1\r\n"
            "\"HDPath\"=\"C:\\\\TTD\"\r\n\"Bin\"=hex:01,\\\r\n  02\r\n");
  EXPECT_EQ(Ttd("HDPath"), "C:\\TTD");
  EXPECT_EQ(Query(kTtdKey, "Bin").Data, "\x01\x02");
}

TEST_F(Registry, PrefixComesFromWineprefixElseHome) {
  EXPECT_EQ(WineRegistryFile(), prefix_ + "/system.reg");
  SetEnv("WINEPREFIX", prefix_ + "/");
  EXPECT_EQ(WineRegistryFile(), prefix_ + "/system.reg");

  SetEnv("WINEPREFIX", "");
  SetEnv("HOME", prefix_);
  EXPECT_EQ(WineRegistryFile(), prefix_ + "/.wine/system.reg");
  unsetenv("WINEPREFIX");
  EXPECT_EQ(WineRegistryFile(), prefix_ + "/.wine/system.reg");
  ASSERT_TRUE(fs::create_directory(prefix_ + "/.wine"));
  WriteFile(prefix_ + "/.wine/system.reg",
            "WINE REGISTRY Version 2\n\n" + kTtdSection + "\"HDPath\"=\"C:\\\\Home\"\n");
  EXPECT_EQ(Ttd("HDPath"), "C:\\Home");

  unsetenv("HOME");
  EXPECT_EQ(WineRegistryFile(), "");
  EXPECT_EQ(Ttd("HDPath"), "fallback");
  EXPECT_EQ(WineFolderToLinux("C:\\TTD\\"), "");
}

// ---- Hostile files.

TEST_F(Registry, MalformedLinesAreSkipped) {
  WriteRegistry(kTtdSection +
                "\"Unterminated\"=\"abc\n"
                "\"NoEquals\" \"x\"\n"
                "\"BadHex\"=hex:1g\n"
                "\"LongByte\"=hex:123\n"
                "\"Overflow\"=hex(100000000):00\n"
                "\"NoType\"=hex():00\n"
                "\"NoColon\"=hex(1)00\n"
                "\"EmptyDword\"=dword:\n"
                "\"LongDword\"=dword:123456789\n"
                "\"UnknownForm\"=str(3):\"a\"\n"
                "\"Junk\"=hex:01;02\n"
                "\"EndsInEscape\"=\"abc\\\n"
                "\"Name\\\n"
                "@\n"
                "\"\n"
                "\"HDPath\"=\"C:\\\\TTD\"\n"
                "[Software\\\\Unterminated\n"
                "\"AfterBadSection\"=\"x\"\n" +
                kTtdSection + "\"Late\"=\"ok\"\n\"Tail\"=hex:01,\\");
  for (const char* name : {"Unterminated", "NoEquals", "BadHex", "LongByte", "Overflow", "NoType",
                           "NoColon", "EmptyDword", "LongDword", "UnknownForm", "Junk",
                           "EndsInEscape", "AfterBadSection", "Tail"})
    EXPECT_EQ(Ttd(name), "fallback") << name;
  EXPECT_EQ(Query(kTtdKey, "Junk").Code, ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(Query(kTtdKey, "Tail").Code, ERROR_FILE_NOT_FOUND);  // list cut by the file's end
  EXPECT_EQ(Ttd("HDPath"), "C:\\TTD");
  EXPECT_EQ(Ttd("Late"), "ok");
}

TEST_F(Registry, RandomFilesNeitherCrashNorReadOutside) {
  static const char* const kPieces[] = {
      "[",           "]",
      "\"",          "\\",
      "\\\\",        "\\x",
      "\\x12",       "\\0",
      "\\777",       "=",
      "@",           ",",
      " ",           "\n",
      "\r\n",        "hex:",
      "hex(",        "hex(1):",
      "):",          "str(2):\"",
      "str:\"",      "dword:",
      "ff",          "0",
      "a",           "\xC3",
      "\xE2\x98",    "\xF0\x9F\x98\x80",
      "#time=1",     "[Software\\\\FISH Technology Group\\\\Transport Tycoon Deluxe] 1\n",
      "\"HDPath\"=", "\"HDPath\"=hex(1):"};
  constexpr size_t kCount = sizeof(kPieces) / sizeof(kPieces[0]);
  uint32_t seed = 12345;
  for (int file = 0; file < 300; ++file) {
    std::string text = "WINE REGISTRY Version 2\n";
    const int pieces = 1 + file * 2;
    for (int p = 0; p < pieces; ++p) {
      seed = seed * 1664525u + 1013904223u;
      text += kPieces[(seed >> 8) % kCount];
    }
    WriteFile(prefix_ + "/system.reg", text);
    Ttd("HDPath");
    uint32_t key = 0;
    if (RegOpenKeyA(HKEY_LOCAL_MACHINE, kTtdKey.c_str(), &key) == ERROR_SUCCESS) {
      EXPECT_EQ(RegCloseKey(key), ERROR_SUCCESS);
    }
  }
}

TEST_F(Registry, LargeRegistryReadsTheKeyAtItsEnd) {
  std::string body;
  for (int i = 0; i < 20000; ++i)
    body += "[Software\\\\Vendor" + std::to_string(i) + "\\\\App] 1\n\"HDPath\"=hex:01,02,\\\n" +
            "  03,04\n\"Name\"=\"x\"\n\n";
  std::string bytes = "\"Blob\"=hex:";
  for (int i = 0; i < 100000; ++i) bytes += i % 20 == 19 ? "ab,\\\n  " : "ab,";
  WriteRegistry(body + kTtdSection + bytes + "cd\n\"HDPath\"=\"C:\\\\TTD\"\n");
  EXPECT_EQ(Ttd("HDPath"), "C:\\TTD");
  const Queried blob = Query(kTtdKey, "Blob");
  EXPECT_EQ(blob.Data.size(), 100001u);
  EXPECT_EQ(blob.Data.back(), '\xcd');
}

TEST_F(Registry, OpenKeysAreLimitedAndComeBackWhenClosed) {
  WriteTtdValues("\"HDPath\"=\"C:\\\\TTD\"");
  std::vector<uint32_t> keys;
  uint32_t key = 0;
  int32_t code = ERROR_SUCCESS;
  while (keys.size() < 10000 &&
         (code = RegOpenKeyA(HKEY_LOCAL_MACHINE, "Software", &key)) == ERROR_SUCCESS)
    keys.push_back(key);
  EXPECT_EQ(code, ERROR_TOO_MANY_OPEN_FILES);
  EXPECT_EQ(keys.size(), 4096u);
  EXPECT_EQ(Ttd("HDPath"), "fallback");  // no key to be had, no harm done
  for (uint32_t k : keys) EXPECT_EQ(RegCloseKey(k), ERROR_SUCCESS);
  EXPECT_EQ(Ttd("HDPath"), "C:\\TTD");
}

// ---- The game's folder on Linux.

TEST_F(Registry, WindowsFolderMapsThroughDosdevices) {
  ASSERT_TRUE(fs::create_directories(prefix_ + "/drive_c/ttd/Data"));
  ASSERT_TRUE(fs::create_directories(prefix_ + "/dosdevices"));
  fs::create_directory_symlink("../drive_c", prefix_ + "/dosdevices/c:");
  const std::string c = prefix_ + "/dosdevices/c:";

  EXPECT_EQ(WineFolderToLinux("C:\\ttd\\"), c + "/ttd/");
  EXPECT_EQ(fs::canonical(WineFolderToLinux("C:\\ttd\\")), fs::canonical(prefix_ + "/drive_c/ttd"));
  // Names are found without regard to case, as Wine finds them.
  EXPECT_EQ(WineFolderToLinux("C:\\TTD\\DATA"), c + "/ttd/Data");
  EXPECT_EQ(WineFolderToLinux("c:/Ttd//data/"), c + "/ttd/Data/");
  EXPECT_EQ(WineFolderToLinux("C:\\..\\..\\TTD\\.\\"), c + "/ttd/");
  EXPECT_EQ(WineFolderToLinux("C:\\"), c + "/");
  EXPECT_EQ(WineFolderToLinux("C:"), c + "/");
  // A folder that is not there keeps its name; entering it fails for the caller.
  EXPECT_EQ(WineFolderToLinux("C:\\Games\\TTD\\"), c + "/Games/TTD/");
  EXPECT_EQ(WineFolderToLinux("D:\\TTD"), prefix_ + "/dosdevices/d:/TTD");

  const std::string cwd = fs::current_path();
  ASSERT_EQ(chdir(WineFolderToLinux("C:\\TTD\\").c_str()), 0);
  EXPECT_EQ(fs::current_path(), fs::canonical(prefix_ + "/drive_c/ttd"));
  ASSERT_EQ(chdir(cwd.c_str()), 0);

  SetEnv("WINEPREFIX", prefix_ + "/");
  EXPECT_EQ(WineFolderToLinux("C:\\ttd"), c + "/ttd");
}

TEST_F(Registry, FoldersThatCannotBeMapped) {
  EXPECT_EQ(WineFolderToLinux("/usr/games/ttd/"), "/usr/games/ttd/");
  EXPECT_EQ(WineFolderToLinux(""), "");
  EXPECT_EQ(WineFolderToLinux("C"), "");
  EXPECT_EQ(WineFolderToLinux("TTD\\"), "");
  EXPECT_EQ(WineFolderToLinux("1:\\TTD"), "");
  EXPECT_EQ(WineFolderToLinux("\\\\server\\share\\TTD"), "");
  EXPECT_EQ(WineFolderToLinux(":\\"), "");
}

}  // namespace
