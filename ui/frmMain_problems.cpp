// frmMain and the Problems window: View > Problems lists what the checker finds in the file; a
// finding picked there is shown through the scroll bar.
#include <QMenu>

#include "frmMain.h"
#include "scrollbar.h"

namespace vossel {

void frmMain::BuildProblemsItem() {
  mnuProblems = new QAction(QStringLiteral("&Problems"), this);
  // Beside the Items window.
  AddViewItemAfter(mnuItems, mnuProblems);
  connect(mnuProblems, &QAction::triggered, this, [this] { mnuProblems_Click(); });
}

void frmMain::AttachProblems() {
  if (!ProblemsWindow || !IsOpen(File)) return;
  ReadItemsOnce();
  ProblemsWindow->Attach(CheckGrf(File, Reading, Items));
}

void frmMain::DetachProblems() {
  if (ProblemsWindow) ProblemsWindow->Detach();
}

void frmMain::mnuProblems_Click() {
  if (!ProblemsWindow) {
    ProblemsWindow = std::make_unique<frmProblems>(this);
    ProblemsWindow->Choose = [this](int32_t sprite) { scrSprite->SetValue(sprite); };
    AttachProblems();
  }
  ProblemsWindow->show();
  ProblemsWindow->raise();
  ProblemsWindow->activateWindow();
}

}  // namespace vossel
