// Container version 2: the index and the decoder against images made by our own writer and against
// the OpenGFX files, damaged files, and the chunk list rebuilt into the bytes it lists.
#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <sstream>

#include "fileio.h"
#include "grf2.h"
#include "grf_writer.h"

namespace {

using grfw::Bytes;
using grfw::Image2;

// Random pixels with runs in them; about a third of them all zero, which tile form leaves out.
Image2 RandomImage(uint8_t info, uint8_t zoom, uint16_t w, uint16_t h, uint32_t seed) {
  std::mt19937 rng(seed);
  Image2 im{info, zoom, w, h, int16_t(-w / 2), int16_t(seed % 7), {}};
  Bytes pixel(grfw::PixelBytes(info));
  for (size_t i = 0; i < size_t{w} * h; ++i) {
    if (rng() % 3 == 0) pixel.assign(pixel.size(), 0);
    if (rng() % 3 == 1)
      for (uint8_t& b : pixel) b = uint8_t(rng() | 1);
    grfw::Append(im.pixels, pixel);
  }
  return im;
}

// An independent decoder of the chunk list's lines: data chunks give the bytes they show, offset
// chunks copy from the position they name.
Bytes RebuildFromLines(const std::vector<ChunkLine>& lines) {
  Bytes out;
  for (const ChunkLine& line : lines) {
    std::istringstream in(line.Text);
    std::string w;
    int n = 0;
    long from = 0;
    if (line.Text.rfind("Data", 0) == 0) {
      for (in >> w >> w >> w >> n >> w; in >> w;) out.push_back(uint8_t(std::stoi(w, nullptr, 16)));
    } else {
      for (in >> w >> w >> n >> w >> w >> w >> w >> w >> from; n-- > 0; ++from)
        out.push_back(from >= 0 ? out[size_t(from)] : 0);
    }
  }
  return out;
}

struct Opened {
  Bytes File;
  GrfV2Index Index;
  std::vector<std::string> Messages;
  GrfV2Result Decode(int32_t alternative, GrfV2Image& image) const {
    return DecodeAlternative(File.data(), File.size(), Index.Alternatives.at(alternative), image);
  }
  std::vector<ChunkLine> Lines(int32_t alternative) const {
    return V2ChunkList(File.data(), File.size(), Index, GrfV2Sprite{}, alternative);
  }
};

Opened Open(Bytes file) {
  Opened o{std::move(file), {}, {}};
  IndexGrfV2(o.File.data(), o.File.size(), o.Index,
             [&o](const std::string& m) { o.Messages.push_back(m); });
  return o;
}

}  // namespace

TEST(GrfV2, EveryImageKindDecodesToItsPixels) {
  // 8-bit, RGB, alpha, mask; plain and tile form, 256 wide and wider; every zoom level.
  const std::tuple<uint8_t, uint16_t, uint16_t> kinds[] = {
      {0x04, 40, 30}, {0x0C, 40, 30}, {0x4C, 256, 20}, {0x0C, 257, 10},  {0x01, 33, 17},
      {0x03, 33, 17}, {0x05, 20, 20}, {0x07, 20, 20},  {0x0B, 320, 100}, {0x0F, 64, 48},
      {0x09, 600, 5}, {0x06, 9, 9},   {0x04, 0, 5},    {0x0F, 7, 0}};
  std::vector<Image2> images;
  std::vector<Bytes> data, sprites;
  for (const auto& [info, w, h] : kinds) {
    images.push_back(RandomImage(info, images.size() % kZoomLevels, w, h, images.size()));
    sprites.push_back(grfw::V2Sprite(uint32_t(images.size()), images.back()));
    data.push_back(grfw::V2Ref(uint32_t(images.size())));
  }
  ASSERT_GE(grfw::TileData(images[8]).size(), 65536u);  // four-byte row offsets
  const Opened o = Open(grfw::V2File(data, sprites));
  ASSERT_EQ(o.Index.End, GrfV2Result::Ok);
  EXPECT_TRUE(o.Messages.empty());
  for (size_t i = 0; i < images.size(); ++i) {
    SCOPED_TRACE(i);
    const Image2& im = images[i];
    GrfV2Image got;
    ASSERT_EQ(o.Decode(o.Index.Sprites.at(i).Default, got), GrfV2Result::Ok);
    Bytes rgba, indices;
    grfw::DecodedLayers(im, rgba, indices);
    EXPECT_EQ(std::tie(got.Width, got.Height, got.XOffset, got.YOffset, got.Zoom),
              std::tie(im.width, im.height, im.x, im.y, im.zoom));
    EXPECT_TRUE(got.Rgba == rgba && got.Indices == indices);
    // The chunk list walks the same stream: rebuilt, it gives what the stream decompresses to.
    EXPECT_TRUE(RebuildFromLines(o.Lines(o.Index.Sprites[i].Default)) ==
                ((im.info & 8) ? grfw::TileData(im) : im.pixels));
  }
}

