// Container version 2: the index and the decoder against images made by our own writer and
// against the OpenGFX files, damaged files, and the chunk list rebuilt into the bytes it lists.
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
  Image2 im{info, zoom, w, h, static_cast<int16_t>(-w / 2), static_cast<int16_t>(seed % 7 - 3), {}};
  const size_t ps = grfw::PixelBytes(info);
  Bytes pixel(ps);
  for (size_t i = 0; i < size_t{w} * h; ++i) {
    const uint32_t r = rng();
    if (r % 3 == 0)
      pixel.assign(ps, 0);
    else if (r % 3 == 1)
      for (uint8_t& b : pixel) b = static_cast<uint8_t>(rng() | 1);
    grfw::Append(im.pixels, pixel);
  }
  return im;
}

// What any decoder must give for the writer's image, worked out from its pixels alone.
void Expect(const Image2& im, const GrfV2Image& got) {
  const size_t ps = grfw::PixelBytes(im.info), cells = size_t{im.width} * im.height;
  Bytes rgba, indices;
  for (size_t c = 0; c < cells; ++c) {
    const uint8_t* p = &im.pixels[c * ps];
    const bool covered = !(im.info & 8) || Bytes(p, p + ps) != Bytes(ps, 0);
    size_t k = 0;
    if (im.info & 1) {
      k = 3;
      const uint8_t alpha = (im.info & 2) ? p[k++] : 255;
      for (uint8_t b : {p[0], p[1], p[2], alpha}) rgba.push_back(covered ? b : 0);
    } else if (im.info & 2) {
      ++k;
    }
    if (im.info & 4) indices.push_back(covered ? p[k] : 0);
  }
  EXPECT_EQ(got.Width, im.width);
  EXPECT_EQ(got.Height, im.height);
  EXPECT_EQ(got.XOffset, im.x);
  EXPECT_EQ(got.YOffset, im.y);
  EXPECT_EQ(got.Zoom, im.zoom);
  EXPECT_TRUE(got.Rgba == rgba);
  EXPECT_TRUE(got.Indices == indices);
}

// An independent decoder of the chunk viewer's lines: data chunks give the bytes they show,
// offset chunks copy from the position they name.
Bytes RebuildFromLines(const std::vector<ChunkLine>& lines) {
  Bytes out;
  for (const ChunkLine& line : lines) {
    std::istringstream in(line.Text);
    std::string word;
    int n = 0;
    if (line.Text.rfind("Data chunk of ", 0) == 0) {
      in >> word >> word >> word >> n >> word;
      for (int i = 0; i < n; ++i) {
        in >> word;
        out.push_back(static_cast<uint8_t>(std::stoi(word, nullptr, 16)));
      }
    } else {
      long from = 0;
      in >> word >> word >> n >> word >> word >> word >> word >> word >> from;
      for (int i = 0; i < n; ++i, ++from) out.push_back(from >= 0 ? out[size_t(from)] : 0);
    }
  }
  return out;
}

struct Opened {
  Bytes File;
  GrfV2Index Index;
  std::vector<std::string> Messages;
};

Opened Open(Bytes file) {
  Opened o{std::move(file), {}, {}};
  IndexGrfV2(o.File.data(), o.File.size(), o.Index,
             [&o](const std::string& m) { o.Messages.push_back(m); });
  return o;
}

GrfV2Result DecodeAt(const Opened& o, int32_t alternative, GrfV2Image& image) {
  return DecodeAlternative(o.File.data(), o.File.size(), o.Index.Alternatives.at(alternative),
                           image);
}

}  // namespace

TEST(GrfV2, EveryImageKindDecodesToItsPixels) {
  struct Case {
    uint8_t info;
    uint16_t w, h;
  };
  const Case cases[] = {
      {0x04, 40, 30}, {0x0C, 40, 30}, {0x4C, 256, 20}, {0x0C, 257, 10},  {0x01, 33, 17},
      {0x03, 33, 17}, {0x05, 20, 20}, {0x07, 20, 20},  {0x0B, 320, 100}, {0x0F, 64, 48},
      {0x09, 600, 5}, {0x06, 9, 9},   {0x04, 0, 5},    {0x0F, 7, 0},
  };
  std::vector<Image2> images;
  std::vector<Bytes> data, sprites;
  for (const Case& c : cases) {
    images.push_back(RandomImage(c.info, images.size() % kZoomLevels, c.w, c.h, images.size()));
    sprites.push_back(grfw::V2Sprite(uint32_t(images.size()), images.back()));
    data.push_back(grfw::V2Ref(uint32_t(images.size())));
  }
  // Four-byte row offsets are really written by one of the cases.
  ASSERT_GE(grfw::TileData(images[8]).size(), 65536u);
  const Opened o = Open(grfw::V2File(data, sprites));
  ASSERT_EQ(o.Index.End, GrfV2Result::Ok);
  EXPECT_TRUE(o.Messages.empty());
  ASSERT_EQ(o.Index.Sprites.size(), images.size());
  for (size_t i = 0; i < images.size(); ++i) {
    SCOPED_TRACE(i);
    const GrfV2Sprite& s = o.Index.Sprites[i];
    ASSERT_EQ(s.AlternativeCount, 1);
    GrfV2Image image;
    ASSERT_EQ(DecodeAt(o, s.Default, image), GrfV2Result::Ok);
    Expect(images[i], image);
    // The chunk list walks the same stream: rebuilt, it gives what the stream decompresses to.
    const Bytes raw = (images[i].info & 8) ? grfw::TileData(images[i]) : images[i].pixels;
    EXPECT_TRUE(
        RebuildFromLines(V2ChunkList(o.File.data(), o.File.size(), o.Index, s, s.Default)) == raw);
  }
}

