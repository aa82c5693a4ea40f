#include "frmItems.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QSplitter>
#include <QToolButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace vossel {

namespace {

constexpr int32_t kThumbnail = 48;
// A row shows this many sprites of a set; the rest are named by the row's text.
constexpr size_t kThumbnailsPerRow = 32;
constexpr int kIndexRole = Qt::UserRole;

QString Q(const std::string& s) {
  return QString::fromStdString(s);
}

QString Hex2(uint32_t v) {
  return QStringLiteral("%1").arg(v, 2, 16, QLatin1Char('0')).toUpper();
}

// The text an item is found by: its ID in decimal and hex, and its name.
bool Matches(const Item& item, const QString& filter) {
  if (filter.isEmpty()) return true;
  const QString f = filter.trimmed();
  if (Q(item.Name).contains(f, Qt::CaseInsensitive)) return true;
  bool ok = false;
  const uint32_t id = f.startsWith(QStringLiteral("0x"), Qt::CaseInsensitive)
                          ? f.mid(2).toUInt(&ok, 16)
                          : f.toUInt(&ok, 10);
  return ok && id == item.Id;
}

std::vector<int32_t> SpritesOfSet(const SpriteSetRef& set) {
  std::vector<int32_t> sprites;
  for (uint32_t k = 0; k < set.Count; ++k) sprites.push_back(set.First + static_cast<int32_t>(k));
  return sprites;
}

}  // namespace

frmItems::frmItems(QWidget* owner) : QWidget(owner, Qt::Window) {
  setWindowTitle(QString::fromLatin1(kItemsCaption));
  txtFilter = new QLineEdit(this);
  txtFilter->setPlaceholderText(QStringLiteral("Filter by name or ID"));
  txtFilter->setClearButtonEnabled(true);
  tvwItems = new QTreeWidget(this);
  tvwItems->setHeaderLabels({QStringLiteral("Item"), QStringLiteral("Name")});
  tvwItems->setRootIsDecorated(true);
  lblItem = new QLabel(this);
  lblItem->setTextInteractionFlags(Qt::TextSelectableByMouse);
  lblItem->setWordWrap(true);
  tvwProperties = new QTreeWidget(this);
  tvwProperties->setRootIsDecorated(false);
  tvwProperties->setHeaderLabels({QStringLiteral("Property"), QStringLiteral("Value"),
                                  QStringLiteral("Raw"), QStringLiteral("Sprite")});
  tvwGraphics = new QTreeWidget(this);
  tvwGraphics->setHeaderHidden(true);

  auto* left = new QWidget(this);
  auto* leftLayout = new QVBoxLayout(left);
  leftLayout->setContentsMargins(0, 0, 0, 0);
  leftLayout->addWidget(txtFilter);
  leftLayout->addWidget(tvwItems);
  auto* right = new QSplitter(Qt::Vertical, this);
  auto* top = new QWidget(right);
  auto* topLayout = new QVBoxLayout(top);
  topLayout->setContentsMargins(0, 0, 0, 0);
  topLayout->addWidget(lblItem);
  topLayout->addWidget(tvwProperties);
  right->addWidget(top);
  right->addWidget(tvwGraphics);
  auto* split = new QSplitter(Qt::Horizontal, this);
  split->addWidget(left);
  split->addWidget(right);
  split->setStretchFactor(1, 2);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(4, 4, 4, 4);
  layout->addWidget(split);
  resize(980, 640);

  connect(txtFilter, &QLineEdit::textChanged, this, [this] { Refill(); });
  connect(tvwItems, &QTreeWidget::currentItemChanged, this, [this](QTreeWidgetItem* at) {
    const QVariant index = at ? at->data(0, kIndexRole) : QVariant();
    if (index.isValid()) ShowItem(index.toInt());
  });
}

void frmItems::Attach(const GrfFile& file, const FileReading& reading, const GrfItems& items,
                      const Look& look) {
  file_ = &file;
  reading_ = &reading;
  items_ = &items;
  look_ = look;
  entries_ = SheetEntries(file, reading, look.Zoom, look.Depth);
  const int32_t before = shown_;
  shown_ = -1;
  Refill();
  // A reload keeps the item on view where the file still has it.
  if (before >= 0 && before < static_cast<int32_t>(items.Items.size()))
    SelectItem(items.Items[static_cast<size_t>(before)].Feature,
               items.Items[static_cast<size_t>(before)].Id);
}

void frmItems::Detach() {
  file_ = nullptr;
  reading_ = nullptr;
  items_ = nullptr;
  entries_.clear();
  tvwItems->clear();
  tvwProperties->clear();
  tvwGraphics->clear();
  lblItem->clear();
}

void frmItems::Follow(const Look& look) {
  if (look == look_) return;
  look_ = look;
  if (file_ && reading_) entries_ = SheetEntries(*file_, *reading_, look.Zoom, look.Depth);
  if (shown_ >= 0) ShowItem(shown_);
}

