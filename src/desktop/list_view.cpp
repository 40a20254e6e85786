#include "desktop/list_view.h"

#include <QHeaderView>
#include <QTreeView>

#include "desktop/cdata_model.h"

namespace korvan::desktop {

QTreeView* NewListView(CDataModel& model, QWidget* parent) {
  auto* view = new QTreeView(parent);
  view->setModel(&model);
  view->setUniformRowHeights(true);
  view->setAlternatingRowColors(true);
  view->setEditTriggers(QAbstractItemView::NoEditTriggers);
  view->setSelectionBehavior(QAbstractItemView::SelectRows);
  for (int column = 0; column < model.columnCount(); ++column) {
    view->header()->resizeSection(column, model.ColumnWidth(column));
  }
  view->expandAll();
  return view;
}

}  // namespace korvan::desktop
