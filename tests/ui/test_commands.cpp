// The File and Tools commands of frmMain against fake platform dialogs: New, Open, Save As, Quit
// and the chunk viewer; and the demo file beside the program.
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include <QAction>
#include <QApplication>
#include <QImage>
#include <QTest>
#include <QTimer>

#include "filedialog.h"
#include "frmChunk.h"
#include "listbox.h"
#include "picturebox.h"
#include "renderer.h"
#include "scrollbar.h"
#include "text.h"
#include "ui_support.h"

namespace {

namespace fs = std::filesystem;

constexpr const char kClosed[] = "*** File closed ***";
// The filter list as the dialog receives it: four pieces, then the list's closing NULs.
constexpr const char kFilterList[] =
    "Transport Tycoon GRF file (*.grf)\0*.grf\0All files (*.*)\0*.*\0";

// What a fake dialog was given.
struct Seen {
  std::string Title, Folder, Filter, File;
  uint32_t Flags = 0;
  int32_t Owner = 0;
};

Seen Record(const OPENFILENAMEA* ofn) {
  Seen s;
  s.Title = ofn->lpstrTitle != nullptr ? ofn->lpstrTitle : "<null>";
  s.Folder = ofn->lpstrInitialDir != nullptr ? ofn->lpstrInitialDir : "<null>";
  if (ofn->lpstrFilter != nullptr) s.Filter.assign(ofn->lpstrFilter, sizeof kFilterList);
  s.File = ofn->lpstrFile != nullptr ? ofn->lpstrFile : "<null>";
  s.Flags = ofn->Flags;
  s.Owner = ofn->hwndOwner;
  return s;
}

// Everything the commands can change in the window, to compare before and after.
struct Snapshot {
  std::string FileName, Caption, Flags, Offset, Size, Compressed, Status;
  std::vector<std::string> Lines, Rows;
  int32_t ListIndex = 0;
  int16_t Value = 0, Max = 0;
  size_t Sprites = 0, Bytes = 0;
  QImage Picture;
  bool operator==(const Snapshot&) const = default;
};

Snapshot Take(frmMain& form) {
  Snapshot s;
  s.FileName = form.FileName;
  s.Caption = Caption(&form);
  s.Flags = Caption(form.lblFlags);
  s.Offset = Caption(form.lblOffset);
  s.Size = Caption(form.lblSize);
  s.Compressed = Caption(form.lblCompressed);
  s.Status = Caption(form.lblStatus);
  for (int32_t i = 0; i < form.Li->ListCount(); ++i) s.Lines.push_back(form.Li->List(i));
  s.Rows = uitest::ColumnTexts(form, 0);
  s.ListIndex = form.Li->ListIndex();
  s.Value = form.scrSprite->Value();
  s.Max = form.scrSprite->Max();
  s.Sprites = form.Store.SpriteTable.size();
  s.Bytes = form.Store.SpriteData.size();
  s.Picture = form.picSprite->Image().copy();
  return s;
}

bool AllWhite(const QImage& image) {
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x)
      if (image.pixel(x, y) != qRgb(255, 255, 255)) return false;
  return true;
}

class Commands : public ::testing::Test {
 protected:
  void SetUp() override {
    // The fakes confirm `nextPath` (a path and a NUL) or, when it is empty, cancel with the buffer
    // left as the wrapper handed it over.
    auto fake = [this](std::vector<Seen>& log) {
      return [this, &log](OPENFILENAMEA* ofn) -> int32_t {
        log.push_back(Record(ofn));
        if (nextPath.empty()) return 0;
        std::memcpy(ofn->lpstrFile, nextPath.c_str(), nextPath.size() + 1);
        return 1;
      };
    };
    SetFileDialogOps({fake(opens), fake(saves)});
    form.Boxes.Boxes.clear();
  }
  void TearDown() override {
    SetFileDialogOps({});
    for (const std::string& path : written) fs::remove(path);
  }

  std::string Write(const std::string& name, const grfw::Bytes& bytes) {
    written.push_back(grfw::WriteTemp("commands-" + name, bytes));
    return written.back();
  }
  void Open(const std::string& path) {
    nextPath = path;
    form->mnuOpen_Click();
  }
  std::vector<std::string> Lines() { return Take(*form).Lines; }

