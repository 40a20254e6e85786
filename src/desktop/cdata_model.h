#pragma once

#include <QAbstractItemModel>
#include <functional>
#include <vector>

#include "data/component/c_data.h"

namespace korvan::desktop {

// The one adapter between a data component and Qt's views: rows are the component's rows,
// nested by their levels (a row belongs to the nearest row above it with a lower level),
// columns are its column structure, captions come from the text catalogue, and a cell
// takes typed values when its column definition says so. Values are asked of the data
// module once per refresh; a stored edit makes the component read its rows again, as a
// changed quantity or price changes sums in other rows.
class CDataModel : public QAbstractItemModel {
  Q_OBJECT

 public:
  explicit CDataModel(data::TCData& cdata, QObject* parent = nullptr);

  // Shows the component's rows as they are now.
  void Refresh();
  // The row number (1-based) of an index; 0 for none.
  int RowOf(const QModelIndex& index) const;
  QModelIndex IndexOfRow(int z, int column = 0) const;
  // The width the column definition gives, in pixels.
  int ColumnWidth(int column) const;
  data::TCData& Component() { return cdata_; }
  // Cells the data module marks (a price far from the mean) are drawn in the warning colour.
  void SetMarks(std::function<bool(int z, int column)> marked) { marked_ = std::move(marked); }

  QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
  QModelIndex parent(const QModelIndex& child) const override;
  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;
  bool setData(const QModelIndex& index, const QVariant& value, int role) override;

 signals:
  // Row z was stored; the rows have been read again.
  void stored(int z);
  // The data module refused the edit of row z; nothing changed.
  void refused(int z);

 private:
  void BuildTree();

  data::TCData& cdata_;
  std::vector<data::TStringList> values_;   // per row z - 1
  std::vector<int> parent_;                 // per row z: its parent row, 0 for the top
  std::vector<int> position_;               // per row z: its place among its siblings
  std::vector<std::vector<int>> children_;  // per row z (0: the top): its child rows
  std::function<bool(int z, int column)> marked_;
};

}  // namespace korvan::desktop