TEST(GrfV2, ReferencesIdsAndTheDefaultAlternative) {
  auto alt = [](uint32_t id, uint8_t info, uint8_t zoom) {
    return grfw::V2Sprite(id, RandomImage(info, zoom, 4, 4, id * 10 + zoom));
  };
  const std::vector<Bytes> sprites = {
      // Ids out of order, 9 never used.
      alt(7, 0x04, kZoomIn4), alt(7, 0x04, kZoomOut2), alt(7, 0x04, kZoomIn2),
      alt(3, 0x04, kZoomNormal), alt(3, 0x03, kZoomNormal), alt(3, 0x03, kZoomIn4),
      alt(9, 0x04, kZoomNormal),
      // Only 32-bit, none at normal zoom: out2 before in4.
      alt(5, 0x01, kZoomIn4), alt(5, 0x07, kZoomOut2),
      grfw::V2Raw(6, {0xFF, 1, 2, 3}),  // non-image data
  };
  const Opened o = Open(grfw::V2File({grfw::V2Ref(3), grfw::V2Data(0xFF, {1, 2}), grfw::V2Ref(7),
                                      grfw::V2Ref(3), grfw::V2Ref(5), grfw::V2Ref(6)},
                                     sprites));
  ASSERT_EQ(o.Index.End, GrfV2Result::Ok);
  const auto& s = o.Index.Sprites;
  ASSERT_EQ(s.size(), 6u);
  auto defaultName = [&](size_t i) {
    return AlternativeName(o.Index.Alternatives.at(size_t(s[i].Default)));
  };
  EXPECT_EQ(AlternativeNames(o.Index, s[0]), "8bpp normal, 32bpp normal, 32bpp in4");
  EXPECT_EQ(defaultName(0), "32bpp normal");
  EXPECT_EQ(s[1].Default, -1);
  EXPECT_EQ(s[1].DataSize, 2);
  EXPECT_EQ(defaultName(2), "8bpp in2");  // nearest to normal, zoomed in before out
  EXPECT_EQ(s[3].FirstAlternative, s[0].FirstAlternative);
  EXPECT_EQ(defaultName(4), "32bpp out2");
  EXPECT_EQ(defaultName(5), "data");
  // Choosing by zoom and depth.
  EXPECT_EQ(ChooseAlternative(o.Index, s[0], kZoomNormal, 8), s[0].FirstAlternative);
  EXPECT_EQ(ChooseAlternative(o.Index, s[0], kZoomIn2, 0), -1);
  EXPECT_EQ(ChooseAlternative(o.Index, s[4], -1, 8), -1);
  EXPECT_EQ(ChooseAlternative(o.Index, s[5], kZoomNormal, 0), -1);
  // Figures: data counts in both totals; pictures are width x height x pixel size.
  const GrfV2Totals t = IndexTotals(o.Index);
  EXPECT_EQ(t.Decompressed, 2 + 3 + 16 * (1 + 1 + 1 + 1 + 4 + 4 + 1 + 3 + 5));
  EXPECT_EQ(SpriteFacts(o.Index, s[4], s[4].Default).Size, 16 * 5);
}

