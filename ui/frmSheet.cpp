#include "frmSheet.h"

#include <algorithm>

#include <QComboBox>
#include <QCoreApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QSlider>
#include <QSpinBox>
#include <QThread>
#include <QVBoxLayout>
#include <QWheelEvent>

namespace vossel {

namespace {

// Scaled pictures kept, in bytes: room for a screen of the largest cells twice over, so that the
// cells in sight never push each other out.
constexpr qsizetype kCacheBytes = 64 * 1024 * 1024;
// What a cell without pixels counts in the cache.
constexpr qsizetype kEntryBytes = 64;
constexpr int32_t kCellWheelStep = 16;

}  // namespace

// The one widget that paints every cell in sight.
class SheetGrid : public QWidget {
 public:
  explicit SheetGrid(frmSheet* sheet) : QWidget(sheet), sheet_(sheet) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFocusPolicy(Qt::WheelFocus);
  }

 protected:
  void paintEvent(QPaintEvent* event) override {
    QPainter painter(this);
    sheet_->PaintGrid(painter, event->rect());
  }
  void resizeEvent(QResizeEvent*) override {
    sheet_->Relayout();
    sheet_->KeepInSight(sheet_->highlighted_);
  }
  void mousePressEvent(QMouseEvent* event) override {
    const int32_t sprite = sheet_->SpriteAt(event->position().toPoint());
    if (event->button() == Qt::LeftButton && sprite >= 0 && sheet_->Choose) sheet_->Choose(sprite);
  }
  void wheelEvent(QWheelEvent* event) override {
    if (event->modifiers() & Qt::ControlModifier) {
      const int32_t steps = event->angleDelta().y() / 120;
      sheet_->sldCell->setValue(sheet_->sldCell->value() + steps * kCellWheelStep);
      event->accept();
      return;
    }
    QCoreApplication::sendEvent(sheet_->scrGrid, event);
  }

 private:
  frmSheet* sheet_;
};

frmSheet::frmSheet(QWidget* owner) : QWidget(owner, Qt::Window), cache_(kCacheBytes) {
  setWindowTitle(QString::fromLatin1(kSheetCaption));
  // Closing the main window ends the program even while the sheet is open.
  setAttribute(Qt::WA_QuitOnClose, false);
  pool_.setMaxThreadCount(std::clamp(QThread::idealThreadCount(), 1, 4));
  BuildControls();
  resize(720, 520);
}

frmSheet::~frmSheet() {
  pool_.clear();
  pool_.waitForDone();
}