TEST(GrfV2, IdsAndTheDefaultAlternative) {
  auto alt = [](uint32_t id, uint8_t info, uint8_t zoom) {
    return grfw::V2Sprite(id, RandomImage(info, zoom, 4, 4, id));
  };
  // Ids out of order, 9 never used, 3 used twice; 5 only 32-bit and none at normal zoom.
  const Opened o =
      Open(grfw::V2File({grfw::V2Ref(3), grfw::V2Data(0xFF, {1, 2}), grfw::V2Ref(7), grfw::V2Ref(3),
                         grfw::V2Ref(5), grfw::V2Ref(6)},
                        {alt(7, 0x04, kZoomIn4), alt(7, 0x04, kZoomOut2), alt(7, 0x04, kZoomIn2),
                         alt(3, 0x04, kZoomNormal), alt(3, 0x03, kZoomNormal),
                         alt(3, 0x03, kZoomIn4), alt(9, 0x04, kZoomNormal), alt(5, 0x01, kZoomIn4),
                         alt(5, 0x07, kZoomOut2), grfw::V2Raw(6, {0xFF, 1, 2, 3})}));
  ASSERT_EQ(o.Index.End, GrfV2Result::Ok);
  std::vector<std::string> defaults;
  for (const GrfV2Sprite& s : o.Index.Sprites)
    defaults.push_back(s.Default < 0 ? "-" : AlternativeName(o.Index.Alternatives[s.Default]));
  EXPECT_EQ(defaults, (std::vector<std::string>{"32bpp normal", "-", "8bpp in2", "32bpp normal",
                                                "32bpp out2", "data"}));
  EXPECT_EQ(AlternativeNames(o.Index, o.Index.Sprites[3]), "8bpp normal, 32bpp normal, 32bpp in4");
}

