// vossel-cli export, run as the real binary; what it writes is read back and compared with the
// engine's store seen through the palette file.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>

#include <QImage>

#include "grf.h"
#include "grf2.h"
#include "grf_writer.h"
#include "palette.h"
#include "run_cli.h"

namespace fs = std::filesystem;

namespace {

grfw::Bytes ReadAll(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return grfw::Bytes(std::istreambuf_iterator<char>(in), {});
}

// A fresh, empty folder for one test's files.
fs::path FreshFolder(const std::string& name) {
  const fs::path dir = fs::path(grfw::WriteTemp("anchor", {})).parent_path() / name;
  fs::remove_all(dir);
  return dir;
}

struct Expected {
  SpriteStore Store;
  int32_t Count = 0;
  PaletteBuffer Palette{};
};

PaletteBuffer ShippedPalette() {
  PaletteBuffer palette{};
  const fs::path shipped = fs::path(VOSSEL_CLI_PATH).parent_path() / kPaletteFileName;
  EXPECT_EQ(LoadPalette(shipped.string(), palette), -1);
  return palette;
}

Expected ExpectedOf(const grfw::Bytes& file) {
  Expected e;
  const auto ignore = [](const std::string&) {};
  e.Count = LoadSprites(file.data(), int32_t(file.size()), e.Store, ignore).Totals.Count;
  e.Palette = ShippedPalette();
  return e;
}

// The PNG has the size, the offsets and, pixel by pixel, the colours asked for.
void ExpectPicture(const fs::path& path, int width, int height, int x, int y,
                   const std::function<QRgb(int, int)>& colour) {
  QImage png;
  ASSERT_TRUE(png.load(QString::fromStdString(path.string()), "PNG")) << path;
  EXPECT_EQ(png.text("XOffset"), QString::number(x)) << path;
  EXPECT_EQ(png.text("YOffset"), QString::number(y)) << path;
  ASSERT_EQ(png.size(), QSize(width, height)) << path;
  for (int row = 0; row < height; ++row)
    for (int column = 0; column < width; ++column)
      ASSERT_EQ(png.pixel(column, row), colour(column, row)) << path << " " << column << "," << row;
}

QRgb PaletteColour(const PaletteBuffer& p, size_t i) {
  return qRgb(p[4 * i + 2], p[4 * i + 1], p[4 * i]);
}

// The file written for sprite `index` holds its bytes, or its pixels in the palette's colours
// and its offsets.
void ExpectExported(const fs::path& dir, const std::string& stem, const Expected& e, int index) {
  const SpriteRecord& r = e.Store.SpriteTable[size_t(index)];
  const uint8_t* bytes = e.Store.SpriteData.data() + r.DataOffset;
  if (r.Flags == kActionFlags)
    EXPECT_EQ(ReadAll(dir / (stem + ".bin")), grfw::Bytes(bytes, bytes + r.Size)) << stem;
  else
    ExpectPicture(dir / (stem + ".png"), r.Width, r.Height, r.XOffset, r.YOffset,
                  [&](int x, int y) { return PaletteColour(e.Palette, bytes[y * r.Width + x]); });
}

size_t FilesIn(const fs::path& dir) {
  return size_t(std::distance(fs::directory_iterator(dir), fs::directory_iterator()));
}

grfw::Bytes ThreeSprites() {
  return grfw::File({grfw::PlainSprite(3, 2, {1, 2, 3, 4, 5, 6}, -1, 7),
                     grfw::ActionRecord({9, 8, 7}), grfw::PlainSprite(2, 1, {200, 201})});
}

}  // namespace

TEST(CliExport, RealFileReadsBackAsTheStoreThroughThePalette) {
  const fs::path real = fs::path(VOSSEL_BASESET_DIR) / "openttd.grf";
  if (!fs::exists(real)) GTEST_SKIP() << real << " is not installed";
  const Expected e = ExpectedOf(ReadAll(real));
  const fs::path dir = FreshFolder("export-real");
  const CliRun run = RunCli({"export", real.string(), dir.string()});
  ASSERT_EQ(run.Status, 0) << run.Err;
  EXPECT_EQ(run.Err, "");
  EXPECT_EQ(FilesIn(dir), size_t(e.Count));
  EXPECT_NE(run.Out.find("Wrote " + std::to_string(e.Count) + " files"), std::string::npos);
  ASSERT_LT(e.Count, 10000);
  for (int i = 0; i < e.Count; i += 37) {
    const std::string number = std::to_string(i + 1);
    ExpectExported(dir, std::string(4 - number.size(), '0') + number, e, i);
  }
  ExpectExported(dir, std::to_string(e.Count), e, e.Count - 1);
  fs::remove_all(dir);
}

