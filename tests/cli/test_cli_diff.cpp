// vossel-cli diff: diff's exit statuses, the lines it prints and its JSON read back.
#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "grf_writer.h"
#include "run_cli.h"

using grfw::Bytes;

namespace {

Bytes Small(uint8_t pixel, int16_t x) {
  return grfw::File({grfw::ActionRecord({0x0C, 'n', 'o', 't', 'e'}),
                     grfw::PlainSprite(3, 2, {1, 2, 3, 4, 5, pixel}, x, 0)});
}

}  // namespace

TEST(CliDiff, StatusesAndLines) {
  const std::string a = grfw::WriteTemp("diff-a.grf", Small(6, 0));
  const std::string b = grfw::WriteTemp("diff-b.grf", Small(7, -2));
  const CliRun same = RunCli({"diff", a, a});
  EXPECT_EQ(same.Status, 0) << same.Err;
  EXPECT_NE(same.Out.find("\nidentical\n"), std::string::npos) << same.Out;

  const CliRun differ = RunCli({"diff", a, b, "--pixels"});
  EXPECT_EQ(differ.Status, 1) << differ.Err;
  EXPECT_NE(differ.Out.find("Sprite 2 (NFO 1): offsets 0,0 -> -2,0 (8bpp normal)\n"),
            std::string::npos)
      << differ.Out;
  EXPECT_NE(differ.Out.find("Sprite 2 (NFO 1): 1 pixel differ in 1x1 at 2,1 (8bpp normal)\n"),
            std::string::npos)
      << differ.Out;
  EXPECT_NE(differ.Out.find("\n1 sprite and 0 items differ\n"), std::string::npos);

  // Trouble is 2, as diff has it: a file that cannot be read, wrong usage.
  EXPECT_EQ(RunCli({"diff", a, a + ".missing"}).Status, 2);
  EXPECT_EQ(RunCli({"diff", a}).Status, 2);
  EXPECT_EQ(RunCli({"diff", a, b, "--bogus"}).Status, 2);
}

TEST(CliDiff, JsonMatchesTheText) {
  const std::string a = grfw::WriteTemp("diff-a.grf", Small(6, 0));
  const std::string b = grfw::WriteTemp("diff-b.grf", Small(7, 0));
  const CliRun run = RunCli({"diff", a, b, "--json", "--pixels"});
  EXPECT_EQ(run.Status, 1) << run.Err;
  const QJsonObject doc = QJsonDocument::fromJson(QByteArray::fromStdString(run.Out)).object();
  EXPECT_EQ(doc["old"].toObject()["file"].toString().toStdString(), a);
  EXPECT_EQ(doc["new"].toObject()["count"].toInt(), 2);
  EXPECT_FALSE(doc["equal"].toBool(true));
  EXPECT_EQ(doc["count"].toInt(), 1);
  const QJsonObject s = doc["sprites"].toArray().at(0).toObject();
  EXPECT_EQ(s["sprite"].toInt(), 2);
  EXPECT_EQ(s["nfo"].toInt(), 1);
  EXPECT_EQ(s["change"].toString(), "pixels");
  const QJsonObject p = s["pixels"].toObject();
  EXPECT_EQ(p["count"].toInt(), 1);
  EXPECT_EQ(p["left"].toInt(), 2);
  EXPECT_EQ(p["top"].toInt(), 1);
  EXPECT_EQ(p["width"].toInt(), 1);

  const CliRun text = RunCli({"diff", a, b, "--pixels"});
  EXPECT_NE(text.Out.find(s["text"].toString().toStdString()), std::string::npos);
}
