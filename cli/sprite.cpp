#include <cstdio>

#include "commands.h"

int CmdSprite(const std::vector<std::string>&) {
  std::fputs("vossel-cli: sprite is not built yet\n", stderr);
  return kExitUsage;
}
