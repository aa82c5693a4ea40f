// Base-set descriptors, the palette a file declares, and the company colour maps: hand-made cases,
// files written for the test, and the real OpenGFX set where it is installed.
#include <gtest/gtest.h>

#include <filesystem>

#include "baseset.h"
#include "case_file.h"
#include "companymaps.h"
#include "grf_writer.h"

using namespace vossel;

namespace {

const std::string kOpenGfx = std::string(VOSSEL_BASESET_DIR) + "/opengfx";

std::string Summary(const BaseSetDescriptor& d) {
  return d.Name + "|" + d.Version + "|" + d.PaletteText + "|" +
         std::to_string(static_cast<int>(d.Palette)) + "|" + d.Description + "|" + d.Base + "|" +
         d.Toyland + "|" + d.Extra;
}

void Write(const std::filesystem::path& path, const std::string& text) {
  std::ofstream(path, std::ios::binary) << text;
}

// 16 recolour sprites; map k sends index i to i + k.
std::vector<grfw::Bytes> RecolourData() {
  std::vector<grfw::Bytes> sprites;
  for (int k = 0; k < kCompanyColourCount; ++k) {
    grfw::Bytes s{0x00};
    for (int i = 0; i < 256; ++i) s.push_back(static_cast<uint8_t>(i + k));
    sprites.push_back(s);
  }
  return sprites;
}

}  // namespace

TEST(Descriptor, Cases) {
  for (const std::string& line : CaseLines("engine/newgrf/descriptor_cases.txt")) {
    const std::vector<std::string> f = Fields(line, 2);
    EXPECT_EQ(Summary(ParseDescriptor(Unescape(f[0]))), Unescape(f[1])) << f[0];
  }

  BaseSetDescriptor d;
  EXPECT_EQ(ReadDescriptor("/nonexistent/x.obg", d), DescriptorRead::CannotOpen);
  const auto big = grfw::FreshFolder("big", true) / "big.obg";
  Write(big, std::string(kMaxDescriptorBytes + 1, '\n'));
  EXPECT_EQ(ReadDescriptor(big.string(), d), DescriptorRead::TooLarge);
}

TEST(Descriptor, DeclaredPaletteAndItsText) {
  DescriptorMatch dos{"/x/set.obg", ParseDescriptor("[metadata]\npalette=DOS\n[files]\ntoyland=t"),
                      BaseSetRole::Base};
  DescriptorMatch toyland = dos;
  toyland.Role = BaseSetRole::Toyland;
  DescriptorMatch silent{"/x/quiet.obg", ParseDescriptor("[files]\nbase=b"), BaseSetRole::Base};
  const std::tuple<std::optional<uint8_t>, std::optional<DescriptorMatch>, std::string> cases[] = {
      {'D', std::nullopt, "DOS (declared by Action 14)"},
      {'W', dos, "Windows (declared by Action 14)"},
      {'A', dos, "Windows (Action 14 allows either)"},
      {'D', toyland, "DOS toyland (declared by Action 14)"},
      {'x', dos, "DOS (declared by set.obg)"},
      {std::nullopt, toyland, "DOS toyland (declared by set.obg)"},
      {std::nullopt, silent, "Windows (nothing declared)"},
      {std::nullopt, std::nullopt, "Windows (nothing declared)"},
  };
  for (const auto& [pals, match, want] : cases)
    EXPECT_EQ(DeclarationText(DeclaredPalette(pals, match)), want);
}

