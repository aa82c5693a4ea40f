// LoadGRF's window steps: captions and pumps, the disabled window, Li, lblStatus, the scroll bar
// and the rows of lvwSprite; and the loads that end early.
#include <gtest/gtest.h>

#include <cctype>

#include <QTimer>

#include "listbox.h"
#include "listview.h"
#include "picturebox.h"
#include "scrollbar.h"
#include "text.h"
#include "ui_support.h"

using uitest::ColumnTexts;

namespace {

constexpr const char kLoading[] = "Loading GRF file to memory...";

std::vector<std::string> Lines(const frmMain& form) {
  std::vector<std::string> lines;
  for (int32_t i = 0; i < form.Li->ListCount(); ++i) lines.push_back(form.Li->List(i));
  return lines;
}

// prefix + seconds with two decimals + " seconds".
bool TimedLine(const std::string& line, const std::string& prefix) {
  const std::string suffix = " seconds";
  if (line.rfind(prefix, 0) != 0 || line.size() < prefix.size() + suffix.size() + 4) return false;
  const std::string number =
      line.substr(prefix.size(), line.size() - prefix.size() - suffix.size());
  const size_t point = number.find('.');
  if (line.substr(line.size() - suffix.size()) != suffix || point == 0 ||
      point != number.size() - 3)
    return false;
  for (size_t i = 0; i < number.size(); ++i)
    if (i != point && !std::isdigit(static_cast<unsigned char>(number[i]))) return false;
  return true;
}

}  // namespace

TEST(LoadGRF, SeventeenByteFileFillsEveryDisplay) {
  uitest::StartedForm form;
  std::vector<uitest::Shown>& boxes = form.Boxes.Boxes;
  boxes.clear();
  const std::string name = form.Load("seventeen.grf", grfw::SeventeenByteFile());
  EXPECT_EQ(Caption(form.Form.get()), "Viewing sprite 1 (2 x 2)");
  EXPECT_EQ(Caption(form->lblStatus), name +
                                          "\r\n- Compression ratio: -25.00 %"
                                          "\r\n- 5 bytes compressed of 4 bytes uncompressed"
                                          "\r\n- Filesize 17 bytes");
  EXPECT_EQ(form->lblStatus->size(), form->lblStatus->sizeHint());
  EXPECT_EQ(Caption(form->lblFlags), "00000000 (0)");
  EXPECT_EQ(Caption(form->lblSize), "4");
  EXPECT_EQ(Caption(form->lblCompressed), "5");
  EXPECT_EQ(Caption(form->lblOffset), "-2 x 1");
  EXPECT_EQ(form->scrSprite->Max(), 0);
  EXPECT_EQ(form->scrSprite->Value(), 0);
  ASSERT_EQ(form->lvwSprite->ItemCount(), 1);
  EXPECT_EQ(form->lvwSprite->Item(1).Key, "k0");
  EXPECT_EQ(form->lvwSprite->Item(1).Texts,
            (std::vector<std::string>{"0001", "002", "002", "00004", "00000000"}));
  EXPECT_EQ(form->lvwSprite->model()->rowCount(), 1);
  EXPECT_TRUE(form->lvwSprite->isVisible());
  const std::vector<std::string> lines = Lines(*form);
  ASSERT_EQ(lines.size(), 3u);
  EXPECT_EQ(lines[0], "*** '" + name + "' loaded ***");
  EXPECT_TRUE(TimedLine(lines[1], "Loaded 1 sprites in ")) << lines[1];
  EXPECT_TRUE(TimedLine(lines[2], "Prepared memory in ")) << lines[2];
  EXPECT_EQ(form->Li->ListIndex(), 0);
  EXPECT_TRUE(form->isEnabled());
  EXPECT_TRUE(boxes.empty());
  // The store is cut to the bytes written.
  EXPECT_EQ(form->Store.SpriteTable.size(), 1u);
  EXPECT_EQ(form->Store.SpriteData, (ByteArray{0x0A, 0x0B, 0x0A, 0x0B}));
}

