#include "frmItems.h"

#include <algorithm>

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QFutureWatcher>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QScrollArea>
#include <QSpinBox>
#include <QSplitter>
#include <QToolButton>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <QtConcurrent/QtConcurrentRun>

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

// A graphics choice as combo box data: the entry kind above the cargo.
int EntryData(EntryKind kind, uint8_t cargo) {
  return static_cast<int>(kind) << 8 | cargo;
}

uint64_t KeyOf(const Item& item) {
  return uint64_t{item.Feature} << 32 | item.Id;
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
  cboGraphics = new QComboBox(this);
  cboGraphics->setToolTip(QStringLiteral("Which of the item's graphics to compose"));
  cboGraphics->setSizeAdjustPolicy(QComboBox::AdjustToContents);
  chkLoading = new QCheckBox(QStringLiteral("&Loading"), this);
  chkLoading->setToolTip(QStringLiteral("The loading state instead of the loaded one"));
  chkBoxes = new QCheckBox(QStringLiteral("&Boxes"), this);
  chkBoxes->setToolTip(QStringLiteral("Each building sprite's bounding box as a wireframe"));
  chkOrigins = new QCheckBox(QStringLiteral("O&rigins"), this);
  chkOrigins->setToolTip(QStringLiteral("A cross where each sprite's offsets count from"));
  chkSharedOrigin = new QCheckBox(QStringLiteral("&Shared origin"), this);
  chkSharedOrigin->setToolTip(QStringLiteral("Every view on one origin, as the vehicle turns"));
  spnMagnify = new QSpinBox(this);
  spnMagnify->setRange(1, 8);
  spnMagnify->setValue(2);
  spnMagnify->setSuffix(QStringLiteral("x"));
  spnMagnify->setToolTip(QStringLiteral("Magnification of the picture"));
  fraPickers = new QWidget(this);
  picView = new QLabel;
  picView->setAlignment(Qt::AlignLeft | Qt::AlignTop);
  picView->setToolTip(QStringLiteral("Click a sprite to show it in the main window"));
  picView->installEventFilter(this);
  scrView = new QScrollArea(this);
  scrView->setBackgroundRole(QPalette::Dark);
  scrView->setWidget(picView);
  lblView = new QLabel(this);
  lblView->setWordWrap(true);
  lblView->setTextInteractionFlags(Qt::TextSelectableByMouse);

  auto* view = new QWidget(this);
  auto* viewLayout = new QVBoxLayout(view);
  viewLayout->setContentsMargins(0, 0, 0, 0);
  auto* request = new QHBoxLayout;
  request->addWidget(cboGraphics);
  for (QCheckBox* box : {chkLoading, chkBoxes, chkOrigins, chkSharedOrigin})
    request->addWidget(box);
  request->addStretch(1);
  request->addWidget(spnMagnify);
  viewLayout->addLayout(request);
  viewLayout->addWidget(fraPickers);
  viewLayout->addWidget(scrView, 1);
  viewLayout->addWidget(lblView);

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
  auto* graphics = new QSplitter(Qt::Horizontal, right);
  graphics->addWidget(tvwGraphics);
  graphics->addWidget(view);
  graphics->setStretchFactor(1, 1);
  graphics->setSizes({340, 560});
  right->addWidget(graphics);
  right->setStretchFactor(1, 2);
  auto* split = new QSplitter(Qt::Horizontal, this);
  split->addWidget(left);
  split->addWidget(right);
  split->setStretchFactor(1, 2);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(4, 4, 4, 4);
  layout->addWidget(split);
  resize(1180, 760);

  connect(txtFilter, &QLineEdit::textChanged, this, [this] { Refill(); });
  connect(tvwItems, &QTreeWidget::currentItemChanged, this, [this](QTreeWidgetItem* at) {
    const QVariant index = at ? at->data(0, kIndexRole) : QVariant();
    if (index.isValid()) ShowItem(index.toInt());
  });
  connect(cboGraphics, &QComboBox::currentIndexChanged, this, [this] {
    const int data = cboGraphics->currentData().toInt();
    request_.Entry = static_cast<EntryKind>(data >> 8);
    request_.Cargo = static_cast<uint8_t>(data & 0xFF);
    Recompose();
  });
  connect(chkLoading, &QCheckBox::toggled, this, [this](bool on) {
    request_.Loading = on;
    Recompose();
  });
  for (QCheckBox* box : {chkBoxes, chkOrigins, chkSharedOrigin})
    connect(box, &QCheckBox::toggled, this, [this] { Redraw(); });
  connect(spnMagnify, &QSpinBox::valueChanged, this, [this] { ShowPicture(); });
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
  composition_ = Composition();
  FillPickers();
  picture_ = ComposedPicture();
  picView->clear();
  picView->adjustSize();
  lblView->clear();
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

  if (requestOf_ != KeyOf(item)) {
    requestOf_ = KeyOf(item);
    request_ = ComposeRequest();
  }
  FillGraphics(item);
  Recompose();
}

