#pragma once

class QTreeView;
class QWidget;

namespace korvan::desktop {

class CDataModel;

// A read-only list over a data module's rows: whole rows selected, the columns as wide as
// their definition says (FitColumns), every level open.
QTreeView* NewListView(CDataModel& model, QWidget* parent);

// The widths the columns are defined with, wider where a caption (a bidder's name) needs it.
void FitColumns(QTreeView& view, const CDataModel& model);

}  // namespace korvan::desktop
