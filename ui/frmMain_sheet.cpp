// frmMain and its side windows: the Sprite Sheet shows the window's file with the window's
// choices, and a sprite picked in any side window is shown through the scroll bar, as every other
// way of browsing is.
#include "frmMain.h"
#include "scrollbar.h"

namespace vossel {

void frmMain::AttachSheet() {
  if (!WantsFile(SpriteSheet) || SpriteCount(File) == 0) return;
  ReadFileOnce();
  SpriteSheet->Attach(File, Reading, View.Sprite, LookOfView());
}

void frmMain::mnuSheet_Click() {
  ShowSideWindow(SpriteSheet, &frmMain::AttachSheet);
}

void frmMain::ShowPicked(int32_t sprite) {
  scrSprite->SetValue(sprite);
}

void frmMain::AttachSideWindows() {
  AttachSheet();
  AttachItems();
  AttachProblems();
  AttachCompare();
}

void frmMain::DetachSideWindows() {
  if (SpriteSheet) SpriteSheet->Detach();
  if (ItemsWindow) ItemsWindow->Detach();
  if (ProblemsWindow) ProblemsWindow->Detach();
  if (CompareWindow) CompareWindow->Detach();
}

}  // namespace vossel
