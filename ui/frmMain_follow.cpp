// frmMain's File > Reload and View > Follow File Changes: the file on view read again where the
// user was, by the menu or by itself once a writer has finished with it.
#include <QAction>
#include <QKeySequence>
#include <QMenu>

#include "filewatch.h"
#include "frmMain.h"
#include "listbox.h"
#include "scrollbar.h"
#include "text.h"

namespace vossel {

void frmMain::BuildFollowItems() {
  mnuReload = new QAction(QStringLiteral("&Reload"), this);
  mnuReload->setShortcut(QKeySequence(Qt::Key_F5));
  mnuFile->insertAction(mnuLine1, mnuReload);
  mnuLine4 = mnuView->addSeparator();
  mnuFollow = mnuView->addAction(QStringLiteral("&Follow File Changes"));
  mnuFollow->setCheckable(true);
  mnuFollow->setChecked(View.Follow);
  connect(mnuReload, &QAction::triggered, this, [this] { mnuReload_Click(); });
  connect(mnuFollow, &QAction::triggered, this, [this] { mnuFollow_Click(); });

  Follower = new FileWatch(this);
  Follower->Changed = [this] { Reload(); };
  Follower->Gone = [this] { FileGone(); };
  Follower->Busy = [this] { return loading_; };
}

void frmMain::mnuReload_Click() {
  Reload();
}

void frmMain::mnuFollow_Click() {
  View.Follow = !View.Follow;
  mnuFollow->setChecked(View.Follow);
  Follower->Follow(View.Follow ? File.Path : std::string());
}

void frmMain::Reload() {
  if (loading_) return;
  if (!IsOpen(File)) {  // since New
    Follower->Stop();
    return;
  }
  BeforeReading(place_, File.Path, View.Sprite);
  // The name last asked for may be one that could not be read; the file on view is this one.
  FileName = File.Path;
  keepView_ = true;
  LoadGRF();
  keepView_ = false;
  // A shorter copy held the sprite back; a longer one gives it again.
  const int32_t wanted = SpriteToShow(place_, scrSprite->Max());
  if (File.Path == place_.File && wanted != scrSprite->Value()) scrSprite->SetValue(wanted);
  place_.Shown = View.Sprite;
}

void frmMain::Loaded() {
  Follower->Follow(View.Follow ? File.Path : std::string());
  emit FileLoaded();
}

void frmMain::FileGone() {
  if (!IsOpen(File)) {
    Follower->Stop();
    return;
  }
  AddMessage(FileGoneMessage(File.Path));
  Li->SetListIndex(0);
}

}  // namespace vossel
