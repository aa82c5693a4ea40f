// The message box, its recorder, the pump and the current directory.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>

#include "msgbox.h"
#include "process.h"

namespace {

struct Shown {
  std::string Text, Title;
  MsgBoxIcon Icon;
};

// What the real box showed, read by a zero timer that then closes it.
struct RealBox {
  QString Title, Text;
  QMessageBox::Icon Icon = QMessageBox::NoIcon;
  int Buttons = 0;
  bool Modal = false;
};

RealBox ShowReal(const std::string& text, const std::string& title, MsgBoxIcon icon) {
  RealBox seen;
  QTimer::singleShot(0, [&seen] {
    auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    if (box == nullptr) return;
    seen.Title = box->windowTitle();
    seen.Text = box->text();
    seen.Icon = box->icon();
    seen.Buttons = static_cast<int>(box->buttons().size());
    seen.Modal = box->isModal() && box->button(QMessageBox::Ok) != nullptr;
    box->button(QMessageBox::Ok)->click();
  });
  MsgBox(text, title, icon);
  return seen;
}

}  // namespace

TEST(MsgBox, RecorderGetsTextTitleAndIconWithTheApplicationTitleForNone) {
  std::vector<Shown> shown;
  SetMsgBoxHook([&](const std::string& text, const std::string& title, MsgBoxIcon icon) {
    shown.push_back({text, title, icon});
  });
  MsgBox("Error! Out of buffer size!");
  MsgBox("File is too small", "Error", MsgBoxIcon::Exclamation);
  MsgBox("Invalid palette file or unknown format", "Error", MsgBoxIcon::Information);
  SetMsgBoxHook(nullptr);
  ASSERT_EQ(shown.size(), 3u);
  EXPECT_EQ(shown[0].Text, "Error! Out of buffer size!");
  EXPECT_EQ(shown[0].Title, "Vossel");
  EXPECT_EQ(shown[0].Icon, MsgBoxIcon::None);
  EXPECT_EQ(shown[1].Title, "Error");
  EXPECT_EQ(shown[1].Icon, MsgBoxIcon::Exclamation);
  EXPECT_EQ(shown[2].Icon, MsgBoxIcon::Information);
}

TEST(MsgBox, RealBoxIsModalWithOneOkButtonAndItsIcon) {
  SetMsgBoxHook(nullptr);
  const RealBox plain = ShowReal("Error! Out of buffer size!", "", MsgBoxIcon::None);
  EXPECT_EQ(plain.Title, "Vossel");
  EXPECT_EQ(plain.Text, "Error! Out of buffer size!");
  EXPECT_EQ(plain.Icon, QMessageBox::NoIcon);
  EXPECT_EQ(plain.Buttons, 1);
  EXPECT_TRUE(plain.Modal);
  const RealBox warning = ShowReal("small", "Error", MsgBoxIcon::Exclamation);
  EXPECT_EQ(warning.Title, "Error");
  EXPECT_EQ(warning.Icon, QMessageBox::Warning);
  EXPECT_EQ(ShowReal("palette", "Error", MsgBoxIcon::Information).Icon, QMessageBox::Information);
}

TEST(Process, DoEventsRunsWhatIsWaitingAndReturns) {
  int ran = 0;
  QTimer::singleShot(0, [&ran] { ++ran; });
  QTimer::singleShot(0, [&ran] { ++ran; });
  EXPECT_EQ(ran, 0);
  DoEvents();
  EXPECT_EQ(ran, 2);
  DoEvents();  // nothing waiting: returns at once
  EXPECT_EQ(ran, 2);
}

TEST(Process, ChDirEntersAFolderAndLeavesTheCurrentOneOnFailure) {
  const std::string start = CurDir();
  const auto folder = std::filesystem::temp_directory_path() / "vossel-chdir-test";
  std::filesystem::create_directories(folder);
  ASSERT_TRUE(ChDir(folder.string()));
  EXPECT_EQ(std::filesystem::path(CurDir()), std::filesystem::canonical(folder));
  EXPECT_FALSE(ChDir((folder / "missing").string()));
  EXPECT_FALSE(ChDir(""));
  EXPECT_EQ(std::filesystem::path(CurDir()), std::filesystem::canonical(folder));
  ASSERT_TRUE(ChDir(start));
  std::filesystem::remove_all(folder);
}
