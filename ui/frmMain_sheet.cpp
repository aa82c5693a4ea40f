// frmMain and the Sprite Sheet: the sheet shows the window's file with the window's choices, and
// a sprite picked in it is shown through the scroll bar, as every other way of browsing is.
#include "frmMain.h"
#include "scrollbar.h"

namespace vossel {

void frmMain::AttachSheet() {
  if (!SpriteSheet || SpriteCount(File) == 0) return;
  ReadFileOnce();
  SpriteSheet->Attach(File, Reading, View.Sprite, LookOfView());
}

void frmMain::DetachSheet() {
  if (SpriteSheet) SpriteSheet->Detach();
}

void frmMain::mnuSheet_Click() {
  if (!SpriteSheet) {
    SpriteSheet = std::make_unique<frmSheet>(this);
    SpriteSheet->Choose = [this](int32_t sprite) { scrSprite->SetValue(sprite); };
    AttachSheet();
  }
  SpriteSheet->show();
  SpriteSheet->raise();
  SpriteSheet->activateWindow();
}

}  // namespace vossel
