// The file on view read again: rewritten in place or renamed over, shorter, longer, damaged, too
// small, removed and back, in both containers and in both windows; F5 keeping the View choices
// where Open starts from the defaults.
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
  return grfw::FileOf(std::vector<Bytes>(n, grfw::PlainSprite(3, 2, {1, 2, 3, 4, 5, 6}, -1, 0)));
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
    const Bytes whole = version2 ? V2(8) : V1(8);
    const std::string path = form.Load("follow.grf", whole);
    form->scrSprite->SetValue(6);
    form->mnuZoomIn_Click();
    if (version2) form->mnuLevel_Click(1);
    const std::string caption = Caption(form.Form.get());
    const Bytes damaged(whole.begin(), whole.end() - 30);
    const int32_t cut = version2 ? 8 : 6;  // version 1 loses its records from the cut on
    const struct {
      const char* Name;
      std::optional<Bytes> File;  // none: removed
      bool Rename;
      int32_t Rows;
      const char* Box;      // the message box raised, if any
      bool Halves = false;  // its first half written a moment before the rest
    } steps[] = {
        {"shorter", version2 ? V2(3) : V1(3), false, 3, nullptr},
        {"longer", whole, true, 8, nullptr},
        {"damaged", damaged, true, cut, version2 ? nullptr : kMsgOutOfBuffer},
        {"too small", Bytes(12, 1), false, cut, kMsgTooSmall},
        {"removed", std::nullopt, false, cut, nullptr},
        {"back", whole, true, 8, nullptr},
        {"written in two goes", whole, false, 8, nullptr, true},
    };
    for (const auto& s : steps) {
      SCOPED_TRACE(s.Name);
      const int32_t lines = form->Li->ListCount();
      const std::string shown = Caption(form.Form.get());
      form.Boxes.Boxes.clear();
      form->Follower->SettleMs = s.Halves ? 800 : 20;
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
      EXPECT_EQ(std::tuple(form->Viewing().Zoom, form->Viewing().Magnification),
                std::tuple(version2 ? 1 : -1, 2));
      EXPECT_EQ(form.Boxes.Boxes.empty() ? "" : form.Boxes.Boxes[0].Text,
                std::string(s.Box ? s.Box : ""));
      if (!s.File) {  // one line; the picture and its caption as they were
        EXPECT_EQ(form->Li->List(0), FileGoneMessage(path));
        EXPECT_EQ(form->Li->ListCount(), lines + 1);
        EXPECT_EQ(Caption(form.Form.get()), shown);
      } else if (!s.Box) {  // one load's lines, and what the index finds wrong
        EXPECT_EQ(form->Li->ListCount(), lines + 3 + (s.File == damaged));
        EXPECT_TRUE(s.Rows < 7 || Caption(form.Form.get()) == caption);
      }
    }
    // Not followed, the file may change on; F5 reads it keeping the choices, Open starts anew.
    form->mnuFollow->trigger();
    EXPECT_FALSE(form->mnuFollow->isChecked());
    Rewrite(path, version2 ? V2(3) : V1(3), true);
    form->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(form.Form.get()));
    QTest::keyClick(form.Form.get(), Qt::Key_F5);
    const auto& v = form->Viewing();
    EXPECT_EQ(std::tuple(form->lvwSprite->ItemCount(), v.Sprite, v.Zoom, v.Depth),
              std::tuple(3, 2, version2 ? 1 : -1, version2 ? 32 : 0));
    form.Boxes.Next = path;
    form->mnuOpen_Click();
    EXPECT_EQ(std::tuple(v.Zoom, v.Depth, v.Magnification), std::tuple(-1, 0, 2));
    EXPECT_EQ(loads, 8);  // the hook once for each load, the first included
  }
}

// Both windows follow one file, and the main window reloads beside the chunk viewer's modal loop,
// which still ends as it should.
TEST(Follow, BothWindowsFollowOneFileBesideTheModalViewer) {
  uitest::StartedForm form;
  const std::string path = form.Load("both.grf", V2(8));
  form->scrSprite->SetValue(5);
  form->Follower->SettleMs = 20;
  form.Boxes.Next = path;  // for the viewer's Open
  QTimer::singleShot(0, form.Form.get(), [&] {
    frmChunk& chunk = *form->ChunkViewer;
    chunk.Follower->SettleMs = 20;
    chunk.mnuOpen_Click();
    chunk.scrSprite->SetValue(7);
    for (const auto& [count, shown] : {std::pair{4, 3}, {8, 7}}) {
      const int sprites = count;  // a name the lambda below can capture
      Rewrite(path, V2(size_t(sprites)), true);
      EXPECT_TRUE(QTest::qWaitFor([&] {
        return form->lvwSprite->ItemCount() == sprites && chunk.scrSprite->Max() == sprites - 1;
      }));
      EXPECT_EQ(form->Viewing().Sprite, std::min(5, shown));
      EXPECT_EQ(chunk.scrSprite->Value(), shown);
      EXPECT_EQ(Caption(chunk.lblSprite), std::to_string(shown + 1));
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

// The file is written again while a reload of it still runs (the hook at its end lets events run
// until that change has settled): the reload ends, and the newer file is read after it.
TEST(Follow, AChangeThatSettlesWhileAReloadRunsIsReadAfterIt) {
  for (const bool version2 : {false, true}) {
    SCOPED_TRACE(version2 ? "version 2" : "version 1");
    uitest::StartedForm form;
    const auto file = [version2](size_t n) { return version2 ? V2(n) : V1(n); };
    const std::string path = form.Load("during.grf", file(8));
    form->Follower->SettleMs = 20;
    int loads = 0;
    QObject::connect(form.Form.get(), &frmMain::FileLoaded, [&] {
      if (++loads > 1) return;
      Rewrite(path, file(5), true);
      QTest::qWait(200);
    });
    Rewrite(path, file(3), true);
    EXPECT_TRUE(QTest::qWaitFor([&] { return loads == 2; }));
    EXPECT_EQ(form->lvwSprite->ItemCount(), 5);
    QTest::qWait(100);
    EXPECT_EQ(loads, 2);  // and only once
  }
}
