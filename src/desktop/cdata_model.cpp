#include "desktop/cdata_model.h"

#include <QColor>
#include <QFont>
#include <QMetaObject>

#include "data/component/column_view.h"

namespace korvan::desktop {

CDataModel::CDataModel(data::TCData& cdata, QObject* parent)
    : QAbstractItemModel(parent), cdata_(cdata) {
  Refresh();
}

void CDataModel::Refresh() {
  beginResetModel();
  values_.clear();
  for (int z = 1; z <= cdata_.GetRmax(); ++z) values_.push_back(cdata_.Data2Screen(z));
  BuildTree();
  endResetModel();
}

void CDataModel::BuildTree() {
  const int count = cdata_.GetRmax();
  parent_.assign(static_cast<size_t>(count) + 1, 0);
  position_.assign(static_cast<size_t>(count) + 1, 0);
  children_.assign(static_cast<size_t>(count) + 1, {});
  std::vector<int> open;  // the rows a following row may belong to, deepest last
  for (int z = 1; z <= count; ++z) {
    const int level = cdata_.GetLevel(z);
    while (!open.empty() && cdata_.GetLevel(open.back()) >= level) open.pop_back();
    const int parent = open.empty() ? 0 : open.back();
    parent_[static_cast<size_t>(z)] = parent;
    position_[static_cast<size_t>(z)] =
        static_cast<int>(children_[static_cast<size_t>(parent)].size());
    children_[static_cast<size_t>(parent)].push_back(z);
    open.push_back(z);
  }
}

int CDataModel::RowOf(const QModelIndex& index) const {
  if (!index.isValid()) return 0;
  const auto& siblings = children_[static_cast<size_t>(index.internalId())];
  return index.row() < static_cast<int>(siblings.size())
             ? siblings[static_cast<size_t>(index.row())]
             : 0;
}

QModelIndex CDataModel::IndexOfRow(int z, int column) const {
  if (z < 1 || z >= static_cast<int>(parent_.size())) return {};
  return createIndex(position_[static_cast<size_t>(z)], column,
                     static_cast<quintptr>(parent_[static_cast<size_t>(z)]));
}

int CDataModel::ColumnWidth(int column) const {
  return cdata_.Struktur()[column].Breite;
}

QModelIndex CDataModel::index(int row, int column, const QModelIndex& parent) const {
  const int parent_row = RowOf(parent);
  if (parent.isValid() && parent_row == 0) return {};
  const auto& siblings = children_[static_cast<size_t>(parent_row)];
  if (row < 0 || row >= static_cast<int>(siblings.size()) || column < 0 ||
      column >= columnCount()) {
    return {};
  }
  return createIndex(row, column, static_cast<quintptr>(parent_row));
}

QModelIndex CDataModel::parent(const QModelIndex& child) const {
  if (!child.isValid() || child.internalId() == 0) return {};
  return IndexOfRow(static_cast<int>(child.internalId()));
}

int CDataModel::rowCount(const QModelIndex& parent) const {
  if (parent.isValid() && parent.column() != 0) return 0;
  const int z = RowOf(parent);
  if (parent.isValid() && z == 0) return 0;
  return static_cast<int>(children_[static_cast<size_t>(z)].size());
}

int CDataModel::columnCount(const QModelIndex&) const {
  return cdata_.GetFeldAnzahl();
}

QVariant CDataModel::data(const QModelIndex& index, int role) const {
  const int z = RowOf(index);
  if (z == 0) return {};
  const data::TColumnDef& column = cdata_.Struktur()[index.column()];
  switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole: {
      const data::TStringList& values = values_[static_cast<size_t>(z - 1)];
      const auto at = static_cast<size_t>(column.Spalte);
      return at < values.size() ? QString::fromStdString(values[at]) : QString();
    }
    case Qt::TextAlignmentRole:
      return QVariant::fromValue(data::ColumnIsNumber(column) ? Qt::AlignRight | Qt::AlignVCenter
                                                              : Qt::AlignLeft | Qt::AlignVCenter);
    case Qt::BackgroundRole:
      if (marked_ && marked_(z, index.column())) return QColor(255, 205, 205);
      return {};
    case Qt::ForegroundRole:
      if (marked_ && marked_(z, index.column())) return QColor(160, 0, 0);
      return {};
    case Qt::FontRole:
      // A row with rows below it heads them.
      if (!children_[static_cast<size_t>(z)].empty()) {
        QFont font;
        font.setBold(true);
        return font;
      }
      return {};
    default:
      return {};
  }
}

QVariant CDataModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || section < 0 || section >= columnCount()) return {};
  if (role == Qt::DisplayRole) {
    return QString::fromStdString(data::ColumnCaption(cdata_.Struktur()[section]));
  }
  if (role == Qt::TextAlignmentRole && data::ColumnIsNumber(cdata_.Struktur()[section])) {
    return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
  }
  return {};
}

Qt::ItemFlags CDataModel::flags(const QModelIndex& index) const {
  if (!index.isValid()) return Qt::NoItemFlags;
  Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
  if (!cdata_.FNoEdit && data::ColumnEditable(cdata_.Struktur()[index.column()]))
    flags |= Qt::ItemIsEditable;
  return flags;
}

bool CDataModel::setData(const QModelIndex& index, const QVariant& value, int role) {
  const int z = RowOf(index);
  if (role != Qt::EditRole || z == 0 || !(flags(index) & Qt::ItemIsEditable)) return false;
  data::TStringList values = values_[static_cast<size_t>(z - 1)];
  const auto at = static_cast<size_t>(cdata_.Struktur()[index.column()].Spalte);
  if (at >= values.size()) values.resize(at + 1);
  const std::string typed = value.toString().toStdString();
  if (values[at] == typed) return false;
  values[at] = typed;
  if (cdata_.Screen2Data(z, values) != data::TScreen2DataResult::Stored) {
    emit refused(z);
    return false;
  }
  // The view is still committing its editor: the rows are read again once it is done.
  QMetaObject::invokeMethod(
      this,
      [this, z] {
        cdata_.ListOperation(0, data::loReload);
        Refresh();
        emit stored(z);
      },
      Qt::QueuedConnection);
  return true;
}

}  // namespace korvan::desktop
