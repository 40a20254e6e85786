#pragma once

#include <QDialog>
#include <QWidget>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

class QDoubleSpinBox;
class QLayout;
class QPushButton;
class QTreeView;

namespace korvan::app {
class TdmPreisspiegel;
class TdmRangliste;
}  // namespace korvan::app

namespace korvan::desktop {

class CDataModel;

// The bidders' checked totals as bars, the cheapest in green.
class TotalsChart : public QWidget {
 public:
  explicit TotalsChart(std::vector<std::pair<std::string, double>> totals,
                       QWidget* parent = nullptr);
  QSize sizeHint() const override { return {420, 40 + 34 * static_cast<int>(totals_.size())}; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  std::vector<std::pair<std::string, double>> totals_;
};

// The bidders of one LV by rank with their sums.
class BiddersDialog : public QDialog {
  Q_OBJECT  // so that findChild tells it from other dialogs

      public :
      // `module` loaded.
      BiddersDialog(std::unique_ptr<app::TdmRangliste> module, const QString& lv_name,
                    QWidget* parent = nullptr);
  ~BiddersDialog() override;
  QTreeView* View() const { return view_; }
  // What opens the chosen bidder's bid (double-click or the button "Angebot"); without
  // it the button stays disabled.
  void SetOpenBid(std::function<void(int bidder)> open);
  // The running number of the chosen bidder, 0 for none.
  int CurrentBidder() const;
  // What starts the award of the chosen bidder (the button "Vergabe durchführen ...").
  void SetAward(std::function<void(int bidder)> award);
  // Reads the bidders again (after an award).
  void Refresh();

 private:
  void OpenBid();

  std::unique_ptr<app::TdmRangliste> module_;
  std::unique_ptr<CDataModel> model_;
  QTreeView* view_ = nullptr;
  QPushButton* open_bid_ = nullptr;
  QPushButton* award_ = nullptr;
  std::function<void(int bidder)> open_;
  std::function<void(int bidder)> start_award_;
};

// The price comparison: the bidders side by side per item with the prices far from the
// mean marked, below it the rank list and the chart of the totals.
class ComparisonDialog : public QDialog {
  Q_OBJECT

 public:
  // Both modules loaded; a changed threshold is remembered in the user configuration of
  // the installation in `data_dir`.
  ComparisonDialog(std::unique_ptr<app::TdmPreisspiegel> comparison,
                   std::unique_ptr<app::TdmRangliste> ranks, const QString& lv_name,
                   std::string data_dir, QWidget* parent = nullptr);
  ~ComparisonDialog() override;
  QTreeView* Grid() const { return grid_; }
  QTreeView* Ranks() const { return ranks_view_; }
  app::TdmPreisspiegel& Module() { return *comparison_; }
  QDoubleSpinBox* MaxDeviation() const { return deviation_; }
  // Marks the prices again with another threshold and remembers it; false with
  // LastMessage() when the comparison or the configuration failed.
  bool SetMaxDeviation(double percent);
  const QString& LastMessage() const { return last_message_; }

 private:
  QLayout* Options();

  std::unique_ptr<app::TdmPreisspiegel> comparison_;
  std::unique_ptr<app::TdmRangliste> ranks_;
  std::unique_ptr<CDataModel> grid_model_;
  std::unique_ptr<CDataModel> ranks_model_;
  QTreeView* grid_ = nullptr;
  QTreeView* ranks_view_ = nullptr;
  QDoubleSpinBox* deviation_ = nullptr;
  std::string data_dir_;
  QString last_message_;
};

}  // namespace korvan::desktop
