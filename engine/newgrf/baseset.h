// Base-set descriptors (*.obg) and the palette a file declares. Standard library only: a
// descriptor is outside text, read within fixed bounds into a flat record.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vossel {

// A descriptor longer than this is not one: the real ones are a few KiB.
constexpr size_t kMaxDescriptorBytes = 1 << 20;
// Descriptors looked at in one folder, so that a folder of thousands stays quick.
constexpr size_t kMaxDescriptorsPerFolder = 256;

enum class PaletteKind : uint8_t { Windows, Dos };

// What a descriptor's `palette =` line says; anything but DOS or Windows (any case) is Unknown.
enum class DescriptorPalette : uint8_t { None, Windows, Dos, Unknown };

// The [metadata] and [files] entries that matter here. Values are trimmed; a key given twice keeps
// its last value; the plain `description` is kept, the translated ones are not.
struct BaseSetDescriptor {
  std::string Name;
  std::string ShortName;
  std::string Version;
  std::string Description;
  std::string PaletteText;
  DescriptorPalette Palette = DescriptorPalette::None;
  std::string Blitter;
  std::string Base;
  std::string Logos;
  std::string Arctic;
  std::string Tropical;
  std::string Toyland;
  std::string Extra;
};

// Lines end at LF (a CR before it is dropped); a UTF-8 byte-order mark is skipped; lines starting
// ';' or '#' are comments; section and key names compare without case. Never fails: text that is
// not a descriptor gives empty fields.
BaseSetDescriptor ParseDescriptor(std::string_view text);

enum class DescriptorRead : uint8_t { Ok, CannotOpen, TooLarge };
DescriptorRead ReadDescriptor(const std::string& path, BaseSetDescriptor& descriptor);

// Which [files] entry names a file.
enum class BaseSetRole : uint8_t { None, Base, Logos, Arctic, Tropical, Toyland, Extra };
// The entry naming `fileName` (without case, as the game's own files are named in capitals by
// the descriptors of the original sets); None when no entry does.
BaseSetRole RoleOf(const BaseSetDescriptor& descriptor, std::string_view fileName);

struct DescriptorMatch {
  std::string Path;  // the *.obg
  BaseSetDescriptor Descriptor;
  BaseSetRole Role = BaseSetRole::None;
};
// The descriptor beside `grfPath` that names it: of several, the first by file name. Nothing when
// no descriptor in the folder names it.
std::optional<DescriptorMatch> FindDescriptorFor(const std::string& grfPath);

// OpenTTD's base-set folders: /usr/share/games/openttd/baseset, then ~/.local/share/openttd/baseset
// and ~/.openttd/baseset when HOME is set.
std::vector<std::string> DefaultBaseSetFolders();

struct InstalledBaseSet {
  std::string DescriptorPath;
  BaseSetDescriptor Descriptor;
  std::string BasePath;   // the `base =` file found beside the descriptor; empty when absent
  std::string ExtraPath;  // the `extra =` file, likewise
};
// The descriptors in the folders and their subfolders (one level), in folder order, then by path.
std::vector<InstalledBaseSet> FindInstalledBaseSets(
    const std::vector<std::string>& folders = DefaultBaseSetFolders());

enum class PaletteSource : uint8_t { Action14, Descriptor, Nothing };
struct PaletteDeclaration {
  PaletteKind Kind = PaletteKind::Windows;
  bool Toyland = false;  // the descriptor names the file as its toyland one
  PaletteSource Source = PaletteSource::Nothing;
  bool Either = false;         // Action 14 said A: either palette; Windows is taken
  std::string DescriptorName;  // the descriptor's file name, when it is the source or says toyland
};
// Action 14's PALS byte first (D, W, A), then the descriptor's palette line, then Windows. A PALS
// byte other than D, W or A, and a descriptor palette that is neither, count as not declared.
PaletteDeclaration DeclaredPalette(std::optional<uint8_t> pals,
                                   const std::optional<DescriptorMatch>& descriptor);

// "Windows", "DOS", "DOS toyland", "Windows toyland".
std::string PaletteName(PaletteKind kind, bool toyland);
// "DOS (declared by Action 14)", "DOS (declared by opengfx.obg)", "Windows (nothing declared)",
// "Windows (Action 14 allows either)".
std::string DeclarationText(const PaletteDeclaration& declaration);

}  // namespace vossel
