#include "registry.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <map>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

namespace {

// Wine's system.reg of a well-used prefix is some tens of MiB; anything far past that is not one,
// and reading it would only cost memory.
constexpr int64_t kMaxRegistryFile = int64_t{256} << 20;
constexpr size_t kMaxOpenKeys = 4096;
constexpr std::string_view kHeader = "WINE REGISTRY Version 2";
constexpr size_t npos = std::string_view::npos;

struct RegValue {
  std::u16string Name;  // folded
  uint32_t Type;
  std::string Data;  // as the A operations give it: strings in UTF-8
};

struct OpenKey {
  std::u16string Path;  // folded, names joined by one backslash, "" for the root
  std::vector<RegValue> Values;
};

std::map<uint32_t, OpenKey>& OpenKeys() {
  static std::map<uint32_t, OpenKey> keys;
  return keys;
}

// ---- Text: UTF-8 outside, UTF-16 inside, as in Wine.

// One character from s[i], moving i past it. A byte that starts no valid sequence stands for
// itself (as Latin-1), so nothing is lost and nothing is read past the end.
char32_t DecodeUtf8(std::string_view s, size_t& i) {
  const uint8_t b0 = static_cast<uint8_t>(s[i]);
  const size_t len = b0 < 0x80         ? 1
                     : (b0 >> 5) == 6  ? 2
                     : (b0 >> 4) == 14 ? 3
                     : (b0 >> 3) == 30 ? 4
                                       : 0;
  if (len == 1 || len == 0 || len > s.size() - i) {
    ++i;
    return b0;
  }
  char32_t cp = b0 & (0x7F >> len);
  for (size_t k = 1; k < len; ++k) {
    const uint8_t b = static_cast<uint8_t>(s[i + k]);
    if ((b & 0xC0) != 0x80) {
      ++i;
      return b0;
    }
    cp = (cp << 6) | (b & 0x3F);
  }
  static constexpr char32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
  if (cp < kLeast[len] || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) {
    ++i;
    return b0;
  }
  i += len;
  return cp;
}

void AppendUtf16(std::u16string& out, char32_t cp) {
  if (cp > 0xFFFF) {
    cp -= 0x10000;
    out += static_cast<char16_t>(0xD800 + (cp >> 10));
    out += static_cast<char16_t>(0xDC00 + (cp & 0x3FF));
  } else {
    out += static_cast<char16_t>(cp);
  }
}

std::u16string Utf8ToUtf16(std::string_view s) {
  std::u16string out;
  for (size_t i = 0; i < s.size();) AppendUtf16(out, DecodeUtf8(s, i));
  return out;
}

// A lone surrogate has no single-byte form and becomes '?', as the A operations give it.
std::string Utf16ToUtf8(std::u16string_view s) {
  std::string out;
  for (size_t i = 0; i < s.size(); ++i) {
    char32_t cp = s[i];
    if (cp >= 0xD800 && cp <= 0xDBFF && i + 1 < s.size() && s[i + 1] >= 0xDC00 &&
        s[i + 1] <= 0xDFFF) {
      cp = 0x10000 + ((cp - 0xD800) << 10) + (s[++i] - 0xDC00);
    } else if (cp >= 0xD800 && cp <= 0xDFFF) {
      out += '?';
      continue;
    }
    if (cp < 0x80) {
      out += static_cast<char>(cp);
    } else if (cp < 0x800) {
      out += static_cast<char>(0xC0 | (cp >> 6));
      out += static_cast<char>(0x80 | (cp & 0x3F));
    } else if (cp < 0x10000) {
      out += static_cast<char>(0xE0 | (cp >> 12));
      out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
      out += static_cast<char>(0x80 | (cp & 0x3F));
    } else {
      out += static_cast<char>(0xF0 | (cp >> 18));
      out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
      out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
      out += static_cast<char>(0x80 | (cp & 0x3F));
    }
  }
  return out;
}

// Bytes stored as UTF-16LE code units; an odd last byte is half a code unit and is dropped.
std::string Utf16LeBytesToUtf8(std::string_view bytes) {
  std::u16string units;
  for (size_t i = 0; i + 1 < bytes.size(); i += 2)
    units += static_cast<char16_t>(static_cast<uint8_t>(bytes[i]) |
                                   (static_cast<uint8_t>(bytes[i + 1]) << 8));
  return Utf16ToUtf8(units);
}

// Case folding for names: ASCII, Latin-1, Greek and Cyrillic capitals.
char16_t Fold(char16_t c) {
  if ((c >= u'A' && c <= u'Z') || (c >= 0xC0 && c <= 0xDE && c != 0xD7) ||
      (c >= 0x391 && c <= 0x3AB && c != 0x3A2) || (c >= 0x410 && c <= 0x42F))
    return static_cast<char16_t>(c + 0x20);
  if (c >= 0x400 && c <= 0x40F) return static_cast<char16_t>(c + 0x50);
  return c;
}

std::u16string Folded(std::u16string s) {
  for (char16_t& c : s) c = Fold(c);
  return s;
}

// A key path folded, with its names joined by one backslash: empty names (doubled or trailing
// backslashes) are dropped, as Wine does.
std::u16string KeyPath(std::u16string_view path) {
  std::u16string out;
  size_t i = 0;
  while (i < path.size()) {
    const size_t end = std::min(path.find(u'\\', i), path.size());
    if (end > i) {
      if (!out.empty()) out += u'\\';
      for (size_t k = i; k < end; ++k) out += Fold(path[k]);
    }
    i = end + 1;
  }
  return out;
}

// ---- Wine's registry file.

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

bool HexAt(std::string_view s, size_t i) {
  return i < s.size() && HexDigit(s[i]) >= 0;
}

size_t SkipBlanks(std::string_view s, size_t i) {
  while (i < s.size() && (s[i] == ' ' || s[i] == '\t')) ++i;
  return i;
}

struct LineReader {
  std::string_view Text;
  size_t Pos = 0;