TEST(Descriptor, FoundBesideTheFileAndAmongInstalledSets) {
  const auto dir = grfw::FreshFolder("sets", true);
  std::filesystem::create_directories(dir / "sub");
  Write(dir / "b.obg", "[metadata]\npalette=Windows\n[files]\nbase=ONE.GRF\ntoyland=toy.grf\n");
  Write(dir / "a.obg", "[metadata]\npalette=DOS\n[files]\nbase=missing.grf\nextra=toy.grf\n");
  Write(dir / "sub" / "c.OBG", "[files]\nbase=two.grf\n");
  Write(dir / "one.grf", "");
  Write(dir / "sub" / "two.grf", "");

  const auto one = FindDescriptorFor((dir / "one.grf").string());
  ASSERT_TRUE(one);
  EXPECT_EQ(one->Path, (dir / "b.obg").string());
  EXPECT_EQ(one->Role, BaseSetRole::Base);
  // Named by both: the first descriptor by name wins.
  EXPECT_EQ(FindDescriptorFor((dir / "toy.grf").string())->Role, BaseSetRole::Extra);
  EXPECT_FALSE(FindDescriptorFor((dir / "other.grf").string()));
  EXPECT_FALSE(FindDescriptorFor("/nonexistent/one.grf"));

  const auto sets = FindInstalledBaseSets({dir.string(), "/nonexistent"});
  ASSERT_EQ(sets.size(), 3u);
  EXPECT_EQ(sets[0].BasePath, "");
  EXPECT_EQ(sets[1].BasePath, (dir / "one.grf").string());
  EXPECT_EQ(sets[2].BasePath, (dir / "sub" / "two.grf").string());
}

TEST(CompanyMaps, Names) {
  for (int i = 0; i < kCompanyColourCount; ++i) {
    CompanyColour c{};
    ASSERT_TRUE(ParseCompanyColour(CompanyColourToken(CompanyColour(i)), c));
    EXPECT_EQ(static_cast<int>(c), i);
  }
  EXPECT_EQ(CompanyColourToken(CompanyColour::DarkBlue), "dark-blue");
  EXPECT_EQ(CompanyColourCaption(CompanyColour::PaleGreen), "Pale Green");
  EXPECT_EQ(CompanyColourToken(CompanyColour::White), "white");
  CompanyColour c{};
  for (const char* bad : {"", "Red", "dark_blue", "red ", "dark"})
    EXPECT_FALSE(ParseCompanyColour(bad, c));
}

TEST(CompanyMaps, FromBothContainers) {
  const std::vector<grfw::Bytes> maps = RecolourData();
  std::vector<grfw::Bytes> v1(kFirstCompanyMapSprite, grfw::ActionRecord({0x0C, 0x00}));
  std::vector<grfw::Bytes> v2(kFirstCompanyMapSprite, grfw::V2Data(0xFF, {0x0C}));
  for (const grfw::Bytes& m : maps) {
    v1.push_back(grfw::ActionRecord(m));
    v2.push_back(grfw::V2Data(0xFF, m));
  }
  for (const std::string& path : {grfw::WriteTemp("maps1.grf", grfw::FileOf(v1)),
                                  grfw::WriteTemp("maps2.grf", grfw::V2File(v2, {}))}) {
    CompanyMaps got;
    ASSERT_EQ(LoadCompanyMaps(path, got), CompanyMapsResult::Ok) << path;
    for (int k = 0; k < kCompanyColourCount; ++k)
      EXPECT_TRUE(std::equal(got.Maps[k].begin(), got.Maps[k].end(), maps[k].begin() + 1));
  }

  // One map short, one of 256 bytes, one starting 01, no file, no sprites.
  v1.pop_back();
  v2[kFirstCompanyMapSprite + 3] =
      grfw::V2Data(0xFF, grfw::Bytes(maps[3].begin() + 1, maps[3].end()));
  grfw::Bytes wrongFirst = maps[0];
  wrongFirst[0] = 1;
  std::vector<grfw::Bytes> v1b = v1;
  v1b.push_back(grfw::ActionRecord(wrongFirst));
  const std::pair<std::string, CompanyMapsResult> cases[] = {
      {grfw::WriteTemp("short1.grf", grfw::FileOf(v1)), CompanyMapsResult::TooFewSprites},
      {grfw::WriteTemp("bad2.grf", grfw::V2File(v2, {})), CompanyMapsResult::NotRecolour},
      {grfw::WriteTemp("bad1.grf", grfw::FileOf(v1b)), CompanyMapsResult::NotRecolour},
      {"/nonexistent/base.grf", CompanyMapsResult::CannotRead},
      {grfw::WriteTemp("text.grf", {'h', 'i'}), CompanyMapsResult::NotGrf},
  };
  for (const auto& [path, want] : cases) {
    CompanyMaps got;
    EXPECT_EQ(LoadCompanyMaps(path, got), want) << path << ": " << CompanyMapsText(want);
  }
}

