// frmChunk driven as a person drives it: Open and what each end of a scan shows, a fresh start at
// every showing, and fills overtaken by a scroll, an Open or a Close.
#include <gtest/gtest.h>

#include <QApplication>
#include <QTimer>

#include "frmChunk.h"
#include "listbox.h"
#include "scrollbar.h"
#include "text.h"
#include "ui_support.h"

using namespace vossel;

using grfw::Bytes;
using uitest::Shown;

namespace {

// The seventeen-byte file's record without its zero word: stream at 10, decoded size 4.
Bytes SmallRecord() {
  const Bytes b = grfw::SeventeenByteFile();
  return Bytes(b.begin(), b.end() - 2);
}

// That record's two lines, each item value and text, for a record that starts at `p`.
std::string SmallLines(int32_t p) {
  return std::to_string(p + 10) + " Data chunk of 2 bytes, 0A 0B\n" + std::to_string(p + 13) +
         " Offset chunk, 2 bytes of data from position 0\n";
}

Bytes SmallFile(int n) {
  return grfw::FileOf(std::vector<Bytes>(static_cast<size_t>(n), SmallRecord()));
}

class ChunkViewer : public ::testing::Test {
 protected:
  std::string Open(const Bytes& bytes, const std::string& name = "chunks.grf") {
    fakes.Next = grfw::WriteTemp(name, bytes);
    form.mnuOpen_Click();
    return fakes.Next;
  }
  std::string List() const {
    std::string lines;
    for (int32_t i = 0; i < form.Li->ListCount(); ++i)
      lines += std::to_string(form.Li->ItemData(i)) + " " + form.Li->List(i) + "\n";
    return lines;
  }
  // Shows the window modally and runs `steps` inside it; closes it if they leave it open.
  void WhileShown(const std::function<void()>& steps) {
    QTimer::singleShot(0, &form, [&] {
      steps();
      if (form.isVisible()) form.close();
    });
    form.ShowModal();
  }
  // `act` runs at the `at`-th time that pending events run.
  void AtPump(int at, std::function<void()> act) {
    auto* timer = new QTimer(&form);
    QObject::connect(timer, &QTimer::timeout, timer, [timer, at, act, n = 0]() mutable {
      if (++n < at) return;
      timer->stop();
      timer->deleteLater();
      act();
    });
    timer->start(0);
  }

  uitest::Fakes fakes;
  frmChunk form;
};

// Sprite 0 lists 20,000 lines of one-byte chunks and pumps before each; sprite 1 is the small
// record, at 10 + 40,000.
Bytes LongFile() {
  Bytes stream;
  for (int k = 0; k < 20000; ++k) grfw::AddData(stream, {static_cast<uint8_t>(k)});
  return grfw::File({grfw::SpriteRec(0, 1, 20000, 0, 0, stream, 20000), SmallRecord()});
}

}  // namespace

TEST_F(ChunkViewer, WhatEachEndOfAScanShowsAndAFreshStartAtEachShowing) {
  const Bytes invalid = grfw::RawSprite(9, 0, 1, 1, 0, 0, {2, 1, 2});  // 2 bytes where 1 fits
  const struct {
    std::optional<Bytes> File;  // none: a name that does not exist
    std::vector<Shown> Boxes;
    int16_t Max;
    std::string Listed, Title;  // at the position kept, 3, or 0 where the tables stay
  } cases[] = {
      {grfw::File({SmallRecord(), SmallRecord(), SmallRecord(), SmallRecord(), invalid}),
       {{kMsgOutOfBuffer, "Vossel", MsgBoxIcon::None}},
       3,
       SmallLines(45),
       "Vossel - Chunk Viewer"},
      {Bytes(20, 0), {}, 0, "", "Vossel - Chunk Viewer"},
      // The earlier tables beside 16 new bytes: the list reads only those.
      {Bytes(16, 0x7F),
       {{kMsgTooSmall, "Error", MsgBoxIcon::Exclamation}},
       5,
       "10 Data chunk of 127 bytes, 7F 7F 7F 7F 7F\n",
       "Vossel - Chunk Viewer"},
      // The title tells, and keeps telling until the window closes.
      {std::nullopt,
       {},
       5,
       SmallLines(0),
       "Error 2: No such file or directory (/nonexistent/a.grf)"},
  };
  WhileShown([&] {
    for (const auto& c : cases) {
      SCOPED_TRACE(c.Title + std::to_string(c.Max));
      const std::string six = Open(SmallFile(6));
      EXPECT_EQ(fakes.Dialogs.back(), uitest::OpenDialog(CurDir(), form.hWnd()));
      form.scrSprite->SetValue(3);
      fakes.Boxes.clear();
      fakes.Next = c.File ? grfw::WriteTemp("outcome.grf", *c.File) : "/nonexistent/a.grf";
      form.mnuOpen_Click();
      EXPECT_EQ(fakes.Boxes, c.Boxes);
      EXPECT_EQ(form.scrSprite->Max(), c.Max);
      if (c.Max == 5) form.scrSprite->SetValue(0);
      EXPECT_EQ(List(), c.Listed);
      EXPECT_EQ(Caption(form.lblFilename), c.Max == 5 ? six : fakes.Next);
      EXPECT_EQ(Caption(&form), c.Title);
    }
  });
  WhileShown([&] {
    EXPECT_EQ(QApplication::activeModalWidget(), &form);
    EXPECT_EQ(Caption(&form) + Caption(form.lblFilename) + Caption(form.lblSprite) + List(),
              "Vossel - Chunk ViewerNo file opened1");
    EXPECT_EQ(form.scrSprite->Max(), 0);
  });
  EXPECT_TRUE(form.Viewed.Scan.FileData.empty());
}

TEST_F(ChunkViewer, FillsOvertakenByEvents) {
  // Another file: only its list.
  const std::string small = grfw::WriteTemp("small.grf", SmallFile(1));
  AtPump(50, [&] {
    EXPECT_TRUE(form.Li->isHidden());
    fakes.Next = small;
    form.mnuOpen_Click();
  });
  Open(LongFile(), "long.grf");
  EXPECT_EQ(List(), SmallLines(0));
  EXPECT_EQ(Caption(form.lblFilename), small);
  EXPECT_FALSE(form.Li->isHidden());
  // A newer position: its list alone.
  AtPump(50, [&] { form.scrSprite->SetValue(1); });
  Open(LongFile(), "long.grf");
  EXPECT_EQ(List(), SmallLines(40010));
  // A close: the fill stops and the next showing starts empty.
  WhileShown([&] {
    AtPump(50, [&] { form.mnuClose_Click(); });
    Open(LongFile(), "long.grf");
  });
  EXPECT_LT(form.Li->ListCount(), 60);
  WhileShown([&] { EXPECT_EQ(List(), ""); });
}