  uitest::StartedForm form;
  std::vector<Seen> opens, saves;
  std::string nextPath;
  std::vector<std::string> written;
};

// --- New -------------------------------------------------------------------------------------

TEST_F(Commands, NewWithNoFileAddsOneClosedLineAndChangesNothingElse) {
  const Snapshot before = Take(*form);
  form->mnuNew_Click();
  Snapshot after = Take(*form);
  EXPECT_EQ(after.Lines, std::vector<std::string>{kClosed});
  EXPECT_EQ(after.ListIndex, 0);
  after.Lines = before.Lines;
  after.ListIndex = before.ListIndex;
  EXPECT_EQ(after, before);
  EXPECT_EQ(Caption(form.Form.get()), kFormCaption);
  EXPECT_EQ(Caption(form->lblStatus), "No file loaded");
  EXPECT_TRUE(form.Boxes.Boxes.empty());
}

TEST_F(Commands, NewTwiceInARowPutsTheNewestClosedLineOnTopAndSelectsIt) {
  form->mnuNew_Click();
  form->Li->SetListIndex(-1);
  form->mnuNew_Click();
  EXPECT_EQ(Lines(), (std::vector<std::string>{kClosed, kClosed}));
  EXPECT_EQ(form->Li->NewIndex(), 0);
  EXPECT_EQ(form->Li->ListIndex(), 0);
  EXPECT_TRUE(form.Boxes.Boxes.empty());
}

TEST_F(Commands, NewWhileASpriteIsOnViewClosesTheFileWithoutShowingAnotherSprite) {
  Open(Write("five.grf", uitest::FiveSprites()));
  form->scrSprite->SetValue(4);
  ASSERT_EQ(Caption(form.Form.get()), "Viewing sprite 5 (64 x 31)");
  ASSERT_FALSE(AllWhite(form->picSprite->Image()));
  const std::vector<std::string> linesBefore = Lines();

  // Any change event from here on would show a sprite of a store that is going away.
  int changes = 0;
  std::function<void()> change = form->scrSprite->Change;
  form->scrSprite->Change = [&] {
    ++changes;
    change();
  };
  form->mnuNew_Click();

  EXPECT_EQ(changes, 0);
  EXPECT_TRUE(AllWhite(form->picSprite->Image()));
  EXPECT_EQ(form->scrSprite->Max(), 0);
  EXPECT_EQ(form->scrSprite->Value(), 0);
  for (QLabel* label : {form->lblFlags, form->lblOffset, form->lblSize, form->lblCompressed})
    EXPECT_EQ(Caption(label), "-");
  EXPECT_EQ(Caption(form->lblStatus), "No file loaded");
  EXPECT_EQ(form->lvwSprite->ItemCount(), 0);
  EXPECT_TRUE(form->Store.SpriteTable.empty());
  EXPECT_TRUE(form->Store.SpriteData.empty());
  // The caption keeps the last sprite's text, and the name stays.
  EXPECT_EQ(Caption(form.Form.get()), "Viewing sprite 5 (64 x 31)");
  EXPECT_EQ(form->FileName, written[0]);
  std::vector<std::string> expected = linesBefore;
  expected.insert(expected.begin(), kClosed);
  EXPECT_EQ(Lines(), expected);
  EXPECT_EQ(form->Li->ListIndex(), 0);

  // A resize now redraws the empty store: the picture stays white and the labels stay.
  form->resize(form->width() + 40, form->height() + 30);
  QApplication::processEvents();
  EXPECT_TRUE(AllWhite(form->picSprite->Image()));
  EXPECT_EQ(Caption(form->lblSize), "-");
  EXPECT_EQ(changes, 0);
  EXPECT_TRUE(form.Boxes.Boxes.empty());

  // The next Open starts at the first sprite.
  Open(written[0]);
  EXPECT_EQ(Caption(form.Form.get()), "Viewing sprite 1 (2 x 2)");
  EXPECT_EQ(form->scrSprite->Max(), 4);
}

// --- Open ------------------------------------------------------------------------------------

