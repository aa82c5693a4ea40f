// Container version 2: the index and the decoder against images made by our own writer and against
// the OpenGFX files, damaged files, and the chunk list rebuilt into the bytes it lists.
#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <sstream>

#include "alternatives.h"
#include "case_file.h"
#include "fileio.h"
#include "grf2.h"
#include "grf2_chunks.h"
#include "grf_writer.h"
#include "picture.h"

using namespace vossel;

namespace {

using grfw::Bytes;
using grfw::Image2;

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

// The index as numbers, to compare two indexes whole.
std::vector<std::array<int64_t, 10>> Numbers(const GrfV2Index& x) {
  std::vector<std::array<int64_t, 10>> f;
  for (const GrfV2Sprite& s : x.Sprites)
    f.push_back({s.Info, s.DataOffset, s.DataSize, s.Id, s.FirstAlternative, s.AlternativeCount,
                 s.Default});
  for (const GrfV2Alternative& a : x.Alternatives)
    f.push_back({a.Id, a.StreamOffset, a.StreamSize, a.Info, a.Zoom, a.Width, a.Height, a.XOffset,
                 a.YOffset, a.TileSize});
  f.push_back({int64_t(x.End), x.ProblemCount});
  return f;
}

// Every file is also written out and read from the disk at positions, which must give the same
// index, messages and pictures as the buffer.
struct Opened {
  Bytes File;
  GrfV2Index Index;
  std::vector<std::string> Messages;
  FileHandle Disk;
  GrfV2Result Decode(int32_t alternative, GrfV2Image& image) const {
    const GrfV2Alternative& a = Index.Alternatives.at(alternative);
    const GrfV2Result result = DecodeAlternative(File.data(), File.size(), a, image);
    GrfV2Image read;
    EXPECT_EQ(DecodeAlternative(FileSource(*Disk), a, read), result);
    EXPECT_TRUE(read.Rgba == image.Rgba && read.Indices == image.Indices);
    return result;
  }
  std::vector<ChunkLine> Lines(int32_t alternative) const {
    return V2ChunkList(File.data(), File.size(), Index, GrfV2Sprite{}, alternative);
  }
};

Opened Open(Bytes file) {
  Opened o{std::move(file), {}, {}, {}};
  IndexGrfV2(o.File.data(), o.File.size(), o.Index,
             [&o](const std::string& m) { o.Messages.push_back(m); });
  // Removed at once: the file kept open stays readable.
  const std::string path = grfw::WriteTemp("v2.grf", o.File);
  o.Disk = OpenForReading(path).File;
  std::filesystem::remove(path);
  GrfV2Index read;
  std::vector<std::string> messages;
  IndexGrfV2(FileSource(*o.Disk), read,
             [&messages](const std::string& m) { messages.push_back(m); });
  EXPECT_EQ(Numbers(read), Numbers(o.Index));
  EXPECT_EQ(messages, o.Messages);
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
    const auto n = uint32_t(images.size());
    images.push_back(
        grfw::RandomImage(info, n % kZoomLevels, w, h, int16_t(-w / 2), int16_t(n % 7), n));
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

TEST(GrfV2, DamagedFilesSayWhatAndKeepTheRest) {
  auto file = [](const std::vector<Bytes>& data, std::vector<Bytes> sprites) {
    sprites.insert(sprites.begin(), grfw::V2Sprite(1, Image2{0x04, 0, 1, 1, 0, 0, {7}}));
    return grfw::V2File(data, sprites);
  };
  for (const std::string& line : CaseLines("engine/container/v2_damage_cases.txt")) {
    const std::vector<std::string> f = Fields(line, 5);
    SCOPED_TRACE(f[0]);
    std::vector<Bytes> sprites;
    if (f[3] != "none") sprites.push_back(grfw::V2Raw(2, Hex(f[3])));
    Bytes bytes = file({grfw::V2Ref(1), Hex(f[2])}, sprites);
    std::istringstream changes(f[4] == "-" ? "" : f[4]);
    for (std::string c; changes >> c;) {
      const size_t colon = c.find(':');
      if (colon != std::string::npos)
        bytes.at(std::stoul(c.substr(0, colon))) =
            uint8_t(std::stoul(c.substr(colon + 1), nullptr, 16));
      else
        bytes.resize(c[0] == '-' ? bytes.size() - std::stoul(c.substr(1)) : std::stoul(c));
    }
    const Opened o = Open(bytes);
    if (f[1] == "decode") {  // the second picture fails to decode, and gives nothing
      ASSERT_EQ(o.Index.ProblemCount, 0);
      ASSERT_EQ(o.Index.Alternatives.size(), 2u);
      GrfV2Image picture;
      EXPECT_EQ(DecodeText(o.Decode(1, picture), o.Index.Alternatives[1]), f[0]);
      EXPECT_TRUE(picture.Rgba.empty() && picture.Indices.empty());
    } else {
      EXPECT_EQ(o.Index.ProblemCount, 1);
      EXPECT_EQ(o.Messages, std::vector<std::string>{f[0]});
      EXPECT_EQ(o.Index.End != GrfV2Result::Ok, f[1].rfind("stops", 0) == 0);
    }
    GrfV2Image first;  // the picture before the damage
    EXPECT_TRUE(f[1] == "stops" || o.Decode(0, first) == GrfV2Result::Ok);
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
