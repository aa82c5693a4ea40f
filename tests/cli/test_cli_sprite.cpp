// vossel-cli sprite, run as the real binary; its PNG files are read back with QImage.
#include <gtest/gtest.h>

#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <QImage>

#include "grf.h"
#include "grf_writer.h"
#include "palette.h"
#include "renderer.h"
#include "run_cli.h"

namespace fs = std::filesystem;

namespace {

using grfw::Bytes;
using grfw::Run;

// Rows of a 64 x 31 run-form picture: each row a few runs with varied skips and colours.
std::vector<std::vector<Run>> SixtyFourRows() {
  std::vector<std::vector<Run>> rows;
  for (int y = 0; y < 31; ++y) {
    Bytes a, b;
    for (int i = 0; i < 5 + y % 7; ++i) a.push_back(static_cast<uint8_t>(y * 8 + i));
    for (int i = 0; i < 20; ++i) b.push_back(static_cast<uint8_t>(200 + i + y));
    rows.push_back({Run{static_cast<uint8_t>(y % 13), a}, Run{static_cast<uint8_t>(30 + y), b}});
  }
  rows[4].clear();
  return rows;
}

// Four sprites in front of the 64 x 31 one, as the main window's example has it at number 5.
Bytes FiveSpriteFile() {
  return grfw::File({
      grfw::ActionRecord({0, 1, 2, 3, 4, 5, 6, 7, 8, 9}),
      grfw::PlainSprite(5, 2, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10}, -1, -2, 0),
      grfw::PlainSprite(3, 1, {7, 8, 9}, 0, 0, 4),
      grfw::PlainSprite(4, 4, Bytes(16, 0), 0, 0, 0, false),
      grfw::RunSprite(64, SixtyFourRows(), -31, 0),
  });
}

std::string TempPath(const std::string& name) {
  const std::string anchor = grfw::WriteTemp("anchor", {});
  return (fs::path(anchor).parent_path() / name).string();
}

// The store the program makes of the same bytes, with only the entries it shows.
SpriteStore Loaded(const Bytes& file) {
  SpriteStore store;
  const LoadOutcome out =
      LoadSprites(file.data(), int32_t(file.size()), store, [](const std::string&) {});
  store.SpriteTable.resize(static_cast<size_t>(out.Totals.Count));
  return store;
}

PaletteBuffer ShippedPalette() {
  PaletteBuffer p{};
  EXPECT_EQ(
      LoadPalette(JoinPath(fs::path(VOSSEL_CLI_PATH).parent_path().string(), kPaletteFileName), p),
      -1);
  return p;
}

// The PNG holds exactly the sprite's pixels with the palette as its colour table.
void ExpectPng(const std::string& png, const SpriteStore& store, int index,
               const PaletteBuffer& palette) {
  const SpriteRecord& r = store.SpriteTable[index];
  QImage img;
  ASSERT_TRUE(img.load(QString::fromStdString(png), "PNG")) << png;
  ASSERT_EQ(img.format(), QImage::Format_Indexed8);
  ASSERT_EQ(img.width(), r.Width);
  ASSERT_EQ(img.height(), r.Height);
  EXPECT_EQ(img.colorTable(), PaletteColours(palette));
  for (int y = 0; y < r.Height; ++y)
    for (int x = 0; x < r.Width; ++x)
      ASSERT_EQ(img.pixelIndex(x, y), store.SpriteData[r.DataOffset + r.Width * y + x])
          << x << "," << y;
}

}  // namespace

TEST(CliSprite, PrintsWhatTheMainWindowShows) {
  const Bytes file = FiveSpriteFile();
  const std::string path = grfw::WriteTemp("five.grf", file);
  const SpriteStore store = Loaded(file);
  ASSERT_EQ(store.SpriteTable.size(), 5u);

  CliRun run = RunCli({"sprite", path, "5"});
  EXPECT_EQ(run.Status, 0);
  EXPECT_EQ(run.Err, "");
  EXPECT_EQ(run.Out, "Viewing sprite 5 (64 x 31)\nFlags: 00001000 (8)\nSize: 1984\nCompressed: " +
                         std::to_string(store.SpriteTable[4].CompressedSize) +
                         "\nOffset: -31 x 0\n");

  run = RunCli({"sprite", path, "1"});
  EXPECT_EQ(run.Status, 0);
  EXPECT_EQ(run.Out,
            "Viewing sprite 1 (10 x 1)\nFlags: 11111111 (255)\nSize: 10\nCompressed: 10\n"
            "Offset: 0 x 0\n");

  run = RunCli({"sprite", path, "2"});
  EXPECT_EQ(run.Out, "Viewing sprite 2 (5 x 2)\nFlags: 00000000 (0)\nSize: 10\nCompressed: " +
                         std::to_string(store.SpriteTable[1].CompressedSize) +
                         "\nOffset: -1 x -2\n");
}