TEST(GrfV2, DamagedFilesSayWhatAndKeepTheRest) {
  // A good sprite first; the damage behind it.
  auto file = [](std::vector<Bytes> data, std::vector<Bytes> sprites) {
    data.insert(data.begin(), grfw::V2Ref(1));
    sprites.insert(sprites.begin(), grfw::V2Sprite(1, RandomImage(0x04, 0, 8, 8, 1)));
    return grfw::V2File(data, sprites);
  };
  // An image entry of id 2: info, zoom, height 1, width 2, offsets, then `tail`.
  auto image = [](uint8_t info, uint8_t zoom, Bytes tail) {
    Bytes b = {info, zoom, 1, 0, 2, 0, 0, 0, 0, 0};
    grfw::Append(b, tail);
    return grfw::V2Raw(2, b);
  };
  const Bytes empty = grfw::V2File({}, {});
  Bytes outside = file({}, {}), cutData = file({grfw::V2Data(0xFF, {1, 2, 3})}, {});
  outside[10] = 0xF0;     // the sprite section far behind the end
  cutData[15 + 9] = 100;  // a pseudo-sprite reaching into the sprite section
  Bytes cutSprite = file({}, {grfw::V2Raw(2, Bytes(30, 4))});
  cutSprite.resize(cutSprite.size() - 10);
  using R = GrfV2Result;
  const std::tuple<Bytes, R, R> cases[] = {
      {Bytes(empty.begin(), empty.begin() + 12), R::HeaderCut, R::HeaderCut},
      {grfw::V2File({}, {}, 1), R::UnknownCompression, R::UnknownCompression},
      {outside, R::SpriteSectionOutside, R::SpriteSectionOutside},
      {cutData, R::DataSectionCut, R::DataSectionCut},
      {cutSprite, R::SpriteSectionCut, R::SpriteSectionCut},
      {file({grfw::V2Ref(4)}, {}), R::Ok, R::MissingId},
      {file({grfw::V2Data(0xFD, {4, 0})}, {}), R::Ok, R::BadReference},
      {file({grfw::V2Data(0x12, {4})}, {}), R::Ok, R::UnknownDataInfo},
      {file({}, {grfw::V2Raw(2, {})}), R::Ok, R::EmptyEntry},
      {file({}, {image(0x0C, 0, {9})}), R::Ok, R::ImageHeaderCut},
      {file({}, {image(0x04, 6, {2, 1, 2})}), R::Ok, R::UnknownZoom},
      {file({}, {image(0x02, 0, {2, 1, 2})}), R::Ok, R::NoColour},
      // Streams that index but do not decode.
      {file({}, {image(0x04, 0, {3, 1, 2, 3})}), R::Ok, R::StreamOverrun},
      {file({}, {image(0x04, 0, {1, 1})}), R::Ok, R::StreamShort},
      {file({}, {image(0x0C, 0, {5, 0, 0, 0, 5, 9, 0, 0x81, 0, 5})}), R::Ok, R::TileOutside},
      {file({}, {image(0x0C, 0, {6, 0, 0, 0, 6, 2, 0, 0x82, 1, 5, 6})}), R::Ok, R::TileOutside},
      {file({}, {image(0x0C, 0, {5, 0, 0, 0, 5, 2, 0, 0x01, 0, 5})}), R::Ok, R::TileOutside},
      {file({}, {image(0x05, 0, {})}), R::Ok, R::StreamShort},
      {file({}, {grfw::V2Raw(2, {0x05, 0, 0, 0x40, 0, 0x40, 0, 0, 0, 0, 0x80, 0})}), R::Ok,
       R::TooLarge},
      {file({}, {grfw::V2Raw(2, {0xFF, 1})}), R::Ok, R::NotAnImage},
  };
  for (const auto& [bytes, end, problem] : cases) {
    SCOPED_TRACE(GrfV2Text({problem, 0, 0, 0, 0}));
    const Opened o = Open(bytes);
    EXPECT_EQ(o.Index.End, end);
    GrfV2Image picture;
    if (o.Index.ProblemCount == 0) {  // a decoding case: the second entry fails, the first not
      ASSERT_EQ(o.Index.Alternatives.size(), 2u);
      EXPECT_EQ(o.Decode(1, picture), problem);
      EXPECT_TRUE(picture.Rgba.empty() && picture.Indices.empty());
    } else {
      ASSERT_EQ(o.Index.ProblemCount, 1);
      EXPECT_EQ(o.Index.Problems[0].Kind, problem);
      EXPECT_EQ(o.Messages, std::vector<std::string>{GrfV2Text(o.Index.Problems[0])});
    }
    if (end == R::Ok || end == R::SpriteSectionCut) {
      EXPECT_EQ(o.Decode(0, picture), R::Ok);
    }
  }
  // Many problems: the first ones as messages, then one that counts the rest.
  const Opened many = Open(file(std::vector<Bytes>(25, grfw::V2Ref(4)), {}));
  EXPECT_EQ(many.Index.ProblemCount, 25);
  ASSERT_EQ(many.Messages.size(), size_t(kV2ProblemMessages) + 1);
  EXPECT_EQ(many.Messages.back(), "And 5 more problems in this file");
}

TEST(GrfV2, OpenGfxFilesDecodeWhole) {
  const std::filesystem::path dir = std::string(VOSSEL_BASESET_DIR) + "/opengfx";
  if (!std::filesystem::exists(dir / "ogfx1_base.grf")) GTEST_SKIP() << dir << " is not there";
  for (const auto& entry : std::filesystem::directory_iterator(dir)) {
    if (entry.path().extension() != ".grf") continue;
    SCOPED_TRACE(entry.path().string());
    const Opened o = Open(ReadWholeFile(entry.path().string()).Bytes);
    EXPECT_EQ(o.Index.ProblemCount, 0);
    int tiles = 0, exact = 0;
    for (size_t i = 0; i < o.Index.Alternatives.size(); ++i) {
      const GrfV2Alternative& a = o.Index.Alternatives[i];
      tiles += (a.Info & kV2Tile) != 0;
      exact += (a.Info & kV2ExactSize) != 0;
      GrfV2Image image;
      ASSERT_EQ(o.Decode(int32_t(i), image), GrfV2Result::Ok) << i;
      // A plain image's chunk list rebuilds its pixels.
      if (!(a.Info & kV2Tile) && i % 5 == 0) {
        ASSERT_TRUE(RebuildFromLines(o.Lines(int32_t(i))) == image.Indices);
      }
    }
    if (entry.path().filename() == "ogfx1_base.grf") {
      EXPECT_EQ(std::make_tuple(o.Index.Alternatives.size(), tiles, exact),
                std::make_tuple(size_t{4855}, 748, 167));
    }
  }
}