TEST(CliExport, AFileThatIsThereStaysUntouchedUnlessForced) {
  const std::string grf = grfw::WriteTemp("three.grf", ThreeSprites());
  const fs::path dir = FreshFolder("export-existing");
  fs::create_directories(dir);
  grfw::WriteTemp("export-existing/0002.bin", {'m', 'i', 'n', 'e'});

  CliRun run = RunCli({"export", grf, dir.string()});
  EXPECT_EQ(run.Status, 1);
  EXPECT_NE(run.Err.find((dir / "0002.bin").string()), std::string::npos) << run.Err;
  EXPECT_EQ(ReadAll(dir / "0002.bin"), grfw::Bytes({'m', 'i', 'n', 'e'}));
  EXPECT_EQ(FilesIn(dir), 1u);

  run = RunCli({"export", grf, dir.string(), "--force"});
  EXPECT_EQ(run.Status, 0) << run.Err;
  const Expected e = ExpectedOf(ThreeSprites());
  for (int i = 0; i < 3; ++i) ExpectExported(dir, "000" + std::to_string(i + 1), e, i);
}

TEST(CliExport, AFailureHalfWayLeavesOnlyWholeFiles) {
  // A folder where a picture should go cannot be replaced.
  const std::string grf = grfw::WriteTemp("three-fail.grf", ThreeSprites());
  const fs::path dir = FreshFolder("export-fail");
  fs::create_directories(dir / "0003.png");
  const CliRun run = RunCli({"export", grf, dir.string(), "--force"});
  EXPECT_EQ(run.Status, 1);
  EXPECT_NE(run.Err.find("cannot write '" + (dir / "0003.png").string() + "'"), std::string::npos)
      << run.Err;
  // Writers at work beside the failing one may finish their files; no temporary file stays.
  const Expected e = ExpectedOf(ThreeSprites());
  for (const fs::directory_entry& entry : fs::directory_iterator(dir)) {
    const std::string name = entry.path().filename().string();
    if (name == "0003.png") continue;
    ASSERT_TRUE(name == "0001.png" || name == "0002.bin") << name;
    ExpectExported(dir, name.substr(0, 4), e, name[3] - '1');
  }
}

TEST(CliExport, NamesSortInSpriteOrderPastFourDigits) {
  // Between the first and the last, sprites without pixels, which give no file.
  std::vector<grfw::Bytes> records(10000, grfw::RawSprite(8, 0, 1, 0, 0, 0, {}));
  records.front() = grfw::ActionRecord({1});
  records.back() = grfw::ActionRecord({2, 3});
  const std::string grf = grfw::WriteTemp("ten-thousand.grf", grfw::FileOf(records));
  const fs::path dir = FreshFolder("export-many");
  const CliRun run = RunCli({"export", grf, dir.string()});
  ASSERT_EQ(run.Status, 0) << run.Err;
  EXPECT_EQ(ReadAll(dir / "00001.bin"), grfw::Bytes({1}));
  EXPECT_EQ(ReadAll(dir / "10000.bin"), grfw::Bytes({2, 3}));
  EXPECT_EQ(FilesIn(dir), 2u);
}

TEST(CliExport, SpritesWithoutPixelsAreCountedNotWritten) {
  const std::string grf = grfw::WriteTemp(
      "no-pixels.grf",
      grfw::File({grfw::RawSprite(8, 0, 3, 0, 0, 0, {}), grfw::PlainSprite(1, 1, {5})}));
  const fs::path dir = FreshFolder("export-empty");
  const CliRun run = RunCli({"export", grf, dir.string()});
  EXPECT_EQ(run.Status, 0) << run.Err;
  EXPECT_EQ(run.Out, "Wrote 1 files for 2 sprites to " + dir.string() +
                         ": 1 PNG, 0 BIN; 1 without pixels have no file\n");
  EXPECT_TRUE(fs::exists(dir / "0002.png"));
  EXPECT_EQ(FilesIn(dir), 1u);
}

TEST(CliExport, UsageAndRefusals) {
  const std::string grf = grfw::WriteTemp("three-usage.grf", ThreeSprites());
  const struct {
    std::vector<std::string> Args;
    int Status;
  } cases[] = {
      {{"export"}, 2},
      {{"export", grf}, 2},
      {{"export", grf, "d", "e"}, 2},
      {{"export", grf, "d", "--palette"}, 2},
      {{"export", grf, "d", "--zip"}, 2},
      {{"export", "/nonexistent/x.grf", FreshFolder("export-none").string()}, 1},
      {{"export", grf, FreshFolder("export-pal").string(), "--palette", "/nonexistent.pal"}, 1},
      {{"export", grf, "/proc/no-such-folder"}, 1},
  };
  for (const auto& c : cases) {
    const CliRun run = RunCli(c.Args);
    EXPECT_EQ(run.Status, c.Status) << c.Args.back();
    EXPECT_NE(run.Err, "") << c.Args.back();
  }
}

