// The file on view read again: rewritten in place or renamed over, shorter, longer, damaged, too
// small, removed and back, in both containers and in both windows; F5 keeping the View choices.
#include <gtest/gtest.h>

#include <filesystem>

#include <QTest>
#include <QTimer>

#include "filewatch.h"
#include "frmChunk.h"
#include "listbox.h"
#include "scrollbar.h"
#include "text.h"
#include "ui_support.h"

using namespace vossel;

namespace {

using grfw::Bytes;

// As editors and compilers write: a new file renamed over the old one, or the old one rewritten.
void Rewrite(const std::string& path, const Bytes& bytes, bool rename) {
  if (!rename) {
    grfw::WriteTemp(std::filesystem::path(path).filename(), bytes);
    return;
  }
  std::filesystem::rename(grfw::WriteTemp("follow-new.grf", bytes), path);
}

Bytes V1(size_t n) {
  const Bytes five = uitest::FiveSprites();
  std::vector<Bytes> records(n, grfw::PlainSprite(3, 2, {1, 2, 3, 4, 5, 6}, -1, 0));
  records.back() = Bytes(five.begin(), five.end() - 2);  // all five, last
  return grfw::FileOf(records);
}

const grfw::Image2 kNormal = grfw::RandomImage(0x0B, 0, 9, 6, -4, -2, 1);
const grfw::Image2 kIn4 = grfw::RandomImage(0x07, 1, 20, 12, -10, -6, 2);

// n sprites with a normal and an in-4x 32-bit picture each.
Bytes V2(size_t n) {
  std::vector<Bytes> refs, sprites;
  for (uint32_t id = 1; id <= n; ++id) {
    refs.push_back(grfw::V2Ref(id));
    sprites.push_back(grfw::V2Sprite(id, kNormal));
    sprites.push_back(grfw::V2Sprite(id, kIn4));
  }
  return grfw::V2File(refs, sprites);
}

std::string Top(const frmMain& form) {
  return form.Li->List(0);
}

}  // namespace

// Each step rewrites the file; the window is waited for until it has loaded, refused or told the
// file gone, then shows the sprite wanted where the file has it, the rows it holds, the box or
// the line it raised, with magnification and choice of picture kept throughout.
TEST(Follow, RewrittenFilesReloadWhereTheUserWasAndAGoneFileStaysOnView) {
  for (const bool version2 : {false, true}) {
    SCOPED_TRACE(version2 ? "version 2" : "version 1");
    uitest::StartedForm form;
    int loads = 0;
    QObject::connect(form.Form.get(), &frmMain::FileLoaded, [&loads] { ++loads; });
    const Bytes whole = version2 ? V2(8) : V1(8);  // sprites 0 to 11 in version 1
    const std::string path = form.Load("follow.grf", whole);
    form->scrSprite->SetValue(6);
    form->mnuZoomIn_Click();
    if (version2) form->mnuLevel_Click(1);
    const std::string caption = Caption(form.Form.get());
    const Bytes damaged(whole.begin(), whole.end() - 30);
    const int32_t all = version2 ? 8 : 12, cut = version2 ? 8 : 11;  // v1 loses its last record
    const struct {
      const char* Name;
      std::optional<Bytes> File;  // none: removed
      bool Rename;
      int32_t Rows;
      const char* Box;      // the message box raised, if any
      bool Halves = false;  // its first half written a moment before the rest
    } steps[] = {
        {"shorter", version2 ? V2(3) : V1(1), false, version2 ? 3 : 5, nullptr},
        {"longer", whole, true, all, nullptr},
        {"damaged", damaged, true, cut, version2 ? nullptr : kMsgOutOfBuffer},
        {"too small", Bytes(12, 1), false, cut, kMsgTooSmall},
        {"removed", std::nullopt, false, cut, nullptr},
        {"back", whole, true, all, nullptr},
        {"written in two goes", whole, false, all, nullptr, true},
    };
    for (const auto& s : steps) {
      SCOPED_TRACE(s.Name);
      const int32_t lines = form->Li->ListCount();
      const std::string shown = Caption(form.Form.get());
      form.Boxes.Boxes.clear();
      form->Follower->SettleMs = s.Halves ? 500 : 20;
      if (s.Halves) {
        Rewrite(path, Bytes(whole.begin(), whole.begin() + long(whole.size() / 2)), false);
        QTest::qWait(50);
      }
      if (s.File)
        Rewrite(path, *s.File, s.Rename);
      else
        std::filesystem::remove(path);
      ASSERT_TRUE(QTest::qWaitFor(
          [&] { return form->Li->ListCount() > lines || !form.Boxes.Boxes.empty(); }));
      EXPECT_TRUE(form->isEnabled());
      EXPECT_EQ(form->Viewing().Sprite, std::min(6, s.Rows - 1));
      EXPECT_EQ(form->lvwSprite->ItemCount(), s.Rows);
      EXPECT_EQ(form->Viewing().Magnification, 2);
      EXPECT_EQ(form->Viewing().Zoom, version2 ? 1 : -1);
      if (s.Box) {
        ASSERT_FALSE(form.Boxes.Boxes.empty());
        EXPECT_EQ(form.Boxes.Boxes[0].Text, s.Box);
      }
      if (!s.File) {
        EXPECT_EQ(Top(*form), FileGoneMessage(path));
        EXPECT_EQ(form->Li->ListCount(), lines + 1);
        EXPECT_EQ(Caption(form.Form.get()), shown);  // and the picture as it was
      }
      if (s.File && !s.Box) {  // one load's lines, and what the index finds wrong
        EXPECT_EQ(form->Li->ListCount(), lines + 3 + (s.File == damaged));
      }
      if (s.Name == std::string("back")) {
        EXPECT_EQ(Caption(form.Form.get()), caption);
        EXPECT_EQ(Top(*form), FileLoadedMessage(path));
      }
    }
    // Without following the file may change on; F5 reads it.
    form->mnuFollow->trigger();
    EXPECT_FALSE(form->mnuFollow->isChecked());
    EXPECT_TRUE(form->Follower->Path().empty());
    Rewrite(path, version2 ? V2(3) : V1(1), true);
    const int before = loads;
    form->mnuReload->trigger();
    EXPECT_EQ(loads, before + 1);
    EXPECT_EQ(form->Viewing().Zoom, version2 ? 1 : -1);
    EXPECT_EQ(form->lvwSprite->ItemCount(), version2 ? 3 : 5);
  }
}

