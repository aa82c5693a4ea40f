#include "baseset.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <system_error>

namespace vossel {

namespace {

namespace fs = std::filesystem;

char Lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool SameWithoutCase(std::string_view a, std::string_view b) {
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(),
                                            [](char x, char y) { return Lower(x) == Lower(y); });
}

std::string_view Trim(std::string_view s) {
  const auto blank = [](char c) { return c == ' ' || c == '\t' || c == '\r'; };
  while (!s.empty() && blank(s.front())) s.remove_prefix(1);
  while (!s.empty() && blank(s.back())) s.remove_suffix(1);
  return s;
}

DescriptorPalette PaletteOf(std::string_view text) {
  if (text.empty()) return DescriptorPalette::None;
  if (SameWithoutCase(text, "DOS")) return DescriptorPalette::Dos;
  if (SameWithoutCase(text, "Windows")) return DescriptorPalette::Windows;
  return DescriptorPalette::Unknown;
}

struct Entry {
  const char* Section;
  const char* Key;
  std::string BaseSetDescriptor::*Field;
};
constexpr Entry kEntries[] = {
    {"metadata", "name", &BaseSetDescriptor::Name},
    {"metadata", "shortname", &BaseSetDescriptor::ShortName},
    {"metadata", "version", &BaseSetDescriptor::Version},
    {"metadata", "description", &BaseSetDescriptor::Description},
    {"metadata", "palette", &BaseSetDescriptor::PaletteText},
    {"metadata", "blitter", &BaseSetDescriptor::Blitter},
    {"files", "base", &BaseSetDescriptor::Base},
    {"files", "logos", &BaseSetDescriptor::Logos},
    {"files", "arctic", &BaseSetDescriptor::Arctic},
    {"files", "tropical", &BaseSetDescriptor::Tropical},
    {"files", "toyland", &BaseSetDescriptor::Toyland},
    {"files", "extra", &BaseSetDescriptor::Extra},
};

bool IsFile(const fs::path& p) {
  std::error_code ec;
  return fs::is_regular_file(p, ec);
}

// The *.obg files of a folder by path, at most kMaxDescriptorsPerFolder.
std::vector<fs::path> DescriptorsIn(const fs::path& folder) {
  std::vector<fs::path> found;
  std::error_code ec;
  fs::directory_iterator it(folder, ec), end;
  for (; !ec && it != end && found.size() < kMaxDescriptorsPerFolder; it.increment(ec)) {
    const fs::path& p = it->path();
    if (SameWithoutCase(p.extension().string(), ".obg") && IsFile(p)) found.push_back(p);
  }
  std::sort(found.begin(), found.end());
  return found;
}

// `name` beside the descriptor, or a file whose name differs from it only in case.
std::string FileBeside(const fs::path& folder, const std::string& name) {
  if (name.empty() || name.find('/') != std::string::npos) return {};
  if (IsFile(folder / name)) return (folder / name).string();
  std::error_code ec;
  fs::directory_iterator it(folder, ec), end;
  for (; !ec && it != end; it.increment(ec))
    if (SameWithoutCase(it->path().filename().string(), name) && IsFile(it->path()))
      return it->path().string();
  return {};
}

void AddSetsIn(const fs::path& folder, std::vector<InstalledBaseSet>& sets) {
  for (const fs::path& p : DescriptorsIn(folder)) {
    InstalledBaseSet set;
    if (ReadDescriptor(p.string(), set.Descriptor) != DescriptorRead::Ok) continue;
    set.DescriptorPath = p.string();
    set.BasePath = FileBeside(folder, set.Descriptor.Base);
    set.ExtraPath = FileBeside(folder, set.Descriptor.Extra);
    sets.push_back(std::move(set));
  }
}

}  // namespace

BaseSetDescriptor ParseDescriptor(std::string_view text) {
  BaseSetDescriptor d;
  if (text.substr(0, 3) == "\xEF\xBB\xBF") text.remove_prefix(3);
  std::string section;
  while (!text.empty()) {
    const size_t end = text.find('\n');
    const std::string_view line = Trim(text.substr(0, end));
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    if (line.empty() || line.front() == ';' || line.front() == '#') continue;
    if (line.front() == '[') {
      const size_t close = line.find(']');
      section =
          close == std::string_view::npos ? std::string() : std::string(line.substr(1, close - 1));
      continue;
    }
    const size_t equals = line.find('=');
    if (equals == std::string_view::npos) continue;
    const std::string_view key = Trim(line.substr(0, equals));
    for (const Entry& e : kEntries)
      if (SameWithoutCase(section, e.Section) && SameWithoutCase(key, e.Key))
        d.*e.Field = std::string(Trim(line.substr(equals + 1)));
  }
  d.Palette = PaletteOf(d.PaletteText);
  return d;
}