  bool Next(std::string_view& line) {
    if (Pos >= Text.size()) return false;
    const size_t eol = std::min(Text.find('\n', Pos), Text.size());
    line = Text.substr(Pos, eol - Pos);
    Pos = eol + 1;
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    return true;
  }
};

// An escaped string from s[i] up to the unescaped end character, into out. Gives the position
// behind the end character, or npos when the line ends first.
size_t ParseString(std::string_view s, size_t i, char end, std::u16string& out) {
  while (i < s.size() && s[i] != end) {
    if (s[i] == '\\') {
      if (++i >= s.size()) return npos;
      const char c = s[i];
      const char16_t named = c == 'a'   ? u'\a'
                             : c == 'b' ? u'\b'
                             : c == 'e' ? u'\x1b'
                             : c == 'f' ? u'\f'
                             : c == 'n' ? u'\n'
                             : c == 'r' ? u'\r'
                             : c == 't' ? u'\t'
                             : c == 'v' ? u'\v'
                                        : u'\0';
      if (named != u'\0') {
        out += named;
        ++i;
        continue;
      }
      if (c == 'x') {  // up to four hex digits; none leaves a plain 'x'
        ++i;
        if (!HexAt(s, i)) {
          out += u'x';
          continue;
        }
        char16_t unit = 0;
        for (int k = 0; k < 4 && HexAt(s, i); ++k)
          unit = static_cast<char16_t>(unit * 16 + HexDigit(s[i++]));
        out += unit;
        continue;
      }
      if (c >= '0' && c <= '7') {  // up to three octal digits
        char16_t unit = 0;
        for (int k = 0; k < 3 && i < s.size() && s[i] >= '0' && s[i] <= '7'; ++k)
          unit = static_cast<char16_t>(unit * 8 + (s[i++] - '0'));
        out += unit;
        continue;
      }
      // Any other escaped character stands for itself: \\ \" \] ...
    }
    AppendUtf16(out, DecodeUtf8(s, i));
  }
  return i < s.size() ? i + 1 : npos;
}

// Bytes of a list such as "01,02,\" that goes on over the following lines.
bool ParseHexList(std::string_view line, size_t i, LineReader& lines, std::string& out) {
  for (;;) {
    while (HexAt(line, i)) {
      int value = HexDigit(line[i++]);
      if (HexAt(line, i)) value = value * 16 + HexDigit(line[i++]);
      if (HexAt(line, i)) return false;  // more than one byte
      out += static_cast<char>(value);
      i = SkipBlanks(line, i);
      if (i < line.size() && line[i] == ',') i = SkipBlanks(line, i + 1);
    }
    if (i == line.size()) return true;
    if (line[i] != '\\' || !lines.Next(line)) return false;
    i = SkipBlanks(line, 0);
  }
}

bool StartsWith(std::string_view s, size_t i, std::string_view prefix) {
  return s.substr(std::min(i, s.size())).substr(0, prefix.size()) == prefix;
}

bool IsStringType(uint32_t type) {
  return type == REG_SZ || type == REG_EXPAND_SZ || type == REG_MULTI_SZ;
}

// One value line: "name"=... or @=..., in one of Wine's forms.
bool ParseValue(std::string_view line, LineReader& lines, RegValue& value) {
  std::u16string name;
  size_t i = 1;  // behind '@', the unnamed value
  if (line[0] == '"') {
    i = ParseString(line, 1, '"', name);
    if (i == npos) return false;
  }
  i = SkipBlanks(line, i);
  if (i >= line.size() || line[i] != '=') return false;
  i = SkipBlanks(line, i + 1);
  value.Name = Folded(std::move(name));

  static constexpr std::pair<std::string_view, uint32_t> kStringForms[] = {
      {"\"", REG_SZ},
      {"str:\"", REG_SZ},
      {"str(2):\"", REG_EXPAND_SZ},
      {"str(7):\"", REG_MULTI_SZ}};
  for (const auto& [form, type] : kStringForms) {
    if (!StartsWith(line, i, form)) continue;
    std::u16string text;
    if (ParseString(line, i + form.size(), '"', text) == npos) return false;
    text += u'\0';  // the stored string counts its terminating NUL
    value.Type = type;
    value.Data = Utf16ToUtf8(text);
    return true;
  }
  if (StartsWith(line, i, "dword:")) {
    i += 6;
    uint32_t number = 0;
    int digits = 0;
    for (; HexAt(line, i); ++digits) number = number * 16 + HexDigit(line[i++]);
    if (digits == 0 || digits > 8) return false;
    value.Type = REG_DWORD;
    value.Data.clear();
    for (int k = 0; k < 4; ++k) value.Data += static_cast<char>((number >> (8 * k)) & 0xFF);
    return true;
  }
  if (StartsWith(line, i, "hex:")) {
    value.Type = REG_BINARY;
    i += 4;
  } else if (StartsWith(line, i, "hex(")) {
    i += 4;
    uint64_t type = 0;
    int digits = 0;
    for (; HexAt(line, i); ++digits) {
      type = type * 16 + HexDigit(line[i++]);
      if (type > 0xFFFFFFFFu) return false;
    }
    if (digits == 0 || !StartsWith(line, i, "):")) return false;
    value.Type = static_cast<uint32_t>(type);
    i += 2;
  } else {
    return false;
  }
  std::string bytes;
  if (!ParseHexList(line, i, lines, bytes)) return false;
  value.Data = IsStringType(value.Type) ? Utf16LeBytesToUtf8(bytes) : std::move(bytes);
  return true;
}

// Whether the key at path exists in the file's text, and the values it holds. A key exists when
// a section names it or one below it; a key named by several sections holds all their values.
bool FindKey(std::string_view text, const std::u16string& path, std::vector<RegValue>& values) {
  LineReader lines{text};
  std::string_view line;
  if (!lines.Next(line) || line != kHeader) return false;
  bool exists = path.empty();
  bool inKey = false;
  while (lines.Next(line)) {
    if (line.empty()) continue;
    if (line[0] == '[') {
      std::u16string name;
      inKey = false;
      if (ParseString(line, 1, ']', name) == npos) continue;
      name = KeyPath(name);
      if (name == path) {
        exists = inKey = true;
      } else if (name.size() > path.size() && name.compare(0, path.size(), path) == 0 &&
                 name[path.size()] == u'\\') {
        exists = true;
      }
    } else if (inKey && (line[0] == '"' || line[0] == '@')) {
      RegValue value;
      if (ParseValue(line, lines, value)) values.push_back(std::move(value));
    }
  }
  return exists;
}

// Whether the file is a 64-bit prefix's: Wine says so before the first key.
bool IsWin64(std::string_view text) {
  LineReader lines{text};
  std::string_view line;
  while (lines.Next(line) && (line.empty() || line[0] != '['))
    if (line == "#arch=win64") return true;
  return false;
}

// The path as a 32-bit program sees it on a 64-bit prefix: HKLM\Software lies under
// Software\Wow6432Node, where the game's 32-bit installer wrote its key.
std::u16string Wow64Path(const std::u16string& path) {
  const std::u16string software = u"software";
  const std::u16string wow = u"software\\wow6432node";
  if (path != software && !path.starts_with(software + u'\\')) return path;
  if (path == wow || path.starts_with(wow + u'\\')) return path;
  return wow + path.substr(software.size());
}

// The whole file, when it is a readable regular file within the size limit. Opened without
// blocking, so that a pipe in the file's place cannot hang the program.
bool ReadRegistryFile(const std::string& path, std::string& text) {
  if (path.empty()) return false;
  const int fd = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (fd < 0) return false;
  struct stat info {};
  const bool ok =
      fstat(fd, &info) == 0 && S_ISREG(info.st_mode) && info.st_size <= kMaxRegistryFile;
  if (ok) {
    text.resize(static_cast<size_t>(info.st_size));
    size_t got = 0;
    while (got < text.size()) {
      const ssize_t n = read(fd, text.data() + got, text.size() - got);
      if (n < 0 && errno == EINTR) continue;
      if (n <= 0) break;
      got += static_cast<size_t>(n);
    }
    text.resize(got);
  }
  close(fd);
  return ok;
}

uint32_t NewHandle() {
  static uint32_t last = 0x100;
  do {
    last = last >= 0x7FFFFFF0u ? 0x104u : last + 4;  // never 0, never a predefined root
  } while (OpenKeys().count(last) != 0);
  return last;
}

std::string JoinName(const std::string& folder, const std::string& name) {
  return folder.empty() || folder.back() == '/' ? folder + name : folder + '/' + name;
}

std::string WinePrefix() {
  const char* prefix = std::getenv("WINEPREFIX");
  if (prefix != nullptr && *prefix != '\0') return prefix;
  const char* home = std::getenv("HOME");
  if (home != nullptr && *home != '\0') return JoinName(home, ".wine");
  return "";
}

// The name in folder as it stands on disk: the exact one when it exists, else the first entry
// that matches without regard to case, else the name unchanged.
std::string NameOnDisk(const std::string& folder, const std::string& name) {
  std::error_code error;
  if (std::filesystem::exists(JoinName(folder, name), error)) return name;
  const std::u16string wanted = Folded(Utf8ToUtf16(name));
  for (std::filesystem::directory_iterator it(folder, error), end; !error && it != end;
       it.increment(error)) {
    const std::string entry = it->path().filename().string();
    if (Folded(Utf8ToUtf16(entry)) == wanted) return entry;
  }
  return name;
}

}  // namespace

