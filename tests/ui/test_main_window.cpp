// frmMain driven as a person drives it: start-up, Open through the menu, loads that end early,
// browsing and sorting, New and Quit, the demo file.
#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <sstream>

#include <QApplication>
#include <QHeaderView>
#include <QTest>

#include "case_file.h"
#include "frmMain.h"
#include "listbox.h"
#include "listview.h"
#include "picturebox.h"
#include "scrollbar.h"
#include "text.h"
#include "ui_support.h"

using namespace vossel;

using grfw::Bytes;
using uitest::FiveSprites;
using uitest::Shown;

namespace {

class MainWindow : public ::testing::Test {
 protected:
  // Open through the menu, the dialog confirming a file of these bytes.
  std::string Open(const Bytes& bytes, const std::string& name = "five.grf") {
    fakes.Next = grfw::WriteTemp(name, bytes);
    form.mnuOpen_Click();
    return fakes.Next;
  }
  // The caption and the four labels; a column of the list (-1: the keys); the messages.
  std::string Facts() {
    return Caption(&form) + " | " + Caption(form.lblFlags) + " | " + Caption(form.lblSize) + " | " +
           Caption(form.lblCompressed) + " | " + Caption(form.lblOffset);
  }
  std::string Column(int column) {
    std::string texts;
    for (int32_t i = 1; i <= form.lvwSprite->ItemCount(); ++i) {
      const ListItem& item = form.lvwSprite->Item(i);
      texts +=
          (i > 1 ? " " : "") + (column < 0 ? item.Key : item.Texts[static_cast<size_t>(column)]);
    }
    return texts;
  }
  std::string Lines() {
    std::string lines;
    for (int32_t i = 0; i < form.Li->ListCount(); ++i) lines += form.Li->List(i) + "\n";
    return lines;
  }
  void ClickColumn(int index) {
    QHeaderView* header = form.lvwSprite->header();
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {},
                      {header->sectionViewportPosition(index - 1) + 4, header->height() / 2});
  }
  void ClickRow(int row) {  // from 0, in the order shown
    const QRect at = form.lvwSprite->visualRect(form.lvwSprite->model()->index(row, 0));
    QTest::mouseClick(form.lvwSprite->viewport(), Qt::LeftButton, {}, at.center());
  }
  // Every caption the window takes from now on, with " (disabled)" while it takes no input.
  std::vector<std::string>& Captions() {
    QObject::connect(&form, &QWidget::windowTitleChanged, &form, [this](const QString& title) {
      captions.push_back(title.toStdString() + (form.isEnabled() ? "" : " (disabled)"));
    });
    return captions;
  }
  // The colour of palette index i; the picture's pixel at column c, row r of the sprite at
  // `index`, where the placement rule puts it.
  QRgb Colour(int i) { return uitest::PaletteColour(form, i).rgb(); }
  QRgb Pixel(int index, int c, int r) {
    const SpriteRecord& s = uitest::StoreOf(form.File).SpriteTable[static_cast<size_t>(index)];
    return form.picSprite->Image().pixel(
        (Left(form.scrSprite) - s.Width + s.XOffset) / 2 + c,
        (ScaleHeight(form.picSprite) - s.Height + s.YOffset) / 2 + r);
  }

  uitest::StartedForm started;
  uitest::Fakes& fakes = started.Boxes;
  frmMain& form = *started;
  std::vector<std::string> captions;
};

}  // namespace

TEST(StartUp, GameFolderPaletteAndRefusal) {
  for (const std::string& line : CaseLines("ui/start_up_cases.txt")) {
    SCOPED_TRACE(line);
    const std::vector<std::string> f = Fields(line, 3);
    ASSERT_EQ(f.size(), 3u) << line;
    const bool value = f[0] != "-", palette = f[1] != "-";
    const std::string current = f[2] == "-" ? "" : f[2];
    uitest::Fakes fakes;
    const uitest::fs::path wine = fakes.Wine;
    uitest::fs::create_directories(wine / "drive_c" / "TTD");
    uitest::fs::create_directories(wine / "dosdevices");
    uitest::fs::create_directory_symlink("../drive_c", wine / "dosdevices" / "c:");
    if (value)
      std::ofstream(wine / "system.reg") << "WINE REGISTRY Version 2\n\n[Software\\\\FISH "
                                            "Technology Group\\\\Transport Tycoon Deluxe] 1\n"
                                         << f[0] << "\n";
    const uitest::fs::path program = palette ? wine / "program" : VOSSEL_BIN_DIR;
    uitest::fs::create_directories(program);
    if (palette) std::ofstream(program / "ttdw-jasc.pal") << Unescape(f[1]);
    ASSERT_TRUE(ChDir(wine.string()));
    frmMain form;
    form.AppPath = program.string() + (palette ? "/" : "");  // a final separator is not doubled
    EXPECT_EQ(form.Form_Load(), !palette);
    EXPECT_EQ(form.PaletteFile, (program / "ttdw-jasc.pal").string());
    EXPECT_EQ(uitest::fs::canonical(CurDir()),
              uitest::fs::canonical(!current.empty() ? wine / current : program));
    const std::vector<Shown> refused = {{kMsgBadPalette, "Error", MsgBoxIcon::Information}};
    EXPECT_EQ(fakes.Boxes, palette ? refused : std::vector<Shown>());
  }
}

