// vossel-cli export, run as the real binary; what it writes is read back and compared with the
// engine's store seen through the palette file.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <QImage>

#include "grf.h"
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

Expected ExpectedOf(const grfw::Bytes& file) {
  Expected e;
  e.Count = LoadSprites(file.data(), int32_t(file.size()), e.Store, [](const std::string&) {
            }).Totals.Count;
  const fs::path shipped = fs::path(VOSSEL_CLI_PATH).parent_path() / kPaletteFileName;
  EXPECT_EQ(LoadPalette(shipped.string(), e.Palette), -1);
  return e;
}

// The file written for sprite `index` holds its bytes, or its pixels in the palette's colours
// and its offsets.
void ExpectExported(const fs::path& dir, const std::string& stem, const Expected& e, int index) {
  SCOPED_TRACE(stem);
  const SpriteRecord& r = e.Store.SpriteTable[size_t(index)];
  const uint8_t* bytes = e.Store.SpriteData.data() + r.DataOffset;
  if (r.Flags == kActionFlags) {
    EXPECT_EQ(ReadAll(dir / (stem + ".bin")), grfw::Bytes(bytes, bytes + r.Size));
    return;
  }
  QImage png;
  ASSERT_TRUE(png.load(QString::fromStdString((dir / (stem + ".png")).string()), "PNG"));
  EXPECT_EQ(png.text("XOffset"), QString::number(r.XOffset));
  EXPECT_EQ(png.text("YOffset"), QString::number(r.YOffset));
  ASSERT_EQ(png.size(), QSize(r.Width, r.Height));
  for (int y = 0; y < r.Height; ++y)
    for (int x = 0; x < r.Width; ++x) {
      const size_t i = bytes[y * r.Width + x];
      const auto& p = e.Palette;
      ASSERT_EQ(png.pixel(x, y), qRgb(p[4 * i + 2], p[4 * i + 1], p[4 * i])) << x << "," << y;
    }
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
