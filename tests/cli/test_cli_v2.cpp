// vossel-cli on container version 2 files, run as the real binary; PNG files are read back with
// QImage and compared with the pixels our writer put in.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include <QImage>

#include "grf_writer.h"
#include "run_cli.h"

namespace {

using grfw::Bytes;
using grfw::Image2;

// Pixels counting up; every seventh all zero, which tile form leaves uncovered.
Image2 Counting(uint8_t info, uint8_t zoom, uint16_t w, uint16_t h, int16_t x, int16_t y) {
  Image2 im{info, zoom, w, h, x, y, {}};
  const size_t ps = grfw::PixelBytes(info);
  for (size_t i = 0; i < size_t{w} * h * ps; ++i)
    im.pixels.push_back((i / ps) % 7 == 3 ? 0 : static_cast<uint8_t>(1 + i * 13 % 251));
  return im;
}

const Image2 kEight = Counting(0x04, 0, 5, 3, -2, 1);
const Image2 kRgbaMask = Counting(0x07, 0, 4, 2, 0, 0);
const Image2 kWideTile = Counting(0x0B, 1, 300, 2, -150, -1);
const Image2 kRgb = Counting(0x01, 2, 6, 6, 3, 3);
const Image2 kMaskTile = Counting(0x0D, 3, 3, 3, 0, 0);

// Sprite 1: three alternatives of id 1; 2: a pseudo-sprite; 3: only 32-bit, none at normal zoom;
// 4: a reference to an id the file lacks.
std::string TestFile() {
  return grfw::WriteTemp(
      "v2.grf",
      grfw::V2File(
          {grfw::V2Ref(1), grfw::V2Data(0xFF, {9, 8, 7}), grfw::V2Ref(2), grfw::V2Ref(99)},
          {grfw::V2Sprite(1, kEight), grfw::V2Sprite(1, kRgbaMask), grfw::V2Sprite(1, kWideTile),
           grfw::V2Sprite(2, kRgb), grfw::V2Sprite(2, kMaskTile)}));
}

std::string TempPng(const std::string& name) {
  return (std::filesystem::path(grfw::WriteTemp("anchor", {})).parent_path() / name).string();
}

// The PNG holds the image's pixels: RGBA for an image with RGB (alpha 255 without an alpha layer,
// all 0 where tile form covers nothing), palette indices for an 8-bit one.
void ExpectPng(const std::string& png, const Image2& im) {
  QImage img;
  ASSERT_TRUE(img.load(QString::fromStdString(png), "PNG")) << png;
  ASSERT_EQ(img.width(), im.width);
  ASSERT_EQ(img.height(), im.height);
  const size_t ps = grfw::PixelBytes(im.info);
  if (!(im.info & 1)) {
    ASSERT_EQ(img.format(), QImage::Format_Indexed8);
  }
  const QImage rgba = img.convertToFormat(QImage::Format_RGBA8888);
  for (int y = 0; y < im.height; ++y) {
    for (int x = 0; x < im.width; ++x) {
      const uint8_t* p = &im.pixels[(size_t(y) * im.width + size_t(x)) * ps];
      const bool covered = !(im.info & 8) || Bytes(p, p + ps) != Bytes(ps, 0);
      if (!(im.info & 1)) {
        ASSERT_EQ(img.pixelIndex(x, y), p[0]) << x << "," << y;
        continue;
      }
      const uint8_t* got = rgba.constScanLine(y) + 4 * x;
      const Bytes want =
          covered ? Bytes{p[0], p[1], p[2], uint8_t((im.info & 2) ? p[3] : 255)} : Bytes(4, 0);
      ASSERT_EQ(Bytes(got, got + 4), want) << x << "," << y;
    }
  }
}

}  // namespace

TEST(CliV2, ListsEachDataEntryWithItsAlternatives) {
  const std::string path = TestFile();
  const CliRun run = RunCli({"list", path});
  EXPECT_EQ(run.Status, 0);
  EXPECT_EQ(run.Out,
            "0001\t004\t002\t00040\t00000111\t8bpp normal, 32bpp normal, 32bpp in4\n"
            "0002\t003\t001\t00003\t11111111\t\n"
            "0003\t006\t006\t00108\t00000001\t32bpp in2, 32bpp out2\n"
            "0004\t000\t000\t00000\t11111101\t\n");
  EXPECT_EQ(run.Err, "Sprite 4 refers to id 99, which the file lacks\n");
}

TEST(CliV2, InfoCountsPicturesAndStreams) {
  const std::string path = TestFile();
  const CliRun run = RunCli({"info", path});
  EXPECT_EQ(run.Status, 0);
  // Pictures: 3 data bytes + 15 + 40 + 2400 + 108 + 36 = 2602 bytes.
  EXPECT_NE(run.Out.find(" compressed of 2.54kB uncompressed\n- Filesize "), std::string::npos);
  EXPECT_NE(run.Out.find("\n\n*** '" + path + "' loaded ***\nLoaded 4 sprites in "),
            std::string::npos);
  EXPECT_EQ(run.Err, "Sprite 4 refers to id 99, which the file lacks\n");
}