TEST_F(MainWindow, OpenShowsTheFirstSpriteAndEverythingAboutTheFile) {
  const std::vector<std::string>& log = Captions();
  const std::string name = Open(grfw::SeventeenByteFile(), "seventeen.grf");
  EXPECT_EQ(fakes.Dialogs.back(), uitest::OpenDialog(CurDir(), form.hWnd()));
  // The window takes no input from the counting pass on, and takes it again when all is shown.
  EXPECT_EQ(log, (std::vector<std::string>{
                     "Loading GRF file to memory...", "Getting number of sprites... (disabled)",
                     "Reserving memory (and unloading previous data if any)... (disabled)",
                     "Processing sprites... (disabled)", "Viewing sprite 1 (2 x 2) (disabled)"}));
  EXPECT_TRUE(form.isEnabled());
  EXPECT_EQ(Facts(), "Viewing sprite 1 (2 x 2) | 00000000 (0) | 4 | 5 | -2 x 1");
  EXPECT_EQ(Caption(form.lblStatus), name +
                                         "\r\n- Compression ratio: -25.00 %\r\n- 5 bytes "
                                         "compressed of 4 bytes uncompressed\r\n- Filesize "
                                         "17 bytes");
  EXPECT_EQ(Column(-1) + " " + Column(0) + " " + Column(1) + " " + Column(2) + " " + Column(3) +
                " " + Column(4),
            "k0 0001 002 002 00004 00000000");
  EXPECT_TRUE(std::regex_match(Lines(), std::regex("\\*\\*\\* '" + name +
                                                   "' loaded \\*\\*\\*\nLoaded 1 sprites in "
                                                   "\\d+\\.\\d\\d seconds\nPrepared memory in "
                                                   "\\d+\\.\\d\\d seconds\n")))
      << Lines();
  EXPECT_EQ(form.Li->ListIndex(), 0);
  for (const auto& [c, r, index] :
       {std::tuple{0, 0, 0x0A}, {1, 0, 0x0B}, {0, 1, 0x0A}, {1, 1, 0x0B}})
    EXPECT_EQ(Pixel(0, c, r), Colour(index));
  EXPECT_EQ(Pixel(0, -1, 0), qRgb(255, 255, 255));
  EXPECT_EQ(Pixel(0, 2, 1), qRgb(255, 255, 255));
}

