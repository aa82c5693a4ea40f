#include <cerrno>
#include <cstdlib>

#include <QCommandLineParser>
#include <QFile>

#include "commands.h"

namespace vossel {

namespace {

// An option of the command written where FILE or N belongs: "--png" or "--png=x".
bool IsOptionWord(const std::string& arg, const std::vector<std::string>& options) {
  if (arg.rfind("--", 0) != 0) return false;
  const std::string name =
      arg.substr(2, arg.find('=') == std::string::npos ? std::string::npos : arg.find('=') - 2);
  for (const std::string& option : options)
    if (name == option) return true;
  return false;
}

std::string Dashed(const QString& name) {
  std::string dashed(name.size() == 1 ? 1 : 2, '-');
  dashed += name.toStdString();
  return dashed;
}

}  // namespace

CommandArgs ParseCommand(const std::vector<std::string>& args, size_t count,
                         const std::vector<std::string>& options,
                         const std::vector<std::string>& flags,
                         const std::vector<std::string>& repeated) {
  CommandArgs out;
  if (args.size() < count) {
    out.TooFew = true;
    out.Error = "too few arguments";
    return out;
  }
  // FILE and N come first, as they always have, so that a number such as -1 stays a number.
  for (size_t i = 0; i < count; ++i) {
    if (IsOptionWord(args[i], options) || IsOptionWord(args[i], flags)) {
      out.Error = "FILE and N come before the options";
      return out;
    }
    out.Positional.push_back(args[i]);
  }
  QCommandLineParser parser;
  QList<QCommandLineOption> known;
  for (const std::string& name : options) {
    known.append(QCommandLineOption(QString::fromStdString(name), QString(), "value"));
    parser.addOption(known.back());
  }
  for (const std::string& name : flags) {
    known.append(QCommandLineOption(QString::fromStdString(name)));
    parser.addOption(known.back());
  }
  QList<QCommandLineOption> lists;
  for (const std::string& name : repeated) {
    lists.append(QCommandLineOption(QString::fromStdString(name), QString(), "value"));
    parser.addOption(lists.back());
  }
  QStringList words{"vossel-cli"};
  for (size_t i = count; i < args.size(); ++i) words << QFile::decodeName(args[i].c_str());
  if (!parser.parse(words)) {
    // Unknown options, or a last option without its value.
    out.Error = parser.unknownOptionNames().isEmpty()
                    ? words.back().toStdString() + " needs a value"
                    : "unknown option '" + Dashed(parser.unknownOptionNames().front()) + "'";
    return out;
  }
  if (!parser.positionalArguments().isEmpty()) {
    out.Error = "unexpected argument '" + parser.positionalArguments().front().toStdString() + "'";
    return out;
  }
  for (const QCommandLineOption& option : known) {
    const QStringList values = parser.values(option);
    const std::string name = option.names().front().toStdString();
    if (values.size() > 1) {
      out.Error = "--" + name + " given twice";
      return out;
    }
    if (values.size() == 1) out.Values[name] = QFile::encodeName(values.front()).toStdString();
    if (option.valueName().isEmpty() && parser.isSet(option)) out.Values[name] = std::string();
  }
  for (const QCommandLineOption& option : lists)
    for (const QString& value : parser.values(option))
      out.Lists[option.names().front().toStdString()].push_back(
          QFile::encodeName(value).toStdString());
  return out;
}

bool IsSpriteNumberText(const std::string& text) {
  char* end = nullptr;
  std::strtol(text.c_str(), &end, 10);
  return !text.empty() && end != text.c_str() && *end == '\0';
}

bool ParseSpriteNumber(const std::string& fileName, const std::string& text, int32_t count,
                       int32_t& index) {
  errno = 0;
  char* end = nullptr;
  const long value = std::strtol(text.c_str(), &end, 10);
  const bool number = !text.empty() && end != nullptr && *end == '\0' && errno == 0;
  if (!number || value < 1 || value > count) {
    FileError(fileName, "sprite " + text + " does not exist: " +
                            (count < 1 ? std::string("the file holds no sprite")
                                       : "give a number from 1 to " + std::to_string(count)));
    return false;
  }
  index = static_cast<int32_t>(value - 1);
  return true;
}

bool ParseWish(const CommandArgs& args, AlternativeWish& wish, std::string& why) {
  if (const auto zoom = args.Values.find("zoom"); zoom != args.Values.end()) {
    uint8_t level = 0;
    if (!ParseZoomName(QString::fromStdString(zoom->second).toLower().toStdString(), level)) {
      why = "unknown zoom level '" + zoom->second + "'";
      return false;
    }
    wish.Zoom = level;
  }
  if (const auto depth = args.Values.find("depth"); depth != args.Values.end()) {
    if (depth->second != "8" && depth->second != "32") {
      why = "the depth is 8 or 32, not '" + depth->second + "'";
      return false;
    }
    wish.Depth = std::stoi(depth->second);
  }
  return true;
}

}  // namespace vossel