bool frmItems::SelectItem(uint8_t feature, uint32_t id) {
  for (int f = 0; f < tvwItems->topLevelItemCount(); ++f) {
    QTreeWidgetItem* group = tvwItems->topLevelItem(f);
    for (int k = 0; k < group->childCount(); ++k) {
      QTreeWidgetItem* row = group->child(k);
      const Item& item = items_->Items[static_cast<size_t>(row->data(0, kIndexRole).toInt())];
      if (item.Feature != feature || item.Id != id) continue;
      tvwItems->setCurrentItem(row);
      if (shown_ != row->data(0, kIndexRole).toInt()) ShowItem(row->data(0, kIndexRole).toInt());
      return true;
    }
  }
  return false;
}

void frmItems::Refill() {
  tvwItems->clear();
  if (items_ == nullptr) return;
  const QString filter = txtFilter->text();
  QTreeWidgetItem* group = nullptr;
  int32_t groupFeature = -1;
  for (size_t i = 0; i < items_->Items.size(); ++i) {
    const Item& item = items_->Items[i];
    if (!Matches(item, filter)) continue;
    if (item.Feature != groupFeature) {
      group = new QTreeWidgetItem(tvwItems);
      group->setText(0, Hex2(item.Feature) + " " + Q(FeatureName(item.Feature)));
      group->setFirstColumnSpanned(true);
      groupFeature = item.Feature;
    }
    auto* row = new QTreeWidgetItem(group);
    row->setText(0, QString::number(item.Id));
    row->setText(1, Q(item.Name));
    row->setData(0, kIndexRole, static_cast<int>(i));
  }
  for (int f = 0; f < tvwItems->topLevelItemCount(); ++f) {
    QTreeWidgetItem* g = tvwItems->topLevelItem(f);
    g->setText(0, g->text(0) + QStringLiteral(" (%1)").arg(g->childCount()));
    g->setExpanded(true);
  }
  tvwItems->resizeColumnToContents(0);
}

QImage frmItems::Thumbnail(int32_t sprite) const {
  if (file_ == nullptr || sprite < 0 || static_cast<size_t>(sprite) >= entries_.size())
    return QImage();
  GrfResult result = GrfResult::Ok;
  return SheetPicture(*file_, sprite, entries_[static_cast<size_t>(sprite)], look_, kThumbnail,
                      result);
}

QWidget* frmItems::ThumbnailRow(const std::vector<int32_t>& sprites) {
  auto* row = new QWidget;
  auto* layout = new QHBoxLayout(row);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(2);
  for (size_t k = 0; k < sprites.size() && k < kThumbnailsPerRow; ++k) {
    const int32_t sprite = sprites[k];
    auto* button = new QToolButton(row);
    button->setObjectName(QStringLiteral("thumbnail%1").arg(sprite));
    button->setIcon(QIcon(QPixmap::fromImage(Thumbnail(sprite))));
    button->setIconSize(QSize(kThumbnail, kThumbnail));
    button->setAutoRaise(true);
    button->setToolTip(QStringLiteral("Sprite %1: show it in the main window").arg(sprite + 1));
    connect(button, &QToolButton::clicked, this, [this, sprite] {
      if (Choose) Choose(sprite);
    });
    layout->addWidget(button);
  }
  layout->addStretch(1);
  return row;
}

void frmItems::ShowItem(int32_t index) {
  if (items_ == nullptr || index < 0 || index >= static_cast<int32_t>(items_->Items.size())) return;
  shown_ = index;
  const Item& item = items_->Items[static_cast<size_t>(index)];
  const ItemGraph graph = GraphOf(*items_, item);
  lblItem->setText(QStringLiteral("%1 %2 %3: %4 - %5 sprites reached")
                       .arg(Hex2(item.Feature), Q(FeatureWord(item.Feature)))
                       .arg(item.Id)
                       .arg(item.Name.empty() ? QStringLiteral("(no name)") : Q(item.Name))
                       .arg(graph.Sprites.size()));
  tvwProperties->clear();
  for (const ItemProperty& p : item.Properties) {
    auto* row = new QTreeWidgetItem(tvwProperties);
    row->setText(0, Hex2(p.Number) + " " + Q(PropertyName(p)));
    row->setText(1, Q(PropertyValueText(p)));
    row->setText(2, Q(HexBytes(p.Raw)));
    row->setText(3, QString::number(p.Sprite + 1));
  }
  for (int c = 0; c < 3; ++c) tvwProperties->resizeColumnToContents(c);

  tvwGraphics->clear();
  std::vector<QTreeWidgetItem*> parents;
  for (const GraphNode& n : graph.Nodes) {
    parents.resize(static_cast<size_t>(n.Depth));
    QTreeWidgetItem* row =
        parents.empty() ? new QTreeWidgetItem(tvwGraphics) : new QTreeWidgetItem(parents.back());
    row->setText(0, Q(NodeText(*items_, item, n)));
    parents.push_back(row);
    const int32_t set = n.Kind == NodeKind::Set || n.Kind == NodeKind::LayoutPart ? n.Set : -1;
    if (set < 0) continue;
    auto* pictures = new QTreeWidgetItem(row);
    tvwGraphics->setItemWidget(pictures, 0,
                               ThumbnailRow(SpritesOfSet(items_->Sets[static_cast<size_t>(set)])));
  }
  for (const ItemProblem& p : graph.Problems)
    new QTreeWidgetItem(tvwGraphics, {QStringLiteral("Problem: ") + Q(ItemProblemText(p))});
  tvwGraphics->expandAll();
}

}  // namespace vossel
