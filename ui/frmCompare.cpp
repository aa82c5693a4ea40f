#include "frmCompare.h"

#include <algorithm>

#include <QGridLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPainter>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace vossel {
namespace {

constexpr int kSpriteRole = Qt::UserRole;  // index into the comparison's sprites, or -1
// The marked picture: B with this over every pixel that differs from A.
const QColor kMark(255, 0, 0, 180);
// Pictures are magnified to about this many pixels across their longer side, at most 8 times.
constexpr int kShownSize = 256;

QString Q(const std::string& s) {
  return QString::fromStdString(s);
}

// The alternative of `sprite` a difference is about: the one it names, else the shown one.
int32_t AlternativeFor(const GrfFile& file, const SpriteDifference& d) {
  if (d.Sprite >= SpriteCount(file)) return -1;
  switch (d.Change) {
    case SpriteChange::Size:
    case SpriteChange::Offsets:
    case SpriteChange::Pixels:
    case SpriteChange::Unreadable:
      return MatchingAlternative(file, d.Sprite, d.Alternative);
    default:
      return DefaultAlternative(file, d.Sprite);
  }
}

bool Decode(const GrfFile& file, const SpriteDifference& d, SpritePicture& picture) {
  const int32_t alt = AlternativeFor(file, d);
  return alt >= 0 && FactsOf(file, d.Sprite, alt).Kind == SpriteKind::Picture &&
         PictureOf(file, d.Sprite, alt, picture) == GrfResult::Ok;
}

void ShowPicture(QLabel* label, const QImage& picture) {
  if (picture.isNull()) {
    label->setPixmap(QPixmap());
    label->setText(QStringLiteral("(none)"));
    return;
  }
  const int longer = std::max(picture.width(), picture.height());
  const int times = std::clamp(kShownSize / std::max(longer, 1), 1, 8);
  label->setPixmap(QPixmap::fromImage(
      picture.scaled(picture.size() * times, Qt::IgnoreAspectRatio, Qt::FastTransformation)));
}

QLabel* PictureLabel(QWidget* owner) {
  auto* label = new QLabel(owner);
  label->setAlignment(Qt::AlignCenter);
  label->setMinimumSize(kShownSize, kShownSize * 3 / 4);
  label->setFrameShape(QFrame::StyledPanel);
  return label;
}

}  // namespace

struct frmCompare::Other {
  GrfFile File;
  FileReading Reading;
};

frmCompare::frmCompare(QWidget* owner) : QWidget(owner, Qt::Window) {
  setWindowTitle(QString::fromLatin1(kCompareCaption));
  lblFiles = new QLabel(this);
  lblFiles->setTextInteractionFlags(Qt::TextSelectableByMouse);
  lblSummary = new QLabel(this);
  tvwDifferences = new QTreeWidget(this);
  tvwDifferences->setHeaderLabels(
      {QStringLiteral("Sprite"), QStringLiteral("Change"), QStringLiteral("Difference")});
  tvwDifferences->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
  tvwDifferences->header()->setStretchLastSection(true);
  lblOld = new QLabel(QStringLiteral("A"), this);
  lblNew = new QLabel(QStringLiteral("B"), this);
  lblMarked = new QLabel(QStringLiteral("Changed pixels (red) over B"), this);
  picOld = PictureLabel(this);
  picNew = PictureLabel(this);
  picMarked = PictureLabel(this);
  auto* pictures = new QGridLayout();
  pictures->addWidget(lblOld, 0, 0);
  pictures->addWidget(lblNew, 0, 1);
  pictures->addWidget(lblMarked, 0, 2);
  pictures->addWidget(picOld, 1, 0);
  pictures->addWidget(picNew, 1, 1);
  pictures->addWidget(picMarked, 1, 2);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(lblFiles);
  layout->addWidget(lblSummary);
  layout->addWidget(tvwDifferences, 1);
  layout->addLayout(pictures);
  resize(960, 720);
  connect(tvwDifferences, &QTreeWidget::currentItemChanged, this, [this](QTreeWidgetItem* row) {
    ShowDifference(row != nullptr ? row->data(0, kSpriteRole).toInt() : -1);
  });
  Detach();
}

frmCompare::~frmCompare() = default;

bool frmCompare::SetOther(const std::string& path) {
  auto other = std::make_unique<Other>();
  const MessageFn quiet = [](const std::string&) {};
  const OpenOutcome outcome = LoadGrfFile(path, other->File, quiet, quiet);
  if (outcome.End != OpenEnd::Ok) {
    lblSummary->setText(Q(path + ": " + outcome.Message));
    return false;
  }
  ReadFileActions(other->File, other->Reading);
  // The old B goes only once nothing shows it any more.
  Detach();
  other_ = std::move(other);
  return true;
}

