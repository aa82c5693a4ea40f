#include <cstdio>

#include "commands.h"

int CmdChunks(const std::vector<std::string>&) {
  std::fputs("vossel-cli: chunks is not built yet\n", stderr);
  return kExitUsage;
}