void frmSheet::BuildControls() {
  auto* bar = new QHBoxLayout;
  sldCell = new QSlider(Qt::Horizontal, this);
  sldCell->setRange(kMinSheetCell, kMaxSheetCell);
  sldCell->setSingleStep(4);
  sldCell->setPageStep(kCellWheelStep);
  sldCell->setValue(kDefaultSheetCell);
  sldCell->setToolTip(QStringLiteral("Cell size (Ctrl+wheel)"));
  lblCell = new QLabel(this);
  cboKinds = new QComboBox(this);
  cboKinds->addItems({QStringLiteral("All sprites"), QStringLiteral("Pictures only"),
                      QStringLiteral("Pseudo-sprites only")});
  cboRole = new QComboBox(this);
  for (const SheetRoleName& name : kSheetRoleNames)
    cboRole->addItem(QString::fromLatin1(name.Caption), static_cast<int>(name.Role));
  spnMinWidth = new QSpinBox(this);
  spnMinHeight = new QSpinBox(this);
  for (QSpinBox* box : {spnMinWidth, spnMinHeight}) box->setRange(0, 65535);
  spnMinWidth->setPrefix(QStringLiteral("W \u2265 "));
  spnMinHeight->setPrefix(QStringLiteral("H \u2265 "));
  txtGoTo = new QLineEdit(this);
  txtGoTo->setPlaceholderText(QStringLiteral("Go to #"));
  txtGoTo->setMinimumWidth(txtGoTo->fontMetrics().horizontalAdvance(QStringLiteral("Go to #")) +
                           24);
  txtGoTo->setMaximumWidth(120);
  // The cell size and Go To on one row, the filters on the next, so that a narrow window keeps
  // every control whole.
  auto* cellLabel = new QLabel(QStringLiteral("&Cell:"), this);
  cellLabel->setBuddy(sldCell);
  sldCell->setMinimumWidth(120);
  lblCell->setMinimumWidth(lblCell->fontMetrics().horizontalAdvance(QStringLiteral("256 px")));
  bar->addWidget(cellLabel);
  bar->addWidget(sldCell, 1);
  bar->addWidget(lblCell);
  bar->addSpacing(12);
  bar->addWidget(txtGoTo);
  auto* filters = new QHBoxLayout;
  for (QWidget* w : std::initializer_list<QWidget*>{cboKinds, cboRole, spnMinWidth, spnMinHeight})
    filters->addWidget(w);
  filters->addStretch(1);

  auto* middle = new QHBoxLayout;
  Grid = new SheetGrid(this);
  scrGrid = new QScrollBar(Qt::Vertical, this);
  middle->addWidget(Grid, 1);
  middle->addWidget(scrGrid);
  lblStatus = new QLabel(this);

  auto* all = new QVBoxLayout(this);
  all->addLayout(bar);
  all->addLayout(filters);
  all->addLayout(middle, 1);
  all->addWidget(lblStatus);

  connect(sldCell, &QSlider::valueChanged, this, [this] {
    const int32_t anchor = highlighted_;
    layout_ = MakeSheetLayout(sldCell->value(), layout_.Columns);
    Invalidate();
    Relayout();
    if (anchor >= 0) KeepInSight(anchor);
  });
  connect(scrGrid, &QScrollBar::valueChanged, Grid, qOverload<>(&QWidget::update));
  connect(cboKinds, &QComboBox::currentIndexChanged, this, [this] { Refilter(); });
  connect(cboRole, &QComboBox::currentIndexChanged, this, [this] { Refilter(); });
  connect(spnMinWidth, &QSpinBox::valueChanged, this, [this] { Refilter(); });
  connect(spnMinHeight, &QSpinBox::valueChanged, this, [this] { Refilter(); });
  connect(txtGoTo, &QLineEdit::returnPressed, this, [this] { GoTo(); });
  layout_ = MakeSheetLayout(sldCell->value(), 1);
  UpdateStatus();
}

void frmSheet::Attach(const GrfFile& file, const FileReading& reading, int32_t sprite,
                      const Look& look) {
  Detach();
  file_ = &file;
  reading_ = &reading;
  roles_ = SheetRolesOf(reading);
  look_ = std::make_shared<const Look>(look);
  entries_ = SheetEntries(file, reading, look.Zoom, look.Depth);
  highlighted_ = sprite;
  setWindowTitle(QString::fromLatin1(kSheetCaption) + QStringLiteral(" - ") +
                 QString::fromStdString(file.Path));
  Refilter();
}

void frmSheet::Detach() {
  Invalidate();
  pool_.waitForDone();
  file_ = nullptr;
  reading_ = nullptr;
  entries_.clear();
  roles_.clear();
  shown_.clear();
  highlighted_ = -1;
  setWindowTitle(QString::fromLatin1(kSheetCaption));
  Relayout();
  UpdateStatus();
}

void frmSheet::Follow(int32_t sprite, const Look& look) {
  if (file_ == nullptr) return;
  highlighted_ = sprite;
  if (look_ && look == *look_) {
    KeepInSight(sprite);
    UpdateStatus();
    Grid->update();
    return;
  }
  // Another zoom level or depth may pick other pictures, with other sizes.
  look_ = std::make_shared<const Look>(look);
  entries_ = SheetEntries(*file_, *reading_, look.Zoom, look.Depth);
  Invalidate();
  Refilter();
}

void frmSheet::Invalidate() {
  ++generation_;
  pool_.clear();
  asked_.clear();
  cache_.clear();
  Grid->update();
}

