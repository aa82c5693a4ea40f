// vossel-cli on container version 2 files, run as the real binary; PNG files are read back with
// QImage and compared with the pixels our writer put in.
#include <gtest/gtest.h>

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
    im.pixels.push_back((i / ps) % 7 == 3 ? 0 : uint8_t(1 + i * 13 % 251));
  return im;
}

const Image2 kEight = Counting(0x04, 0, 5, 3, -2, 1);
const Image2 kRgbaMask = Counting(0x07, 0, 4, 2, 0, 0);
const Image2 kWideTile = Counting(0x0B, 1, 300, 2, -150, -1);
const Image2 kRgb = Counting(0x01, 2, 6, 6, 3, 3);
const Image2 kMaskTile = Counting(0x0D, 3, 3, 3, 0, 0);
const char kMissing[] = "Sprite 4 refers to id 99, which the file lacks\n";

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

// The PNG holds what a decoder must give for the image: RGBA, or palette indices for 8-bit.
void ExpectPng(const std::string& png, const Image2& im) {
  QImage img;
  ASSERT_TRUE(img.load(QString::fromStdString(png), "PNG")) << png;
  Bytes rgba, indices, got;
  grfw::DecodedLayers(im, rgba, indices);
  const bool eight = rgba.empty();
  if (eight) {
    ASSERT_EQ(img.format(), QImage::Format_Indexed8);
  } else {
    img = img.convertToFormat(QImage::Format_RGBA8888);
  }
  ASSERT_EQ(img.size(), QSize(im.width, im.height));
  for (int y = 0; y < img.height(); ++y)
    got.insert(got.end(), img.constScanLine(y), img.constScanLine(y) + (eight ? 1 : 4) * im.width);
  EXPECT_TRUE(got == (eight ? indices : rgba));
}

}  // namespace

TEST(CliV2, ListAndInfo) {
  const std::string path = TestFile();
  CliRun run = RunCli({"list", path});
  EXPECT_EQ(run.Status, 0);
  EXPECT_EQ(run.Out,
            "0001\t004\t002\t00040\t00000111\t8bpp normal, 32bpp normal, 32bpp in4\n"
            "0002\t003\t001\t00003\t11111111\t\n"
            "0003\t006\t006\t00108\t00000001\t32bpp in2, 32bpp out2\n"
            "0004\t000\t000\t00000\t11111101\t\n");
  EXPECT_EQ(run.Err, kMissing);
  run = RunCli({"info", path});
  EXPECT_EQ(run.Status, 0);
  // Pictures: 3 data bytes + 15 + 40 + 2400 + 108 + 36 = 2602 bytes.
  EXPECT_NE(run.Out.find(" compressed of 2.54kB uncompressed\n- Filesize "), std::string::npos);
  EXPECT_NE(run.Out.find("\n\n*** '" + path + "' loaded ***\nLoaded 4 sprites in "),
            std::string::npos);
  EXPECT_EQ(run.Err, kMissing);
}

TEST(CliV2, SpriteOptionsChooseTheAlternativeAndItsPng) {
  const std::string path = TestFile();
  const std::tuple<std::vector<std::string>, const Image2*, std::string> cases[] = {
      {{"1"}, &kRgbaMask, "(4 x 2)\nFlags: 00000111 (7)\nSize: 40\n"},
      {{"1", "--depth", "8"}, &kEight, "(5 x 3)\nFlags: 00000100 (4)\nSize: 15\n"},
      {{"1", "--zoom", "in4"}, &kWideTile, "(300 x 2)\nFlags: 00001011 (11)\nSize: 2400\n"},
      {{"3"}, &kRgb, "(6 x 6)\nFlags: 00000001 (1)\nSize: 108\n"},
      {{"3", "--zoom=out2", "--depth", "32"}, &kMaskTile, "(3 x 3)\nFlags: 00001101 (13)\n"},
  };
  for (const auto& [options, image, facts] : cases) {
    SCOPED_TRACE(facts);
    const std::string png = TempPng("v2-" + std::to_string(image->info) + ".png");
    std::vector<std::string> args = {"sprite", path, "--png", png};
    args.insert(args.begin() + 2, options.begin(), options.end());
    const CliRun run = RunCli(args);
    EXPECT_EQ(run.Status, 0) << run.Err;
    EXPECT_NE(run.Out.find(facts), std::string::npos) << run.Out;
    EXPECT_NE(run.Out.find("\nOffset: " + std::to_string(image->x) + " x " +
                           std::to_string(image->y) + "\nZoom: "),
              std::string::npos);
    EXPECT_NE(run.Out.find((image->info & 1) ? "Depth: 32bpp\n" : "Depth: 8bpp\n"),
              std::string::npos);
    ExpectPng(png, *image);
  }
}

TEST(CliV2, AbsentAlternativesAndSpritesWithoutPictures) {
  const std::string path = TestFile(), png = TempPng("v2-none.png");
  const std::pair<std::vector<std::string>, std::string> cases[] = {
      {{"sprite", path, "3", "--depth", "8"},
       "sprite 3 has no 8bpp alternative; it has: 32bpp in2, 32bpp out2"},
      {{"chunks", path, "1", "--zoom", "out8", "--depth", "32"},
       "sprite 1 has no 32bpp out8 alternative; it has: 8bpp normal, 32bpp normal, 32bpp in4"},
      {{"sprite", path, "2", "--zoom", "normal"},
       "sprite 2 has no normal alternative; it has: none"},
      {{"sprite", path, "4", "--png", png}, "sprite 4 has no pixels (0 x 0); no PNG written"},
  };
  for (const auto& [args, err] : cases) {
    const CliRun run = RunCli(args);
    EXPECT_EQ(run.Status, 1);
    EXPECT_EQ(run.Err, kMissing + ("vossel-cli: " + err + "\n"));
  }
  EXPECT_FALSE(std::filesystem::exists(png));
}

TEST(CliV2, PseudoSpriteAndChunksOfTheChosenStream) {
  const std::string path = TestFile(), png = TempPng("v2-pseudo.png");
  const CliRun run = RunCli({"sprite", path, "2", "--png", png});
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
