#include "process.h"

#include <unistd.h>

#include <QCoreApplication>

void DoEvents() {
  if (QCoreApplication::instance() != nullptr) QCoreApplication::processEvents();
}

bool ChDir(const std::string& folder) {
  if (folder.empty()) return false;
  return chdir(folder.c_str()) == 0;
}

std::string CurDir() {
  char buffer[4096];
  if (getcwd(buffer, sizeof buffer) == nullptr) return {};
  return buffer;
}