TEST(GrfV2, DamagedFilesSayWhatAndKeepTheRest) {
  const Bytes good = grfw::V2Sprite(1, RandomImage(0x04, 0, 8, 8, 1));
  auto file = [&](std::vector<Bytes> data, std::vector<Bytes> sprites) {
    data.insert(data.begin(), grfw::V2Ref(1));
    sprites.insert(sprites.begin(), good);
    return grfw::V2File(data, sprites);
  };
  auto image = [](uint8_t info, uint8_t zoom, Bytes tail) {
    Bytes b = {info, zoom, 2, 0, 2, 0, 0, 0, 0, 0};
    grfw::Append(b, tail);
    return b;
  };
  const Bytes empty = grfw::V2File({}, {});
  Bytes outside = file({}, {});
  outside[10] = 0xF0;  // sprite section offset far behind the end
  Bytes cutData = file({grfw::V2Data(0xFF, {1, 2, 3})}, {});
  cutData[15 + 9] = 100;  // the pseudo-sprite claims bytes of the sprite section
  Bytes cutSprite = file({}, {grfw::V2Raw(2, Bytes(30, 4))});
  cutSprite.resize(cutSprite.size() - 10);
  struct Case {
    const char* name;
    Bytes bytes;
    GrfV2Result end, problem;
  };
  const Case cases[] = {
      {"header", Bytes(empty.begin(), empty.begin() + 12), GrfV2Result::HeaderCut,
       GrfV2Result::HeaderCut},
      {"compression", grfw::V2File({}, {}, 1), GrfV2Result::UnknownCompression,
       GrfV2Result::UnknownCompression},
      {"outside", outside, GrfV2Result::SpriteSectionOutside, GrfV2Result::SpriteSectionOutside},
      {"data cut", cutData, GrfV2Result::DataSectionCut, GrfV2Result::DataSectionCut},
      {"sprite cut", cutSprite, GrfV2Result::SpriteSectionCut, GrfV2Result::SpriteSectionCut},
      {"missing id", file({grfw::V2Ref(4)}, {}), GrfV2Result::Ok, GrfV2Result::MissingId},
      {"short ref", file({grfw::V2Data(0xFD, {4, 0})}, {}), GrfV2Result::Ok,
       GrfV2Result::BadReference},
      {"unknown info", file({grfw::V2Data(0x12, {4})}, {}), GrfV2Result::Ok,
       GrfV2Result::UnknownDataInfo},
      {"empty", file({}, {grfw::V2Raw(2, {})}), GrfV2Result::Ok, GrfV2Result::EmptyEntry},
      {"image header", file({}, {grfw::V2Raw(2, {0x0C, 0, 2, 0, 2, 0, 0, 0, 0, 0, 9})}),
       GrfV2Result::Ok, GrfV2Result::ImageHeaderCut},
      {"zoom", file({}, {grfw::V2Raw(2, image(0x04, 6, {4, 1, 2, 3, 4}))}), GrfV2Result::Ok,
       GrfV2Result::UnknownZoom},
      {"colour", file({}, {grfw::V2Raw(2, image(0x02, 0, {4, 1, 2, 3, 4}))}), GrfV2Result::Ok,
       GrfV2Result::NoColour},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const Opened o = Open(c.bytes);
    EXPECT_EQ(o.Index.End, c.end);
    ASSERT_EQ(o.Index.ProblemCount, 1);
    EXPECT_EQ(o.Index.Problems[0].Kind, c.problem);
    ASSERT_EQ(o.Messages.size(), 1u);
    EXPECT_EQ(o.Messages[0], GrfV2Text(o.Index.Problems[0]));
    // The good sprite in front of the damage stays usable wherever the sections could be read.
    const bool readable = c.end == GrfV2Result::Ok || c.end == GrfV2Result::SpriteSectionCut;
    if (!readable) continue;
    GrfV2Image picture;
    EXPECT_EQ(DecodeAt(o, o.Index.Sprites.at(0).Default, picture), GrfV2Result::Ok);
  }
}

TEST(GrfV2, StreamsThatCannotBeDecoded) {
  Bytes overrun = {0x04, 0, 1, 0, 2, 0, 0, 0, 0, 0};  // 2 x 1, 8-bit
  grfw::AddData(overrun, {1, 2, 3});
  Bytes shortOne = {0x04, 0, 2, 0, 2, 0, 0, 0, 0, 0};
  grfw::AddData(shortOne, {1, 2, 3});
  // Tile form 2 x 1, 8-bit: row offset past the data; a run reaching past the width.
  auto tile = [](Bytes decoded) {
    Bytes b = {0x0C, 0, 1, 0, 2, 0, 0, 0, 0, 0, uint8_t(decoded.size()), 0, 0, 0};
    grfw::Append(b, grfw::Literal(decoded));
    return b;
  };
  Bytes huge = {0x05, 0, 0, 0x40, 0, 0x40, 0, 0, 0, 0};  // 16384 x 16384 x 4
  grfw::AddOffset(huge, 16, 0);
  const std::pair<Bytes, GrfV2Result> cases[] = {
      {overrun, GrfV2Result::StreamOverrun},
      {shortOne, GrfV2Result::StreamShort},
      {tile({9, 0, 0x81, 0, 5}), GrfV2Result::TileOutside},
      {tile({2, 0, 0x82, 1, 5, 6}), GrfV2Result::TileOutside},
      {tile({2, 0, 0x01, 0, 5}), GrfV2Result::TileOutside},  // no last run
      {huge, GrfV2Result::TooLarge},
      {{0xFF, 1, 2}, GrfV2Result::NotAnImage},
  };
  for (const auto& [body, result] : cases) {
    const Opened o = Open(grfw::V2File({grfw::V2Ref(1)}, {grfw::V2Raw(1, body)}));
    ASSERT_EQ(o.Index.ProblemCount, 0);
    GrfV2Image image;
    EXPECT_EQ(DecodeAt(o, 0, image), result);
    EXPECT_TRUE(image.Rgba.empty() && image.Indices.empty());
  }
}