TEST_F(MainWindow, LoadsThatEndEarly) {
  const Bytes overrun = grfw::File({grfw::PlainSprite(2, 2, {1, 2, 3, 4}),
                                    grfw::RawSprite(11, 0, 1, 3, 0, 0, {5, 1, 2, 3, 4, 5})});
  const struct {
    const char* Name;
    std::optional<Bytes> File;  // none: a name that does not exist
    std::vector<Shown> Boxes;
    const char* Caption;  // its start
    int Rows;
  } cases[] = {
      {"sixteen bytes",
       Bytes(16, 1),
       {{kMsgTooSmall, "Error", MsgBoxIcon::Exclamation}},
       "Loading GRF file to memory...",
       5},
      {"missing", std::nullopt, {}, "Error 2: No such file or directory (/nonexistent/a.grf)", 5},
      {"overrun", overrun, {{kMsgOutOfBuffer, "Vossel", MsgBoxIcon::None}}, "Viewing sprite 1", 1},
      {"no sprite", Bytes(17, 0), {}, "Vossel (GRF loader engine)", 0},
      // Counted on its stored size, then its stream passes 1 x 2 pixels while decoding.
      {"first sprite fails",
       grfw::File({grfw::SpriteRec(2, 2, 1, 0, 0, grfw::Literal({1, 2, 3}), 0), FiveSprites()}),
       {{kMsgOutOfBuffer, "Vossel", MsgBoxIcon::None}},
       "Vossel (GRF loader engine)",
       0},
  };
  form.picSprite->SetBackColor(0x00336699);  // sprites stand on the picture box's own colour
  for (const auto& c : cases) {
    SCOPED_TRACE(c.Name);
    Open(FiveSprites());
    form.scrSprite->SetValue(4);
    const std::string status = Caption(form.lblStatus);
    fakes.Boxes.clear();
    if (c.File) {
      Open(*c.File, "early.grf");
    } else {
      fakes.Next = "/nonexistent/a.grf";
      form.mnuOpen_Click();
    }
    EXPECT_EQ(fakes.Boxes, c.Boxes);
    EXPECT_EQ(Caption(&form).rfind(c.Caption, 0), 0u) << Caption(&form);
    EXPECT_EQ(form.lvwSprite->ItemCount(), c.Rows);
    EXPECT_EQ(form.scrSprite->Max(), std::max(c.Rows - 1, 0));
    EXPECT_TRUE(form.isEnabled());
    if (c.Rows == 5) {
      EXPECT_EQ(Caption(form.lblStatus), status);  // nothing else changed
    }
    EXPECT_EQ(form.picSprite->Image().pixel(0, 0), qRgb(0x99, 0x66, 0x33));
    if (c.Rows == 0) {
      EXPECT_EQ(Facts(), "Vossel (GRF loader engine) | - | - | - | -");
      EXPECT_EQ(form.picSprite->Image().pixel(160, 158), qRgb(0x99, 0x66, 0x33));
    }
  }
}

TEST_F(MainWindow, BrowsingShowsEachSprite) {
  Open(FiveSprites());
  const std::string facts[] = {"Viewing sprite 1 (2 x 2) | 00000000 (0) | 4 | * | -2 x 1",
                               "Viewing sprite 2 (10 x 1) | 11111111 (255) | 10 | 10 | 0 x 0",
                               "Viewing sprite 3 (3 x 1) | 00000010 (2) | 3 | * | 0 x 0",
                               "Viewing sprite 4 (1 x 1) | 00010000 (16) | 1 | * | 0 x 0",
                               "Viewing sprite 5 (64 x 31) | 00001000 (8) | 1984 | * | -31 x 0"};
  for (const int v : {4, 0, 3, 1, 2}) {
    form.scrSprite->SetValue(static_cast<int16_t>(v));
    const std::string compressed = std::to_string(
        uitest::StoreOf(form.File).SpriteTable[static_cast<size_t>(v)].CompressedSize);
    EXPECT_EQ(Facts(), std::regex_replace(facts[v], std::regex("\\*"), compressed));
  }
  EXPECT_EQ(Pixel(2, 0, 0), Colour(7));
  // A resize centres the sprite anew and changes no text.
  const std::vector<std::string>& log = Captions();
  form.resize(form.width() + 101, form.height() + 40);
  QApplication::processEvents();
  EXPECT_EQ(Pixel(2, 2, 0), Colour(7));
  EXPECT_EQ(Pixel(2, 3, 0), qRgb(255, 255, 255));
  EXPECT_TRUE(log.empty());
  // The thumb shows every position it passes while dragged.
  form.scrSprite->setSliderDown(true);
  for (const int position : {3, 4, 0}) form.scrSprite->setSliderPosition(position);
  form.scrSprite->setSliderDown(false);
  EXPECT_EQ(log, (std::vector<std::string>{"Viewing sprite 4 (1 x 1)", "Viewing sprite 5 (64 x 31)",
                                           "Viewing sprite 1 (2 x 2)"}));
}

TEST_F(MainWindow, ColumnClicksSortAndRowClicksShow) {
  // Sizes past a length word need the stored-size flag.
  Open(grfw::File({grfw::PlainSprite(11111, 9, Bytes(99999, 2), 0, 0, 2),
                   grfw::PlainSprite(400, 250, Bytes(100000, 1), 0, 0, 2),
                   grfw::PlainSprite(2, 2, {1, 2, 3, 4}), grfw::PlainSprite(3, 2, Bytes(6, 5))}));
  ClickColumn(1);  // "#" is sorted already: the first click reverses it
  EXPECT_EQ(Column(-1), "k3 k2 k1 k0");
  ClickColumn(3);  // another column starts ascending; equal texts keep their order
  EXPECT_EQ(Column(-1), "k3 k2 k0 k1");
  ClickColumn(4);  // by the text: "100000" before "99999"
  EXPECT_EQ(Column(3), "00004 00006 100000 99999");
  ClickColumn(4);
  EXPECT_EQ(Column(-1), "k0 k1 k3 k2");
  EXPECT_EQ(Caption(&form), "Viewing sprite 1 (11111 x 9)");  // sorting shows no other sprite
  ClickRow(1);                                                // k1
  EXPECT_EQ(Caption(&form), "Viewing sprite 2 (400 x 250)");
  // The row on view again: no change, nothing drawn.
  form.picSprite->Image().fill(Qt::black);
  ClickRow(1);
  EXPECT_EQ(form.picSprite->Image().pixel(0, 0), qRgb(0, 0, 0));
  // The next load lists the rows in file order; the sort state stays, so that a click on the
  // column sorted last (ascending) reverses it.
  ClickColumn(4);
  Open(FiveSprites());
  EXPECT_EQ(Column(-1), "k0 k1 k2 k3 k4");
  ClickColumn(4);
  EXPECT_EQ(Column(-1), "k4 k1 k0 k2 k3");
}

