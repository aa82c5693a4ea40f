// frmChunk on the offscreen platform: its design, Open with the scan's outcomes, the chunk list,
// fills overtaken by a scroll, an Open or a Close, and what a new showing starts from.
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QPalette>
#include <QTimer>

#include "controls.h"
#include "filedialog.h"
#include "frmChunk.h"
#include "grf_writer.h"
#include "hwnd.h"
#include "listbox.h"
#include "msgbox.h"
#include "picturebox.h"
#include "process.h"
#include "scrollbar.h"
#include "text.h"

using grfw::Bytes;
using namespace std::string_literals;

namespace {

using Line = std::pair<int32_t, std::string>;  // ItemData and text

// The worked example's record without its zero word: 15 bytes, stream at 10, decoded size 4.
Bytes WorkedRecord() {
  const Bytes file = grfw::SeventeenByteFile();
  return Bytes(file.begin(), file.end() - 2);
}

// The worked example's two lines for a record that starts at `p`.
std::vector<Line> WorkedLines(int32_t p) {
  return {{p + 10, "Data chunk of 2 bytes, 0A 0B"},
          {p + 13, "Offset chunk, 2 bytes of data from position 0"}};
}

// A non-action sprite whose stream is `stream`, walked to `decoded` bytes.
Bytes Walked(const Bytes& stream, int32_t decoded) {
  return grfw::RawSprite(static_cast<uint16_t>(8 + decoded), 0, 1, static_cast<uint16_t>(decoded),
                         0, 0, stream);
}

// `count` one-byte data chunks: a list of `count` lines that pumps before each.
Bytes LongSprite(int32_t count) {
  Bytes stream;
  for (int32_t k = 0; k < count; ++k) grfw::AddData(stream, {static_cast<uint8_t>(k)});
  return Walked(stream, count);
}

std::string HexPairs(const Bytes& bytes) {
  std::string s;
  char pair[4];
  for (uint8_t b : bytes) {
    std::snprintf(pair, sizeof pair, " %02X", b);
    s += pair;
  }
  return s;
}

Bytes Sequence(uint8_t first, int count) {
  Bytes b;
  for (int k = 0; k < count; ++k) b.push_back(static_cast<uint8_t>(first + k));
  return b;
}

// An action record that claims 100 bytes and has 20.
// A first sprite whose stream overshoots its length word of 9 at the first chunk.
Bytes OvershootingSprite() {
  Bytes b = grfw::RawSprite(9, 0, 1, 1, 0, 0, {0x02, 0x0A, 0x0B});
  b.resize(20, 0);
  return b;
}

// Files of n copies of the worked record: sprite i's stream is at 15 * i + 10.
Bytes WorkedFile(int n) {
  return grfw::FileOf(std::vector<Bytes>(static_cast<size_t>(n), WorkedRecord()));
}

struct Shown {
  std::string Text, Title;
  MsgBoxIcon Icon;
  bool operator==(const Shown&) const = default;
};

void PrintTo(const Shown& s, std::ostream* os) {
  *os << '{' << s.Text << " | " << s.Title << " | " << static_cast<int>(s.Icon) << '}';
}

class ChunkViewer : public ::testing::Test {
 protected:
  void SetUp() override {
    SetMsgBoxHook([this](const std::string& text, const std::string& title, MsgBoxIcon icon) {
      boxes.push_back({text, title, icon});
    });
    // The fake Open dialog: records what it was given and confirms `nextPath`.
    SetFileDialogOps({[this](OPENFILENAMEA* ofn) -> int32_t {
                        ++dialogs;
                        seen = *ofn;
                        seenTitle = ofn->lpstrTitle != nullptr ? ofn->lpstrTitle : "<null>";
                        seenFolder = ofn->lpstrInitialDir != nullptr ? ofn->lpstrInitialDir : "";
                        seenFilter.assign(ofn->lpstrFilter, sizeof kFilterList);
                        if (nextPath.empty()) return 0;
                        std::memcpy(ofn->lpstrFile, nextPath.c_str(), nextPath.size() + 1);
                        return 1;
                      },
                      {}});
  }
  void TearDown() override {
    SetFileDialogOps({});
    SetMsgBoxHook(nullptr);
    for (const std::string& path : written) std::filesystem::remove(path);
  }