TEST_F(Commands, OpenSetsUpOneDialogInTheCurrentDirectoryOwnedByTheWindow) {
  // Without the game the program's folder is current, and the demo file lies there.
  const std::string start = CurDir();
  EXPECT_EQ(fs::path(start), fs::canonical(VOSSEL_BIN_DIR));
  Open("");
  ASSERT_EQ(opens.size(), 1u);
  EXPECT_EQ(opens[0].Title, "Open a GRF file...");
  EXPECT_EQ(opens[0].Filter, std::string(kFilterList, sizeof kFilterList));
  EXPECT_EQ(opens[0].Flags, 4u);
  EXPECT_EQ(opens[0].Folder, start);
  EXPECT_EQ(opens[0].Owner, form->hWnd());
  EXPECT_NE(opens[0].Owner, 0);
  EXPECT_EQ(opens[0].File, "");

  // The same object serves the next dialog, which opens where the current directory now is, as
  // it is after the platform's dialog has confirmed a file elsewhere.
  const clsFileDialog* dialog = form->FileDialog.get();
  ASSERT_NE(dialog, nullptr);
  uitest::TempFolder elsewhere("elsewhere");
  ASSERT_TRUE(ChDir(elsewhere.Path.string()));
  Open("");
  ASSERT_EQ(opens.size(), 2u);
  EXPECT_EQ(form->FileDialog.get(), dialog);
  EXPECT_EQ(opens[1].Folder, CurDir());
  EXPECT_EQ(fs::path(opens[1].Folder), fs::canonical(elsewhere.Path));
  EXPECT_TRUE(saves.empty());
}

TEST_F(Commands, CancelledOpenChangesNothingAndSaysNothing) {
  Open(Write("five.grf", uitest::FiveSprites()));
  form->scrSprite->SetValue(2);
  const Snapshot before = Take(*form);
  Open("");
  EXPECT_EQ(opens.size(), 2u);
  EXPECT_EQ(Take(*form), before);
  EXPECT_TRUE(form.Boxes.Boxes.empty());
}

TEST_F(Commands, OpenWhileAFileIsLoadedAddsOnlyTheLoadsLines) {
  const std::string five = Write("five.grf", uitest::FiveSprites());
  Open(five);
  form->scrSprite->SetValue(3);
  const std::vector<std::string> first = Lines();
  ASSERT_EQ(first.size(), 3u);

  const std::string one = Write("one.grf", grfw::SeventeenByteFile());
  Open(one);
  const std::vector<std::string> lines = Lines();
  ASSERT_EQ(lines.size(), 6u);
  EXPECT_EQ(lines[0], "*** '" + one + "' loaded ***");
  EXPECT_EQ(lines[1].rfind("Loaded 1 sprites in ", 0), 0u) << lines[1];
  EXPECT_EQ(lines[2].rfind("Prepared memory in ", 0), 0u) << lines[2];
  EXPECT_EQ(std::vector<std::string>(lines.begin() + 3, lines.end()), first);
  for (const std::string& line : lines) EXPECT_NE(line, kClosed);
  // The position is pulled into the new file's range.
  EXPECT_EQ(form->scrSprite->Value(), 0);
  EXPECT_EQ(Caption(form.Form.get()), "Viewing sprite 1 (2 x 2)");
  EXPECT_EQ(form->Store.SpriteTable.size(), 1u);
  EXPECT_EQ(form->FileName, one);
  EXPECT_TRUE(form.Boxes.Boxes.empty());
}

TEST_F(Commands, OpenOfATypedNameThatDoesNotExistShowsTheReadFailureInTheCaption) {
  Open(Write("five.grf", uitest::FiveSprites()));
  const Snapshot before = Take(*form);
  const std::string missing = (fs::temp_directory_path() / "vossel-commands-no-such.grf").string();
  fs::remove(missing);
  Open(missing);
  EXPECT_EQ(Caption(form.Form.get()), "Error 2: No such file or directory (" + missing + ")");
  EXPECT_EQ(form->FileName, missing);
  Snapshot after = Take(*form);
  after.Caption = before.Caption;
  after.FileName = before.FileName;
  EXPECT_EQ(after, before);
  EXPECT_TRUE(form->isEnabled());
  EXPECT_TRUE(form.Boxes.Boxes.empty());
}

