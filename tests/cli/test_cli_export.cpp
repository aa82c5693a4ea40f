// vossel-cli export and sprite --png, run as the real binary; what they write is read back and
// compared with the engine's store, or the pixels our writer put in, seen through the palette file.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>

#include <QImage>

#include "grf.h"
#include "grf_writer.h"
#include "palette.h"
#include "run_cli.h"

using namespace vossel;

namespace fs = std::filesystem;
using grfw::Bytes;

namespace {

Bytes ReadAll(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return Bytes(std::istreambuf_iterator<char>(in), {});
}

fs::path FreshFolder(const std::string& name) {
  const fs::path dir = fs::path(grfw::WriteTemp("anchor", {})).parent_path() / name;
  fs::remove_all(dir);
  return dir;
}

QRgb Colour(size_t i) {
  static const PaletteBuffer p = [] {
    PaletteBuffer b{};
    LoadPalette((fs::path(VOSSEL_CLI_PATH).parent_path() / kPaletteFileName).string(), b);
    return b;
  }();
  return qRgb(p[4 * i + 2], p[4 * i + 1], p[4 * i]);
}

// The PNG has the size, the offsets and, pixel by pixel, the colours asked for.
void ExpectPicture(const fs::path& path, int width, int height, int x, int y,
                   const std::function<QRgb(int, int)>& colour) {
  QImage png;
  ASSERT_TRUE(png.load(QString::fromStdString(path.string()), "PNG")) << path;
  EXPECT_EQ(png.text("XOffset").toInt(), x) << path;
  EXPECT_EQ(png.text("YOffset").toInt(), y) << path;
  ASSERT_EQ(png.size(), QSize(width, height)) << path;
  for (int row = 0; row < height; ++row)
    for (int column = 0; column < width; ++column)
      ASSERT_EQ(png.pixel(column, row), colour(column, row)) << path << " " << column << "," << row;
}

// The file of version-1 sprite `index` of the store: its bytes, or its pixels and offsets.
void ExpectSprite(const fs::path& dir, const SpriteStore& store, size_t index) {
  const SpriteRecord& r = store.SpriteTable[index];
  const uint8_t* bytes = store.SpriteData.data() + r.DataOffset;
  std::string stem = std::to_string(index + 1);
  stem.insert(0, stem.size() < 4 ? 4 - stem.size() : 0, '0');
  if (r.Flags == kActionFlags)
    EXPECT_EQ(ReadAll(dir / (stem + ".bin")), Bytes(bytes, bytes + r.Size)) << stem;
  else
    ExpectPicture(dir / (stem + ".png"), r.Width, r.Height, r.XOffset, r.YOffset,
                  [&](int x, int y) { return Colour(bytes[y * r.Width + x]); });
}

SpriteStore Load(const Bytes& bytes) {
  SpriteStore store;
  LoadSprites(bytes.data(), int32_t(bytes.size()), store, [](const std::string&) {});
  return store;
}

}  // namespace

TEST(CliExport, RealFileReadsBackAsTheStoreThroughThePalette) {
  const fs::path real = fs::path(VOSSEL_BASESET_DIR) / "orig_extra.grf";
  if (!fs::exists(real)) GTEST_SKIP() << real << " is not installed";
  const SpriteStore store = Load(ReadAll(real));
  const size_t count = store.SpriteTable.size();
  const fs::path dir = FreshFolder("export-real");
  ASSERT_EQ(RunCli({"export", real.string(), dir.string(), "--palette", "windows"}).Status, 0);
  EXPECT_EQ(size_t(std::distance(fs::directory_iterator(dir), {})), count);
  for (size_t i = 0; i < count; i += 37) ExpectSprite(dir, store, i);
  ExpectSprite(dir, store, count - 1);
  fs::remove_all(dir);
}