  std::string Write(const std::string& name, const Bytes& bytes) {
    written.push_back(grfw::WriteTemp("chunkwin-" + name, bytes));
    return written.back();
  }

  // Open through the menu handler, the dialog confirming `path`.
  void Open(const std::string& path) {
    nextPath = path;
    form.mnuOpen_Click();
  }
  std::string OpenBytes(const std::string& name, const Bytes& bytes) {
    const std::string path = Write(name, bytes);
    Open(path);
    return path;
  }

  std::vector<Line> Lines() const {
    std::vector<Line> lines;
    for (int32_t i = 0; i < form.Li->ListCount(); ++i)
      lines.emplace_back(form.Li->ItemData(i), form.Li->List(i));
    return lines;
  }

  // Shows the window modally and runs `steps` inside it; a window they leave open is closed, so a
  // failing step cannot keep the test waiting.
  void WhileShown(const std::function<void()>& steps) {
    QTimer::singleShot(0, &form, [&] {
      steps();
      if (form.isVisible()) form.close();
    });
    form.ShowModal();
  }

  // A fill that pumps calls `act` at the `at`-th time events run.
  void AtPump(int at, std::function<void()> act) {
    auto* timer = new QTimer(&form);
    timer->setInterval(0);
    QObject::connect(timer, &QTimer::timeout, timer, [timer, at, act, n = 0]() mutable {
      if (++n < at) return;
      timer->stop();
      timer->deleteLater();
      act();
    });
    timer->start();
  }

  static constexpr const char kFilterList[] =
      "Transport Tycoon GRF file (*.grf)\0*.grf\0All files (*.*)\0*.*\0";