TEST(CliExport, EveryAlternativeOfAVersion2FileItsOwnFile) {
  const grfw::Image2 eight{0x04, 0, 3, 2, -1, 2, {1, 2, 3, 4, 5, 6}};
  const grfw::Image2 rgba{0x03, 0, 2, 1, 0, -3, {10, 20, 30, 40, 50, 60, 70, 0}};
  const grfw::Image2 masked{0x05, 1, 2, 1, 4, 5, {1, 2, 3, 9, 4, 5, 6, 9}};
  // Sprite 1: three alternatives; 2: a pseudo-sprite; 3: non-image data; 4: a missing id; 5: a
  // stream that ends too soon.
  const grfw::Bytes file = grfw::V2File(
      {grfw::V2Ref(1), grfw::V2Data(0xFF, {9, 8, 7}), grfw::V2Ref(2), grfw::V2Ref(99),
       grfw::V2Ref(3)},
      {grfw::V2Sprite(1, eight), grfw::V2Sprite(1, rgba), grfw::V2Sprite(1, masked),
       grfw::V2Raw(2, {0xFF, 5, 6}), grfw::V2Raw(3, {0x04, 0, 2, 0, 2, 0, 0, 0, 0, 0, 1, 7})});
  const fs::path dir = FreshFolder("export-v2");
  const CliRun run = RunCli({"export", grfw::WriteTemp("v2-export.grf", file), dir.string()});
  ASSERT_EQ(run.Status, 0) << run.Err;
  EXPECT_EQ(run.Out, "Wrote 5 files for 5 sprites to " + dir.string() +
                         ": 3 PNG, 2 BIN; 1 without pixels have no file; 1 could not be decoded\n");
  EXPECT_NE(run.Err.find("vossel-cli: sprite 5: "), std::string::npos) << run.Err;
  EXPECT_EQ(FilesIn(dir), 5u);

  const PaletteBuffer palette = ShippedPalette();
  ExpectPicture(dir / "0001.png", 3, 2, -1, 2,
                [&](int x, int y) { return PaletteColour(palette, eight.pixels[y * 3 + x]); });
  ExpectPicture(dir / "0001-32bpp-normal.png", 2, 1, 0, -3, [&](int x, int) {
    const uint8_t* p = &rgba.pixels[4 * x];
    return qRgba(p[0], p[1], p[2], p[3]);
  });
  // The mask layer is left out.
  ExpectPicture(dir / "0001-32bpp-in4.png", 2, 1, 4, 5, [&](int x, int) {
    const uint8_t* p = &masked.pixels[4 * x];
    return qRgb(p[0], p[1], p[2]);
  });
  EXPECT_EQ(ReadAll(dir / "0002.bin"), grfw::Bytes({9, 8, 7}));
  EXPECT_EQ(ReadAll(dir / "0003.bin"), grfw::Bytes({5, 6}));
}

TEST(CliExport, RealVersion2FileReadsBackAsItsDecodedAlternatives) {
  const fs::path real = fs::path(VOSSEL_BASESET_DIR) / "opengfx" / "ogfxi_logos.grf";
  if (!fs::exists(real)) GTEST_SKIP() << real << " is not installed";
  const grfw::Bytes bytes = ReadAll(real);
  GrfV2Index index;
  IndexGrfV2(bytes.data(), bytes.size(), index, [](const std::string&) {});
  const fs::path dir = FreshFolder("export-real-v2");
  const CliRun run = RunCli({"export", real.string(), dir.string()});
  ASSERT_EQ(run.Status, 0) << run.Err;
  EXPECT_EQ(FilesIn(dir), index.Alternatives.size());
  const PaletteBuffer palette = ShippedPalette();
  for (size_t i = 0; i < index.Sprites.size(); i += 9) {
    const GrfV2Sprite& s = index.Sprites[i];
    ASSERT_EQ(s.AlternativeCount, 1);
    GrfV2Image image;
    const GrfV2Alternative& a = index.Alternatives[size_t(s.FirstAlternative)];
    ASSERT_EQ(DecodeAlternative(bytes.data(), bytes.size(), a, image), GrfV2Result::Ok);
    const std::string number = std::to_string(i + 1);
    ExpectPicture(dir / (std::string(4 - number.size(), '0') + number + ".png"), image.Width,
                  image.Height, image.XOffset, image.YOffset, [&](int x, int y) {
                    return PaletteColour(palette, image.Indices[size_t(y * image.Width + x)]);
                  });
  }
}