TEST(LoadGRF, CaptionsPumpsAndTheDisabledWindowComeInTheirOrder) {
  uitest::StartedForm form;
  uitest::WindowLog log(form.Form.get());
  // Waiting events run at the first pump, while the window still takes input.
  std::string seenAtFirstPump;
  bool enabledAtFirstPump = false;
  QTimer::singleShot(0, [&] {
    seenAtFirstPump = Caption(form.Form.get());
    enabledAtFirstPump = form->isEnabled();
  });
  form.Load("five.grf", uitest::FiveSprites());
  EXPECT_EQ(seenAtFirstPump, kLoading);
  EXPECT_TRUE(enabledAtFirstPump);
  EXPECT_EQ(log.Entries, (std::vector<std::string>{
                             std::string("caption:") + kLoading,
                             "disabled",
                             "caption:Getting number of sprites...",
                             "caption:Reserving memory (and unloading previous data if any)...",
                             "caption:Processing sprites...",
                             "caption:Viewing sprite 1 (2 x 2)",
                             "enabled",
                         }));
}

TEST(LoadGRF, ListRowsAndScrollBarFollowTheFile) {
  uitest::StartedForm form;
  form.Load("five.grf", uitest::FiveSprites());
  EXPECT_EQ(form->scrSprite->Max(), 4);
  EXPECT_EQ(ColumnTexts(*form, 0),
            (std::vector<std::string>{"0001", "0002", "0003", "0004", "0005"}));
  EXPECT_EQ(ColumnTexts(*form, 1), (std::vector<std::string>{"002", "010", "003", "001", "064"}));
  EXPECT_EQ(ColumnTexts(*form, 2), (std::vector<std::string>{"002", "001", "001", "001", "031"}));
  EXPECT_EQ(ColumnTexts(*form, 3),
            (std::vector<std::string>{"00004", "00010", "00003", "00001", "01984"}));
  EXPECT_EQ(ColumnTexts(*form, 4),
            (std::vector<std::string>{"00000000", "11111111", "00000010", "00010000", "00001000"}));
  EXPECT_EQ(form->lvwSprite->Item(5).Key, "k4");
}

TEST(LoadGRF, ALaterLoadKeepsThePositionAndTheOlderMessages) {
  uitest::StartedForm form;
  form.Load("many.grf", uitest::ManySprites(20));
  form->scrSprite->SetValue(15);
  const std::string second = form.Load("five.grf", uitest::FiveSprites());
  // The position is kept, limited by the new maximum, and shown.
  EXPECT_EQ(form->scrSprite->Value(), 4);
  EXPECT_EQ(Caption(form.Form.get()), "Viewing sprite 5 (64 x 31)");
  const std::vector<std::string> lines = Lines(*form);
  ASSERT_EQ(lines.size(), 6u);
  EXPECT_EQ(lines[0], "*** '" + second + "' loaded ***");
  EXPECT_EQ(lines[1].rfind("Loaded 5 sprites in ", 0), 0u);
  EXPECT_EQ(lines[3].rfind("*** '", 0), 0u);
  EXPECT_EQ(lines[4].rfind("Loaded 20 sprites in ", 0), 0u);
  EXPECT_EQ(form->Li->ListIndex(), 0);
  EXPECT_EQ(form->lvwSprite->ItemCount(), 5);
}

TEST(LoadGRF, AnEmptyFileNameChangesNothing) {
  uitest::StartedForm form;
  uitest::WindowLog log(form.Form.get());
  form->FileName.clear();
  form->LoadGRF();
  EXPECT_TRUE(log.Entries.empty());
  EXPECT_EQ(form->Li->ListCount(), 0);
}