TEST(CompanyMaps, RealOpenGfx) {
  const auto sets = FindInstalledBaseSets({VOSSEL_BASESET_DIR});
  CompanyMaps maps;
  const std::string from = FindInstalledCompanyMaps(sets, maps);
  if (from.empty()) GTEST_SKIP() << "no installed base set holds company colour maps";
  EXPECT_EQ(from, kOpenGfx + "/ogfx1_base.grf");
  // Dark blue is the company range itself; every colour moves that range and only that range.
  for (int k = 0; k < kCompanyColourCount; ++k) {
    for (int i = 0; i < 256; ++i) {
      const bool company = i >= 0xC6 && i <= 0xCD;
      EXPECT_TRUE((k != 0 && company) || maps.Maps[k][i] == i) << k << " at " << i;
    }
  }
  EXPECT_NE(MapOf(maps, CompanyColour::Red)[0xC6], 0xC6);
}

// Map k of OpenGFX's 256 draws the pair (first k mod 16, second k div 16): checked against the
// rule made from its 16 maps of one colour. The first range C6..CD as the first colour's map sends
// it, the second range 50..57 where the second colour's map sends C6..CD, all else as it is.
TEST(CompanyMaps, OpenGfxPairsAreFirstPlusSixteenTimesSecond) {
  const auto sets = FindInstalledBaseSets({VOSSEL_BASESET_DIR});
  CompanyMaps one;
  TwoColourMaps two;
  const std::string from = FindInstalledTwoColourMaps(sets, two);
  if (from.empty() || FindInstalledCompanyMaps(sets, one).empty())
    GTEST_SKIP() << "OpenGFX is not installed";
  EXPECT_EQ(from, kOpenGfx + "/ogfxe_extra.grf");
  ASSERT_EQ(two.Maps.size(), 256u);
  int wrong = 0;
  for (int k = 0; k < 256; ++k) {
    for (int i = 0; i < 256; ++i) {
      int want = i;
      if (i >= 0xC6 && i <= 0xCD) want = one.Maps[k % 16][i];
      if (i >= 0x50 && i <= 0x57) want = one.Maps[k / 16][0xC6 + i - 0x50];
      wrong += two.Maps[k][i] != want;
    }
  }
  EXPECT_EQ(wrong, 0);
}

TEST(CompanyMaps, TwoColourMapsFromTheActionsThatBringThem) {
  // 256 maps, map k sending index 0 to k; then a block by offset that replaces map 3.
  std::vector<grfw::Bytes> records{grfw::ActionRecord({0x05, 0x0A, 0xFF, 0x00, 0x01})};
  for (int k = 0; k <= 256; ++k) {
    if (k == 256) records.push_back(grfw::ActionRecord({0x05, 0x8A, 0x01, 0x03}));
    grfw::Bytes map(257, 0);
    map[1] = k < 256 ? uint8_t(k) : 0xEE;
    records.push_back(grfw::ActionRecord(map));
  }
  TwoColourMaps got;
  const auto load = [&](const std::vector<grfw::Bytes>& r) {
    return LoadTwoColourMaps(grfw::WriteTemp("two.grf", grfw::FileOf(r)), got);
  };
  ASSERT_EQ(load(records), TwoColourMapsResult::Ok);
  EXPECT_EQ(got.Maps[2][0], 2);
  EXPECT_EQ(got.Maps[3][0], 0xEE);
  records[9] = grfw::ActionRecord(grfw::Bytes(256, 0));
  EXPECT_EQ(load(records), TwoColourMapsResult::NotRecolour);
  records[0] = grfw::ActionRecord({0x05, 0x0A, 0x07});
  EXPECT_EQ(load(records), TwoColourMapsResult::TooFewMaps);
}
