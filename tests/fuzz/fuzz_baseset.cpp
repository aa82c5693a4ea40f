// The base-set descriptor reader on any bytes: every value it keeps is one trimmed line, and the
// palette it reads agrees with the text it kept.
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>

#include "baseset.h"

namespace {

bool OneTrimmedLine(const std::string& value) {
  if (value.find('\n') != std::string::npos) return false;
  return value.empty() || (value.front() != ' ' && value.back() != ' ' && value.back() != '\r');
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace vossel;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  DescriptorMatch match;
  match.Descriptor = ParseDescriptor(text);
  const BaseSetDescriptor& d = match.Descriptor;
  for (const std::string* v :
       {&d.Name, &d.Version, &d.PaletteText, &d.Description, &d.Base, &d.Toyland, &d.Extra})
    if (!OneTrimmedLine(*v)) std::abort();
  if ((d.Palette == DescriptorPalette::None) != d.PaletteText.empty()) std::abort();
  match.Role = RoleOf(d, d.Base);
  if (!d.Base.empty() && match.Role == BaseSetRole::None) std::abort();
  const PaletteDeclaration declared = DeclaredPalette(std::nullopt, match);
  const bool fromDescriptor =
      d.Palette == DescriptorPalette::Dos || d.Palette == DescriptorPalette::Windows;
  if ((declared.Source == PaletteSource::Descriptor) != fromDescriptor) std::abort();
  if (DeclarationText(declared).empty()) std::abort();
  return 0;
}
