// vossel-cli export as a decompiled GRF: its listing is read here by a parser of the NewGRF
// encoder's grammar, written from what the encoder is known to read, and every sprite is rebuilt
// from the listing and the PNG files it names. The rebuilt sprites must equal the originals: the
// pseudo-sprites byte for byte, the pictures pixel for pixel with their offsets and alternatives.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

#include <QImage>

#include "grf_writer.h"
#include "grffile.h"
#include "run_cli.h"

using namespace vossel;

namespace fs = std::filesystem;
using grfw::Bytes;

namespace {

// --- The encoder's grammar -----------------------------------------------------------------------

struct ListedPicture {
  std::string File;
  std::string Depth;  // "8bpp", "32bpp" or "mask"
  int XPos = 0, YPos = 0, Width = 0, Height = 0, X = 0, Y = 0;
  std::string Zoom;
  std::vector<std::string> Flags;
};

struct ListedSprite {
  int Number = -1;
  bool Pseudo = false;
  size_t Length = 0;
  Bytes Data;
  std::vector<ListedPicture> Pictures;  // a mask follows the picture it belongs to
};

const char* const kZoomWords[] = {"normal", "zi4", "zi2", "zo2", "zo4", "zo8"};

void Need(bool ok, const std::string& what) {
  if (!ok) throw std::runtime_error(what);
}

int Whole(const std::string& word) {
  size_t used = 0;
  const int value = std::stoi(word, &used);
  Need(used == word.size(), "not a number: " + word);
  return value;
}

uint8_t HexPair(const std::string& word) {
  Need(word.size() == 2 && std::isxdigit(word[0]) && std::isxdigit(word[1]),
       "not a hex pair: " + word);
  return static_cast<uint8_t>(std::stoi(word, nullptr, 16));
}

// FILE DEPTH XPOS YPOS XSIZE YSIZE XREL YREL ZOOM [FLAGS], or FILE mask XPOS YPOS.
ListedPicture PictureOfWords(const std::vector<std::string>& w, size_t at) {
  Need(w.size() >= at + 4, "a picture line too short");
  ListedPicture p{w[at], w[at + 1], Whole(w[at + 2]), Whole(w[at + 3]), 0, 0, 0, 0, "", {}};
  if (p.Depth == "mask") {
    Need(w.size() == at + 4, "a mask line too long");
    return p;
  }
  Need(p.Depth == "8bpp" || p.Depth == "32bpp", "depth " + p.Depth);
  Need(w.size() >= at + 9, "a picture line too short");
  p.Width = Whole(w[at + 4]);
  p.Height = Whole(w[at + 5]);
  p.X = Whole(w[at + 6]);
  p.Y = Whole(w[at + 7]);
  p.Zoom = w[at + 8];
  Need(std::count(std::begin(kZoomWords), std::end(kZoomWords), p.Zoom) == 1, "zoom " + p.Zoom);
  for (size_t i = at + 9; i < w.size(); ++i) {
    Need(w[i] == "chunked" || w[i] == "nocrop", "flag " + w[i]);
    p.Flags.push_back(w[i]);
  }
  return p;
}

std::vector<ListedSprite> ParseListing(const fs::path& path) {
  std::ifstream in(path);
  std::string line;
  std::getline(in, line);
  Need(line == "// (Info version 32)", "head: " + line);
  std::getline(in, line);
  Need(line == "// Format: spritenum imagefile depth xpos ypos xsize ysize xrel yrel zoom flags",
       "format line: " + line);
  std::vector<ListedSprite> sprites;
  while (std::getline(in, line)) {
    std::istringstream words(line);
    const std::vector<std::string> w{std::istream_iterator<std::string>(words), {}};
    if (w.empty() || line.rfind("//", 0) == 0) continue;
    if (line[0] == '\t') {
      Need(!sprites.empty() && sprites.back().Pseudo, "stray: " + line);
      for (const std::string& pair : w) sprites.back().Data.push_back(HexPair(pair));
    } else if (w[0] == "|") {
      Need(!sprites.empty() && !sprites.back().Pseudo, "stray: " + line);
      sprites.back().Pictures.push_back(PictureOfWords(w, 1));
    } else {
      ListedSprite s;
      s.Number = Whole(w[0]);
      if (w.size() >= 3 && w[1] == "*") {
        s.Pseudo = true;
        s.Length = static_cast<size_t>(Whole(w[2]));
        for (size_t i = 3; i < w.size(); ++i) s.Data.push_back(HexPair(w[i]));
      } else {
        s.Pictures.push_back(PictureOfWords(w, 1));
      }
      sprites.push_back(s);
    }
  }
  return sprites;
}

// --- What each sprite must be --------------------------------------------------------------------

struct WantedPicture {
  int Depth = 8, Zoom = 0, Width = 0, Height = 0, X = 0, Y = 0;
  bool Chunked = false, Mask = false;
  Bytes Rgba, Indices;  // Indices: an 8-bit picture's, or a 32-bit one's mask
};

struct Wanted {
  bool Pseudo = false;
  Bytes Data;
  std::vector<WantedPicture> Pictures;
};

Wanted PseudoSprite(const Bytes& data) {
  return Wanted{true, data, {}};
}

// A rectangle of a PNG as RGBA bytes, or as palette indices when the PNG is a palette one.
Bytes Cut(const QImage& png, const ListedPicture& p, int width, int height, bool indices) {
  Bytes out;
  if (indices && png.format() != QImage::Format_Indexed8) return out;
  const QImage rgba = png.convertToFormat(QImage::Format_RGBA8888);
  for (int y = p.YPos; y < p.YPos + height; ++y)
    for (int x = p.XPos; x < p.XPos + width; ++x) {
      if (indices) {
        out.push_back(static_cast<uint8_t>(png.pixelIndex(x, y)));
        continue;
      }
      const uint8_t* px = rgba.constScanLine(y) + 4 * x;
      out.insert(out.end(), px, px + 4);
    }
  return out;
}

QImage LoadPng(const fs::path& root, const std::string& file) {
  QImage png;
  EXPECT_TRUE(png.load(QString::fromStdString((root / file).string()), "PNG")) << file;
  return png;
}

// The listing in `root`/sprites/NAME.nfo, rebuilt, equals `wanted` sprite by sprite.
void ExpectRebuilt(const fs::path& root, const std::string& name,
                   const std::vector<Wanted>& wanted) {
  std::vector<ListedSprite> listed;
  ASSERT_NO_THROW(listed = ParseListing(root / "sprites" / (name + ".nfo")));
  ASSERT_EQ(listed.size(), wanted.size());
  for (size_t i = 0; i < listed.size(); ++i) {
    const ListedSprite& s = listed[i];
    const Wanted& w = wanted[i];
    SCOPED_TRACE("NFO sprite " + std::to_string(i));
    ASSERT_EQ(s.Number, static_cast<int>(i));
    ASSERT_EQ(s.Pseudo, w.Pseudo);
    if (s.Pseudo) {
      EXPECT_EQ(s.Data.size(), s.Length);
      EXPECT_EQ(s.Data, w.Data);
      continue;
    }
    size_t k = 0;
    for (const WantedPicture& p : w.Pictures) {
      ASSERT_LT(k, s.Pictures.size());
      const ListedPicture& l = s.Pictures[k++];
      SCOPED_TRACE(l.File);
      EXPECT_EQ(l.File.rfind("sprites/", 0), 0u);
      EXPECT_EQ(l.Depth, std::to_string(p.Depth) + "bpp");
      EXPECT_EQ(l.Zoom, kZoomWords[p.Zoom]);
      EXPECT_EQ(std::make_pair(l.X, l.Y), std::make_pair(p.X, p.Y));
      ASSERT_EQ(std::make_pair(l.Width, l.Height), std::make_pair(p.Width, p.Height));
      EXPECT_EQ(std::count(l.Flags.begin(), l.Flags.end(), "chunked"), p.Chunked ? 1 : 0);
      // The encoder would crop transparent borders the original keeps.
      EXPECT_EQ(std::count(l.Flags.begin(), l.Flags.end(), "nocrop"), 1);
      const QImage png = LoadPng(root, l.File);
      ASSERT_LE(l.XPos + l.Width, png.width());
      ASSERT_LE(l.YPos + l.Height, png.height());
      if (p.Depth == 8) {
        EXPECT_EQ(Cut(png, l, p.Width, p.Height, true), p.Indices);
        continue;
      }
      EXPECT_EQ(Cut(png, l, p.Width, p.Height, false), p.Rgba);
      if (!p.Mask) continue;
      ASSERT_LT(k, s.Pictures.size());
      const ListedPicture& mask = s.Pictures[k++];
      ASSERT_EQ(mask.Depth, "mask");
      EXPECT_EQ(Cut(LoadPng(root, mask.File), mask, p.Width, p.Height, true), p.Indices);
    }
    EXPECT_EQ(k, s.Pictures.size()) << "alternatives the original does not have";
  }
}

// What the engine reads from a file: the originals of a file no writer of ours made.
std::vector<Wanted> WantedByEngine(const std::string& path) {
  GrfFile file;
  const auto quiet = [](const std::string&) {};
  EXPECT_EQ(LoadGrfFile(path, file, quiet, quiet).End, OpenEnd::Ok);
  std::vector<Wanted> wanted;
  for (int32_t i = 0; i < SpriteCount(file); ++i) {
    Wanted w;
    if (FactsOf(file, i, -1).Kind == SpriteKind::Pseudo) {
      w.Pseudo = true;
      EXPECT_EQ(SpriteBytes(file, i, -1, w.Data), GrfResult::Ok);
    }
    for (int32_t k = 0; k < AlternativeCount(file, i); ++k) {
      const AlternativeInfo a = AlternativeOf(file, i, k);
      if (a.Data) {
        w.Pseudo = true;
        EXPECT_EQ(SpriteBytes(file, i, k, w.Data), GrfResult::Ok);
        continue;
      }
      SpritePicture picture;
      EXPECT_EQ(PictureOf(file, i, k, picture), GrfResult::Ok);
      w.Pictures.push_back({a.Depth, a.Zoom, picture.Width, picture.Height, picture.XOffset,
                            picture.YOffset, (FactsOf(file, i, k).Flags & 8) != 0, a.Mask,
                            picture.Rgba, picture.Indices});
    }
    wanted.push_back(w);
  }
  return wanted;
}

std::string ExportRoot(const std::string& grf, const std::string& folder) {
  const fs::path root = grfw::FreshFolder(folder);
  const CliRun run = RunCli({"export", grf, (root / "sprites").string()});
  EXPECT_EQ(run.Status, 0) << run.Err;
  return root.string();
}

WantedPicture Wanted8(int width, int height, int x, int y, const Bytes& indices,
                      bool chunked = false) {
  return WantedPicture{8, 0, width, height, x, y, chunked, false, {}, indices};
}

WantedPicture WantedV2(const grfw::Image2& im) {
  WantedPicture p{
      (im.info & 1) ? 32 : 8, im.zoom, im.width, im.height, im.x, im.y, (im.info & 8) != 0,
      (im.info & 5) == 5,     {},      {}};
  grfw::DecodedLayers(im, p.Rgba, p.Indices);
  return p;
}

}  // namespace

