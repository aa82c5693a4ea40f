#include "listview.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <QAbstractTableModel>
#include <QHeaderView>
#include <QKeyEvent>

namespace vossel {

// Flat rows and the order they are shown in. Rows past `shown` are kept but not yet announced to
// the view: a hidden list announces a whole batch at once.
class ListViewModel : public QAbstractTableModel {
 public:
  using QAbstractTableModel::QAbstractTableModel;

  std::vector<std::string> headers;
  std::vector<ListItem> rows;
  std::vector<int32_t> order;  // place -> index in rows
  int32_t shown = 0;

  int rowCount(const QModelIndex& parent) const override { return parent.isValid() ? 0 : shown; }
  int columnCount(const QModelIndex& parent) const override {
    return parent.isValid() ? 0 : static_cast<int>(headers.size());
  }

  QVariant data(const QModelIndex& index, int role) const override {
    if (role != Qt::DisplayRole || !index.isValid() || index.row() >= shown) return {};
    const ListItem& item = rows[static_cast<size_t>(order[static_cast<size_t>(index.row())])];
    const auto column = static_cast<size_t>(index.column());
    return column < item.Texts.size() ? QString::fromStdString(item.Texts[column]) : QString();
  }

  QVariant headerData(int section, Qt::Orientation orientation, int role) const override {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 ||
        static_cast<size_t>(section) >= headers.size())
      return {};
    return QString::fromStdString(headers[static_cast<size_t>(section)]);
  }

  void Announce() {
    const auto total = static_cast<int32_t>(order.size());
    if (shown >= total) return;
    beginInsertRows(QModelIndex(), shown, total - 1);
    shown = total;
    endInsertRows();
  }

  void Clear() {
    beginResetModel();
    rows.clear();
    order.clear();
    shown = 0;
    endResetModel();
  }

  void AddColumn(const std::string& text) {
    const int section = static_cast<int>(headers.size());
    beginInsertColumns(QModelIndex(), section, section);
    headers.push_back(text);
    endInsertColumns();
  }

  void Sort(int16_t column, bool descending) {
    Announce();
    emit layoutAboutToBeChanged();
    const std::vector<int32_t> before = order;
    const auto key = [&](int32_t row) -> const std::string& {
      static const std::string kNone;
      const ListItem& item = rows[static_cast<size_t>(row)];
      return column >= 0 && static_cast<size_t>(column) < item.Texts.size()
                 ? item.Texts[static_cast<size_t>(column)]
                 : kNone;
    };
    // std::string compares as unsigned bytes: plain byte order, no locale.
    if (descending)
      std::stable_sort(order.begin(), order.end(),
                       [&](int32_t a, int32_t b) { return key(b) < key(a); });
    else
      std::stable_sort(order.begin(), order.end(),
                       [&](int32_t a, int32_t b) { return key(a) < key(b); });
    // Selection and current row stay with their rows.
    std::vector<int32_t> placeOf(order.size());
    for (size_t place = 0; place < order.size(); ++place)
      placeOf[static_cast<size_t>(order[place])] = static_cast<int32_t>(place);
    const QModelIndexList from = persistentIndexList();
    QModelIndexList to;
    to.reserve(from.size());
    for (const QModelIndex& index : from) {
      const int32_t row = before[static_cast<size_t>(index.row())];
      to.append(this->index(placeOf[static_cast<size_t>(row)], index.column()));
    }
    changePersistentIndexList(from, to);
    emit layoutChanged();
  }
};

ListView::ListView(QWidget* parent) : QTreeView(parent), model_(new ListViewModel(this)) {
  setModel(model_);
  setRootIsDecorated(false);
  setItemsExpandable(false);
  setUniformRowHeights(true);
  setAllColumnsShowFocus(true);
  setSelectionMode(QAbstractItemView::SingleSelection);
  setSelectionBehavior(QAbstractItemView::SelectRows);
  setEditTriggers(QAbstractItemView::NoEditTriggers);
  setSortingEnabled(false);
  header()->setSectionsMovable(false);
  header()->setSectionsClickable(true);
  header()->setStretchLastSection(false);
  header()->setSortIndicatorShown(false);
  connect(header(), &QHeaderView::sectionClicked, this, [this](int section) {
    if (ColumnClick) ColumnClick(Column(section + 1));
  });
  connect(this, &QAbstractItemView::clicked, this,
          [this](const QModelIndex& index) { RaiseItemClick(index); });
}

void ListView::AddColumn(const std::string& text, int32_t widthHimetric) {
  const int section = static_cast<int>(model_->headers.size());
  model_->AddColumn(text);
  // Hundredths of a millimetre at 96 dots per inch.
  header()->resizeSection(section, static_cast<int>(std::lround(widthHimetric * 96.0 / 2540.0)));
}

int32_t ListView::ColumnCount() const {
  return static_cast<int32_t>(model_->headers.size());
}

ColumnHeader ListView::Column(int32_t index) const {
  ColumnHeader column;
  column.Index = index;
  if (index >= 1 && index <= ColumnCount())
    column.Text = model_->headers[static_cast<size_t>(index - 1)];
  return column;
}

void ListView::AddItem(std::string key, std::vector<std::string> texts) {
  model_->rows.push_back(ListItem{std::move(key), std::move(texts)});
  model_->order.push_back(static_cast<int32_t>(model_->rows.size() - 1));
  if (!isHidden()) model_->Announce();
}

void ListView::Clear() {
  model_->Clear();
}

int32_t ListView::ItemCount() const {
  return static_cast<int32_t>(model_->order.size());
}

const ListItem& ListView::Item(int32_t index) const {
  return model_->rows[static_cast<size_t>(model_->order[static_cast<size_t>(index - 1)])];
}

void ListView::SetSorted(bool sorted) {
  sorted_ = sorted;
  if (!sorted) return;
  model_->Sort(SortKey, SortOrder == 1);
}

void ListView::setVisible(bool visible) {
  if (visible) model_->Announce();
  QTreeView::setVisible(visible);
}

void ListView::keyPressEvent(QKeyEvent* event) {
  const QModelIndex before = currentIndex();
  QTreeView::keyPressEvent(event);
  if (currentIndex().isValid() && currentIndex().row() != before.row())
    RaiseItemClick(currentIndex());
}

void ListView::RaiseItemClick(const QModelIndex& index) {
  if (!index.isValid() || index.row() >= model_->shown || !ItemClick) return;
  ItemClick(Item(index.row() + 1));
}

}  // namespace vossel