  frmChunk form;
  std::vector<Shown> boxes;
  std::string nextPath;
  int dialogs = 0;
  OPENFILENAMEA seen;
  std::string seenTitle, seenFolder, seenFilter;
  std::vector<std::string> written;
};

// --- Design ----------------------------------------------------------------------------------

TEST_F(ChunkViewer, WindowHasItsTitleBorderSizeAndFont) {
  WhileShown([&] {
    EXPECT_EQ(Caption(&form), "Vossel - Chunk Viewer");
    const Qt::WindowFlags flags = form.windowFlags();
    EXPECT_FALSE(flags & Qt::WindowMinimizeButtonHint);
    EXPECT_FALSE(flags & Qt::WindowMaximizeButtonHint);
    EXPECT_TRUE(flags & Qt::WindowCloseButtonHint);
    EXPECT_EQ(form.minimumSize(), form.maximumSize());
    EXPECT_EQ(form.centralWidget()->size(), QSize(641, 417));
    EXPECT_EQ(form.centralWidget()->y(), form.menuBar()->height());
    EXPECT_EQ(form.size(), QSize(641, 417 + form.menuBar()->height()));
    EXPECT_DOUBLE_EQ(form.font().pointSizeF(), 8.25);
    EXPECT_FALSE(form.font().bold());
    EXPECT_EQ(form.Li->font(), form.font());
    EXPECT_EQ(form.property("hWnd").toInt(), HandleOfWindow(&form));
    EXPECT_NE(form.hWnd(), 0);
  });
}

TEST_F(ChunkViewer, ControlsStandAtTheirDesignPlacesWithTheirStartValues) {
  const struct {
    QWidget* Control;
    int32_t Left, Top, Width, Height;
  } places[] = {
      {form.lblFilename, 120, 120, 9375, 255}, {form.Li, 120, 480, 9375, 5325},
      {form.Pi, 120, 480, 9375, 5325},         {form.scrSprite, 120, 5880, 8895, 255},
      {form.lblSprite, 9000, 5880, 495, 255},
  };
  for (const auto& p : places) {
    SCOPED_TRACE(p.Control->metaObject()->className());
    EXPECT_EQ(p.Control->parentWidget(), form.centralWidget());
    EXPECT_EQ(Left(p.Control), p.Left);
    EXPECT_EQ(Top(p.Control), p.Top);
    EXPECT_EQ(Width(p.Control), p.Width);
    EXPECT_EQ(Height(p.Control), p.Height);
  }
  EXPECT_EQ(Caption(form.lblFilename), "No file opened");
  EXPECT_EQ(Caption(form.lblSprite), "1");
  EXPECT_TRUE(form.lblSprite->alignment() & Qt::AlignRight);
  EXPECT_TRUE(form.lblFilename->alignment() & Qt::AlignLeft);
  EXPECT_EQ(form.Li->ListCount(), 0);
  EXPECT_EQ(form.scrSprite->orientation(), Qt::Horizontal);
  EXPECT_EQ(form.scrSprite->Min(), 0);
  EXPECT_EQ(form.scrSprite->Max(), 0);
  EXPECT_EQ(form.scrSprite->Value(), 0);

  // Pi lies behind Li with the window background colour, and shows where Li is hidden.
  const QObjectList order = form.centralWidget()->children();
  EXPECT_LT(order.indexOf(form.Pi), order.indexOf(form.Li));
  EXPECT_EQ(form.Pi->BackColor(), BgrOfColour(QApplication::palette().color(QPalette::Base)));
  WhileShown([&] {
    const QPoint middle = form.Li->geometry().center();
    EXPECT_EQ(form.centralWidget()->childAt(middle)->parentWidget(), form.Li);  // its viewport
    form.Li->setVisible(false);
    EXPECT_EQ(form.centralWidget()->childAt(middle), form.Pi);
  });
}

TEST_F(ChunkViewer, MenuAndTabOrder) {
  const QList<QAction*> menus = form.menuBar()->actions();
  ASSERT_EQ(menus.size(), 1);
  EXPECT_EQ(menus[0]->menu(), form.mnuFile);
  EXPECT_EQ(form.mnuFile->title(), "&File");
  const QList<QAction*> items = form.mnuFile->actions();
  ASSERT_EQ(items.size(), 3);
  EXPECT_EQ(items[0], form.mnuOpen);
  EXPECT_EQ(form.mnuOpen->text(), "&Open...");
  EXPECT_EQ(form.mnuOpen->shortcut(), QKeySequence(Qt::CTRL | Qt::Key_O));
  EXPECT_EQ(items[1], form.mnuLine1);
  EXPECT_TRUE(form.mnuLine1->isSeparator());
  EXPECT_EQ(items[2], form.mnuClose);
  EXPECT_EQ(form.mnuClose->text(), "&Close Chunk Viewer");
  EXPECT_TRUE(form.mnuClose->shortcut().isEmpty());

  // The chain from Li meets the others in design order.
  const std::vector<QWidget*> design = {form.Li, form.lblFilename, form.scrSprite, form.lblSprite,
                                        form.Pi};
  std::vector<QWidget*> chain;
  QWidget* w = form.Li;
  do {
    if (std::find(design.begin(), design.end(), w) != design.end()) chain.push_back(w);
    w = w->nextInFocusChain();
  } while (w != form.Li);
  EXPECT_EQ(chain, design);
  EXPECT_TRUE(form.Li->focusPolicy() & Qt::TabFocus);
  EXPECT_FALSE(form.scrSprite->focusPolicy() & Qt::TabFocus);
  EXPECT_FALSE(form.Pi->focusPolicy() & Qt::TabFocus);
}

// --- Open and the scan's outcomes ------------------------------------------------------------

TEST_F(ChunkViewer, OpenSetsUpItsOwnDialogAndListsTheWorkedExample) {
  const std::string path = Write("worked.grf", grfw::SeventeenByteFile());
  Open(path);
  EXPECT_EQ(dialogs, 1);
  EXPECT_EQ(seenTitle, "Open a GRF file...");
  EXPECT_EQ(seenFilter, std::string(kFilterList, sizeof kFilterList));
  EXPECT_EQ(seen.Flags, 4u);
  EXPECT_EQ(seenFolder, CurDir());
  EXPECT_EQ(seen.hwndOwner, form.hWnd());

  EXPECT_EQ(Lines(), WorkedLines(0));
  EXPECT_EQ(Caption(form.lblSprite), "1");
  EXPECT_EQ(Caption(form.lblFilename), path);
  EXPECT_EQ(form.FileName, path);
  EXPECT_EQ(form.scrSprite->Max(), 0);
  EXPECT_FALSE(form.Li->isHidden());
  EXPECT_TRUE(boxes.empty());
  EXPECT_EQ(Caption(&form), "Vossel - Chunk Viewer");

  // The same dialog object serves the next Open; a cancel changes nothing.
  const clsFileDialog* dialog = form.FileDialog.get();
  Open("");
  EXPECT_EQ(dialogs, 2);
  EXPECT_EQ(form.FileDialog.get(), dialog);
  EXPECT_EQ(form.FileName, path);
  EXPECT_EQ(Lines(), WorkedLines(0));
  EXPECT_EQ(Caption(form.lblFilename), path);
}

TEST_F(ChunkViewer, ListShowsEveryKindOfLineWithItsPosition) {
  // Sprite 0: control bytes 0x00, 0x7F, 0x80 and 0xFF. Sprite 1: offsets behind the first
  // decoded byte. Sprite 2: an action sprite. Sprite 3: nothing to decode.
  Bytes controls;
  grfw::AddData(controls, Sequence(0, 128));
  grfw::AddData(controls, Sequence(0x81, 127));
  controls.insert(controls.end(), {0x80, 0x05, 0xFF, 0x00});
  Bytes negative = {0xE8, 0x01, 0x83, 0x10};
  const Bytes file = grfw::File({Walked(controls, 128 + 127 + 16 + 1), Walked(negative, 3 + 16),
                                 grfw::ActionRecord({1, 2, 3}), Walked({}, 0)});
  OpenBytes("kinds.grf", file);
  ASSERT_EQ(form.scrSprite->Max(), 3);

  EXPECT_EQ(Lines(), (std::vector<Line>{
                         {10, "Data chunk of 128 bytes," + HexPairs(Sequence(0, 128))},
                         {139, "Data chunk of 127 bytes," + HexPairs(Sequence(0x81, 127))},
                         {267, "Offset chunk, 16 bytes of data from position 250"},
                         {269, "Offset chunk, 1 bytes of data from position -1521"},
                     }));
  const int32_t second = 10 + 261;
  form.scrSprite->SetValue(1);
  EXPECT_EQ(Lines(), (std::vector<Line>{
                         {second + 10, "Offset chunk, 3 bytes of data from position -1"},
                         {second + 12, "Offset chunk, 16 bytes of data from position -781"},
                     }));
  EXPECT_EQ(Caption(form.lblSprite), "2");
  const int32_t action = second + 14;
  form.scrSprite->SetValue(2);
  EXPECT_EQ(Lines(), (std::vector<Line>{{action + 3, "Action sprite, 3 bytes"}}));
  EXPECT_EQ(Caption(form.lblSprite), "3");
  form.scrSprite->SetValue(3);
  EXPECT_TRUE(Lines().empty());
  EXPECT_EQ(Caption(form.lblSprite), "4");
  EXPECT_FALSE(form.Li->isHidden());
}

TEST_F(ChunkViewer, InvalidStreamShowsItsBoxAndKeepsTheSpritesBeforeIt) {
  OpenBytes("five.grf", WorkedFile(5));
  form.scrSprite->SetValue(4);
  // Two good sprites, then one whose stream overshoots by a byte.
  const std::string path = OpenBytes(
      "invalid.grf",
      grfw::File({WorkedRecord(), WorkedRecord(), Walked({0x02, 1, 2}, 1), WorkedRecord()}));
  EXPECT_EQ(boxes, (std::vector<Shown>{{kMsgOutOfBuffer, "Vossel", MsgBoxIcon::None}}));
  EXPECT_EQ(form.scrSprite->Max(), 1);
  EXPECT_EQ(form.scrSprite->Value(), 1);
  EXPECT_EQ(Lines(), WorkedLines(15));
  EXPECT_EQ(Caption(form.lblSprite), "2");
  EXPECT_EQ(Caption(form.lblFilename), path);
}

TEST_F(ChunkViewer, FileWithNoSpriteToChooseListsNothing) {
  const struct {
    const char* Name;
    Bytes File;
    size_t Boxes;
  } cases[] = {
      {"zero first word", Bytes(20, 0), 0},
      // Refused, though entered.
      {"invalid first sprite", OvershootingSprite(), 1},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.Name);
    boxes.clear();
    OpenBytes("five.grf", WorkedFile(5));
    form.scrSprite->SetValue(3);
    const std::string path = OpenBytes("none.grf", c.File);
    EXPECT_EQ(boxes.size(), c.Boxes);
    EXPECT_EQ(form.scrSprite->Max(), 0);
    EXPECT_EQ(form.scrSprite->Value(), 0);
    EXPECT_TRUE(Lines().empty());
    EXPECT_FALSE(form.Li->isHidden());
    EXPECT_EQ(Caption(form.lblSprite), "1");
    EXPECT_EQ(Caption(form.lblFilename), path);
  }
}

