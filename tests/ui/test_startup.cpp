// Start-up: the game folder from Wine's registry or the program's folder as the current directory,
// the palette from beside the program, and a refused palette ending the start.
#include <gtest/gtest.h>

#include <fstream>

#include "palette.h"
#include "ui_support.h"

using uitest::fs::path;

namespace {

PaletteBuffer RealPalette() {
  PaletteBuffer palette{};
  EXPECT_EQ(LoadPalette(JoinPath(VOSSEL_BIN_DIR, kPaletteFileName), palette), -1);
  return palette;
}

path Here() {
  return uitest::fs::canonical(CurDir());
}

}  // namespace

TEST(StartUp, WithoutTheGameTheProgramFolderIsCurrentAndThePaletteIsRead) {
  uitest::WinePrefix wine;  // no system.reg: the key does not exist
  uitest::MsgBoxRecorder boxes;
  frmMain form;
  form.AppPath = VOSSEL_BIN_DIR;
  ASSERT_TRUE(form.Form_Load());
  EXPECT_EQ(Here(), uitest::fs::canonical(VOSSEL_BIN_DIR));
  EXPECT_EQ(form.PaletteFile, JoinPath(VOSSEL_BIN_DIR, "ttdw-jasc.pal"));
  EXPECT_EQ(form.Palette, RealPalette());
  EXPECT_TRUE(boxes.Boxes.empty());
  EXPECT_FALSE(form.isVisible());  // Form_Load runs before the window is shown
}

TEST(StartUp, WithTheGameItsFolderIsCurrentThroughWinesDriveLinks) {
  uitest::WinePrefix wine;
  const path game = wine.MakeDriveCFolder("TTD");
  wine.WriteGameKey("\"HDPath\"=\"C:\\\\TTD\\\\\"");
  uitest::MsgBoxRecorder boxes;
  frmMain form;
  form.AppPath = VOSSEL_BIN_DIR;
  ASSERT_TRUE(form.Form_Load());
  EXPECT_EQ(Here(), game);
  // The palette still comes from beside the program.
  EXPECT_EQ(form.PaletteFile, JoinPath(VOSSEL_BIN_DIR, "ttdw-jasc.pal"));
  EXPECT_EQ(form.Palette, RealPalette());
  EXPECT_TRUE(boxes.Boxes.empty());
}

TEST(StartUp, AGameFolderThatCannotBeEnteredLeavesTheCurrentDirectorySilently) {
  uitest::WinePrefix wine;
  wine.MakeDriveCFolder("TTD");
  uitest::TempFolder elsewhere("elsewhere");
  for (const char* value :
       {"\"HDPath\"=\"C:\\\\Missing\\\\\"", "\"HDPath\"=\"Q:\\\\TTD\"", "\"HDPath\"=\"TTD\""}) {
    SCOPED_TRACE(value);
    wine.WriteGameKey(value);
    ASSERT_TRUE(ChDir(elsewhere.Path.string()));
    uitest::MsgBoxRecorder boxes;
    frmMain form;
    form.AppPath = VOSSEL_BIN_DIR;
    ASSERT_TRUE(form.Form_Load());
    EXPECT_EQ(Here(), uitest::fs::canonical(elsewhere.Path));
    EXPECT_TRUE(boxes.Boxes.empty());
  }
}

TEST(StartUp, AGameValueThatIsNoStringMeansNoGame) {
  uitest::WinePrefix wine;
  wine.MakeDriveCFolder("TTD");
  wine.WriteGameKey("\"HDPath\"=dword:00000001");
  frmMain form;
  form.AppPath = VOSSEL_BIN_DIR;
  ASSERT_TRUE(form.Form_Load());
  EXPECT_EQ(Here(), uitest::fs::canonical(VOSSEL_BIN_DIR));
}

TEST(StartUp, ARefusedOrMissingPaletteIsReportedAndTheWindowUnloaded) {
  uitest::WinePrefix wine;
  uitest::TempFolder program("program");
  for (const bool present : {true, false}) {
    SCOPED_TRACE(present ? "refused" : "missing");
    if (present) {
      std::ofstream(program.Path / "ttdw-jasc.pal", std::ios::binary)
          << "JASC-PAL\r\n0200\r\n1\r\n";
    } else {
      uitest::fs::remove(program.Path / "ttdw-jasc.pal");
    }
    uitest::MsgBoxRecorder boxes;
    frmMain form;
    form.AppPath = program.Path.string() + "/";  // a final separator is not doubled
    EXPECT_FALSE(form.Form_Load());
    EXPECT_EQ(form.PaletteFile, (program.Path / "ttdw-jasc.pal").string());
    ASSERT_EQ(boxes.Boxes.size(), 1u);
    EXPECT_EQ(boxes.Boxes[0].Text, "Invalid palette file or unknown format");
    EXPECT_EQ(boxes.Boxes[0].Title, "Error");
    EXPECT_EQ(boxes.Boxes[0].Icon, MsgBoxIcon::Information);
    EXPECT_FALSE(form.isVisible());
    EXPECT_TRUE(form.Store.SpriteTable.empty());
    EXPECT_TRUE(form.Store.SpriteData.empty());
  }
}
