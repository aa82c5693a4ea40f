// The one procedure that says how sprites are drawn: the rule that starts the window and the CLI
// in different palettes, where company colour maps are looked for first, and what a choice that
// cannot be met leaves.
#include <gtest/gtest.h>

#include "actions.h"
#include "look.h"
#include "open_grf.h"
#include "sheet_files.h"

using namespace vossel;

TEST(Look, FirstPaletteRuleWindowDrawsVersion1InThePaletteFileCliAsDeclared) {
  const auto v1 = OpenGrf(grfw::WriteTemp("look-v1.grf", sheetfiles::DosVersion1()));
  const auto v2 = OpenGrf(grfw::WriteTemp("look-v2.grf", sheetfiles::Version2()));
  EXPECT_EQ(StartingPalette(FirstPalette::AsDesigned, v1->File), PaletteChoiceKind::Windows);
  EXPECT_EQ(StartingPalette(FirstPalette::Declared, v1->File), PaletteChoiceKind::Declared);
  EXPECT_EQ(StartingPalette(FirstPalette::AsDesigned, v2->File), PaletteChoiceKind::Declared);
  EXPECT_EQ(StartingPalette(FirstPalette::Declared, v2->File), PaletteChoiceKind::Declared);

  // Before a choice the two draw the version-1 file in different palettes; a choice overrides
  // the rule for both.
  const PaletteDeclaration dos = DeclaredPaletteOf(v1->Reading);
  const Look window = ResolveLook({}, FirstPalette::AsDesigned, v1->File, dos, {});
  const Look cli = ResolveLook({}, FirstPalette::Declared, v1->File, dos, {});
  ASSERT_TRUE(window.PaletteRead && cli.PaletteRead);
  EXPECT_EQ(cli.PaletteText, "DOS (declared by Action 14)");
  EXPECT_NE(window.Palette, cli.Palette);
  LookChoices declared;
  declared.Palette = PaletteChoice{PaletteChoiceKind::Declared, {}};
  EXPECT_EQ(ResolveLook(declared, FirstPalette::AsDesigned, v1->File, dos, {}), cli);
  LookChoices windows;
  windows.Palette = PaletteChoice{PaletteChoiceKind::Windows, {}};
  EXPECT_EQ(ResolveLook(windows, FirstPalette::Declared, v1->File, dos, {}), window);

  // A palette that cannot be read says so and which file it is.
  LookChoices nowhere;
  nowhere.Folder = "/nonexistent-vossel";
  const Look lost = ResolveLook(nowhere, FirstPalette::Declared, v1->File, dos, {});
  EXPECT_FALSE(lost.PaletteRead);
  EXPECT_EQ(lost.PaletteFile, "/nonexistent-vossel/ttd-dos-jasc.pal");
}

TEST(Look, CompanyMapsComeFromTheNamedSetThenTheFileAndOnlyThenTheInstalledSets) {
  const auto own = OpenGrf(grfw::WriteTemp("look-maps.grf", sheetfiles::DosVersion1(true)));
  const auto none = OpenGrf(grfw::WriteTemp("look-nomaps.grf", sheetfiles::Version2()));
  const FoundMaps fromFile = NearMaps(own->File, own->Reading, "");
  EXPECT_TRUE(fromFile.Found && fromFile.TwoFound);
  EXPECT_EQ(fromFile.From, own->File.Path);
  EXPECT_FALSE(SearchInstalled(fromFile));
  // The file's own map for red sends the company range to 0x10 + 8 x 4.
  EXPECT_EQ(MapOf(fromFile.Maps, CompanyColour::Red)[0xC6], 0x30);

  const FoundMaps named = NearMaps(none->File, none->Reading, own->File.Path);
  EXPECT_TRUE(named.Found && named.TwoFound);
  EXPECT_EQ(named.From, own->File.Path);
  const FoundMaps bad = NearMaps(own->File, own->Reading, none->File.Path);
  EXPECT_FALSE(bad.Found);
  EXPECT_EQ(bad.Problem, "the file ends before sprite 790");
  FoundMaps installed;
  installed.TwoFound = installed.Found = true;
  EXPECT_FALSE(WithInstalled(bad, installed).Found) << "a named set that fails is said";
  EXPECT_TRUE(WithInstalled(bad, installed).TwoFound) << "two colours are looked for on";
  EXPECT_TRUE(SearchInstalled(NearMaps(none->File, none->Reading, "")));

  // A company colour without maps draws without it; with them, through the colour's map; with a
  // second colour through the pair's map, first + 16 x second; a second alone leaves the first
  // range as it is.
  LookChoices red;
  red.Company = static_cast<int32_t>(CompanyColour::Red);
  const PaletteDeclaration dos = DeclaredPaletteOf(own->Reading);
  EXPECT_FALSE(ResolveLook(red, FirstPalette::Declared, own->File, dos, {}).Company);
  const Look shaded = ResolveLook(red, FirstPalette::Declared, own->File, dos, fromFile);
  EXPECT_TRUE(shaded.Company && !shaded.TwoColours);
  EXPECT_EQ(shaded.Map, MapOf(fromFile.Maps, CompanyColour::Red));
  LookChoices pair = red;
  pair.Company2 = static_cast<int32_t>(CompanyColour::Yellow);
  const Look two = ResolveLook(pair, FirstPalette::Declared, own->File, dos, fromFile);
  EXPECT_TRUE(two.Company && two.TwoColours);
  EXPECT_EQ(two.Map[0xC6], 0x30);
  EXPECT_EQ(two.Map[0x50], 0x28);
  pair.Company = -1;
  const Look second = ResolveLook(pair, FirstPalette::Declared, own->File, dos, fromFile);
  EXPECT_EQ(second.Map[0xC6], 0xC6);
  EXPECT_EQ(second.Map[0x57], 0x2F);
}