void frmSheet::Refilter() {
  SheetFilter filter;
  filter.Kinds = static_cast<SheetKinds>(cboKinds->currentIndex());
  filter.Role = static_cast<SheetRole>(cboRole->currentData().toInt());
  filter.MinWidth = spnMinWidth->value();
  filter.MinHeight = spnMinHeight->value();
  shown_ = FilterSheet(entries_, roles_, filter, 0, static_cast<int32_t>(entries_.size()) - 1);
  Relayout();
  KeepInSight(highlighted_);
  UpdateStatus();
  Grid->update();
}

void frmSheet::Relayout() {
  const int32_t pitch = MakeSheetLayout(sldCell->value(), 1).PitchX;
  layout_ = MakeSheetLayout(sldCell->value(), Grid->width() / pitch);
  // The columns stand in the middle, so that no edge is left empty on its own.
  layout_.Left = std::max(Grid->width() - layout_.Columns * layout_.PitchX, 0) / 2;
  lblCell->setText(QStringLiteral("%1 px").arg(layout_.Cell));
  const int64_t rows =
      (static_cast<int64_t>(shown_.size()) + layout_.Columns - 1) / layout_.Columns;
  const int64_t height = rows * layout_.PitchY;
  scrGrid->setRange(0, static_cast<int>(std::max<int64_t>(0, height - Grid->height())));
  scrGrid->setPageStep(std::max(Grid->height(), 1));
  scrGrid->setSingleStep(std::max(layout_.PitchY / 2, 1));
  Grid->update();
}

int32_t frmSheet::SlotOf(int32_t sprite) const {
  const auto at = std::lower_bound(shown_.begin(), shown_.end(), sprite);
  return at != shown_.end() && *at == sprite ? static_cast<int32_t>(at - shown_.begin()) : -1;
}

QPoint frmSheet::GridOrigin() const {
  return QPoint(0, -scrGrid->value());
}

QRect frmSheet::CellRect(int32_t sprite) const {
  const int32_t slot = SlotOf(sprite);
  if (slot < 0) return QRect();
  return QRect(SheetCellOrigin(layout_, slot) + GridOrigin(),
               QSize(layout_.PitchX, layout_.PitchY));
}

int32_t frmSheet::SpriteAt(QPoint at) const {
  const QPoint inGrid = at - GridOrigin() - QPoint(layout_.Left, 0);
  if (inGrid.x() < 0 || inGrid.y() < 0) return -1;
  const int64_t column = inGrid.x() / layout_.PitchX;
  const int64_t slot = int64_t{inGrid.y()} / layout_.PitchY * layout_.Columns + column;
  if (column >= layout_.Columns || slot >= static_cast<int64_t>(shown_.size())) return -1;
  return shown_[static_cast<size_t>(slot)];
}

// A sprite hidden by the filters is kept in sight by the place it would take.
void frmSheet::KeepInSight(int32_t sprite) {
  if (sprite < 0 || shown_.empty()) return;
  const auto slot = std::lower_bound(shown_.begin(), shown_.end(), sprite) - shown_.begin();
  const int32_t top = SheetCellOrigin(layout_, std::min<int64_t>(slot, shown_.size() - 1)).y();
  if (top < scrGrid->value())
    scrGrid->setValue(top);
  else if (top + layout_.PitchY > scrGrid->value() + Grid->height())
    scrGrid->setValue(top + layout_.PitchY - Grid->height());
}

void frmSheet::GoTo() {
  bool number = false;
  const qlonglong n = txtGoTo->text().trimmed().toLongLong(&number);
  const auto count = static_cast<int32_t>(entries_.size());
  if (!number || n < 1 || n > count) {
    lblStatus->setText(count == 0
                           ? QStringLiteral("No file is open.")
                           : QStringLiteral("There is no sprite %1: give a number from 1 to %2.")
                                 .arg(txtGoTo->text().trimmed())
                                 .arg(count));
    return;
  }
  if (Choose) Choose(static_cast<int32_t>(n - 1));
}

