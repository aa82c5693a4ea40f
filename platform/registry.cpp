#include "registry.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <map>
#include <string_view>
#include <utility>
#include <vector>

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringDecoder>
#include <QStringList>
#include <QtEndian>

namespace vossel {

namespace {

// Wine's system.reg of a well-used prefix is some tens of MiB; anything far past that is not one,
// and reading it would only cost time.
constexpr qint64 kMaxRegistryFile = qint64{256} << 20;
constexpr size_t kMaxOpenKeys = 4096;

struct RegValue {
  QString Name;  // case-folded
  uint32_t Type = 0;
  QByteArray Data;  // as the A operations give it: strings in UTF-8
};

struct OpenKey {
  QString Path;  // case-folded, names joined by one backslash, "" for the root
  std::vector<RegValue> Values;
};

std::map<uint32_t, OpenKey>& OpenKeys() {
  static std::map<uint32_t, OpenKey> keys;
  return keys;
}

// Bytes as text: UTF-8 where they are that, else one character for each byte (Latin-1), so that
// nothing is lost.
QString Text(QByteArrayView bytes) {
  QStringDecoder utf8(QStringDecoder::Utf8,
                      QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom);
  QString text = utf8(bytes);
  return utf8.hasError() ? QString::fromLatin1(bytes) : text;
}

// A key path case-folded, its names joined by one backslash: empty names (doubled or trailing
// backslashes) are dropped, as Wine does.
QString KeyPath(const QString& path) {
  return path.split(u'\\', Qt::SkipEmptyParts).join(u'\\').toCaseFolded();
}

// ---- Wine's registry file.

// The number of hex digits from s[i] on.
qsizetype HexDigits(QStringView s, qsizetype i) {
  qsizetype n = 0;
  while (i + n < s.size() && s[i + n].unicode() < 0x80 && std::isxdigit(s[i + n].unicode())) ++n;
  return n;
}

qsizetype SkipBlanks(QStringView s, qsizetype i) {
  while (i < s.size() && (s[i] == u' ' || s[i] == u'\t')) ++i;
  return i;
}

struct LineReader {
  QFile& File;