// Pseudo-sprites short and long (continued on further lines); pictures plain, with
// transparent borders, and in run form.
TEST(CliEncoderListing, Version1FileRebuildsSpriteForSprite) {
  Bytes longAction(300);
  for (size_t i = 0; i < longAction.size(); ++i) longAction[i] = static_cast<uint8_t>(i * 7);
  const Bytes count = {4, 0, 0, 0};
  const Bytes quoted = {0x0C, '"', 'a', '\\', 'b', '"', 0};
  const Bytes bordered = {0, 0, 0, 0, 0, 9, 8, 0, 0, 7, 6, 0, 0, 0, 0, 0};
  const std::vector<std::vector<grfw::Run>> rows = {{{1, {5, 6}}}, {}, {{0, {1}}, {2, {2}}}};
  const Bytes runPixels = {0, 5, 6, 0, 0, 0, 0, 0, 1, 0, 2, 0};
  const std::string grf = grfw::WriteTemp(
      "encoder-v1.grf",
      grfw::File({grfw::ActionRecord(count), grfw::PlainSprite(4, 4, bordered, -2, 3),
                  grfw::ActionRecord(longAction), grfw::ActionRecord(quoted),
                  grfw::RunSprite(4, rows, 1, -1)}));
  const std::vector<Wanted> wanted = {
      PseudoSprite(count),
      Wanted{false, {}, {Wanted8(4, 4, -2, 3, bordered)}},
      PseudoSprite(longAction),
      PseudoSprite(quoted),
      Wanted{false, {}, {Wanted8(4, 3, 1, -1, runPixels, true)}},
  };
  const std::string root = ExportRoot(grf, "encoder-v1");
  ExpectRebuilt(root, "encoder-v1", wanted);
  // Independent of the writer: the engine's reading of the same file agrees.
  ExpectRebuilt(root, "encoder-v1", WantedByEngine(grf));
  fs::remove_all(root);
}