RegistryCalls gRegistryCalls = {RegOpenKeyA, RegQueryValueExA, RegCloseKey};

std::string GetRegString(uint32_t hKey, const std::string& SubKey, const std::string& ValueName,
                         const std::string& Default) {
  std::string result = Default;
  uint32_t key = 0;
  gRegistryCalls.OpenKey(hKey, SubKey.c_str(), &key);
  uint32_t type = 0;
  uint32_t size = 0;
  if (gRegistryCalls.QueryValueEx(key, ValueName.c_str(), nullptr, &type, nullptr, &size) == 0 &&
      type == REG_SZ) {
    std::string buffer(size, ' ');
    uint32_t unusedType = 0;
    gRegistryCalls.QueryValueEx(key, ValueName.c_str(), nullptr, &unusedType,
                                reinterpret_cast<uint8_t*>(buffer.data()), &size);
    // The system keeps the first NUL's position in 16 bits. A NUL past 32,767 does not fit
    // there; the text before it is given whole all the same, as for a shorter value.
    const size_t firstNul = buffer.find('\0');
    result = firstNul == std::string::npos ? buffer : buffer.substr(0, firstNul);
  }
  gRegistryCalls.CloseKey(key);
  return result;
}

int32_t RegOpenKeyA(uint32_t hKey, const char* SubKey, uint32_t* Result) {
  if (Result == nullptr) return ERROR_INVALID_PARAMETER;
  *Result = 0;
  OpenKey key;
  if (hKey != HKEY_LOCAL_MACHINE) {
    const auto it = OpenKeys().find(hKey);
    if (it == OpenKeys().end()) return ERROR_INVALID_HANDLE;
    key.Path = it->second.Path;
  }
  const std::string_view sub = SubKey != nullptr ? SubKey : "";
  if (!sub.empty() && sub[0] == '\\') return ERROR_BAD_PATHNAME;
  const std::u16string below = KeyPath(Utf8ToUtf16(sub));
  if (!below.empty()) key.Path = key.Path.empty() ? below : key.Path + u'\\' + below;
  if (OpenKeys().size() >= kMaxOpenKeys) return ERROR_TOO_MANY_OPEN_FILES;

  std::string text;
  if (!ReadRegistryFile(WineRegistryFile(), text)) return ERROR_FILE_NOT_FOUND;
  // The 32-bit view first, as the game has it; the key itself where that view has none.
  const std::u16string view = IsWin64(text) ? Wow64Path(key.Path) : key.Path;
  if (!(view != key.Path && FindKey(text, view, key.Values)) &&
      !FindKey(text, key.Path, key.Values))
    return ERROR_FILE_NOT_FOUND;
  *Result = NewHandle();
  OpenKeys()[*Result] = std::move(key);
  return ERROR_SUCCESS;
}