TEST(CliSprite, WritesAnIndexedPngWithTheShippedPalette) {
  const Bytes file = FiveSpriteFile();
  const std::string path = grfw::WriteTemp("five-png.grf", file);
  const SpriteStore store = Loaded(file);
  const PaletteBuffer palette = ShippedPalette();
  // A width that needs fill bytes, one that needs none, the run form and an action strip.
  for (int n : {1, 2, 3, 4, 5}) {
    const std::string png = TempPath("sprite" + std::to_string(n) + ".png");
    const CliRun run = RunCli({"sprite", path, std::to_string(n), "--png", png});
    EXPECT_EQ(run.Status, 0) << n << run.Err;
    EXPECT_EQ(run.Err, "");
    ExpectPng(png, store, n - 1, palette);
  }
}

TEST(CliSprite, AnotherPaletteAndOptionsInAnyOrder) {
  const Bytes file = FiveSpriteFile();
  const std::string path = grfw::WriteTemp("five-pal.grf", file);
  const std::string text = "JASC-PAL\r\n0100\r\n2\r\n10 20 30\r\n40 50 60\r\n";
  const std::string pal = grfw::WriteTemp("two.pal", Bytes(text.begin(), text.end()));
  const std::string png = TempPath("own-palette.png");
  const CliRun run = RunCli({"sprite", path, "3", "--palette", pal, "--png", png});
  EXPECT_EQ(run.Status, 0) << run.Err;
  PaletteBuffer two{};
  ASSERT_EQ(LoadPalette(pal, two), -1);
  ExpectPng(png, Loaded(file), 2, two);
}

TEST(CliSprite, RefusedPalettes) {
  const std::string path = grfw::WriteTemp("five-bad.grf", FiveSpriteFile());
  const std::string lf = "JASC-PAL\n0100\n1\n1 2 3\n";
  const std::string bad = grfw::WriteTemp("lf.pal", Bytes(lf.begin(), lf.end()));
  const std::string png = TempPath("never.png");
  for (const std::string& pal : {bad, TempPath("missing.pal")}) {
    // Named alone, or with a PNG to write.
    for (const bool withPng : {false, true}) {
      std::vector<std::string> args = {"sprite", path, "1", "--palette", pal};
      if (withPng) args.insert(args.end(), {"--png", png});
      const CliRun run = RunCli(args);
      EXPECT_EQ(run.Status, 1) << pal;
      EXPECT_EQ(run.Err, "Invalid palette file or unknown format\n");
      EXPECT_EQ(run.Out, "");
      EXPECT_FALSE(fs::exists(png));
    }
  }
}

TEST(CliSprite, SpriteNumbersOutsideTheFile) {
  const std::string path = grfw::WriteTemp("five-n.grf", FiveSpriteFile());
  for (const char* n : {"0", "6", "-1", "99999999999"}) {
    const CliRun run = RunCli({"sprite", path, n});
    EXPECT_EQ(run.Status, 1) << n;
    EXPECT_EQ(run.Out, "") << n;
    EXPECT_NE(run.Err, "") << n;
  }
  const CliRun run = RunCli({"sprite", "/nonexistent/x.grf", "1"});
  EXPECT_EQ(run.Status, 1);
  EXPECT_EQ(run.Err, "Error 2: No such file or directory (/nonexistent/x.grf)\n");
}

TEST(CliSprite, SpritesWithoutPixelsWriteNoPng) {
  // Width 0 and height 3, width 2 and height 0: no decoded bytes, but facts all the same.
  const std::string path = grfw::WriteTemp(
      "empty-sprites.grf",
      grfw::File({grfw::RawSprite(8, 0, 3, 0, 5, 6, {}), grfw::RawSprite(8, 0, 0, 2, 0, 0, {}),
                  grfw::PlainSprite(1, 1, {1})}));
  const std::string png = TempPath("empty.png");
  CliRun run = RunCli({"sprite", path, "1", "--png", png});
  EXPECT_EQ(run.Status, 1);
  EXPECT_EQ(run.Out,
            "Viewing sprite 1 (0 x 3)\nFlags: 00000000 (0)\nSize: 0\nCompressed: 0\n"
            "Offset: 5 x 6\n");
  EXPECT_EQ(run.Err, "vossel-cli: sprite 1 has no pixels (0 x 3); no PNG written\n");
  EXPECT_FALSE(fs::exists(png));

  run = RunCli({"sprite", path, "2", "--png", png});
  EXPECT_EQ(run.Status, 1);
  EXPECT_EQ(run.Err, "vossel-cli: sprite 2 has no pixels (2 x 0); no PNG written\n");
  EXPECT_FALSE(fs::exists(png));
}

