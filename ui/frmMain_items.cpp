// frmMain and the Items window: View > Items shows what the file makes; a thumbnail picked there is
// shown through the scroll bar, and the Details window names the items a sprite belongs to.
#include <QKeySequence>
#include <QMenu>

#include "frmMain.h"

namespace vossel {

void frmMain::BuildItemsItem() {
  mnuItems = new QAction(QStringLiteral("&Items"), this);
  mnuItems->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_I));
  // Beside the other windows of the View menu: after the Sprite Sheet.
  AddViewItemAfter(mnuSheet, mnuItems);
  connect(mnuItems, &QAction::triggered, this, [this] { mnuItems_Click(); });
}

void frmMain::AddViewItemAfter(QAction* before, QAction* item) {
  const QList<QAction*> items = mnuView->actions();
  const qsizetype at = items.indexOf(before);
  if (at >= 0 && at + 1 < items.size())
    mnuView->insertAction(items[at + 1], item);
  else
    mnuView->addAction(item);
}

void frmMain::ReadItemsOnce() {
  if (ItemsDone) return;
  ReadFileOnce();
  Items = ReadItems(Reading);
  ItemsOfSprite = ItemsBySprite(Items);
  ItemsDone = true;
}

void frmMain::AttachItems() {
  if (!WantsFile(ItemsWindow)) return;
  ReadItemsOnce();
  ItemsWindow->Attach(File, Reading, Items, LookOfView());
}

void frmMain::mnuItems_Click() {
  ShowSideWindow(ItemsWindow, &frmMain::AttachItems);
}

FactLines frmMain::DetailsWithItems(int32_t sprite) {
  FactLines details = SpriteDetails(File, Reading, sprite);
  ReadItemsOnce();
  if (sprite < 0 || static_cast<size_t>(sprite) >= ItemsOfSprite.size()) return details;
  std::string names;
  for (int32_t i : ItemsOfSprite[static_cast<size_t>(sprite)]) {
    const Item& item = Items.Items[static_cast<size_t>(i)];
    names += (names.empty() ? "" : "; ") + FeatureWord(item.Feature) + " " +
             std::to_string(item.Id) + (item.Name.empty() ? "" : " \"" + item.Name + "\"");
  }
  if (!names.empty()) details.emplace_back("Items", names);
  return details;
}

}  // namespace vossel