int32_t RegQueryValueExA(uint32_t hKey, const char* ValueName, uint32_t* Reserved, uint32_t* Type,
                         uint8_t* Data, uint32_t* DataSize) {
  const auto it = OpenKeys().find(hKey);
  if (it == OpenKeys().end()) return ERROR_INVALID_HANDLE;
  if (Reserved != nullptr || (Data != nullptr && DataSize == nullptr))
    return ERROR_INVALID_PARAMETER;
  const std::u16string name = Folded(Utf8ToUtf16(ValueName != nullptr ? ValueName : ""));
  const std::vector<RegValue>& values = it->second.Values;
  const RegValue* found = nullptr;
  for (auto v = values.rbegin(); v != values.rend() && found == nullptr; ++v)  // the last one wins
    if (v->Name == name) found = &*v;
  if (found == nullptr) return ERROR_FILE_NOT_FOUND;

  const auto size = static_cast<uint32_t>(found->Data.size());
  if (Type != nullptr) *Type = found->Type;
  if (Data != nullptr) {
    if (*DataSize < size) {
      *DataSize = size;
      return ERROR_MORE_DATA;
    }
    std::memcpy(Data, found->Data.data(), size);
  }
  if (DataSize != nullptr) *DataSize = size;
  return ERROR_SUCCESS;
}