void frmCompare::Attach(const GrfFile& file, const FileReading& reading, const Look& look) {
  tvwDifferences->clear();
  ClearPictures();
  if (!other_) return;
  file_ = &file;
  reading_ = &reading;
  look_ = look;
  CompareOptions options;
  options.CountPixels = true;
  comparison_ = CompareFiles(file, reading, other_->File, other_->Reading, options);
  const GrfComparison& c = comparison_;
  lblFiles->setText(Q(ComparedFileLine("A", file, c.OldIdentity) + "\n" +
                      ComparedFileLine("B", other_->File, c.NewIdentity)));
  lblSummary->setText(Q(ComparisonSummary(c)));
  QList<QTreeWidgetItem*> rows;
  const auto row = [&](const QString& sprite, const char* change, const std::string& text,
                       int32_t index) {
    auto* r = new QTreeWidgetItem({sprite, QString::fromLatin1(change), Q(text)});
    r->setData(0, kSpriteRole, index);
    rows.append(r);
    return r;
  };
  for (const std::string& line : IdentityChangeLines(c))
    row(QStringLiteral("-"), "identity", "Identity: " + line, -1);
  for (size_t i = 0; i < c.Sprites.size(); ++i) {
    const SpriteDifference& d = c.Sprites[i];
    QTreeWidgetItem* r = row(QString::number(d.Sprite + 1), SpriteChangeKey(d.Change),
                             SpriteDifferenceLine(d), static_cast<int32_t>(i));
    if (d.Change == SpriteChange::Bytes) {
      for (const std::string& line : {"- " + OldNfoLine(d), "+ " + NewNfoLine(d)}) {
        auto* nfo = new QTreeWidgetItem(r, {QString(), QString(), Q(line)});
        nfo->setData(0, kSpriteRole, static_cast<int32_t>(i));
      }
      r->setExpanded(true);
    }
  }
  for (const ItemDifference& d : c.Items)
    row(QStringLiteral("-"), ItemChangeKey(d.Change),
        "Item " + ItemDifferenceName(d) + ": " + ItemChangeText(d), -1);
  tvwDifferences->addTopLevelItems(rows);
  for (QTreeWidgetItem* r : rows) r->setExpanded(true);
}

void frmCompare::Detach() {
  file_ = nullptr;
  reading_ = nullptr;
  comparison_ = GrfComparison{};
  tvwDifferences->clear();
  ClearPictures();
  lblFiles->setText(other_
                        ? Q(ComparedFileLine("B", other_->File, other_->Reading.Actions.Identity))
                        : QStringLiteral("No file to compare with."));
  lblSummary->setText(QStringLiteral("No file."));
}

void frmCompare::ClearPictures() {
  OldPicture = NewPicture = MarkedPicture = QImage();
  for (QLabel* label : {picOld, picNew, picMarked}) {
    label->setPixmap(QPixmap());
    label->setText(QString());
  }
}

void frmCompare::ShowDifference(int32_t index) {
  ClearPictures();
  if (file_ == nullptr || !other_ || index < 0 ||
      static_cast<size_t>(index) >= comparison_.Sprites.size())
    return;
  const SpriteDifference& d = comparison_.Sprites[static_cast<size_t>(index)];
  SpritePicture a, b;
  const bool hasA = Decode(*file_, d, a), hasB = Decode(other_->File, d, b);
  if (hasA) OldPicture = LookPixels(look_, a);
  if (hasB) NewPicture = LookPixels(look_, b);
  if (hasA && hasB && a.Width == b.Width && a.Height == b.Height) {
    MarkedPicture = NewPicture.convertToFormat(QImage::Format_ARGB32);
    QPainter paint(&MarkedPicture);
    for (int32_t y = 0; y < b.Height; ++y)
      for (int32_t x = 0; x < b.Width; ++x)
        if (PixelDiffers(a, b, int64_t{y} * b.Width + x)) paint.fillRect(x, y, 1, 1, kMark);
  }
  ShowPicture(picOld, OldPicture);
  ShowPicture(picNew, NewPicture);
  ShowPicture(picMarked, MarkedPicture);
  if (Choose && d.Sprite < SpriteCount(*file_)) Choose(d.Sprite);
}

}  // namespace vossel
