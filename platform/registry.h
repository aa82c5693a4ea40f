// modRegistry: reading one string value from the registry. Linux has none, so the three registry
// operations are supplied over Wine's registry file, where a game run under Wine keeps its keys.
// Text in and out is the system's single-byte text: UTF-8 here, as Linux file names are.
#pragma once

#include <cstdint>
#include <string>

namespace vossel {

constexpr uint32_t HKEY_LOCAL_MACHINE = 0x80000002u;

// Value types.
constexpr uint32_t REG_SZ = 1;
constexpr uint32_t REG_EXPAND_SZ = 2;
constexpr uint32_t REG_BINARY = 3;
constexpr uint32_t REG_DWORD = 4;
constexpr uint32_t REG_MULTI_SZ = 7;

// Codes the registry operations return.
constexpr int32_t ERROR_SUCCESS = 0;
constexpr int32_t ERROR_FILE_NOT_FOUND = 2;
constexpr int32_t ERROR_TOO_MANY_OPEN_FILES = 4;
constexpr int32_t ERROR_INVALID_HANDLE = 6;
constexpr int32_t ERROR_INVALID_PARAMETER = 87;
constexpr int32_t ERROR_BAD_PATHNAME = 161;
constexpr int32_t ERROR_MORE_DATA = 234;

// The value ValueName of the key SubKey under hKey when it is a string (REG_SZ), cut at its first
// NUL; Default when the key, the value or a string in it cannot be had. Reports nothing.
std::string GetRegString(uint32_t hKey, const std::string& SubKey, const std::string& ValueName,
                         const std::string& Default);

// The registry operations over Wine's file. HKEY_LOCAL_MACHINE is the file's root; a missing,
// unreadable or foreign file is a registry without keys. RegOpenKeyA reads the file once and keeps
// the values of the opened key until RegCloseKey. Sub-key and value names compare without regard
// to case. In a 64-bit prefix, keys under Software are looked for first where a 32-bit program
// finds them, under Software\Wow6432Node. String values (REG_SZ, REG_EXPAND_SZ, REG_MULTI_SZ)
// come out as UTF-8, their size in those bytes, a stored NUL as one byte; string data given as
// hex bytes is UTF-16LE, and an odd last byte is dropped. A line of the file that is not UTF-8 is
// read as Latin-1.
int32_t RegOpenKeyA(uint32_t hKey, const char* SubKey, uint32_t* Result);
// Data == nullptr asks for type and size only. Reserved must be nullptr.
int32_t RegQueryValueExA(uint32_t hKey, const char* ValueName, uint32_t* Reserved, uint32_t* Type,
                         uint8_t* Data, uint32_t* DataSize);
int32_t RegCloseKey(uint32_t hKey);

// The operations GetRegString goes through: the three above, unless a test puts its own in.
struct RegistryCalls {
  int32_t (*OpenKey)(uint32_t hKey, const char* SubKey, uint32_t* Result);
  int32_t (*QueryValueEx)(uint32_t hKey, const char* ValueName, uint32_t* Reserved, uint32_t* Type,
                          uint8_t* Data, uint32_t* DataSize);
  int32_t (*CloseKey)(uint32_t hKey);
};
extern RegistryCalls gRegistryCalls;

// $WINEPREFIX/system.reg, else $HOME/.wine/system.reg; empty when neither variable is set.
std::string WineRegistryFile();

// A Windows folder such as "C:\TTD\" as the Linux folder Wine shows for it:
// "<prefix>/dosdevices/c:/TTD/". Each name is looked up without regard to case where the exact
// one does not exist. A folder that already starts with '/' is given back unchanged; empty text
// when there is no drive letter or no prefix.
std::string WineFolderToLinux(const std::string& windowsFolder);

}  // namespace vossel
