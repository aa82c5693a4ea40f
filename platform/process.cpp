#include "process.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

namespace vossel {

void DoEvents() {
  if (QCoreApplication::instance() != nullptr) QCoreApplication::processEvents();
}

bool ChDir(const std::string& folder) {
  return !folder.empty() && QDir::setCurrent(QFile::decodeName(folder.c_str()));
}

std::string CurDir() {
  return QFile::encodeName(QDir::currentPath()).toStdString();
}

}  // namespace vossel