void frmItems::FillGraphics(const Item& item) {
  const QSignalBlocker quiet(cboGraphics);
  const QSignalBlocker quietToo(chkLoading);
  cboGraphics->clear();
  cboGraphics->addItem(QStringLiteral("Default graphics"), EntryData(EntryKind::Default, 0));
  for (const GraphicsEntry& e : item.Graphics) {
    if (e.Kind != EntryKind::Purchase && e.Kind != EntryKind::Cargo) continue;
    const int data = EntryData(e.Kind, e.Cargo);
    if (cboGraphics->findData(data) >= 0) continue;
    QString text = Q(EntryText(e, item.Feature));
    if (!text.isEmpty()) text[0] = text[0].toUpper();
    cboGraphics->addItem(text, data);
  }
  int at = cboGraphics->findData(EntryData(request_.Entry, request_.Cargo));
  if (at < 0) {
    // The file no longer has the entry: its default.
    at = 0;
    request_.Entry = EntryKind::Default;
    request_.Cargo = 0;
  }
  cboGraphics->setCurrentIndex(at);
  cboGraphics->setEnabled(cboGraphics->count() > 1);
  chkLoading->setChecked(request_.Loading);
  // A loading state is had by vehicles and stations.
  chkLoading->setEnabled(IsVehicleFeature(item.Feature) || item.Feature == 0x04);
}

void frmItems::Recompose() {
  if (items_ == nullptr || shown_ < 0) return;
  composition_ = Compose(*items_, items_->Items[static_cast<size_t>(shown_)], request_);
  FillPickers();
  Redraw();
}

void frmItems::FillPickers() {
  // The pickers change with every pick, and the one picked is still emitting: the old ones leave
  // the window now and are deleted once it has.
  QWidget* old = fraPickers;
  fraPickers = new QWidget(this);
  delete old->parentWidget()->layout()->replaceWidget(old, fraPickers);  // the old one's item
  old->setParent(nullptr);
  old->deleteLater();
  fraPickers->hide();
  if (composition_.Branches.empty()) return;
  auto* form = new QFormLayout(fraPickers);
  form->setContentsMargins(0, 0, 0, 0);
  form->setFieldGrowthPolicy(QFormLayout::FieldsStayAtSizeHint);
  for (const BranchPoint& b : composition_.Branches) {
    const int32_t sprite = items_->Groups[static_cast<size_t>(b.Group)].Sprite;
    auto* combo = new QComboBox(fraPickers);
    combo->setObjectName(QStringLiteral("pick%1").arg(sprite + 1));
    for (int32_t i = 0; i < b.Choices; ++i) combo->addItem(Q(BranchChoiceText(*items_, b, i)), i);
    if (b.Kind == BranchKind::Variational) combo->addItem(Q(BranchChoiceText(*items_, b, -1)), -1);
    const int preset = combo->findData(b.DefaultPick);
    if (preset >= 0)
      combo->setItemData(preset, QStringLiteral("Drawn unless another is picked"), Qt::ToolTipRole);
    combo->setCurrentIndex(std::max(0, combo->findData(b.Picked)));
    if (b.Kind == BranchKind::Variational)
      combo->setToolTip(b.Computed ? QStringLiteral("With every game variable read as 0 the value "
                                                    "is %1")
                                         .arg(b.Value)
                                   : QStringLiteral("The value could not be computed"));
    connect(combo, &QComboBox::currentIndexChanged, this,
            [this, combo, sprite] { Pick(sprite, combo->currentData().toInt()); });
    // The label is the combo box's buddy: an ampersand of the text would make a shortcut.
    QString label = Q(BranchText(*items_, b)).replace('&', QStringLiteral("&&"));
    form->addRow(label + QLatin1Char(':'), combo);
  }
  // Shown once filled: children made after their parent is shown would stay hidden.
  fraPickers->show();
}

