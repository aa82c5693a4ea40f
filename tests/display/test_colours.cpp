// Palette choice, the shipped palettes, and company colours: random pictures, 8-bit and 32-bit with
// a mask, against the rule worked out here. (A real sprite in red is drawn alike by the window and
// the CLI in the window's colour tests.)
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "case_file.h"
#include "colours.h"
#include "renderer.h"

using namespace vossel;

namespace {

QRgb Colour(const PaletteBuffer& p, int i) {
  return qRgb(p[4 * i + 2], p[4 * i + 1], p[4 * i]);
}

int Differences(const PaletteBuffer& a, const PaletteBuffer& b) {
  int n = 0;
  for (int i = 0; i < 256; ++i) n += Colour(a, i) != Colour(b, i);
  return n;
}

}  // namespace

TEST(PaletteChoice, TokensFilesAndTexts) {
  PaletteDeclaration dosToyland;
  dosToyland.Kind = PaletteKind::Dos;
  dosToyland.Toyland = true;
  dosToyland.Source = PaletteSource::Descriptor;
  dosToyland.DescriptorName = "set.obg";
  for (const std::string& line : CaseLines("display/palette_choice_cases.txt")) {
    const std::vector<std::string> f = Fields(line, 3);
    ASSERT_EQ(f.size(), 3u) << line;
    const std::string &token = f[0], &file = f[1], &why = f[2];
    PaletteChoice choice;
    ASSERT_TRUE(ParsePaletteChoice(token, choice));
    const std::string path = PaletteFileFor(choice, dosToyland);
    EXPECT_EQ(path.substr(path.size() - file.size()), file) << token;
    EXPECT_EQ(PaletteChoiceText(choice, dosToyland), why);
  }
  PaletteChoice choice;
  EXPECT_FALSE(ParsePaletteChoice("", choice));
  EXPECT_EQ(DeclaredMenuText(dosToyland), "As the file declares (DOS toyland)");
  EXPECT_EQ(DeclaredMenuText(PaletteDeclaration{}), "As the file declares (Windows)");
}

TEST(PaletteChoice, ShippedPalettesBesideTheProgram) {
  PaletteBuffer windows{}, dos{}, windowsToy{}, dosToy{};
  for (bool toyland : {false, true}) {
    for (PaletteKind kind : {PaletteKind::Windows, PaletteKind::Dos}) {
      PaletteDeclaration declared;
      declared.Kind = kind;
      declared.Toyland = toyland;
      PaletteBuffer& into =
          kind == PaletteKind::Dos ? (toyland ? dosToy : dos) : (toyland ? windowsToy : windows);
      ASSERT_EQ(LoadChosenPalette(PaletteChoice{}, declared, into), -1) << int(kind) << toyland;
    }
  }
  EXPECT_EQ(Differences(windows, dos), 37);
  EXPECT_EQ(Differences(windows, windowsToy), 9);
  EXPECT_EQ(Differences(dos, dosToy), 9);
}

TEST(CompanyColour, RandomMaskedPicturesAgainstTheRule) {
  std::mt19937 rng(11);
  const auto R = [&rng](int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(rng); };
  for (int round = 0; round < 40; ++round) {
    PaletteBuffer palette;
    RecolourMap map;
    for (uint8_t& b : palette) b = static_cast<uint8_t>(R(0, 255));
    for (uint8_t& b : map) b = static_cast<uint8_t>(R(0, 255));
    GrfV2Image image;
    image.Width = R(1, 40);
    image.Height = R(1, 30);
    const size_t cells = static_cast<size_t>(image.Width * image.Height);
    const bool wide = round % 4 != 0;  // every fourth picture 8-bit
    if (wide) {
      image.Rgba.resize(4 * cells);
      for (uint8_t& b : image.Rgba) b = static_cast<uint8_t>(R(0, 255));
    }
    image.Indices.resize(cells);
    for (uint8_t& b : image.Indices) b = static_cast<uint8_t>(R(0, 3) == 0 ? 0 : R(0, 255));

    const QImage got = ImageBitmapInColour(image, palette, map);
    ASSERT_EQ(got.size(), QSize(image.Width, image.Height));
    std::vector<uint8_t> recoloured = image.Indices;  // as an 8-bit picture's indices are drawn
    RecolourIndices(recoloured.data(), recoloured.size(), map);
    for (size_t at = 0; at < cells; ++at) {
      const int x = static_cast<int>(at % image.Width), y = static_cast<int>(at / image.Width);
      const int m = image.Indices[at];
      ASSERT_EQ(recoloured[at], map[m]);
      QRgb want = Colour(palette, map[m]);
      if (wide) {
        const uint8_t* p = &image.Rgba[4 * at];
        want = qRgba(p[0], p[1], p[2], p[3]);
        if (m != 0) {
          const double brightness = std::max({p[0], p[1], p[2]});
          const auto shade = [&](int c) {
            return static_cast<int>(std::min(255.0, std::floor(c * brightness / 128.0)));
          };
          const QRgb c = Colour(palette, map[m]);
          want = qRgba(shade(qRed(c)), shade(qGreen(c)), shade(qBlue(c)), p[3]);
        }
      }
      ASSERT_EQ(got.pixel(x, y), want) << "round " << round << " at " << x << "," << y;
    }
  }
}