  bool Next(QString& line) {
    QByteArray bytes = File.readLine();
    if (bytes.isEmpty()) return false;  // the end, or a read error
    if (bytes.endsWith('\n')) bytes.chop(1);
    if (bytes.endsWith('\r')) bytes.chop(1);
    line = Text(bytes);
    return true;
  }
};

// An escaped string from s[i] up to the unescaped end character, into out. Gives the position
// behind the end character, or -1 when the line ends first.
qsizetype ParseString(QStringView s, qsizetype i, char16_t end, QString& out) {
  while (i < s.size() && s[i] != end) {
    if (s[i] != u'\\') {
      out += s[i++];
      continue;
    }
    if (++i >= s.size()) return -1;
    const QChar c = s[i];
    const qsizetype named = QStringView(u"abefnrtv").indexOf(c);
    qsizetype digits = 0;
    if (named >= 0) {
      out += QStringView(u"\a\b\x1b\f\n\r\t\v")[named];
      ++i;
    } else if (c == u'x' && (digits = std::min<qsizetype>(HexDigits(s, i + 1), 4)) > 0) {
      out += QChar(s.sliced(i + 1, digits).toUShort(nullptr, 16));
      i += 1 + digits;
    } else if (c >= u'0' && c <= u'7') {  // up to three octal digits
      while (digits < 3 && i + digits < s.size() && s[i + digits] >= u'0' && s[i + digits] <= u'7')
        ++digits;
      out += QChar(s.sliced(i, digits).toUShort(nullptr, 8));
      i += digits;
    } else {
      out += s[i++];  // any other escaped character stands for itself: \\ \" \] \x without digits
    }
  }
  return i < s.size() ? i + 1 : -1;
}

// Bytes of a list such as "01,02,\" that goes on over the following lines.
bool ParseHexList(QString line, qsizetype i, LineReader& lines, QByteArray& out) {
  for (;;) {
    for (qsizetype digits; (digits = HexDigits(line, i)) > 0;) {
      if (digits > 2) return false;  // more than one byte
      out += static_cast<char>(QStringView(line).sliced(i, digits).toUShort(nullptr, 16));
      i = SkipBlanks(line, i + digits);
      if (i < line.size() && line[i] == u',') i = SkipBlanks(line, i + 1);
    }
    if (i == line.size()) return true;
    if (line[i] != u'\\' || !lines.Next(line)) return false;
    i = SkipBlanks(line, 0);
  }
}

bool IsStringType(uint32_t type) {
  return type == REG_SZ || type == REG_EXPAND_SZ || type == REG_MULTI_SZ;
}

// One value line: "name"=... or @=..., in one of Wine's forms.
bool ParseValue(QStringView line, LineReader& lines, RegValue& value) {
  qsizetype i = 1;  // behind '@', the unnamed value
  if (line[0] == u'"' && (i = ParseString(line, 1, u'"', value.Name)) < 0) return false;
  value.Name = value.Name.toCaseFolded();
  i = SkipBlanks(line, i);
  if (i >= line.size() || line[i] != u'=') return false;
  const QStringView rest = line.sliced(SkipBlanks(line, i + 1));

  static constexpr std::pair<std::u16string_view, uint32_t> kStringForms[] = {
      {u"\"", REG_SZ},
      {u"str:\"", REG_SZ},
      {u"str(2):\"", REG_EXPAND_SZ},
      {u"str(7):\"", REG_MULTI_SZ}};
  for (const auto& [form, type] : kStringForms) {
    if (!rest.startsWith(form)) continue;
    QString text;
    if (ParseString(rest, static_cast<qsizetype>(form.size()), u'"', text) < 0) return false;
    text += QChar(0);  // the stored string counts its terminating NUL
    value.Type = type;
    value.Data = text.toUtf8();  // a lone surrogate becomes '?'
    return true;
  }
  bool ok = false;
  if (rest.startsWith(u"dword:")) {
    const qsizetype digits = HexDigits(rest, 6);
    const uint32_t number = rest.sliced(6, digits).toUInt(&ok, 16);
    if (digits == 0 || digits > 8 || !ok) return false;
    value.Type = REG_DWORD;
    value.Data.resize(sizeof number);
    qToLittleEndian(number, value.Data.data());
    return true;
  }
  qsizetype at = 4;
  if (rest.startsWith(u"hex:")) {
    value.Type = REG_BINARY;
  } else if (rest.startsWith(u"hex(")) {
    const qsizetype digits = HexDigits(rest, 4);
    value.Type = rest.sliced(4, digits).toUInt(&ok, 16);
    at += digits + 2;
    if (digits == 0 || !ok || !rest.sliced(4 + digits).startsWith(u"):")) return false;
  } else {
    return false;
  }
  QByteArray bytes;
  if (!ParseHexList(rest.toString(), at, lines, bytes)) return false;
  if (!IsStringType(value.Type)) {
    value.Data = bytes;
    return true;
  }
  // String data in hex is UTF-16LE; an odd last byte is half a code unit and is dropped.
  QStringDecoder utf16(QStringDecoder::Utf16LE,
                       QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom);
  value.Data = QString(utf16(bytes.first(bytes.size() & ~qsizetype{1}))).toUtf8();
  return true;
}

// The path as a 32-bit program sees it on a 64-bit prefix: HKLM\Software lies under
// Software\Wow6432Node, where the game's 32-bit installer wrote its key.
QString Wow64Path(const QString& path) {
  QStringList names = path.split(u'\\');
  if (names[0] != u"software" || (names.size() > 1 && names[1] == u"wow6432node")) return path;
  names.insert(1, QStringLiteral("wow6432node"));
  return names.join(u'\\');
}

// A key as one reading of the file sees it. It exists when a section names it or one below it; a
// key named by several sections holds all their values.
struct KeyInFile {
  QString Path;
  bool Exists = Path.isEmpty();
  bool Inside = false;  // the current section is this key's
  std::vector<RegValue> Values = {};

