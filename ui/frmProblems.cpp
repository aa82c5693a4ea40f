#include "frmProblems.h"

#include <QHeaderView>
#include <QLabel>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "items.h"

namespace vossel {
namespace {

constexpr int kSpriteRole = Qt::UserRole;

// Sorts numbers as numbers: the sprite column by its value, the file's own findings first.
class ProblemRow : public QTreeWidgetItem {
 public:
  using QTreeWidgetItem::QTreeWidgetItem;
  bool operator<(const QTreeWidgetItem& other) const override {
    const int column = treeWidget() ? treeWidget()->sortColumn() : 0;
    if (column == 2) return data(2, kSpriteRole).toInt() < other.data(2, kSpriteRole).toInt();
    return QTreeWidgetItem::operator<(other);
  }
};

QString Q(const std::string& s) {
  return QString::fromStdString(s);
}

}  // namespace

frmProblems::frmProblems(QWidget* owner) : QWidget(owner, Qt::Window) {
  setWindowTitle(QString::fromLatin1(kProblemsCaption));
  lblSummary = new QLabel(this);
  tvwProblems = new QTreeWidget(this);
  tvwProblems->setHeaderLabels({QStringLiteral("Code"), QStringLiteral("Severity"),
                                QStringLiteral("Sprite"), QStringLiteral("Item"),
                                QStringLiteral("Text")});
  tvwProblems->setRootIsDecorated(false);
  tvwProblems->setSortingEnabled(true);
  tvwProblems->sortByColumn(2, Qt::AscendingOrder);
  tvwProblems->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
  tvwProblems->header()->setStretchLastSection(true);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(lblSummary);
  layout->addWidget(tvwProblems);
  resize(960, 360);
  connect(tvwProblems, &QTreeWidget::currentItemChanged, this, [this](QTreeWidgetItem* row) {
    if (row == nullptr || !Choose) return;
    const int sprite = row->data(2, kSpriteRole).toInt();
    if (sprite >= 0) Choose(sprite);
  });
  Detach();
}

void frmProblems::Attach(const std::vector<Finding>& findings) {
  attached_ = true;
  tvwProblems->clear();
  int64_t counts[3] = {0, 0, 0};
  QList<QTreeWidgetItem*> rows;
  for (const Finding& f : findings) {
    ++counts[static_cast<int>(f.Level)];
    auto* row = new ProblemRow();
    row->setText(0, Q(CodeText(f.Code)));
    row->setText(1, Q(SeverityText(f.Level)));
    // Sprites as the windows count them, from 1.
    row->setText(2, f.Sprite >= 0 ? QString::number(f.Sprite + 1) : QStringLiteral("-"));
    row->setData(2, kSpriteRole, f.Sprite);
    if (f.HasItem) row->setText(3, Q(FeatureWord(f.Feature)) + " " + QString::number(f.Id));
    row->setText(4, Q(FindingText(f)));
    rows.append(row);
  }
  tvwProblems->addTopLevelItems(rows);
  lblSummary->setText(findings.empty() ? QStringLiteral("No problems found.")
                                       : QStringLiteral("%1 errors, %2 warnings, %3 notes")
                                             .arg(counts[0])
                                             .arg(counts[1])
                                             .arg(counts[2]));
}

void frmProblems::Detach() {
  attached_ = false;
  tvwProblems->clear();
  lblSummary->setText(QStringLiteral("No file."));
}

}  // namespace vossel