TEST_F(ChunkViewer, TooSmallFileLeavesTheListAndLabels) {
  const std::string path = OpenBytes("three.grf", WorkedFile(3));
  form.scrSprite->SetValue(2);
  OpenBytes("sixteen.grf", Bytes(16, 0x7F));
  EXPECT_EQ(boxes, (std::vector<Shown>{{kMsgTooSmall, "Error", MsgBoxIcon::Exclamation}}));
  EXPECT_EQ(Lines(), WorkedLines(30));
  EXPECT_EQ(Caption(form.lblFilename), path);
  EXPECT_EQ(Caption(form.lblSprite), "3");
  EXPECT_EQ(form.scrSprite->Max(), 2);

  // The earlier tables now stand beside 16 other bytes: the list reads only those.
  for (int16_t v : {0, 2}) {
    form.scrSprite->SetValue(v);
    for (const Line& l : Lines()) EXPECT_LT(l.first, 16);
  }
  form.scrSprite->SetValue(0);
  EXPECT_EQ(Lines(), (std::vector<Line>{{10, "Data chunk of 127 bytes, 7F 7F 7F 7F 7F"}}));
}

TEST_F(ChunkViewer, ReadFailureGoesToTheTitleUntilTheWindowCloses) {
  WhileShown([&] {
    const std::string good = OpenBytes("two.grf", WorkedFile(2));
    form.scrSprite->SetValue(1);
    const std::string missing = good + ".missing";
    Open(missing);
    EXPECT_TRUE(boxes.empty());
    EXPECT_EQ(Caption(&form), "Error " + std::to_string(ENOENT) + ": " + std::strerror(ENOENT) +
                                  " (" + missing + ")");
    EXPECT_EQ(Lines(), WorkedLines(15));
    EXPECT_EQ(Caption(form.lblFilename), good);
    EXPECT_EQ(form.Scan.SpriteOffset.size(), 2u);
    EXPECT_EQ(form.scrSprite->Max(), 1);

    // A file of no bytes cannot be read either.
    const std::string empty = Write("empty.grf", {});
    Open(empty);
    EXPECT_TRUE(boxes.empty());
    EXPECT_EQ(Caption(&form).find("Error "), 0u);
    EXPECT_NE(Caption(&form).find(" (" + empty + ")"), std::string::npos);

    // A later good file fills the list while the title stays.
    const std::string title = Caption(&form);
    const std::string other = OpenBytes("three.grf", WorkedFile(3));
    EXPECT_EQ(Lines(), WorkedLines(15));
    EXPECT_EQ(Caption(form.lblFilename), other);
    EXPECT_EQ(form.scrSprite->Max(), 2);
    EXPECT_EQ(Caption(&form), title);
  });
  WhileShown([&] { EXPECT_EQ(Caption(&form), "Vossel - Chunk Viewer"); });
}

