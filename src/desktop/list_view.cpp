#include "desktop/list_view.h"

#include <QHeaderView>
#include <QTreeView>
#include <algorithm>

#include "desktop/cdata_model.h"

namespace korvan::desktop {

QTreeView* NewListView(CDataModel& model, QWidget* parent) {
  auto* view = new QTreeView(parent);
  view->setModel(&model);
  view->setUniformRowHeights(true);
  view->setAlternatingRowColors(true);
  view->setEditTriggers(QAbstractItemView::NoEditTriggers);
  view->setSelectionBehavior(QAbstractItemView::SelectRows);
  FitColumns(*view, model);
  view->expandAll();
  return view;
}

void FitColumns(QTreeView& view, const CDataModel& model) {
  for (int column = 0; column < model.columnCount(); ++column) {
    view.header()->resizeSection(
        column, std::max<int>(model.ColumnWidth(column), view.header()->sectionSizeHint(column)));
  }
}

}  // namespace korvan::desktop
