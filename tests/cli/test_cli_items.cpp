// vossel-cli items and item on the real NewGRFs: the text against a checked-in transcript, and the
// JSON documents read back with Qt, each against the text form of the same run.
#include <gtest/gtest.h>

#include <regex>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "case_file.h"
#include "run_cli.h"

namespace {

const std::string kData = std::string(VOSSEL_TESTS_DIR) + "/data/newgrf";

QJsonObject Json(const std::vector<std::string>& args) {
  const CliRun run = RunCli(args);
  EXPECT_EQ(run.Status, 0) << run.Err;
  QJsonParseError error;
  const QJsonDocument doc = QJsonDocument::fromJson(QByteArray::fromStdString(run.Out), &error);
  EXPECT_EQ(error.error, QJsonParseError::NoError) << run.Out.substr(0, 200);
  return doc.object();
}

}  // namespace

TEST(CliItems, Transcript) {
  const std::vector<std::vector<std::string>> runs = {
      {"items", "<data>/ekranoplan.grf"},
      {"items", "<data>/cargo-payment-randomiser.grf"},
      {"item", "<data>/ekranoplan.grf", "ships", "11"},
      {"item", "<data>/ogfx-mars-rv.grf", "01", "0x58"},
      {"item", "<data>/ogfx-mars-houses.grf", "Houses", "5"},
      {"item", "<data>/ekranoplan.grf", "02", "99"},
      {"item", "<data>/ekranoplan.grf", "boats", "1"},
      {"item", "<data>/ekranoplan.grf", "02", "-1"},
      {"item", "<data>/ekranoplan.grf", "02"},
      {"items"},
      {"items", "<data>/ekranoplan.grf", "--xml"},
  };
  std::string text;
  for (std::vector<std::string> args : runs) {
    for (std::string& a : args) a = std::regex_replace(a, std::regex("<data>"), kData);
    const CliRun run = RunCli(args);
    std::string line = "$ vossel-cli";
    for (const std::string& a : args) line += " " + a;
    text += line + "\n" + run.Out + (run.Err.empty() ? "" : "stderr: " + run.Err) + "exit " +
            std::to_string(run.Status) + "\n\n";
  }
  ExpectGolden("cli_items.txt", std::regex_replace(text, std::regex(kData), "<data>"));
}

TEST(CliItems, JsonSaysWhatTheTextSays) {
  for (const char* name : {"ekranoplan.grf", "ogfx-mars-rv.grf", "ogfx-mars-houses.grf",
                           "cargo-payment-randomiser.grf"}) {
    SCOPED_TRACE(name);
    const std::string file = kData + "/" + name;
    const QJsonObject doc = Json({"items", file, "--json"});
    EXPECT_EQ(doc["file"].toString().toStdString(), file);
    const QJsonArray items = doc["items"].toArray();
    EXPECT_EQ(doc["count"].toInt(), items.size());
    // One text line per item, saying its feature, ID, name and number of sprites.
    std::istringstream lines(RunCli({"items", file}).Out);
    for (const QJsonValue& v : items) {
      const QJsonObject item = v.toObject();
      std::string line;
      std::getline(lines, line);
      char feature[8];
      std::snprintf(feature, sizeof feature, "%02X ", item["feature"].toInt());
      EXPECT_EQ(line.rfind(feature + item["featureName"].toString().toStdString() + " " +
                               std::to_string(item["id"].toInt()) + " ",
                           0),
                0u)
          << line;
      const QJsonArray sprites = item["sprites"].toArray();
      EXPECT_NE(line.find(", " + std::to_string(sprites.size()) + " sprite"), std::string::npos);
      for (const QJsonValue& s : sprites) EXPECT_EQ(s["sprite"].toInt(), s["nfo"].toInt() + 1);
    }
  }
  // One item whole: its name, its properties with raw bytes and numbers, and its tree.
  const QJsonObject ship = Json({"item", kData + "/ekranoplan.grf", "0x02", "11", "--json"});
  EXPECT_EQ(ship["name"].toString().toStdString(), "Antonov ESKA-1");
  EXPECT_EQ(ship["nameFrom"]["language"].toInt(), 0x7F);
  const QJsonObject date = ship["properties"].toArray()[0].toObject();
  EXPECT_EQ(date["number"].toInt(), 0x1A);
  EXPECT_EQ(date["raw"].toString().toStdString(), "63 EC 0A 00");
  EXPECT_EQ(date["numbers"].toArray()[0].toInt(), 0x0AEC63);
  EXPECT_EQ(date["value"].toString().toStdString(), "1960-01-01");
  EXPECT_EQ(date["sprite"].toInt(), 6);
  const QJsonArray tree = ship["graphics"].toArray();
  ASSERT_EQ(tree.size(), 1);
  EXPECT_EQ(tree[0]["kind"].toString().toStdString(), "entry");
  EXPECT_EQ(tree[0]["below"][0]["kind"].toString().toStdString(), "group");
  EXPECT_EQ(tree[0]["below"][0]["adjustments"][0]["variableName"].toString().toStdString(),
            "current callback");
  EXPECT_EQ(ship["sprites"].toArray().size(), 8);
}