TEST_F(ChunkViewer, NextFileKeepsThePositionAsFarAsItCan) {
  OpenBytes("five.grf", WorkedFile(5));
  form.scrSprite->SetValue(3);
  EXPECT_EQ(Lines(), WorkedLines(45));

  const std::string two = OpenBytes("two.grf", WorkedFile(2));
  EXPECT_EQ(form.scrSprite->Max(), 1);
  EXPECT_EQ(form.scrSprite->Value(), 1);
  EXPECT_EQ(form.Scan.SpriteOffset.size(), 2u);
  EXPECT_EQ(Lines(), WorkedLines(15));
  EXPECT_EQ(Caption(form.lblSprite), "2");
  EXPECT_EQ(Caption(form.lblFilename), two);

  // More sprites: the position stays, and the list is that sprite of the new file.
  OpenBytes("six.grf", grfw::File({grfw::ActionRecord({9}), WorkedRecord(), WorkedRecord(),
                                   WorkedRecord(), WorkedRecord(), WorkedRecord()}));
  EXPECT_EQ(form.scrSprite->Max(), 5);
  EXPECT_EQ(form.scrSprite->Value(), 1);
  EXPECT_EQ(Lines(), WorkedLines(4));
  EXPECT_EQ(Caption(form.lblSprite), "2");
}

