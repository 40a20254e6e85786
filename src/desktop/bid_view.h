#pragma once

#include <QDialog>
#include <memory>

class QLabel;
class QTreeView;

namespace korvan::app {
class TdmAngebotZeilen;
}

namespace korvan::desktop {

class CDataModel;

// One bidder's bid: the LV's lines with the bid's quantities, prices and discounts in the
// columns of the bid's grid, below them the bidder's sums. Read-only.
class BidDialog : public QDialog {
  Q_OBJECT

 public:
  // `module` loaded.
  BidDialog(std::unique_ptr<app::TdmAngebotZeilen> module, const QString& lv_name,
            QWidget* parent = nullptr);
  ~BidDialog() override;
  QTreeView* Lines() const { return lines_; }
  QLabel* Sums() const { return sums_; }
  app::TdmAngebotZeilen& Module() { return *module_; }

 private:
  std::unique_ptr<app::TdmAngebotZeilen> module_;
  std::unique_ptr<CDataModel> model_;
  QTreeView* lines_ = nullptr;
  QLabel* sums_ = nullptr;
};

}  // namespace korvan::desktop
