// vossel-cli for scripts and for a new user: --json holds the facts the text says, on the real
// files of both containers; standard output that cannot be written is a failure; the rough
// edges of the arguments.
#include <fcntl.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "chunks.h"
#include "grf_writer.h"
#include "run_cli.h"
#include "text.h"

using namespace vossel;

namespace fs = std::filesystem;

namespace {

const std::string kOpenttd = std::string(VOSSEL_BASESET_DIR) + "/openttd.grf";
const std::string kOpengfx = std::string(VOSSEL_BASESET_DIR) + "/opengfx/ogfx1_base.grf";

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

// The command's JSON document; fails the test when it is not one.
QJsonObject Json(std::vector<std::string> args) {
  args.push_back("--json");
  const CliRun run = RunCli(args);
  EXPECT_EQ(run.Status, 0) << run.Err;
  QJsonParseError error{};
  const QJsonDocument document =
      QJsonDocument::fromJson(QByteArray::fromStdString(run.Out), &error);
  EXPECT_EQ(error.error, QJsonParseError::NoError) << error.errorString().toStdString();
  EXPECT_TRUE(document.isObject());
  return document.object();
}

std::string Str(const QJsonValue& value) {
  return value.toString().toStdString();
}

int64_t Num(const QJsonValue& value) {
  EXPECT_TRUE(value.isDouble()) << "not a number";
  return value.toInteger();
}

// "Key: value" lines as a map.
std::map<std::string, std::string> Facts(const std::string& text) {
  std::map<std::string, std::string> facts;
  for (const std::string& line : Lines(text))
    if (const size_t at = line.find(": "); at != std::string::npos)
      facts[line.substr(0, at)] = line.substr(at + 2);
  return facts;
}

// The exit status of the command with its standard output on a full device, and what it said.
CliRun RunToFullDevice(std::vector<std::string> args) {
  args.insert(args.begin(), VOSSEL_CLI_PATH);
  const std::string err = "/tmp/vossel-cli-full-" + std::to_string(getpid()) + ".err";
  std::fflush(nullptr);
  const pid_t child = fork();
  if (child == 0) {
    std::vector<char*> argv;
    for (std::string& a : args) argv.push_back(a.data());
    argv.push_back(nullptr);
    if (std::freopen("/dev/full", "w", stdout) && std::freopen(err.c_str(), "w", stderr))
      execv(argv[0], argv.data());
    _exit(127);
  }
  int status = 0;
  waitpid(child, &status, 0);
  CliRun run;
  run.Status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  std::stringstream text;
  text << std::ifstream(err).rdbuf();
  run.Err = text.str();
  return run;
}

}  // namespace

// Every sprite's line of `list` is the JSON's numbers as the list writes them, in both
// containers; a pseudo-sprite of a version-2 file lists no alternatives and no tab after them.
TEST(CliJson, ListHoldsWhatTheLinesSay) {
  for (const std::string& path : {kOpenttd, kOpengfx}) {
    if (!fs::exists(path)) GTEST_SKIP() << path << " is not installed";
    const QJsonObject list = Json({"list", path});
    const std::vector<std::string> lines = Lines(RunCli({"list", path}).Out);
    EXPECT_EQ(Str(list["file"]), path);
    const QJsonArray sprites = list["sprites"].toArray();
    ASSERT_EQ(Num(list["count"]), static_cast<int64_t>(lines.size()));
    ASSERT_EQ(sprites.size(), static_cast<qsizetype>(lines.size()));
    for (qsizetype i = 0; i < sprites.size(); ++i) {
      const QJsonObject s = sprites[i].toObject();
      ASSERT_EQ(Num(s["sprite"]), i + 1);
      ASSERT_EQ(Num(s["nfo"]), i);
      const SpriteRowTexts row =
          SpriteRow(static_cast<int32_t>(i), Num(s["width"]), Num(s["height"]), Num(s["size"]),
                    static_cast<uint8_t>(Num(s["flags"])));
      std::string line =
          row.Number + '\t' + row.Width + '\t' + row.Height + '\t' + row.Size + '\t' + row.Flags;
      std::string alternatives;
      for (const QJsonValue& a : s["alternatives"].toArray())
        alternatives +=
            (alternatives.empty() ? "" : ", ") +
            (Str(a["kind"]) == "data" ? std::string("data")
                                      : std::to_string(Num(a["depth"])) + "bpp " + Str(a["zoom"]));
      if (!alternatives.empty()) line += '\t' + alternatives;
      ASSERT_EQ(line, lines[static_cast<size_t>(i)]) << path;
    }
  }
}