TEST_F(ChunkViewer, ListStopsAtTheEndOfTheFileData) {
  // The stored-size flag: the stream is not walked and its size comes from 100 x 10 pixels, far
  // behind the file's last byte. The list shows the chunks up to there.
  const Bytes stored = grfw::RawSprite(8 + 4, 2, 10, 100, 0, 0, {0x01, 0xAA, 0x01, 0xBB});
  OpenBytes("stored.grf", grfw::File({WorkedRecord(), stored}));
  form.scrSprite->SetValue(1);
  EXPECT_EQ(Lines(), (std::vector<Line>{{25, "Data chunk of 1 bytes, AA"},
                                        {27, "Data chunk of 1 bytes, BB"},
                                        {29, "Data chunk of 128 bytes, 00"}}));
  EXPECT_FALSE(form.Li->isHidden());
}

// --- Showing and closing ---------------------------------------------------------------------

TEST_F(ChunkViewer, ShowsApplicationModalAndStartsEmptyEveryTime) {
  QWidget mainWindow;
  SetCaption(&mainWindow, "main");
  mainWindow.show();
  std::string path;
  WhileShown([&] {
    EXPECT_EQ(QApplication::activeModalWidget(), &form);
    EXPECT_EQ(form.windowModality(), Qt::ApplicationModal);
    EXPECT_EQ(form.parentWidget(), nullptr);
    path = OpenBytes("three.grf", WorkedFile(3));
    form.scrSprite->SetValue(2);
    form.mnuClose_Click();
    EXPECT_FALSE(form.isVisible());
  });
  // Form_Unload erased the buffer and the tables; the object, its dialog and its file name live on.
  EXPECT_TRUE(form.Scan.FileData.empty());
  EXPECT_TRUE(form.Scan.SpriteOffset.empty());
  EXPECT_TRUE(form.Scan.SpriteSize.empty());
  EXPECT_TRUE(form.Scan.SpriteFlags.empty());
  EXPECT_EQ(form.FileName, path);
  const clsFileDialog* dialog = form.FileDialog.get();
  EXPECT_NE(dialog, nullptr);
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
  EXPECT_EQ(Caption(&mainWindow), "main");
  EXPECT_TRUE(mainWindow.isVisible());

  WhileShown([&] {
    EXPECT_EQ(Caption(&form), "Vossel - Chunk Viewer");
    EXPECT_EQ(Caption(form.lblFilename), "No file opened");
    EXPECT_EQ(Caption(form.lblSprite), "1");
    EXPECT_TRUE(Lines().empty());
    EXPECT_EQ(form.scrSprite->Max(), 0);
    EXPECT_EQ(form.scrSprite->Value(), 0);
    EXPECT_EQ(form.FileDialog.get(), dialog);
    // The close box unloads as the menu does.
    OpenBytes("two.grf", WorkedFile(2));
    form.close();
  });
  EXPECT_TRUE(form.Scan.FileData.empty());
  EXPECT_TRUE(form.Scan.SpriteFlags.empty());
}