int32_t RegCloseKey(uint32_t hKey) {
  if (hKey == HKEY_LOCAL_MACHINE) return ERROR_SUCCESS;
  return OpenKeys().erase(hKey) != 0 ? ERROR_SUCCESS : ERROR_INVALID_HANDLE;
}

std::string WineRegistryFile() {
  const std::string prefix = WinePrefix();
  return prefix.empty() ? "" : JoinName(prefix, "system.reg");
}

std::string WineFolderToLinux(const std::string& windowsFolder) {
  if (!windowsFolder.empty() && windowsFolder[0] == '/') return windowsFolder;
  const char letter = windowsFolder.size() >= 2 ? windowsFolder[0] : '\0';
  const bool isLetter = (letter >= 'A' && letter <= 'Z') || (letter >= 'a' && letter <= 'z');
  if (!isLetter || windowsFolder[1] != ':') return "";
  const std::string prefix = WinePrefix();
  if (prefix.empty()) return "";

  // The names behind the drive; "." stays, ".." goes up but never above the drive's root.
  std::vector<std::string> names;
  size_t i = 2;
  while (i < windowsFolder.size()) {
    const size_t end = std::min(windowsFolder.find_first_of("\\/", i), windowsFolder.size());
    const std::string name = windowsFolder.substr(i, end - i);
    if (name == "..") {
      if (!names.empty()) names.pop_back();
    } else if (!name.empty() && name != ".") {
      names.push_back(name);
    }
    i = end + 1;
  }
  std::string folder = JoinName(prefix, "dosdevices/");
  folder += static_cast<char>(letter | 0x20);
  folder += ':';
  for (const std::string& name : names) folder = JoinName(folder, NameOnDisk(folder, name));
  const char last = windowsFolder.back();
  if (names.empty() || last == '\\' || last == '/') folder += '/';
  return folder;
}
