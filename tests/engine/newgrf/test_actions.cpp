// Pseudo-sprites: the texts of files made sprite by sprite in action_cases.txt, the roles of the
// real files' sprites, and the NFO listing read back into the bytes it lists. (What a file says of
// itself is in the CLI's transcript.)
#include <gtest/gtest.h>

#include <filesystem>
#include <random>

#include "actions.h"
#include "case_file.h"
#include "fileio.h"
#include "grf.h"
#include "grf2.h"
#include "grf_writer.h"
#include "load_sprites.h"
#include "nfo_bytes.h"

using namespace vossel;
using grfw::Bytes;

namespace {

// A file's sprites and the bytes they point into.
struct Sprites {
  Bytes File;
  SpriteStore Store;
  GrfV2Index Index;
  std::vector<Bytes> Own;
  std::vector<SpriteInput> Inputs;
};

// The sprites of a real file through the loaders: pseudo-sprites with their bytes, version-2
// sprites whose alternative is non-image data as Data, the rest as pictures.
Sprites ReadReal(const std::string& path) {
  Sprites s;
  s.File = ReadWholeFile(path).Bytes;
  const uint8_t* f = s.File.data();
  if (IsGrfV2(f, s.File.size())) {
    IndexGrfV2(f, s.File.size(), s.Index, nullptr);
    for (const GrfV2Sprite& e : s.Index.Sprites) {
      const GrfV2Alternative* a = e.Default >= 0 ? &s.Index.Alternatives[e.Default] : nullptr;
      if (e.Info != kV2Reference)
        s.Inputs.push_back({SpriteKind::Pseudo, f + e.DataOffset, size_t(e.DataSize)});
      else if (a && a->Info == kV2Pseudo)
        s.Inputs.push_back({SpriteKind::Data, f + a->StreamOffset, size_t(a->StreamSize)});
      else
        s.Inputs.push_back({});
    }
  } else {
    LoadSprites(f, int32_t(s.File.size()), s.Store, nullptr);
    for (const SpriteRecord& r : s.Store.SpriteTable)
      s.Inputs.push_back(r.Flags == kActionFlags
                             ? SpriteInput{SpriteKind::Pseudo,
                                           s.Store.SpriteData.data() + r.DataOffset, size_t(r.Size)}
                             : SpriteInput{});
  }
  return s;
}

// The NFO listing of every pseudo-sprite read back: its number, length and bytes.
void ExpectNfoRoundTrip(const std::vector<SpriteInput>& inputs) {
  const GrfActions g = ReadActions(inputs);
  for (size_t i = 0; i < inputs.size(); ++i) {
    const SpriteInput& s = inputs[i];
    if (s.Kind != SpriteKind::Pseudo) continue;
    ASSERT_EQ(NfoComment(g.Sprites[i], g.Actions).rfind("// ", 0), 0u);
    const std::string line = NfoPseudoLine(int32_t(i), s.Data, s.Size);
    const std::string head = std::to_string(i) + " * " + std::to_string(s.Size);
    ASSERT_EQ(line.rfind(head, 0), 0u) << line;
    const auto bytes = ParseNfoBytes(line.substr(head.size()));
    ASSERT_TRUE(bytes) << line;
    ASSERT_EQ(*bytes, Bytes(s.Data, s.Data + s.Size)) << line;
  }
}

}  // namespace

TEST(Actions, CaseFilesGiveEachSpriteItsText) {
  for (const auto& file : CaseBlocks("engine/newgrf/action_cases.txt")) {
    SCOPED_TRACE(file[0]);
    Sprites s;
    std::vector<std::string> want;
    for (size_t i = 1; i < file.size(); ++i) {
      const std::vector<std::string> f = Fields(file[i], 2);
      const bool data = f[0].rfind("data ", 0) == 0;
      const std::string bytes = data ? f[0].substr(5) : f[0] == "picture" ? "-" : f[0];
      s.Own.push_back(bytes.find('"') != std::string::npos ? ParseNfoBytes(bytes).value()
                                                           : Hex(bytes));
      s.Inputs.push_back({f[0] == "picture" ? SpriteKind::Picture
                          : data            ? SpriteKind::Data
                                            : SpriteKind::Pseudo,
                          s.Own.back().data(), s.Own.back().size()});
      want.push_back(f[1]);
    }
    const GrfActions g = ReadActions(s.Inputs);
    for (size_t i = 0; i < want.size(); ++i)
      EXPECT_EQ(RoleText(g.Sprites[i], g.Actions), want[i]) << "sprite " << i;
    ExpectNfoRoundTrip(s.Inputs);
  }
}