TEST(CliV2, SpriteOptionsChooseTheAlternativeAndItsPng) {
  const std::string path = TestFile();
  struct Case {
    std::vector<std::string> options;
    const Image2* image;
    const char* sprite;
    const char* facts;
  };
  const Case cases[] = {
      {{}, &kRgbaMask, "1", "(4 x 2)\nFlags: 00000111 (7)\nSize: 40\n"},
      {{"--depth", "8"}, &kEight, "1", "(5 x 3)\nFlags: 00000100 (4)\nSize: 15\n"},
      {{"--zoom", "in4"}, &kWideTile, "1", "(300 x 2)\nFlags: 00001011 (11)\nSize: 2400\n"},
      {{}, &kRgb, "3", "(6 x 6)\nFlags: 00000001 (1)\nSize: 108\n"},
      {{"--zoom=out2", "--depth", "32"}, &kMaskTile, "3", "(3 x 3)\nFlags: 00001101 (13)\n"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.image->info);
    const std::string png = TempPng("v2-" + std::to_string(c.image->info) + ".png");
    std::vector<std::string> args = {"sprite", path, c.sprite, "--png", png};
    args.insert(args.end(), c.options.begin(), c.options.end());
    const CliRun run = RunCli(args);
    EXPECT_EQ(run.Status, 0) << run.Err;
    EXPECT_NE(run.Out.find(c.facts), std::string::npos) << run.Out;
    const std::string zoomDepth =
        "Offset: " + std::to_string(c.image->x) + " x " + std::to_string(c.image->y) + "\nZoom: ";
    EXPECT_NE(run.Out.find(zoomDepth), std::string::npos) << run.Out;
    EXPECT_NE(run.Out.find((c.image->info & 1) ? "Depth: 32bpp\n" : "Depth: 8bpp\n"),
              std::string::npos);
    ExpectPng(png, *c.image);
  }
}

TEST(CliV2, AbsentAlternativesAndSpritesWithoutPictures) {
  const std::string path = TestFile();
  const std::string png = TempPng("v2-none.png");
  struct Case {
    std::vector<std::string> args;
    int status;
    std::string err;
  };
  const Case cases[] = {
      {{"sprite", path, "3", "--depth", "8"},
       1,
       "vossel-cli: sprite 3 has no 8bpp alternative; it has: 32bpp in2, 32bpp out2\n"},
      {{"chunks", path, "1", "--zoom", "out8", "--depth", "32"},
       1,
       "vossel-cli: sprite 1 has no 32bpp out8 alternative; it has: 8bpp normal, 32bpp normal, "
       "32bpp in4\n"},
      {{"sprite", path, "2", "--zoom", "normal"},
       1,
       "vossel-cli: sprite 2 has no normal alternative; it has: none\n"},
      {{"sprite", path, "4", "--png", png},
       1,
       "vossel-cli: sprite 4 has no pixels (0 x 0); no PNG written\n"},
  };
  for (const Case& c : cases) {
    const CliRun run = RunCli(c.args);
    EXPECT_EQ(run.Status, c.status);
    EXPECT_EQ(run.Err, "Sprite 4 refers to id 99, which the file lacks\n" + c.err);
  }
  EXPECT_FALSE(std::filesystem::exists(png));
}

TEST(CliV2, PseudoSpriteAndChunksOfTheChosenStream) {
  const std::string path = TestFile();
  const std::string png = TempPng("v2-pseudo.png");
  CliRun run = RunCli({"sprite", path, "2", "--png", png});
  EXPECT_EQ(run.Status, 0);
  EXPECT_EQ(run.Out,
            "Viewing sprite 2 (3 x 1)\nFlags: 11111111 (255)\nSize: 3\nCompressed: 3\n"
            "Offset: 0 x 0\n");
  ExpectPng(png, Image2{0x04, 0, 3, 1, 0, 0, {9, 8, 7}});
  // Data-section entries: 9 bytes each from byte 15; the pseudo-sprite's data at 15 + 9 + 5.
  EXPECT_EQ(RunCli({"chunks", path, "2"}).Out, "29\tAction sprite, 3 bytes\n");
  const std::string normal = RunCli({"chunks", path, "1"}).Out;
  EXPECT_EQ(RunCli({"chunks", path, "1", "--zoom", "normal", "--depth", "32"}).Out, normal);
  const CliRun wide = RunCli({"chunks", path, "1", "--zoom", "in4"});
  EXPECT_EQ(wide.Status, 0);
  EXPECT_NE(wide.Out, normal);
  EXPECT_NE(wide.Out.find("\tData chunk of "), std::string::npos);
}

TEST(CliV2, OpenGfxSpritesMatchTheirStreams) {
  const std::string base = std::string(VOSSEL_BASESET_DIR) + "/opengfx/ogfx1_base.grf";
  if (!std::filesystem::exists(base)) GTEST_SKIP() << base << " is not installed";
  const CliRun list = RunCli({"list", base});
  EXPECT_EQ(list.Status, 0);
  EXPECT_EQ(std::count(list.Out.begin(), list.Out.end(), '\n'), 4793);
  // Sprite 131 has a second alternative at in2; the PNG of each is as large as listed.
  for (const char* zoom : {"normal", "in2"}) {
    const std::string png = TempPng(std::string("ogfx-") + zoom + ".png");
    const CliRun run = RunCli({"sprite", base, "131", "--zoom", zoom, "--png", png});
    EXPECT_EQ(run.Status, 0) << run.Err;
    QImage img;
    ASSERT_TRUE(img.load(QString::fromStdString(png), "PNG"));
    EXPECT_EQ(img.format(), QImage::Format_Indexed8);
    EXPECT_EQ(run.Out.rfind("Viewing sprite 131 (" + std::to_string(img.width()) + " x " +
                                std::to_string(img.height()) + ")\n",
                            0),
              0u);
  }
}