// --- Fills that something else overtakes -------------------------------------------------------

class LongFill : public ChunkViewer {
 protected:
  static constexpr int32_t kChunks = 20000;
  // Sprite 0 lists kChunks lines; sprite 1 is the worked record, at 10 + 2 * kChunks.
  Bytes File() const { return grfw::File({LongSprite(kChunks), WorkedRecord()}); }
  static constexpr int32_t kSecond = 10 + 2 * kChunks;
};

TEST_F(LongFill, NewerPositionCancelsTheRunningFill) {
  int32_t linesBefore = -1;
  AtPump(50, [&] {
    linesBefore = form.Li->ListCount();
    EXPECT_TRUE(form.Li->isHidden());
    form.scrSprite->SetValue(1);
  });
  OpenBytes("long.grf", File());
  EXPECT_GT(linesBefore, 0);
  EXPECT_EQ(Lines(), WorkedLines(kSecond));
  EXPECT_EQ(Caption(form.lblSprite), "2");
  EXPECT_FALSE(form.Li->isHidden());

  // A drag lists each position the thumb passes.
  form.scrSprite->SetValue(1);
  form.scrSprite->setSliderDown(true);
  AtPump(50, [&] { form.scrSprite->setValue(1); });
  form.scrSprite->setValue(0);
  form.scrSprite->setSliderDown(false);
  EXPECT_EQ(Lines(), WorkedLines(kSecond));
  EXPECT_EQ(Caption(form.lblSprite), "2");
}

TEST_F(LongFill, OpenDuringAFillListsOnlyTheNewFile) {
  const std::string small = Write("small.grf", WorkedFile(1));
  AtPump(50, [&] { Open(small); });
  OpenBytes("long.grf", File());
  EXPECT_EQ(Lines(), WorkedLines(0));
  EXPECT_EQ(Caption(form.lblFilename), small);
  EXPECT_FALSE(form.Li->isHidden());

  // A too-small file replaces the bytes but not the tables: the fill stops before reading them.
  const std::string tiny = Write("tiny.grf", Bytes(16, 0));
  AtPump(50, [&] { Open(tiny); });
  OpenBytes("long.grf", File());
  EXPECT_EQ(boxes.size(), 1u);
  EXPECT_GT(Lines().size(), 0u);
  EXPECT_LT(Lines().size(), 60u);
  for (const Line& l : Lines()) EXPECT_EQ(l.second.rfind("Data chunk of 1 bytes, ", 0), 0u);
  EXPECT_FALSE(form.Li->isHidden());
}

TEST_F(LongFill, CloseDuringAFillStopsIt) {
  WhileShown([&] {
    AtPump(50, [&] { form.mnuClose_Click(); });
    OpenBytes("long.grf", File());
  });
  EXPECT_FALSE(form.isVisible());
  EXPECT_TRUE(form.Scan.FileData.empty());
  EXPECT_TRUE(form.Scan.SpriteOffset.empty());
  EXPECT_LT(form.Li->ListCount(), 60);

  WhileShown([&] {
    EXPECT_TRUE(Lines().empty());
    EXPECT_EQ(Caption(form.lblFilename), "No file opened");
    EXPECT_FALSE(form.Li->isHidden());
  });
}

}  // namespace