TEST(Actions, Texts) {
  for (const std::string& line : CaseLines("engine/newgrf/text_cases.txt")) {
    const std::vector<std::string> f = Fields(line, 3);
    if (f[0] == "bad") {
      EXPECT_FALSE(ParseNfoBytes(f[1])) << f[1];
      continue;
    }
    const Bytes b = Hex(f[1]);
    const std::string want = Unescape(f[2]);
    if (f[0] == "decode") {
      EXPECT_EQ(DecodeGrfText(b.data(), b.size()), want);
    }
    if (f[0] == "grfid") {
      EXPECT_EQ(GrfIdText(b.data()), want);
    }
    if (f[0] == "nfo") {
      EXPECT_EQ(NfoBytes(b.data(), b.size()), want);
    }
  }
  EXPECT_EQ(ParseNfoBytes(" ab\t\"\" 0F ").value(), Bytes({0xAB, 0x0F}));
  EXPECT_EQ(ActionName(0x08), "GRF ID and name");
  EXPECT_EQ(FeatureName(0x16), "feature 16");
  NfoAlternative image{false, 32, kZoomIn4, 256, 124, -124, 0, 0, "", false, false, ""};
  NfoAlternative data{true, 0, 0, 0, 0, 0, 0, 12, "", false, false, ""};
  SpriteRole base;
  base.Number = 15;
  EXPECT_EQ(NfoSpriteLine(15, {image, data}, base, {}),
            "15 32bpp in4 256x124 at -124,0; data 12 bytes // base sprite 15");
}

TEST(Actions, RealFiles) {
  const std::string dir = VOSSEL_BASESET_DIR;
  // The roles of some sprites. (What each file says of itself is in the CLI's transcript.)
  const std::pair<std::string, std::vector<std::pair<int, std::string>>> reals[] = {
      {"openttd.grf",
       {{0, "Sprite count: 2757"},
        {12, "sprite 0 of Action 05 (two-company-colour maps), recolour map"}}},
      {"orig_extra.grf", {}},
      {"opengfx/ogfxe_extra.grf", {}},
      {"opengfx/ogfx1_base.grf",
       {{774, "base sprite 774"}, {775, "recolour map"}, {790, "recolour map"}}},
  };
  int read = 0;
  for (const auto& [name, roles] : reals) {
    SCOPED_TRACE(name);
    if (!std::filesystem::exists(dir + "/" + name)) continue;
    ++read;
    const Sprites s = ReadReal(dir + "/" + name);
    const GrfActions g = ReadActions(s.Inputs);
    for (const auto& [n, text] : roles) EXPECT_EQ(RoleText(g.Sprites.at(n), g.Actions), text);
    // Well-made files: every header whole and known, and only pictures, recolour maps and sounds
    // within the blocks of actions.
    for (const ActionRecord& a : g.Actions)
      EXPECT_TRUE(!IsCut(a) && a.Action <= 0x14) << ActionSummary(a);
    for (size_t n = 0; n < s.Inputs.size(); ++n) {
      const SpriteRole& role = g.Sprites[n];
      const bool member = role.Kind != RoleKind::Action && role.Kind != RoleKind::SpriteCount;
      if (s.Inputs[n].Kind == SpriteKind::Pseudo && member && role.Kind != RoleKind::Sound) {
        EXPECT_TRUE(role.Recolour) << n << " " << RoleText(role, g.Actions);
      }
    }
    ExpectNfoRoundTrip(s.Inputs);
  }
  if (read == 0) GTEST_SKIP() << "no real file in " << dir;
}

TEST(Actions, RandomSpritesRoundTripAsNfo) {
  std::mt19937 rng(7);
  const uint8_t edges[] = {0x00, 0x01, 0x0A, 0x11, 0x12, 0x14, 0x20, '"', '\\', 'C', 0x7E, 0xFF};
  for (int file = 0; file < 200; ++file) {
    std::vector<Bytes> own(1 + rng() % 40);
    std::vector<SpriteInput> inputs;
    for (Bytes& b : own) {
      b.resize(rng() % 3 == 0 ? 257 : rng() % 24);
      for (uint8_t& x : b) x = rng() % 2 ? edges[rng() % std::size(edges)] : uint8_t(rng());
      inputs.push_back({SpriteKind(rng() % 3), b.data(), b.size()});
    }
    ExpectNfoRoundTrip(inputs);
  }
}