TEST_F(MainWindow, EqualRowsKeepTheFileOrderBothWaysOnALongList) {
  // Three widths over 300 rows: an unstable sort, or an ascending one reversed, mixes equal rows.
  std::vector<Bytes> sprites;
  for (int i = 0; i < 300; ++i) {
    const uint16_t width = static_cast<uint16_t>(1 + (i * 7) % 3);
    sprites.push_back(grfw::PlainSprite(width, 1, Bytes(width, 1)));
  }
  Open(grfw::FileOf(sprites));
  for (const bool descending : {false, true}) {
    ClickColumn(2);
    std::istringstream keys(Column(-1)), widths(Column(1));
    std::string key, width, lastWidth;
    int last = -1;
    while (keys >> key && widths >> width) {
      const int row = std::stoi(key.substr(1));
      if (width == lastWidth) {
        EXPECT_LT(last, row) << (descending ? "descending" : "ascending");
      }
      EXPECT_TRUE(lastWidth.empty() || (descending ? width <= lastWidth : width >= lastWidth));
      last = row;
      lastWidth = width;
    }
  }
}

TEST_F(MainWindow, TabVisitsThePanelTheMessagesThePictureAndTheList) {
  QApplication::setActiveWindow(&form);
  form.BGpanel->setFocus(Qt::TabFocusReason);
  std::vector<QWidget*> visited;
  for (int i = 0; i < 5; ++i) {
    visited.push_back(QApplication::focusWidget());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
  }
  EXPECT_EQ(visited, (std::vector<QWidget*>{form.BGpanel, form.Li, form.picSprite, form.lvwSprite,
                                            form.BGpanel}));
}

TEST_F(MainWindow, NewAndQuit) {
  form.mnuNew_Click();
  form.mnuNew_Click();
  EXPECT_EQ(Lines(), "*** File closed ***\n*** File closed ***\n");
  Open(FiveSprites());
  form.scrSprite->SetValue(4);
  // New empties everything but the caption and the messages, and shows no sprite.
  form.mnuNew_Click();
  EXPECT_EQ(Facts(), "Viewing sprite 5 (64 x 31) | - | - | - | -");
  EXPECT_EQ(Caption(form.lblStatus), "No file loaded");
  EXPECT_EQ(Lines().substr(0, 20), "*** File closed ***\n");
  EXPECT_EQ(form.Li->ListIndex(), 0);
  EXPECT_EQ(Column(-1), "");
  EXPECT_EQ(form.scrSprite->Max(), 0);
  form.resize(form.width() + 40, form.height());
  QApplication::processEvents();
  EXPECT_EQ(form.picSprite->Image().pixel(20, 20), qRgb(255, 255, 255));
  // Quit erases the stores.
  Open(FiveSprites());
  form.mnuQuit->trigger();
  EXPECT_FALSE(form.isVisible());
  EXPECT_TRUE(uitest::StoreOf(form.File).SpriteTable.empty());
  EXPECT_TRUE(uitest::StoreOf(form.File).SpriteData.empty());
  EXPECT_TRUE(fakes.Boxes.empty());
}

TEST_F(MainWindow, TheDemoFileOpensFromTheStartFolder) {
  // The demo file beside the program: a colour card of the palette. (Real files against the CLI's
  // pictures are in test_colours.cpp.)
  fakes.Next = "vossel-demo.grf";
  form.mnuOpen_Click();
  ASSERT_EQ(form.lvwSprite->ItemCount(), 4);
  EXPECT_EQ(Pixel(0, 5 * 8 + 3, 3 * 8 + 3), Colour(53));
}
