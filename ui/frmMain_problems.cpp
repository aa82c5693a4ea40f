// frmMain and the Problems window: View > Problems lists what the checker finds in the file; a
// finding picked there is shown through the scroll bar.
#include <QMenu>

#include "frmMain.h"

namespace vossel {

void frmMain::BuildProblemsItem() {
  mnuProblems = new QAction(QStringLiteral("&Problems"), this);
  // Beside the Items window.
  AddViewItemAfter(mnuItems, mnuProblems);
  connect(mnuProblems, &QAction::triggered, this, [this] { mnuProblems_Click(); });
}

void frmMain::AttachProblems() {
  if (!WantsFile(ProblemsWindow)) return;
  ReadItemsOnce();
  ProblemsWindow->Attach(CheckGrf(File, Reading, Items));
}

void frmMain::mnuProblems_Click() {
  ShowSideWindow(ProblemsWindow, &frmMain::AttachProblems);
}

}  // namespace vossel
