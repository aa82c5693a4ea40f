// vossel-cli about FILE and nfo FILE: what a GRF file says about itself, and the whole file in
// the NFO form NewGRF authors read.
#include <cstdio>
#include <string>

#include "actions.h"
#include "commands.h"

namespace vossel {

int CmdAbout(const std::vector<std::string>& args) {
  if (!OneFileArgument("about", args)) return kExitUsage;
  GrfFile file;
  FileReading reading;
  if (LoadForCli(args[0], file, &reading) != kExitOk) return kExitFailure;
  std::string out;
  for (const auto& [key, value] : IdentityFacts(file, reading)) out += key + ": " + value + "\n";
  std::fwrite(out.data(), 1, out.size(), stdout);
  return LoadStatus(file);
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
  return LoadStatus(file);
}

}  // namespace vossel