// F5 keeps the chosen picture where Open starts from the defaults; both windows follow one file,
// and the main window reloads beside the chunk viewer's modal loop, which still ends as it should.
TEST(Follow, ReloadKeepsTheChoicesAndBothWindowsFollowBesideTheModalViewer) {
  uitest::StartedForm form;
  const std::string path = form.Load("both.grf", V2(8));
  form->scrSprite->SetValue(5);
  form->mnuLevel_Click(1);
  form->mnuDepth_Click(32);
  form->mnuZoomIn_Click();
  const std::string inFour = Caption(form.Form.get());
  form->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(form.Form.get()));
  QTest::keyClick(form.Form.get(), Qt::Key_F5);
  EXPECT_EQ(Caption(form.Form.get()), inFour);
  EXPECT_EQ(std::tuple(form->Viewing().Zoom, form->Viewing().Depth, form->Viewing().Magnification),
            std::tuple(1, 32, 2));
  form.Boxes.Next = path;
  form->mnuOpen_Click();
  EXPECT_EQ(std::tuple(form->Viewing().Zoom, form->Viewing().Depth, form->Viewing().Magnification),
            std::tuple(-1, 0, 2));
  EXPECT_NE(Caption(form.Form.get()), inFour);

  form->Follower->SettleMs = 20;
  QTimer::singleShot(0, form.Form.get(), [&] {
    frmChunk& chunk = *form->ChunkViewer;
    chunk.Follower->SettleMs = 20;
    chunk.mnuOpen_Click();
    chunk.scrSprite->SetValue(7);
    for (const auto& [sprites, shown] : {std::pair{4, 3}, {8, 7}}) {
      Rewrite(path, V2(size_t(sprites)), true);
      EXPECT_TRUE(QTest::qWaitFor([&] {
        return form->lvwSprite->ItemCount() == sprites && chunk.scrSprite->Max() == sprites - 1;
      }));
      EXPECT_EQ(form->Viewing().Sprite, std::min(5, shown));
      EXPECT_EQ(chunk.scrSprite->Value(), shown);
      EXPECT_EQ(Caption(chunk.lblSprite), std::to_string(shown + 1));
      EXPECT_TRUE(chunk.isVisible());
    }
    std::filesystem::remove(path);
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return Caption(chunk.lblFilename) == FileGoneMessage(path); }));
    EXPECT_GT(chunk.Li->ListCount(), 0);
    chunk.mnuClose_Click();
  });
  form->mnuChunk_Click();  // returns once the viewer has closed
  EXPECT_TRUE(form->isEnabled());
  EXPECT_TRUE(form->ChunkViewer->Follower->Path().empty());
}
