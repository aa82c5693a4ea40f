#include "frmSheet.h"

#include <algorithm>
#include <condition_variable>
#include <list>
#include <mutex>
#include <thread>
#include <unordered_map>

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
#include <QVBoxLayout>
#include <QWheelEvent>

namespace vossel {

namespace {

// Scaled pictures kept, in bytes; the cells in sight are kept whatever this says.
constexpr int64_t kCacheBytes = 32 * 1024 * 1024;
// What a cell without pixels counts in the cache.
constexpr int64_t kEntryBytes = 64;
constexpr int32_t kCellWheelStep = 16;

}  // namespace

// The cells' pictures, most recently painted first.
struct frmSheet::Cache {
  struct Item {
    QImage Picture;
    std::list<int32_t>::iterator Place;
    uint64_t Painted = 0;
  };
  std::unordered_map<int32_t, Item> Items;
  std::list<int32_t> Order;
  int64_t Bytes = 0;
  uint64_t Paint = 0;  // the number of the paint under way

  static int64_t SizeOf(const QImage& picture) { return kEntryBytes + picture.sizeInBytes(); }
  const QImage* Find(int32_t sprite) {
    const auto found = Items.find(sprite);
    if (found == Items.end()) return nullptr;
    Order.splice(Order.begin(), Order, found->second.Place);
    found->second.Painted = Paint;
    return &found->second.Picture;
  }
  void Add(int32_t sprite, QImage picture) {
    if (Items.count(sprite) > 0) return;
    Order.push_front(sprite);
    Bytes += SizeOf(picture);
    Items[sprite] = Item{std::move(picture), Order.begin(), Paint};
    // Pictures painted by the last paint stay, so that a full window never evicts its own cells.
    while (Bytes > kCacheBytes && Items.at(Order.back()).Painted + 1 < Paint) {
      Bytes -= SizeOf(Items.at(Order.back()).Picture);
      Items.erase(Order.back());
      Order.pop_back();
    }
  }
  void Clear() {
    Items.clear();
    Order.clear();
    Bytes = 0;
  }
};

// Workers that decode and scale the pictures of the cells asked for last, newest wish first. A
// result goes to `deliver` on the worker's thread, with the generation it was asked under.
class SheetDecoder {
 public:
  struct Job {
    int32_t Sprite = 0;
    SheetEntry Entry;
  };
  using Deliver = std::function<void(uint64_t, int32_t, QImage)>;

  explicit SheetDecoder(Deliver deliver) : deliver_(std::move(deliver)) {
    const unsigned count = std::clamp(std::thread::hardware_concurrency(), 1u, 4u);
    for (unsigned k = 0; k < count; ++k) threads_.emplace_back([this] { Work(); });
  }
  ~SheetDecoder() {
    {
      const std::lock_guard lock(m_);
      quit_ = true;
    }
    wake_.notify_all();
    threads_.clear();  // joins
  }
  // Replaces what waits. A sprite being decoded now under the same generation is not asked again.
  void Want(const GrfFile* file, std::shared_ptr<const SheetLook> look, int32_t cell,
            uint64_t generation, std::vector<Job> jobs) {
    {
      const std::lock_guard lock(m_);
      if (generation == generation_)
        std::erase_if(jobs, [this](const Job& j) {
          return std::find(running_.begin(), running_.end(), j.Sprite) != running_.end();
        });
      file_ = file;
      look_ = std::move(look);
      cell_ = cell;
      generation_ = generation;
      jobs_ = std::move(jobs);
      next_ = 0;
    }
    wake_.notify_all();
  }
  // Drops what waits; returns once no picture is being decoded.
  void Stop() {
    std::unique_lock lock(m_);
    jobs_.clear();
    next_ = 0;
    idle_.wait(lock, [this] { return busy_ == 0; });
  }

