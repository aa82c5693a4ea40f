// frmMain and the Compare window: File > Compare With... asks for a second file and lists what
// changed from the open file to it; it compares anew on every load of the open file.
#include <QMenu>

#include "frmMain.h"
#include "grfdialog.h"

namespace vossel {

void frmMain::BuildCompareItem() {
  mnuCompare = new QAction(QStringLiteral("&Compare With..."), this);
  // Below Open, as it opens a file too.
  const QList<QAction*> items = mnuFile->actions();
  const qsizetype at = items.indexOf(mnuOpen);
  mnuFile->insertAction(at >= 0 && at + 1 < items.size() ? items[at + 1] : nullptr, mnuCompare);
  connect(mnuCompare, &QAction::triggered, this, [this] { mnuCompare_Click(); });
}

void frmMain::AttachCompare() {
  if (!WantsFile(CompareWindow)) return;
  ReadFileOnce();
  CompareWindow->Attach(File, Reading, LookOfView());
}

void frmMain::mnuCompare_Click() {
  PrepareFileDialog();
  FileDialog->WindowTitle(kCompareTitle);
  FileDialog->Filter(kGrfFilter);
  FileDialog->Flags(OFN_HIDEREADONLY);
  std::string other;
  if (!FileDialog->FileOpen(other)) return;
  MakeSideWindow(CompareWindow);
  CompareWindow->SetOther(other);
  ShowSideWindow(CompareWindow, &frmMain::AttachCompare);
}

}  // namespace vossel