// Every kind of alternative: 8-bit and 32-bit, with alpha and with a mask, in tile form, at other
// zoom levels; and non-image data. Each alternative has its own file, which sprite --png gives too.
TEST(CliEncoderListing, Version2FileRebuildsWithEveryAlternative) {
  const grfw::Image2 eight = grfw::RandomImage(0x04, 0, 7, 5, -3, 2, 1);
  const grfw::Image2 rgba = grfw::RandomImage(0x03, 0, 6, 4, -1, -9, 2);
  const grfw::Image2 masked = grfw::RandomImage(0x07, 1, 12, 9, 4, 5, 3);
  const grfw::Image2 tiled = grfw::RandomImage(0x0C, 3, 9, 6, 0, -1, 4);
  const grfw::Image2 tiledRgb = grfw::RandomImage(0x0D, 2, 5, 5, 2, 2, 5);
  const Bytes action = {0x08, 0x08, 'A', 'B', 'C', 0x01, 'n', 0, 0};
  const Bytes sound = {0xFF, 2, 'x', 0, 'R', 'I', 'F', 'F'};
  const std::string grf = grfw::WriteTemp(
      "encoder-v2.grf",
      grfw::V2File({grfw::V2Data(0xFF, {4, 0, 0, 0}), grfw::V2Data(0xFF, action), grfw::V2Ref(1),
                    grfw::V2Ref(2), grfw::V2Ref(3)},
                   {grfw::V2Sprite(1, eight), grfw::V2Sprite(1, rgba), grfw::V2Sprite(1, masked),
                    grfw::V2Sprite(2, tiled), grfw::V2Sprite(2, tiledRgb), grfw::V2Raw(3, sound)}));
  const std::string root = ExportRoot(grf, "encoder-v2");
  ExpectRebuilt(root, "encoder-v2",
                {PseudoSprite({4, 0, 0, 0}), PseudoSprite(action),
                 Wanted{false, {}, {WantedV2(eight), WantedV2(rgba), WantedV2(masked)}},
                 Wanted{false, {}, {WantedV2(tiled), WantedV2(tiledRgb)}},
                 PseudoSprite(Bytes(sound.begin() + 1, sound.end()))});
  ExpectRebuilt(root, "encoder-v2", WantedByEngine(grf));
  // sprite --png with the options that choose each alternative writes the same picture.
  const std::pair<const char*, std::vector<std::string>> chosen[] = {
      {"0003.png", {"--depth", "8"}},
      {"0003-32bpp-normal.png", {}},
      {"0003-32bpp-in4.png", {"--zoom", "in4"}}};
  for (const auto& [name, options] : chosen) {
    const std::string png = root + "/sprite.png";
    std::vector<std::string> args = {"sprite", grf, "3", "--png", png, "--force"};
    args.insert(args.end(), options.begin(), options.end());
    ASSERT_EQ(RunCli(args).Status, 0) << name;
    EXPECT_EQ(QImage(QString::fromStdString(png)).convertToFormat(QImage::Format_ARGB32),
              QImage(QString::fromStdString(root + "/sprites/" + name))
                  .convertToFormat(QImage::Format_ARGB32))
        << name;
  }
  fs::remove_all(root);
}

// A real NewGRF of ships in company colours, as its author released it.
TEST(CliEncoderListing, RealNewGrfRebuildsSpriteForSprite) {
  const std::string grf = std::string(VOSSEL_TESTS_DIR) + "/data/newgrf/ekranoplan.grf";
  const std::string root = ExportRoot(grf, "encoder-real");
  const std::vector<Wanted> wanted = WantedByEngine(grf);
  ASSERT_GT(wanted.size(), 100u);
  ExpectRebuilt(root, "ekranoplan", wanted);
  // The readable comments stay, numbered both ways.
  std::ifstream in(fs::path(root) / "sprites" / "ekranoplan.nfo");
  const std::string text((std::istreambuf_iterator<char>(in)), {});
  EXPECT_NE(text.find("// Sprite 1 (NFO 0): Sprite count: "), std::string::npos);
  EXPECT_NE(text.find("Action 08 GRF ID and name"), std::string::npos);
  fs::remove_all(root);
}