TEST(LoadGRF, AnUnreadableFileShowsTheFailureInTheCaptionAndKeepsTheStore) {
  uitest::StartedForm form;
  std::vector<uitest::Shown>& boxes = form.Boxes.Boxes;
  boxes.clear();
  form.Load("five.grf", uitest::FiveSprites());
  const std::string status = Caption(form->lblStatus);
  for (const std::string& name :
       {grfw::WriteTemp("empty.grf", {}), std::string("/nonexistent/a.grf")}) {
    SCOPED_TRACE(name);
    uitest::WindowLog log(form.Form.get());
    form->FileName = name;
    form->LoadGRF();
    const std::string caption = Caption(form.Form.get());
    const size_t colon = caption.find(": ");
    ASSERT_NE(colon, std::string::npos) << caption;
    EXPECT_EQ(caption.substr(0, 6), "Error ");
    EXPECT_GT(std::stoi(caption.substr(6, colon - 6)), 0) << caption;
    EXPECT_GT(caption.size(), colon + 2 + name.size() + 3);
    EXPECT_EQ(caption.substr(caption.size() - name.size() - 3), " (" + name + ")");
    EXPECT_EQ(std::count(log.Entries.begin(), log.Entries.end(), "disabled"), 0);
    EXPECT_EQ(form->Store.SpriteTable.size(), 5u);
    EXPECT_EQ(form->lvwSprite->ItemCount(), 5);
    EXPECT_EQ(form->Li->ListCount(), 3);
    EXPECT_EQ(Caption(form->lblStatus), status);
    EXPECT_TRUE(form->isEnabled());
  }
  EXPECT_TRUE(boxes.empty());
}

TEST(LoadGRF, ASixteenByteFileIsTooSmall) {
  uitest::StartedForm form;
  form.Load("five.grf", uitest::FiveSprites());
  std::vector<uitest::Shown>& boxes = form.Boxes.Boxes;
  boxes.clear();
  grfw::Bytes sixteen = grfw::SeventeenByteFile();
  sixteen.pop_back();
  form.Load("sixteen.grf", sixteen);
  ASSERT_EQ(boxes.size(), 1u);
  EXPECT_EQ(boxes[0].Text,
            "File is too small to be loaded. File must contain atleast one non-action sprite size "
            "of 1 pixel.");
  EXPECT_EQ(boxes[0].Title, "Error");
  EXPECT_EQ(boxes[0].Icon, MsgBoxIcon::Exclamation);
  EXPECT_EQ(Caption(form.Form.get()), kLoading);
  EXPECT_TRUE(form->isEnabled());
  EXPECT_EQ(form->Store.SpriteTable.size(), 5u);
  EXPECT_EQ(form->lvwSprite->ItemCount(), 5);
  EXPECT_EQ(form->scrSprite->Max(), 4);
}

TEST(LoadGRF, AnOverrunEndsTheCountWithOneMessageAndTheLoadGoesOn) {
  uitest::StartedForm form;
  std::vector<uitest::Shown>& boxes = form.Boxes.Boxes;
  boxes.clear();
  // The second record's stream decodes to more than its length word allows.
  grfw::Bytes stream;
  grfw::AddData(stream, {1, 2, 3, 4, 5});
  const grfw::Bytes file = grfw::File(
      {grfw::PlainSprite(2, 2, {1, 2, 3, 4}), grfw::RawSprite(8 + 3, 0, 1, 3, 0, 0, stream)});
  const std::string name = form.Load("overrun.grf", file);
  ASSERT_EQ(boxes.size(), 1u);
  EXPECT_EQ(boxes[0].Text, "Error! Out of buffer size!");
  EXPECT_EQ(boxes[0].Title, "Vossel");
  EXPECT_EQ(boxes[0].Icon, MsgBoxIcon::None);
  EXPECT_EQ(form->lvwSprite->ItemCount(), 1);
  EXPECT_EQ(form->scrSprite->Max(), 0);
  EXPECT_EQ(form->Li->List(0), "*** '" + name + "' loaded ***");
  EXPECT_EQ(form->Li->List(1).rfind("Loaded 1 sprites in ", 0), 0u);
  EXPECT_TRUE(form->isEnabled());
}