// --- The menu items ----------------------------------------------------------------------------

TEST_F(Commands, MenuItemsAndShortcutsReachTheirHandlers) {
  form->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(form.Form.get()));
  QTest::keyClick(form.Form.get(), Qt::Key_N, Qt::ControlModifier);
  EXPECT_EQ(Lines(), std::vector<std::string>{kClosed});
  form->mnuNew->trigger();
  EXPECT_EQ(Lines().size(), 2u);

  QTest::keyClick(form.Form.get(), Qt::Key_O, Qt::ControlModifier);
  EXPECT_EQ(opens.size(), 1u);
  form->mnuOpen->trigger();
  EXPECT_EQ(opens.size(), 2u);

  // Save and Save As are disabled: neither their items nor their shortcuts reach a dialog.
  EXPECT_FALSE(form->mnuSave->isEnabled());
  EXPECT_FALSE(form->mnuSaveAs->isEnabled());
  form->mnuSave->trigger();
  form->mnuSaveAs->trigger();
  QTest::keyClick(form.Form.get(), Qt::Key_S, Qt::ControlModifier);
  QTest::keyClick(form.Form.get(), Qt::Key_F12);
  EXPECT_TRUE(saves.empty());
  EXPECT_EQ(opens.size(), 2u);
  EXPECT_TRUE(form.Boxes.Boxes.empty());
}

TEST_F(Commands, SaveAsHandlerShowsTheSaveDialogAndWritesNothing) {
  // A new dialog object: no flags, an empty name box.
  nextPath = (fs::temp_directory_path() / "vossel-commands-saved.grf").string();
  fs::remove(nextPath);
  form->mnuSaveAs_Click();
  ASSERT_EQ(saves.size(), 1u);
  EXPECT_EQ(saves[0].Title, "Save a GRF file as...");
  EXPECT_EQ(saves[0].Filter, std::string(kFilterList, sizeof kFilterList));
  EXPECT_EQ(saves[0].Flags, 0u);
  EXPECT_EQ(saves[0].Folder, CurDir());
  EXPECT_EQ(saves[0].Owner, form->hWnd());
  EXPECT_EQ(saves[0].File, "");
  EXPECT_EQ(form->FileName, nextPath);
  EXPECT_FALSE(fs::exists(nextPath));

  // After an Open on the same object the flags it set stand, and the chosen name is offered.
  const std::string five = Write("five.grf", uitest::FiveSprites());
  Open(five);
  const Snapshot before = Take(*form);
  nextPath.clear();
  form->mnuSaveAs_Click();
  ASSERT_EQ(saves.size(), 2u);
  EXPECT_EQ(saves[1].Flags, 4u);
  EXPECT_EQ(saves[1].Title, "Save a GRF file as...");
  EXPECT_EQ(saves[1].File, five);
  EXPECT_EQ(Take(*form), before);
  EXPECT_EQ(opens.size(), 1u);
  EXPECT_TRUE(form.Boxes.Boxes.empty());
}

TEST_F(Commands, QuitClosesTheWindowAtOnceAndErasesTheStores) {
  Open(Write("five.grf", uitest::FiveSprites()));
  ASSERT_TRUE(form->isVisible());
  form->mnuQuit->trigger();
  EXPECT_FALSE(form->isVisible());
  EXPECT_TRUE(form->Store.SpriteTable.empty());
  EXPECT_TRUE(form->Store.SpriteData.empty());
  EXPECT_TRUE(form.Boxes.Boxes.empty());
}

// --- Chunk viewer ------------------------------------------------------------------------------