// Every cut and a damaged byte at every position of a file with every kind of entry: nothing may
// read outside the buffer (the sanitizer build watches), and what the index holds lies inside it.
TEST(GrfV2, BlindMutationStaysInside) {
  const Bytes file =
      grfw::V2File({grfw::V2Ref(1), grfw::V2Data(0xFF, {1, 2, 3}), grfw::V2Ref(2), grfw::V2Ref(3)},
                   {grfw::V2Sprite(1, RandomImage(0x0F, 0, 12, 5, 3)),
                    grfw::V2Sprite(1, RandomImage(0x03, 1, 9, 4, 4)),
                    grfw::V2Sprite(2, RandomImage(0x0B, 2, 260, 2, 5)), grfw::V2Raw(3, {0xFF, 7})});
  auto check = [](const Bytes& bytes) {
    GrfV2Index index;
    IndexGrfV2(bytes.data(), bytes.size(), index, nullptr);
    for (const GrfV2Alternative& a : index.Alternatives) {
      ASSERT_LE(a.StreamOffset + a.StreamSize, int64_t(bytes.size()));
      GrfV2Image image;
      DecodeAlternative(bytes.data(), bytes.size(), a, image);
    }
    for (const GrfV2Sprite& s : index.Sprites) {
      ASSERT_LE(s.DataOffset + s.DataSize, int64_t(bytes.size()));
      V2ChunkList(bytes.data(), bytes.size(), index, s, s.Default);
    }
  };
  for (size_t n = 0; n <= file.size(); ++n) check(Bytes(file.begin(), file.begin() + long(n)));
  for (size_t i = 0; i < file.size(); ++i) {
    for (const uint8_t flip : {0x01, 0x80, 0xFF}) {
      Bytes damaged = file;
      damaged[i] ^= flip;
      check(damaged);
    }
  }
}

TEST(GrfV2, OpenGfxFilesDecodeWhole) {
  const std::filesystem::path dir = std::string(VOSSEL_BASESET_DIR) + "/opengfx";
  const std::string base = (dir / "ogfx1_base.grf").string();
  if (!std::filesystem::exists(base)) GTEST_SKIP() << base << " is not installed";
  for (const auto& entry : std::filesystem::directory_iterator(dir)) {
    if (entry.path().extension() != ".grf") continue;
    SCOPED_TRACE(entry.path().string());
    const Opened o = Open(ReadWholeFile(entry.path().string()).Bytes);
    EXPECT_EQ(o.Index.End, GrfV2Result::Ok);
    EXPECT_EQ(o.Index.ProblemCount, 0);
    int tiles = 0, exact = 0;
    for (size_t i = 0; i < o.Index.Alternatives.size(); ++i) {
      const GrfV2Alternative& a = o.Index.Alternatives[i];
      tiles += (a.Info & kV2Tile) != 0;
      exact += (a.Info & kV2ExactSize) != 0;
      GrfV2Image image;
      ASSERT_EQ(DecodeAt(o, int32_t(i), image), GrfV2Result::Ok) << i;
      ASSERT_EQ(image.Indices.size(), size_t{a.Width} * a.Height);
    }
    // The plain images' chunk lists rebuild their pixels.
    for (const GrfV2Sprite& s : o.Index.Sprites) {
      if (s.Default < 0 || (o.Index.Alternatives[size_t(s.Default)].Info & kV2Tile)) continue;
      GrfV2Image image;
      DecodeAt(o, s.Default, image);
      ASSERT_TRUE(RebuildFromLines(V2ChunkList(o.File.data(), o.File.size(), o.Index, s,
                                               s.Default)) == image.Indices);
    }
    if (entry.path() == base) {
      EXPECT_EQ(o.Index.Alternatives.size(), 4855u);
      EXPECT_EQ(tiles, 748);
      EXPECT_EQ(exact, 167);
    }
  }
}