// info, about, sprite and chunks: each fact of the text stands in the JSON.
TEST(CliJson, InfoAboutSpriteAndChunksHoldWhatTheTextSays) {
  for (const std::string& path : {kOpenttd, kOpengfx}) {
    if (!fs::exists(path)) GTEST_SKIP() << path << " is not installed";
    const QJsonObject info = Json({"info", path});
    const std::string infoText = RunCli({"info", path}).Out;
    EXPECT_NE(infoText.find(FormatSize(Num(info["compressed"])) + " compressed of " +
                            FormatSize(Num(info["decoded"])) + " uncompressed"),
              std::string::npos);
    EXPECT_NE(infoText.find("Filesize " + FormatSize(Num(info["length"]))), std::string::npos);
    EXPECT_NE(infoText.find("Loaded " + std::to_string(Num(info["count"])) + " sprites"),
              std::string::npos);
    EXPECT_EQ(Num(info["problems"].toObject()["total"]), 0);

    const QJsonObject about = Json({"about", path});
    std::map<std::string, std::string> facts = Facts(RunCli({"about", path}).Out);
    EXPECT_EQ(Str(about["file"]), path);
    EXPECT_EQ(std::to_string(Num(about["count"])), facts["Sprites"]);
    EXPECT_EQ(std::to_string(Num(about["container"])), facts["Container"]);
    EXPECT_EQ(Str(about["palette"]), facts["Palette"]);
    EXPECT_EQ(about["grfId"].isNull() ? "none" : Str(about["grfIdText"]), facts["GRF ID"]);
    if (about.contains("baseSet")) {
      EXPECT_EQ(Str(about["baseSet"]["name"]) + ", version " + Str(about["baseSet"]["version"]),
                facts["Base set"]);
    }

    // A pseudo-sprite and pictures early and late in the file.
    for (const int n : {1, 2, 5, 100, 1500}) {
      const std::string number = std::to_string(n);
      const QJsonObject sprite = Json({"sprite", path, number});
      facts = Facts(RunCli({"sprite", path, number}).Out);
      EXPECT_EQ(Num(sprite["sprite"]), n);
      EXPECT_EQ(Num(sprite["nfo"]), n - 1);
      EXPECT_EQ(facts["Number"], "Sprite " + number + " (NFO " + std::to_string(n - 1) + ")");
      EXPECT_EQ(Lines(RunCli({"sprite", path, number}).Out).front(),
                ViewingCaption(n - 1, Num(sprite["width"]), Num(sprite["height"])));
      EXPECT_EQ(FlagsText(static_cast<uint8_t>(Num(sprite["flags"]))), facts["Flags"]);
      EXPECT_EQ(std::to_string(Num(sprite["size"])), facts["Size"]);
      EXPECT_EQ(std::to_string(Num(sprite["compressed"])), facts["Compressed"]);
      EXPECT_EQ(OffsetText(static_cast<int32_t>(Num(sprite["xOffset"])),
                           static_cast<int32_t>(Num(sprite["yOffset"]))),
                facts["Offset"]);
      EXPECT_EQ(Str(sprite["palette"]), facts["Palette"]);
      EXPECT_EQ(Str(sprite["role"]), facts["Role"]);
      EXPECT_EQ(Str(sprite["summary"]), facts["Summary"]);
      EXPECT_EQ(Str(sprite["nfoLine"]), facts["NFO"]);
      if (sprite.contains("zoom")) {
        EXPECT_EQ(Str(sprite["zoom"]), facts["Zoom"]);
        EXPECT_EQ(std::to_string(Num(sprite["depth"])) + "bpp", facts["Depth"]);
      }
      if (sprite.contains("action")) {
        EXPECT_EQ(ByteToHex(static_cast<uint8_t>(Num(sprite["action"]))) + " " +
                      Str(sprite["actionName"]),
                  facts["Action"]);
      }

      const QJsonObject chunks = Json({"chunks", path, number});
      const std::vector<std::string> lines = Lines(RunCli({"chunks", path, number}).Out);
      const QJsonArray list = chunks["chunks"].toArray();
      ASSERT_EQ(Num(chunks["count"]), static_cast<int64_t>(lines.size()));
      ASSERT_EQ(list.size(), static_cast<qsizetype>(lines.size()));
      for (qsizetype i = 0; i < list.size(); ++i)
        EXPECT_EQ(std::to_string(Num(list[i]["position"])) + "\t" + Str(list[i]["text"]),
                  lines[static_cast<size_t>(i)]);
    }
  }
}