void frmItems::Pick(int32_t sprite, int32_t choice) {
  const auto at = std::find_if(request_.Picks.begin(), request_.Picks.end(),
                               [&](const BranchPick& p) { return p.Sprite == sprite; });
  if (at != request_.Picks.end())
    at->Pick = choice;
  else
    request_.Picks.push_back({sprite, choice});
  Recompose();
}

void frmItems::OpenBaseOnce() {
  if (baseLoad_.isValid()) return;
  baseLoad_ = QtConcurrent::run([] { return OpenBaseSprites(); });
  auto* watch = new QFutureWatcher<BaseSprites>(this);
  connect(watch, &QFutureWatcherBase::finished, this, [this, watch] {
    base_ = baseLoad_.takeResult();
    baseArrived_ = true;
    watch->deleteLater();
    Redraw();
  });
  watch->setFuture(baseLoad_);
}

void frmItems::Redraw() {
  const Composition& c = composition_;
  chkBoxes->setEnabled(c.End == ComposeEnd::Layout);
  chkSharedOrigin->setEnabled(c.End == ComposeEnd::Views);
  picture_ = ComposedPicture();
  if (file_ == nullptr || items_ == nullptr || shown_ < 0) return;
  QString text = Q(ComposeEndText(*items_, c));
  if (c.End != ComposeEnd::Layout && c.End != ComposeEnd::Views && c.End != ComposeEnd::Set) {
    picView->clear();
    picView->adjustSize();
    lblView->setText(text + QStringLiteral(": nothing to draw."));
    return;
  }
  if (c.End == ComposeEnd::Layout) OpenBaseOnce();
  ComposeOptions options;
  options.Boxes = chkBoxes->isChecked();
  options.Origins = chkOrigins->isChecked();
  options.SharedOrigin = chkSharedOrigin->isChecked();
  picture_ = DrawComposition(*file_, *items_, c, look_, baseArrived_ ? &base_ : nullptr, options);
  ShowPicture();
  if (c.FellBack) text += QStringLiteral("; the item has no entry for this request: its default");
  if (c.VariablesAssumed) text += QStringLiteral("; game variables read as 0");
  if (c.RegistersUnknown) text += QStringLiteral("; a register nothing filled taken as 0");
  if (c.End == ComposeEnd::Layout && !baseArrived_)
    text += QStringLiteral("; opening the base set, base sprites are outlines until then");
  else if (c.End == ComposeEnd::Layout && !base_.Open)
    text += QStringLiteral("; no base set found: base sprites are outlines");
  lblView->setText(text + QLatin1Char('.'));
}

void frmItems::ShowPicture() {
  const int m = spnMagnify->value();
  picView->setPixmap(QPixmap::fromImage(picture_.Image.scaled(picture_.Image.size() * m)));
  picView->adjustSize();
}

bool frmItems::eventFilter(QObject* watched, QEvent* event) {
  if (watched == picView && event->type() == QEvent::MouseButtonPress &&
      static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton) {
    ClickView(static_cast<QMouseEvent*>(event)->position().toPoint() / spnMagnify->value());
    return true;
  }
  return QWidget::eventFilter(watched, event);
}

void frmItems::ClickView(QPoint at) {
  // The last drawn is on top.
  for (auto s = picture_.Sprites.rbegin(); s != picture_.Sprites.rend(); ++s) {
    if (!s->Rect.contains(at)) continue;
    if (s->Source == SpriteSource::File && !s->Outline && file_ != nullptr &&
        s->Sprite < SpriteCount(*file_)) {
      if (Choose) Choose(s->Sprite);
      lblView->setText(
          QStringLiteral("Sprite %1 is on view in the main window.").arg(s->Sprite + 1));
    } else if (s->Source == SpriteSource::Base) {
      lblView->setText(QStringLiteral("Base sprite %1 comes from %2, not from this file.")
                           .arg(s->Sprite)
                           .arg(base_.Path.empty() ? QStringLiteral("the base set")
                                                   : QString::fromStdString(base_.Path)));
    } else {
      lblView->setText(QStringLiteral("This sprite cannot be had: %1.").arg(Q(s->Problem)));
    }
    return;
  }
}

}  // namespace vossel