  void Section(bool named, const QString& name) {
    Inside = named && name == Path;
    Exists = Exists || Inside || (named && name.startsWith(Path + u'\\'));
  }
};

// The values of the key at path in Wine's file; false when the file has no such key. A missing,
// unreadable or foreign file has none.
bool ReadKey(const QString& fileName, const QString& path, std::vector<RegValue>& values) {
  QFile file(fileName);
  // Looked at before opening: a pipe in the file's place would wait for a writer.
  const QFileInfo info(file);
  if (!info.isFile() || info.size() > kMaxRegistryFile || !file.open(QIODevice::ReadOnly))
    return false;
  LineReader lines{file};
  QString line;
  if (!lines.Next(line) || line != u"WINE REGISTRY Version 2") return false;
  // On a 64-bit prefix, which Wine marks before the first key, the 32-bit view is read as well.
  KeyInFile key{path}, view{path};
  bool beforeKeys = true;
  while (lines.Next(line)) {
    if (line.isEmpty()) continue;
    if (line[0] == u'[') {
      beforeKeys = false;
      QString name;
      const bool named = ParseString(line, 1, u']', name) >= 0;
      name = KeyPath(name);
      key.Section(named, name);
      view.Section(named, name);
    } else if (beforeKeys && line == u"#arch=win64") {
      view = KeyInFile{Wow64Path(path)};
    } else if ((key.Inside || view.Inside) && (line[0] == u'"' || line[0] == u'@')) {
      RegValue value;
      if (!ParseValue(line, lines, value)) continue;
      if (key.Inside) key.Values.push_back(value);
      if (view.Inside) view.Values.push_back(value);
    }
  }
  // The 32-bit view first, as the game has it; the key itself where that view has none.
  KeyInFile& found = view.Path != path && view.Exists ? view : key;
  values = std::move(found.Values);
  return found.Exists;
}

uint32_t NewHandle() {
  static uint32_t last = 0x100;
  do {
    last = last >= 0x7FFFFFF0u ? 0x104u : last + 4;  // never 0, never a predefined root
  } while (OpenKeys().count(last) != 0);
  return last;
}

QString WinePrefix() {
  const QString prefix = qEnvironmentVariable("WINEPREFIX");
  if (!prefix.isEmpty()) return prefix;
  const QString home = qEnvironmentVariable("HOME");
  return home.isEmpty() ? QString() : QDir(home).filePath(QStringLiteral(".wine"));
}

// The name in folder as it stands on disk: the exact one when it exists, else the first entry
// that matches without regard to case, else the name unchanged.
QString NameOnDisk(const QDir& folder, const QString& name) {
  if (folder.exists(name)) return name;
  const QStringList entries =
      folder.entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
  const auto it = std::find_if(entries.begin(), entries.end(), [&](const QString& entry) {
    return entry.compare(name, Qt::CaseInsensitive) == 0;
  });
  return it == entries.end() ? name : *it;
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
  key.Path = KeyPath(key.Path + u'\\' + Text(sub));
  if (OpenKeys().size() >= kMaxOpenKeys) return ERROR_TOO_MANY_OPEN_FILES;
  if (!ReadKey(QFile::decodeName(WineRegistryFile().c_str()), key.Path, key.Values))
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
  const QString name = Text(ValueName != nullptr ? ValueName : "").toCaseFolded();
  const std::vector<RegValue>& values = it->second.Values;
  const auto found = std::find_if(values.rbegin(), values.rend(),  // the last one wins
                                  [&](const RegValue& v) { return v.Name == name; });
  if (found == values.rend()) return ERROR_FILE_NOT_FOUND;

  const auto size = static_cast<uint32_t>(found->Data.size());
  if (Type != nullptr) *Type = found->Type;
  if (Data != nullptr) {
    if (*DataSize < size) {
      *DataSize = size;
      return ERROR_MORE_DATA;
    }
    std::memcpy(Data, found->Data.constData(), size);
  }
  if (DataSize != nullptr) *DataSize = size;
  return ERROR_SUCCESS;
}

int32_t RegCloseKey(uint32_t hKey) {
  if (hKey == HKEY_LOCAL_MACHINE) return ERROR_SUCCESS;
  return OpenKeys().erase(hKey) != 0 ? ERROR_SUCCESS : ERROR_INVALID_HANDLE;
}

std::string WineRegistryFile() {
  const QString prefix = WinePrefix();
  if (prefix.isEmpty()) return "";
  return QFile::encodeName(QDir(prefix).filePath(QStringLiteral("system.reg"))).toStdString();
}

std::string WineFolderToLinux(const std::string& windowsFolder) {
  if (!windowsFolder.empty() && windowsFolder[0] == '/') return windowsFolder;
  const char letter = windowsFolder.size() >= 2 ? windowsFolder[0] : '\0';
  const bool isLetter = (letter >= 'A' && letter <= 'Z') || (letter >= 'a' && letter <= 'z');
  if (!isLetter || windowsFolder[1] != ':') return "";
  const QString prefix = WinePrefix();
  if (prefix.isEmpty()) return "";

  // The names behind the drive; ".." goes up but never above the drive's root, where cleaning
  // leaves it at the front.
  QString names = Text(std::string_view(windowsFolder).substr(2));
  QStringList below =
      QDir::cleanPath(u'/' + names.replace(u'\\', u'/')).split(u'/', Qt::SkipEmptyParts);
  below.removeAll(QStringLiteral(".."));
  QString folder =
      QDir(prefix).filePath(QStringLiteral("dosdevices/") + QChar(letter | 0x20) + u':');
  for (const QString& name : below) folder = QDir(folder).filePath(NameOnDisk(QDir(folder), name));
  const char last = windowsFolder.back();
  if (below.isEmpty() || last == '\\' || last == '/') folder += u'/';
  return QFile::encodeName(folder).toStdString();
}

}  // namespace vossel