TEST(CliExport, AFileThatIsThereStaysUntouchedUnlessForcedAndAFailureLeavesWholeFiles) {
  const Bytes three = grfw::File({grfw::PlainSprite(3, 2, {1, 2, 3, 4, 5, 6}, -1, 7),
                                  grfw::ActionRecord({9, 8, 7}), grfw::PlainSprite(1, 1, {200})});
  const std::string grf = grfw::WriteTemp("three.grf", three);
  const fs::path dir = FreshFolder("export-existing");
  fs::create_directories(dir);
  std::ofstream(dir / "0002.bin") << "mine";
  EXPECT_EQ(RunCli({"export", grf, dir.string()}).Status, 1);
  EXPECT_EQ(ReadAll(dir / "0002.bin"), Bytes({'m', 'i', 'n', 'e'}));
  EXPECT_EQ(std::distance(fs::directory_iterator(dir), {}), 1);
  // A folder cannot be replaced by a picture. Writers beside the failing one may finish theirs.
  fs::create_directory(dir / "0003.png");
  EXPECT_EQ(RunCli({"export", grf, dir.string(), "--force"}).Status, 1);
  const SpriteStore store = Load(three);
  for (const fs::directory_entry& entry : fs::directory_iterator(dir))
    if (entry.path().filename() != "0003.png")
      ExpectSprite(dir, store, std::stoul(entry.path().stem().string()) - 1);
  fs::remove(dir / "0003.png");
  EXPECT_EQ(RunCli({"export", grf, dir.string(), "--force"}).Status, 0);
  EXPECT_EQ(ReadAll(dir / "0002.bin"), Bytes({9, 8, 7}));
}

// Every alternative of a version-2 sprite in its own file, the mask beside RGB left out; and
// sprite --png with the options that choose each one writes the same picture.
TEST(CliExport, EveryAlternativeOfAVersion2SpriteItsOwnFile) {
  const grfw::Image2 eight{0x04, 0, 3, 2, -1, 2, {1, 2, 3, 4, 5, 6}};
  const grfw::Image2 rgba{0x03, 0, 1, 1, 0, -3, {10, 20, 30, 40}};
  const grfw::Image2 masked{0x05, 1, 1, 1, 4, 5, {1, 2, 3, 9}};
  const Bytes file =
      grfw::V2File({grfw::V2Ref(1), grfw::V2Data(0xFF, {9, 8})},
                   {grfw::V2Sprite(1, eight), grfw::V2Sprite(1, rgba), grfw::V2Sprite(1, masked)});
  const std::string grf = grfw::WriteTemp("v2-export.grf", file);
  const fs::path dir = FreshFolder("export-v2");
  EXPECT_EQ(RunCli({"export", grf, dir.string()}).Status, 0);
  ExpectPicture(dir / "0001.png", 3, 2, -1, 2,
                [&](int x, int y) { return Colour(eight.pixels[size_t(y * 3 + x)]); });
  ExpectPicture(dir / "0001-32bpp-normal.png", 1, 1, 0, -3,
                [](int, int) { return qRgba(10, 20, 30, 40); });
  ExpectPicture(dir / "0001-32bpp-in4.png", 1, 1, 4, 5, [](int, int) { return qRgb(1, 2, 3); });
  EXPECT_EQ(ReadAll(dir / "0002.bin"), Bytes({9, 8}));
  const std::pair<const char*, std::vector<std::string>> chosen[] = {
      {"0001.png", {"--depth", "8"}},
      {"0001-32bpp-normal.png", {}},
      {"0001-32bpp-in4.png", {"--zoom", "in4"}}};
  for (const auto& [name, options] : chosen) {
    const std::string png = (dir / "sprite.png").string();
    std::vector<std::string> args = {"sprite", grf, "1", "--png", png, "--force"};
    args.insert(args.end(), options.begin(), options.end());
    ASSERT_EQ(RunCli(args).Status, 0) << name;
    EXPECT_EQ(QImage(QString::fromStdString(png)).convertToFormat(QImage::Format_ARGB32),
              QImage(QString::fromStdString((dir / name).string()))
                  .convertToFormat(QImage::Format_ARGB32))
        << name;
  }
}
