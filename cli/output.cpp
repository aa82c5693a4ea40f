#include "output.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include <QJsonDocument>

#include "commands.h"

namespace vossel {

QJsonObject SpriteKeys(int32_t index) {
  QJsonObject object;
  AddSpriteKeys(object, index);
  return object;
}

void AddSpriteKeys(QJsonObject& object, int32_t index) {
  object.insert("sprite", static_cast<qint64>(index) + 1);
  object.insert("nfo", index);
}

int PrintJson(const QJsonObject& document) {
  const QByteArray text = QJsonDocument(document).toJson(QJsonDocument::Indented);
  std::fwrite(text.constData(), 1, static_cast<size_t>(text.size()), stdout);
  return FinishOutput();
}

int PrintJson(const QJsonObject& document, int status) {
  const int printed = PrintJson(document);
  return status != kExitOk ? status : printed;
}

int FinishOutput() {
  errno = 0;
  if (std::fflush(stdout) == 0 && !std::ferror(stdout)) return kExitOk;
  const int error = errno != 0 ? errno : EIO;
  std::fprintf(stderr, "vossel-cli: cannot write to standard output: %s\n", std::strerror(error));
  return kExitFailure;
}

int FinishOutput(int status) {
  const int output = FinishOutput();
  return status != kExitOk ? status : output;
}

bool DeliverPng(const std::string& name, const std::vector<uint8_t>& png) {
  std::string error;
  if (name == "-") {
    if (std::fwrite(png.data(), 1, png.size(), stdout) == png.size() && std::fflush(stdout) == 0)
      return true;
    std::perror("vossel-cli: cannot write to standard output");
    return false;
  }
  if (WriteFileWhole(name, png, error)) return true;
  std::fprintf(stderr, "vossel-cli: cannot write '%s': %s\n", name.c_str(), error.c_str());
  return false;
}

}  // namespace vossel
