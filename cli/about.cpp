// vossel-cli about FILE and nfo FILE: what a GRF file says about itself, and the whole file in
// the NFO form NewGRF authors read.
#include <cstdio>
#include <string>

#include <QJsonObject>

#include "actions.h"
#include "commands.h"
#include "output.h"

namespace vossel {

namespace {

QString Text(const std::string& text) {
  return QString::fromStdString(text);
}

// The facts of IdentityFacts, numbers as numbers.
int AboutJson(const GrfFile& file, const FileReading& reading) {
  const GrfIdentity& id = reading.Actions.Identity;
  const StaticInfo& info = id.Info;
  QJsonObject about{{"file", Text(file.Path)},
                    {"palette", Text(DeclarationText(DeclaredPaletteOf(reading)))},
                    {"count", SpriteCount(file)},
                    {"container", file.Container}};
  if (id.HasAction8) {
    std::string hex;
    for (const uint8_t b : id.Grf.Bytes) hex += ByteToHex(b);
    about.insert("grfId", Text(hex));
    about.insert("grfIdText", Text(GrfIdText(id.Grf.Bytes)));
    about.insert("grfVersion", id.GrfVersion);
  } else {
    about.insert("grfId", QJsonValue::Null);
  }
  for (const auto& [key, value] : IdentityFacts(file, reading)) {
    if (key == "Name") about.insert("name", Text(value));
    if (key == "Description") about.insert("description", Text(value));
    if (key == "Graphics") about.insert("graphics", Text(value));
  }
  if (reading.Descriptor)
    about.insert("baseSet", QJsonObject{{"name", Text(reading.Descriptor->Descriptor.Name)},
                                        {"version", Text(reading.Descriptor->Descriptor.Version)}});
  if (info.HasVersion) about.insert("version", static_cast<qint64>(info.Version));
  if (info.HasMinVersion) about.insert("minimumVersion", static_cast<qint64>(info.MinVersion));
  return PrintJson(about, LoadStatus(file));
}

}  // namespace

int CmdAbout(const std::vector<std::string>& args) {
  bool json = false;
  if (!OneFileArgument("about", args, &json)) return kExitUsage;
  GrfFile file;
  FileReading reading;
  if (LoadForCli(args[0], file, &reading) != kExitOk) return kExitFailure;
  if (json) return AboutJson(file, reading);
  std::string out;
  for (const auto& [key, value] : IdentityFacts(file, reading)) out += key + ": " + value + "\n";
  std::fwrite(out.data(), 1, out.size(), stdout);
  return FinishOutput(LoadStatus(file));
}

int CmdNfo(const std::vector<std::string>& args) {
  if (!OneFileArgument("nfo", args)) return kExitUsage;
  GrfFile file;
  FileReading reading;
  if (LoadForCli(args[0], file, &reading) != kExitOk) return kExitFailure;
  std::string out;
  for (int32_t i = 0; i < SpriteCount(file); ++i)
    out += NfoText(file, reading, i, NfoAlternativesOf(file, i)) + "\n";
  std::fwrite(out.data(), 1, out.size(), stdout);
  return FinishOutput(LoadStatus(file));
}

}  // namespace vossel