void frmSheet::UpdateStatus() {
  if (file_ == nullptr) {
    lblStatus->setText(QStringLiteral("No file is open."));
    return;
  }
  QString text = QStringLiteral("%1 sprites, %2 shown.").arg(entries_.size()).arg(shown_.size());
  if (highlighted_ >= 0 && SlotOf(highlighted_) < 0)
    text += QStringLiteral(" Sprite %1, on view, is hidden by the filters.").arg(highlighted_ + 1);
  lblStatus->setText(text);
}

void frmSheet::PaintGrid(QPainter& painter, const QRect& area) {
  painter.fillRect(area, Qt::white);
  if (file_ == nullptr || shown_.empty()) return;
  const QPoint origin = GridOrigin();
  const auto slotAt = [&](int32_t y) {
    return std::max<int64_t>(int64_t{y} - origin.y(), 0) / layout_.PitchY * layout_.Columns;
  };
  const auto count = static_cast<int64_t>(shown_.size());
  static const QImage none;
  for (int64_t slot = slotAt(area.top());
       slot < std::min(slotAt(area.bottom()) + layout_.Columns, count); ++slot) {
    const int32_t sprite = shown_[static_cast<size_t>(slot)];
    const SheetEntry& entry = entries_[static_cast<size_t>(sprite)];
    const QImage* picture = entry.Kind == SpriteKind::Picture ? cache_.object(sprite) : &none;
    PaintSheetCell(painter, layout_, SheetCellOrigin(layout_, slot) + origin, sprite, entry,
                   picture ? *picture : none, sprite == highlighted_);
  }
  // Every cell in sight that waits is asked for, whatever part was painted.
  std::vector<int32_t> wanted;
  for (int64_t slot = slotAt(0);
       slot < std::min(slotAt(Grid->height() - 1) + layout_.Columns, count); ++slot) {
    const int32_t sprite = shown_[static_cast<size_t>(slot)];
    if (entries_[static_cast<size_t>(sprite)].Kind == SpriteKind::Picture &&
        !cache_.contains(sprite))
      wanted.push_back(sprite);
  }
  if (!wanted.empty()) Want(wanted);
}

void frmSheet::Want(const std::vector<int32_t>& sprites) {
  // The same wish again, as a paint of part of the grid makes it, changes nothing.
  if (sprites == asked_) return;
  // What waits in the pool is another wish's: it goes, and the cells of this one go first. A
  // picture being decoded now may be asked again; the second result is the same.
  pool_.clear();
  asked_ = sprites;
  const uint64_t generation = generation_;
  for (const int32_t sprite : sprites) {
    const SheetEntry entry = entries_[static_cast<size_t>(sprite)];
    pool_.start([this, file = file_, look = look_, cell = layout_.Cell, generation, sprite, entry] {
      GrfResult result = GrfResult::Ok;
      QImage picture = SheetPicture(*file, sprite, entry, *look, cell, result);
      // Through the window's event queue: Detach and the destructor wait for every task first.
      QMetaObject::invokeMethod(
          this,
          [this, generation, sprite, picture = std::move(picture)]() mutable {
            Delivered(generation, sprite, std::move(picture));
          },
          Qt::QueuedConnection);
    });
  }
}

void frmSheet::Delivered(uint64_t generation, int32_t sprite, QImage picture) {
  if (generation != generation_) return;
  std::erase(asked_, sprite);
  const qsizetype cost = kEntryBytes + picture.sizeInBytes();
  cache_.insert(sprite, new QImage(std::move(picture)), cost);
  const QRect cell = CellRect(sprite);
  if (cell.intersects(Grid->rect())) Grid->update(cell);
}

int32_t frmSheet::Waiting() const {
  if (file_ == nullptr) return 0;
  int32_t waiting = 0;
  const int64_t first = int64_t{scrGrid->value()} / layout_.PitchY * layout_.Columns;
  for (auto slot = static_cast<size_t>(first); slot < shown_.size(); ++slot) {
    const int32_t sprite = shown_[slot];
    if (CellRect(sprite).top() >= Grid->height()) break;
    if (entries_[static_cast<size_t>(sprite)].Kind == SpriteKind::Picture &&
        !cache_.contains(sprite))
      ++waiting;
  }
  return waiting;
}

}  // namespace vossel