TEST(LoadGRF, AFileWithoutSpritesLeavesABlankPictureAndNoFacts) {
  const struct {
    const char* Name;
    grfw::Bytes File;
    size_t Boxes;
  } cases[] = {
      {"zero first word", grfw::Bytes(17, 0), 0},
      // Counted on its stored size, then its stream overshoots 1 x 2 pixels while decoding.
      {"first sprite fails to decode",
       grfw::File({grfw::SpriteRec(2, 2, 1, 0, 0, grfw::Literal({1, 2, 3}), 0),
                   grfw::PlainSprite(1, 1, {7})}),
       1},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.Name);
    uitest::StartedForm form;
    form->picSprite->SetBackColor(0x00336699);
    form.Load("five.grf", uitest::FiveSprites());
    // A drawn sprite stands on the picture box's own colour.
    EXPECT_EQ(form->picSprite->Image().pixel(0, 0), qRgb(0x99, 0x66, 0x33));
    std::vector<uitest::Shown>& boxes = form.Boxes.Boxes;
    boxes.clear();
    form.Load("none.grf", c.File);
    EXPECT_EQ(boxes.size(), c.Boxes);
    EXPECT_EQ(form->Store.SpriteTable.size(), 0u);
    EXPECT_EQ(form->scrSprite->Max(), 0);
    EXPECT_EQ(form->scrSprite->Value(), 0);
    EXPECT_EQ(form->lvwSprite->ItemCount(), 0);
    EXPECT_EQ(form->Li->List(1).rfind("Loaded 0 sprites in ", 0), 0u);
    EXPECT_EQ(Caption(form.Form.get()), "Vossel (GRF loader engine)");
    for (QLabel* label : {form->lblFlags, form->lblSize, form->lblCompressed, form->lblOffset})
      EXPECT_EQ(Caption(label), "-");
    EXPECT_EQ(Caption(form->lblStatus).substr(Caption(form->lblStatus).find("\r\n")),
              "\r\n- Compression ratio: 0.00 %\r\n- 0 bytes compressed of 0 bytes uncompressed"
              "\r\n- Filesize " +
                  std::to_string(c.File.size()) + " bytes");
    const QImage& image = form->picSprite->Image();
    for (int y = 0; y < image.height(); y += 5)
      for (int x = 0; x < image.width(); x += 5)
        ASSERT_EQ(image.pixel(x, y), qRgb(0x99, 0x66, 0x33));
    // Resizing finds no sprite and says nothing.
    form->resize(form->width() + 30, form->height());
    EXPECT_EQ(boxes.size(), c.Boxes);
    EXPECT_TRUE(form->isEnabled());
  }
}

TEST(LoadGRF, TheLargestFileLoadsEverySprite) {
  uitest::StartedForm form;
  std::vector<grfw::Bytes> records(32767, grfw::PlainSprite(1, 1, {5}));
  form.Load("largest.grf", grfw::FileOf(records));
  EXPECT_EQ(form->scrSprite->Max(), 32766);
  ASSERT_EQ(form->lvwSprite->ItemCount(), 32767);
  EXPECT_EQ(form->lvwSprite->model()->rowCount(), 32767);
  EXPECT_EQ(form->lvwSprite->Item(32767).Key, "k32766");
  EXPECT_EQ(form->lvwSprite->Item(32767).Texts[0], "32767");
  form->scrSprite->SetValue(32766);
  EXPECT_EQ(Caption(form.Form.get()), "Viewing sprite 32767 (1 x 1)");
}

TEST(LoadGRF, UnloadErasesTheStores) {
  uitest::StartedForm form;
  form.Load("five.grf", uitest::FiveSprites());
  ASSERT_FALSE(form->Store.SpriteData.empty());
  EXPECT_TRUE(form->close());
  EXPECT_TRUE(form->Store.SpriteTable.empty());
  EXPECT_TRUE(form->Store.SpriteData.empty());
}
