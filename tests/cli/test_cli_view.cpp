// vossel-cli view, run as the real binary: its PNG is the display's composition of the same item,
// picks and look, pixel for pixel, and its JSON places each sprite where the composition did.
#include <gtest/gtest.h>

#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "actions.h"
#include "compose.h"
#include "grf_writer.h"
#include "item_compose.h"
#include "items.h"
#include "open_grf.h"
#include "run_cli.h"

using namespace vossel;

namespace {

struct Case {
  const char* File;
  uint8_t Feature;
  uint32_t Id;
  std::vector<std::string> Options;
  ComposeRequest Request;
  ComposeOptions Drawn;
  int32_t Company;  // -1 none
  int32_t Zoom;
};

}  // namespace

TEST(CliView, PngAndJsonAreTheDisplaysComposition) {
  const std::vector<Case> cases = {
      {"ogfx-mars-rv.grf", 0x01, 88, {"--company", "red", "--zoom", "in2"}, {}, {}, 4, kZoomIn2},
      {"ogfx-mars-rv.grf",
       0x01,
       88,
       {"--shared-origin", "--origins"},
       {},
       {.Origins = true, .SharedOrigin = true},
       -1,
       -1},
      {"ogfx-mars-houses.grf",
       0x07,
       0,
       {"--pick", "113=3", "--boxes"},
       {.Picks = {{112, 2}}},
       {.Boxes = true},
       -1,
       -1},
      {"ekranoplan.grf",
       0x02,
       11,
       {"--loading", "--purchase"},
       {.Entry = EntryKind::Purchase, .Loading = true, .Picks = {}},
       {},
       -1,
       -1},
  };
  const BaseSprites base = OpenBaseSprites();
  for (const Case& k : cases) {
    SCOPED_TRACE(k.File);
    const std::string path = NewGrfPath(k.File);
    const auto grf = OpenGrf(path);
    const GrfItems items = ReadItems(grf->Reading);
    FoundMaps maps = NearMaps(grf->File, grf->Reading, "");
    if (SearchInstalled(maps, false)) maps = WithInstalled(std::move(maps), InstalledMaps(false));
    if (k.Company >= 0 && !maps.Found) continue;
    LookChoices choices;
    choices.Company = k.Company;
    choices.Zoom = k.Zoom;
    const Look look = ResolveLook(choices, FirstPalette::Declared, grf->File,
                                  DeclaredPaletteOf(grf->Reading), maps);
    const Composition c = Compose(items, *FindItem(items, k.Feature, k.Id), k.Request);
    const ComposedPicture want = DrawComposition(grf->File, items, c, look, &base, k.Drawn);

    const std::string png = grfw::WriteTemp("view.png", {});
    char feature[4];
    std::snprintf(feature, sizeof feature, "%02X", k.Feature);
    std::vector<std::string> args = {"view", path,      feature, std::to_string(k.Id),
                                     png,    "--force", "--json"};
    args.insert(args.end(), k.Options.begin(), k.Options.end());
    const CliRun run = RunCli(args);
    ASSERT_EQ(run.Status, 0) << run.Err;
    EXPECT_EQ(QImage(QString::fromStdString(png)).convertToFormat(QImage::Format_RGB32),
              want.Image);
    const QJsonObject doc = QJsonDocument::fromJson(QByteArray::fromStdString(run.Out)).object();
    const QJsonArray sprites = doc["sprites"].toArray();
    ASSERT_EQ(doc["count"].toInt(), static_cast<int>(want.Sprites.size()));
    ASSERT_EQ(sprites.size(), static_cast<qsizetype>(want.Sprites.size()));
    for (qsizetype i = 0; i < sprites.size(); ++i) {
      const QJsonObject s = sprites[i].toObject();
      const PlacedSprite& p = want.Sprites[static_cast<size_t>(i)];
      EXPECT_EQ(QPoint(s["x"].toInt(), s["y"].toInt()), p.Rect.topLeft()) << i;
      if (p.Source == SpriteSource::File) {
        EXPECT_EQ(s["sprite"].toInt(), p.Sprite + 1) << i;
      }
    }
    ASSERT_EQ(doc["branches"].toArray().size(), static_cast<qsizetype>(c.Branches.size()));
    for (size_t i = 0; i < c.Branches.size(); ++i) {
      const QJsonValue picked = doc["branches"][static_cast<qsizetype>(i)]["picked"];
      EXPECT_EQ(picked.isString() ? -1 : picked.toInt() - 1, c.Branches[i].Picked) << i;
    }
  }
}