// Standard output that cannot be written fails every command that prints, naming why.
TEST(CliRoughEdges, AFullStandardOutputFails) {
  const std::string grf = grfw::WriteTemp(
      "full.grf",
      grfw::File({grfw::ActionRecord({1, 2, 3}), grfw::PlainSprite(2, 2, {1, 2, 3, 4})}));
  const std::vector<std::vector<std::string>> commands = {{"list", grf},
                                                          {"info", grf},
                                                          {"about", grf},
                                                          {"nfo", grf},
                                                          {"sprite", grf, "2"},
                                                          {"chunks", grf, "2"},
                                                          {"list", grf, "--json"},
                                                          {"sprite", grf, "1", "--json"},
                                                          {"sprite", grf, "2", "--png", "-"}};
  for (const std::vector<std::string>& args : commands) {
    const CliRun run = RunToFullDevice(args);
    EXPECT_EQ(run.Status, 1) << args[0];
    EXPECT_EQ(run.Err, "vossel-cli: cannot write to standard output: No space left on device\n")
        << args[0];
  }
}

// The palette is checked whatever is asked; names are taken in any case; "-" is standard output;
// an unknown option and a sprite out of range are named with the file.
TEST(CliRoughEdges, ArgumentsAsANewUserGivesThem) {
  const std::string grf = grfw::WriteTemp(
      "edges.grf",
      grfw::File({grfw::ActionRecord({1, 2, 3}), grfw::PlainSprite(2, 2, {1, 2, 3, 4}, -1, 2)}));
  CliRun run = RunCli({"sprite", grf, "2", "--palette", "foo"});
  EXPECT_EQ(run.Status, 1);
  EXPECT_EQ(run.Out.find("Palette: foo"), std::string::npos) << run.Out;
  EXPECT_NE(run.Err.find("vossel-cli: foo: "), std::string::npos) << run.Err;

  run = RunCli({"sprite", grf, "2", "--palette", "DOS", "--zoom", "Normal"});
  EXPECT_EQ(run.Status, 0) << run.Err;
  EXPECT_NE(run.Out.find("Palette: DOS"), std::string::npos) << run.Out;

  const std::string file = (fs::path(grf).parent_path() / "edges.png").string();
  fs::remove(file);
  ASSERT_EQ(RunCli({"sprite", grf, "2", "--png", file}).Status, 0);
  run = RunCli({"sprite", grf, "2", "--png", "-"});
  EXPECT_EQ(run.Status, 0) << run.Err;
  std::stringstream written;
  written << std::ifstream(file, std::ios::binary).rdbuf();
  EXPECT_EQ(run.Out, written.str());
  EXPECT_EQ(RunCli({"sprite", grf, "2", "--png", "-", "--json"}).Status, 2);

  for (const std::vector<std::string>& args :
       std::vector<std::vector<std::string>>{{"list", grf, "--bogus"},
                                             {"about", grf, "--bogus"},
                                             {"sprite", grf, "1", "--bogus"},
                                             {"chunks", grf, "1", "--bogus"}}) {
    run = RunCli(args);
    EXPECT_EQ(run.Status, 2);
    EXPECT_EQ(run.Err.rfind("vossel-cli: unknown option '--bogus'\nUsage: vossel-cli ", 0), 0u)
        << run.Err;
  }
  if (fs::exists(kOpenttd)) {
    const auto png = [&](const char* colour) {
      return RunCli({"sprite", kOpenttd, "1310", "--company", colour, "--png", "-"}).Out;
    };
    EXPECT_EQ(png("Light-Blue"), png("light-blue"));
    EXPECT_FALSE(png("LIGHT-BLUE").empty());
  }
  for (const char* command : {"sprite", "chunks"}) {
    run = RunCli({command, grf, "3"});
    EXPECT_EQ(run.Status, 1);
    EXPECT_EQ(run.Err,
              "vossel-cli: " + grf + ": sprite 3 does not exist: give a number from 1 to 2\n");
  }
}