TEST_F(Commands, ChunkViewerOpensModallyAndLeavesTheMainWindowAlone) {
  Open(Write("five.grf", uitest::FiveSprites()));
  form->scrSprite->SetValue(1);
  const Snapshot before = Take(*form);

  int shown = 0;
  frmChunk* first = nullptr;
  auto closeViewer = [&] {
    QTimer::singleShot(0, form.Form.get(), [&] {
      frmChunk* viewer = form->ChunkViewer.get();
      ASSERT_NE(viewer, nullptr);
      EXPECT_TRUE(viewer->isVisible());
      EXPECT_EQ(QApplication::activeModalWidget(), viewer);
      EXPECT_EQ(viewer->parentWidget(), nullptr);
      EXPECT_EQ(viewer->FileName, "");
      ++shown;
      viewer->close();
    });
  };
  closeViewer();
  form->mnuChunk->trigger();
  EXPECT_EQ(shown, 1);
  first = form->ChunkViewer.get();
  ASSERT_NE(first, nullptr);
  EXPECT_FALSE(first->isVisible());
  EXPECT_EQ(Take(*form), before);
  EXPECT_EQ(opens.size(), 1u);

  // After New the same viewer opens the same way.
  form->mnuNew_Click();
  const Snapshot closed = Take(*form);
  closeViewer();
  form->mnuChunk->trigger();
  EXPECT_EQ(shown, 2);
  EXPECT_EQ(form->ChunkViewer.get(), first);
  EXPECT_EQ(Take(*form), closed);
  EXPECT_TRUE(form.Boxes.Boxes.empty());
}

// --- The demo file -----------------------------------------------------------------------------

TEST_F(Commands, DemoFileBesideTheProgramLoadsWithItsFourKindsOfSprite) {
  const fs::path demo = fs::path(CurDir()) / "vossel-demo.grf";
  ASSERT_TRUE(fs::exists(demo));
  Open(demo.string());
  EXPECT_TRUE(form.Boxes.Boxes.empty());
  const std::vector<SpriteRecord>& table = form->Store.SpriteTable;
  const ByteArray& data = form->Store.SpriteData;
  ASSERT_EQ(table.size(), 4u);
  EXPECT_EQ(form->lvwSprite->ItemCount(), 4);

  // The colour card: 16 x 16 swatches of 8 x 8, swatch n of palette index n.
  const SpriteRecord& card = table[0];
  EXPECT_EQ(card.Width, 128);
  EXPECT_EQ(card.Height, 128);
  EXPECT_EQ(card.Flags, 0);
  ASSERT_EQ(card.Size, 128 * 128);
  bool everyIndex = true;
  for (int y = 0; y < 128; ++y)
    for (int x = 0; x < 128; ++x)
      everyIndex &= data[static_cast<size_t>(card.DataOffset + y * 128 + x)] ==
                    static_cast<uint8_t>((y / 8) * 16 + x / 8);
  EXPECT_TRUE(everyIndex);
  EXPECT_EQ(Caption(form.Form.get()), "Viewing sprite 1 (128 x 128)");
  // On the screen: the swatch of index 53 (row 3, column 5) in its place.
  const SpritePlacement at = PlaceSprite(card, Left(form->scrSprite), ScaleHeight(form->picSprite));
  EXPECT_EQ(form->picSprite->Image().pixelColor(at.X + 5 * 8 + 3, at.Y + 3 * 8 + 3),
            uitest::PaletteColour(*form, 53));

  // The tile: run form, transparent corners, a full middle row.
  const SpriteRecord& tile = table[1];
  EXPECT_EQ(tile.Flags & kRunFormFlag, kRunFormFlag);
  EXPECT_EQ(tile.Width, 64);
  EXPECT_EQ(tile.Height, 31);
  const auto cell = [&](int x, int y) {
    return data[static_cast<size_t>(tile.DataOffset + y * 64 + x)];
  };
  EXPECT_EQ(cell(0, 0), 0);
  EXPECT_EQ(cell(63, 30), 0);
  EXPECT_NE(cell(31, 0), 0);
  for (int x = 0; x < 64; ++x) EXPECT_NE(cell(x, 15), 0) << x;

  // The sprite placed by its offsets.
  const SpriteRecord& arrow = table[2];
  EXPECT_NE(arrow.Flags, kActionFlags);
  EXPECT_EQ(arrow.XOffset, -12);
  EXPECT_EQ(arrow.YOffset, -8);

  // The action sprite.
  EXPECT_EQ(table[3].Flags, kActionFlags);
  EXPECT_EQ(table[3].Height, 1);
  EXPECT_GT(table[3].Size, 0);
  EXPECT_EQ(table[3].DataOffset + table[3].Size, static_cast<int32_t>(data.size()));
}

}  // namespace