DescriptorRead ReadDescriptor(const std::string& path, BaseSetDescriptor& descriptor) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return DescriptorRead::CannotOpen;
  std::string text(kMaxDescriptorBytes + 1, '\0');
  in.read(text.data(), static_cast<std::streamsize>(text.size()));
  if (in.bad()) return DescriptorRead::CannotOpen;
  const size_t got = static_cast<size_t>(in.gcount());
  if (got > kMaxDescriptorBytes) return DescriptorRead::TooLarge;
  text.resize(got);
  descriptor = ParseDescriptor(text);
  return DescriptorRead::Ok;
}

BaseSetRole RoleOf(const BaseSetDescriptor& d, std::string_view fileName) {
  const std::pair<const std::string*, BaseSetRole> roles[] = {
      {&d.Base, BaseSetRole::Base},       {&d.Logos, BaseSetRole::Logos},
      {&d.Arctic, BaseSetRole::Arctic},   {&d.Tropical, BaseSetRole::Tropical},
      {&d.Toyland, BaseSetRole::Toyland}, {&d.Extra, BaseSetRole::Extra},
  };
  if (fileName.empty()) return BaseSetRole::None;
  for (const auto& [name, role] : roles)
    if (SameWithoutCase(*name, fileName)) return role;
  return BaseSetRole::None;
}

std::optional<DescriptorMatch> FindDescriptorFor(const std::string& grfPath) {
  const fs::path grf(grfPath);
  const fs::path folder = grf.has_parent_path() ? grf.parent_path() : fs::path(".");
  for (const fs::path& p : DescriptorsIn(folder)) {
    DescriptorMatch match;
    if (ReadDescriptor(p.string(), match.Descriptor) != DescriptorRead::Ok) continue;
    match.Role = RoleOf(match.Descriptor, grf.filename().string());
    if (match.Role == BaseSetRole::None) continue;
    match.Path = p.string();
    return match;
  }
  return std::nullopt;
}

std::vector<std::string> DefaultBaseSetFolders() {
  std::vector<std::string> folders{"/usr/share/games/openttd/baseset"};
  const char* home = std::getenv("HOME");
  if (home != nullptr && *home != '\0') {
    folders.push_back(std::string(home) + "/.local/share/openttd/baseset");
    folders.push_back(std::string(home) + "/.openttd/baseset");
  }
  return folders;
}

std::vector<InstalledBaseSet> FindInstalledBaseSets(const std::vector<std::string>& folders) {
  std::vector<InstalledBaseSet> sets;
  for (const std::string& folder : folders) {
    AddSetsIn(folder, sets);
    std::vector<fs::path> subfolders;
    std::error_code ec;
    fs::directory_iterator it(folder, ec), end;
    for (; !ec && it != end && subfolders.size() < kMaxDescriptorsPerFolder; it.increment(ec)) {
      std::error_code dirError;
      if (it->is_directory(dirError)) subfolders.push_back(it->path());
    }
    std::sort(subfolders.begin(), subfolders.end());
    for (const fs::path& sub : subfolders) AddSetsIn(sub, sets);
  }
  return sets;
}

PaletteDeclaration DeclaredPalette(std::optional<uint8_t> pals,
                                   const std::optional<DescriptorMatch>& descriptor) {
  PaletteDeclaration d;
  if (descriptor) {
    d.Toyland = descriptor->Role == BaseSetRole::Toyland;
    d.DescriptorName = fs::path(descriptor->Path).filename().string();
  }
  if (pals == 'D' || pals == 'W' || pals == 'A') {
    d.Source = PaletteSource::Action14;
    d.Kind = pals == 'D' ? PaletteKind::Dos : PaletteKind::Windows;
    d.Either = pals == 'A';
  } else if (descriptor && (descriptor->Descriptor.Palette == DescriptorPalette::Dos ||
                            descriptor->Descriptor.Palette == DescriptorPalette::Windows)) {
    d.Source = PaletteSource::Descriptor;
    d.Kind = descriptor->Descriptor.Palette == DescriptorPalette::Dos ? PaletteKind::Dos
                                                                      : PaletteKind::Windows;
  }
  return d;
}

std::string PaletteName(PaletteKind kind, bool toyland) {
  const std::string name = kind == PaletteKind::Dos ? "DOS" : "Windows";
  return toyland ? name + " toyland" : name;
}

std::string DeclarationText(const PaletteDeclaration& d) {
  const std::string name = PaletteName(d.Kind, d.Toyland);
  switch (d.Source) {
    case PaletteSource::Action14:
      return name + (d.Either ? " (Action 14 allows either)" : " (declared by Action 14)");
    case PaletteSource::Descriptor:
      return name + " (declared by " + d.DescriptorName + ")";
    case PaletteSource::Nothing:
      break;
  }
  return name + " (nothing declared)";
}

}  // namespace vossel