TEST(CliSprite, WidestActionStripWritesItsPng) {
  Bytes data(32767);
  for (size_t i = 0; i < data.size(); ++i) data[i] = static_cast<uint8_t>(i * 31);
  const Bytes file = grfw::File({grfw::ActionRecord(data), grfw::PlainSprite(1, 1, {1})});
  const std::string path = grfw::WriteTemp("wide.grf", file);
  const std::string png = TempPath("wide.png");
  const CliRun run = RunCli({"sprite", path, "1", "--png", png});
  EXPECT_EQ(run.Status, 0) << run.Err;
  EXPECT_EQ(run.Out.substr(0, 33), "Viewing sprite 1 (32767 x 1)\nFlag");
  ExpectPng(png, Loaded(file), 0, ShippedPalette());
}

TEST(CliSprite, PngThatCannotBeWritten) {
  const std::string path = grfw::WriteTemp("five-w.grf", FiveSpriteFile());
  const CliRun run = RunCli({"sprite", path, "2", "--png", "/nonexistent/dir/x.png"});
  EXPECT_EQ(run.Status, 1);
  EXPECT_EQ(run.Err, "vossel-cli: cannot write the PNG file '/nonexistent/dir/x.png'\n");
  // The facts come first.
  EXPECT_EQ(run.Out.substr(0, 24), "Viewing sprite 2 (5 x 2)");
}

TEST(CliSprite, UsageErrors) {
  const std::string path = grfw::WriteTemp("five-u.grf", FiveSpriteFile());
  const std::vector<std::vector<std::string>> cases = {
      {"sprite"},
      {"sprite", path},
      {"sprite", path, "1", "--png"},
      {"sprite", path, "1", "--palette"},
      {"sprite", path, "1", "--png", "a.png", "--png", "b.png"},
      {"sprite", path, "1", "--palette", "a.pal", "--palette", "b.pal"},
      {"sprite", path, "1", "--jpg", "a.jpg"},
      {"sprite", path, "1", "extra"},
      {"sprite", path, "--png", "a.png", "1"},
      {"sprite", "--png", "a.png", path, "1"},
      {"sprite", path, "1x"},
      {"sprite", path, "abc"},
      {"sprite", path, ""},
      {"sprite", path, "1", "--zoom", "in3"},
      {"sprite", path, "1", "--depth", "16"},
  };
  for (const auto& args : cases) {
    const CliRun run = RunCli(args);
    EXPECT_EQ(run.Status, 2) << args.size();
    EXPECT_EQ(run.Out, "");
    EXPECT_NE(run.Err.find("Usage: vossel-cli sprite FILE N [--png OUT] [--palette PAL]"),
              std::string::npos);
  }
}

TEST(CliSprite, FindsThePaletteBesideTheRealProgramThroughALink) {
  const std::string path = grfw::WriteTemp("five-link.grf", FiveSpriteFile());
  const std::string link = TempPath("vossel-cli-link");
  const std::string png = TempPath("through-link.png");
  fs::remove(link);
  fs::create_symlink(VOSSEL_CLI_PATH, link);
  const std::string command =
      "'" + link + "' sprite '" + path + "' 5 --png '" + png + "' >/dev/null 2>&1";
  const int status = std::system(command.c_str());
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 0);
  ExpectPng(png, Loaded(FiveSpriteFile()), 4, ShippedPalette());
}

TEST(CliSprite, RealFileSpriteMatchesTheStore) {
  const std::string real = std::string(VOSSEL_BASESET_DIR) + "/openttd.grf";
  if (!fs::exists(real)) GTEST_SKIP() << real << " is not installed";
  const grfw::Bytes bytes = [&] {
    std::ifstream in(real, std::ios::binary);
    return grfw::Bytes(std::istreambuf_iterator<char>(in), {});
  }();
  const SpriteStore store = Loaded(bytes);
  // The first sprite of at least 8 x 8 that is not an action sprite.
  int index = -1;
  for (size_t i = 0; i < store.SpriteTable.size() && index < 0; ++i) {
    const SpriteRecord& r = store.SpriteTable[i];
    if (r.Flags != kActionFlags && r.Width >= 8 && r.Height >= 8) index = int(i);
  }
  ASSERT_GE(index, 0);
  const std::string png = TempPath("real.png");
  const CliRun run = RunCli({"sprite", real, std::to_string(index + 1), "--png", png});
  EXPECT_EQ(run.Status, 0) << run.Err;
  ExpectPng(png, store, index, ShippedPalette());
}
