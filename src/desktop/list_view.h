#pragma once

class QTreeView;
class QWidget;

namespace korvan::desktop {

class CDataModel;

// A read-only list over a data module's rows: whole rows selected, the columns as wide as
// their definition says, every level open.
QTreeView* NewListView(CDataModel& model, QWidget* parent);

}  // namespace korvan::desktop