 private:
  void Work() {
    std::unique_lock lock(m_);
    for (;;) {
      wake_.wait(lock, [this] { return quit_ || next_ < jobs_.size(); });
      if (quit_) return;
      const Job job = jobs_[next_++];
      const GrfFile* file = file_;
      const std::shared_ptr<const SheetLook> look = look_;
      const int32_t cell = cell_;
      const uint64_t generation = generation_;
      ++busy_;
      running_.push_back(job.Sprite);
      lock.unlock();
      GrfResult result = GrfResult::Ok;
      deliver_(generation, job.Sprite,
               SheetPicture(*file, job.Sprite, job.Entry, *look, cell, result));
      lock.lock();
      running_.erase(std::find(running_.begin(), running_.end(), job.Sprite));
      if (--busy_ == 0) idle_.notify_all();
    }
  }

  Deliver deliver_;
  std::mutex m_;
  std::condition_variable wake_, idle_;
  std::vector<Job> jobs_;
  size_t next_ = 0;
  const GrfFile* file_ = nullptr;
  std::shared_ptr<const SheetLook> look_;
  int32_t cell_ = kDefaultSheetCell;
  uint64_t generation_ = 0;
  int32_t busy_ = 0;
  std::vector<int32_t> running_;
  bool quit_ = false;
  std::vector<std::jthread> threads_;  // last: started once the rest is ready
};

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
    const SheetLayout& l = sheet_->layout_;
    const QPoint at = event->position().toPoint();
    const int64_t column = at.x() / l.PitchX;
    const int64_t slot =
        (int64_t{at.y()} + sheet_->scrGrid->value()) / l.PitchY * l.Columns + column;
    if (event->button() != Qt::LeftButton || at.x() < 0 || column >= l.Columns || slot < 0 ||
        slot >= static_cast<int64_t>(sheet_->shown_.size()))
      return;
    if (sheet_->Choose) sheet_->Choose(sheet_->shown_[static_cast<size_t>(slot)]);
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

frmSheet::frmSheet(QWidget* owner) : QWidget(owner, Qt::Window), cache_(std::make_unique<Cache>()) {
  setWindowTitle(QString::fromLatin1(kSheetCaption));
  // Closing the main window ends the program even while the sheet is open.
  setAttribute(Qt::WA_QuitOnClose, false);
  BuildControls();
  // A result reaches the window through its event queue; one posted to a window that has gone is
  // dropped with it.
  decoder_ =
      std::make_unique<SheetDecoder>([this](uint64_t generation, int32_t sprite, QImage picture) {
        QMetaObject::invokeMethod(
            this,
            [this, generation, sprite, picture = std::move(picture)]() mutable {
              Delivered(generation, sprite, std::move(picture));
            },
            Qt::QueuedConnection);
      });
  resize(720, 520);
}

frmSheet::~frmSheet() {
  decoder_.reset();
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
  const std::pair<const char*, SheetRole> roles[] = {{"Any role", SheetRole::Unknown},
                                                     {"Action sprites", SheetRole::ActionSprite},
                                                     {"Base sprites", SheetRole::BaseSprite},
                                                     {"Recolour maps", SheetRole::RecolourMap},
                                                     {"Glyphs", SheetRole::Glyph}};
  for (const auto& [caption, role] : roles)
    cboRole->addItem(QString::fromLatin1(caption), static_cast<int>(role));
  spnMinWidth = new QSpinBox(this);
  spnMinHeight = new QSpinBox(this);
  for (QSpinBox* box : {spnMinWidth, spnMinHeight}) box->setRange(0, 65535);
  spnMinWidth->setPrefix(QStringLiteral("W \u2265 "));
  spnMinHeight->setPrefix(QStringLiteral("H \u2265 "));
  txtGoTo = new QLineEdit(this);
  txtGoTo->setPlaceholderText(QStringLiteral("Go to #"));
  txtGoTo->setMaximumWidth(90);
  bar->addWidget(new QLabel(QStringLiteral("&Cell:"), this));
  static_cast<QLabel*>(bar->itemAt(0)->widget())->setBuddy(sldCell);
  for (QWidget* w : std::initializer_list<QWidget*>{sldCell, lblCell, cboKinds, cboRole,
                                                    spnMinWidth, spnMinHeight, txtGoTo})
    bar->addWidget(w);

  auto* middle = new QHBoxLayout;
  Grid = new SheetGrid(this);
  scrGrid = new QScrollBar(Qt::Vertical, this);
  middle->addWidget(Grid, 1);
  middle->addWidget(scrGrid);
  lblStatus = new QLabel(this);

  auto* all = new QVBoxLayout(this);
  all->addLayout(bar);
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
                      const SheetLook& look) {
  Detach();
  file_ = &file;
  reading_ = &reading;
  roles_ = SheetRolesOf(reading);
  look_ = look;
  sharedLook_ = std::make_shared<const SheetLook>(look);
  entries_ = SheetEntries(file, reading, look.Choices.Zoom, look.Choices.Depth);
  highlighted_ = sprite;
  setWindowTitle(QString::fromLatin1(kSheetCaption) + QStringLiteral(" - ") +
                 QString::fromStdString(file.Path));
  Refilter();
}

void frmSheet::Detach() {
  Invalidate();
  decoder_->Stop();
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

void frmSheet::Follow(int32_t sprite, const SheetLook& look) {
  if (file_ == nullptr) return;
  highlighted_ = sprite;
  if (look.Choices == look_.Choices) {
    KeepInSight(sprite);
    UpdateStatus();
    Grid->update();
    return;
  }
  // Another zoom level or depth may pick other pictures, with other sizes.
  look_ = look;
  sharedLook_ = std::make_shared<const SheetLook>(look);
  entries_ = SheetEntries(*file_, *reading_, look.Choices.Zoom, look.Choices.Depth);
  Invalidate();
  Refilter();
}

void frmSheet::Invalidate() {
  ++generation_;
  cache_->Clear();
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

QRect frmSheet::CellRect(int32_t sprite) const {
  const int32_t slot = SlotOf(sprite);
  if (slot < 0) return QRect();
  return QRect(SheetCellOrigin(layout_, slot) - QPoint(0, scrGrid->value()),
               QSize(layout_.PitchX, layout_.PitchY));
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
  ++cache_->Paint;
  const int32_t top = scrGrid->value();
  const auto slotAt = [&](int32_t y) {
    return (int64_t{top} + y) / layout_.PitchY * layout_.Columns;
  };
  const auto count = static_cast<int64_t>(shown_.size());
  static const QImage none;
  for (int64_t slot = slotAt(area.top());
       slot < std::min(slotAt(area.bottom()) + layout_.Columns, count); ++slot) {
    const int32_t sprite = shown_[static_cast<size_t>(slot)];
    const SheetEntry& entry = entries_[static_cast<size_t>(sprite)];
    const QImage* picture = entry.Kind == SpriteKind::Picture ? cache_->Find(sprite) : &none;
    PaintSheetCell(painter, layout_, SheetCellOrigin(layout_, slot) - QPoint(0, top), sprite, entry,
                   picture ? *picture : none, sprite == highlighted_);
  }
  // Every cell in sight that waits is asked for, whatever part was painted: the wish replaces
  // the one before.
  std::vector<SheetDecoder::Job> wanted;
  for (int64_t slot = slotAt(0);
       slot < std::min(slotAt(Grid->height() - 1) + layout_.Columns, count); ++slot) {
    const int32_t sprite = shown_[static_cast<size_t>(slot)];
    const SheetEntry& entry = entries_[static_cast<size_t>(sprite)];
    if (entry.Kind == SpriteKind::Picture && cache_->Items.count(sprite) == 0)
      wanted.push_back({sprite, entry});
  }
  if (!wanted.empty())
    decoder_->Want(file_, sharedLook_, layout_.Cell, generation_, std::move(wanted));
}

void frmSheet::Delivered(uint64_t generation, int32_t sprite, QImage picture) {
  if (generation != generation_) return;
  cache_->Add(sprite, std::move(picture));
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
        cache_->Items.count(sprite) == 0)
      ++waiting;
  }
  return waiting;
}

}  // namespace vossel
