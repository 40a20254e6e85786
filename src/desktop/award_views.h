#pragma once

#include <QDialog>
#include <QWidget>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

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
 public:
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

 private:
  void OpenBid();

  std::unique_ptr<app::TdmRangliste> module_;
  std::unique_ptr<CDataModel> model_;
  QTreeView* view_ = nullptr;
  QPushButton* open_bid_ = nullptr;
  std::function<void(int bidder)> open_;
};

// The price comparison: the bidders side by side per item with the prices far from the
// mean marked, below it the rank list and the chart of the totals.
class ComparisonDialog : public QDialog {
 public:
  // Both modules loaded.
  ComparisonDialog(std::unique_ptr<app::TdmPreisspiegel> comparison,
                   std::unique_ptr<app::TdmRangliste> ranks, const QString& lv_name,
                   QWidget* parent = nullptr);
  ~ComparisonDialog() override;
  QTreeView* Grid() const { return grid_; }
  QTreeView* Ranks() const { return ranks_view_; }
  app::TdmPreisspiegel& Module() { return *comparison_; }

 private:
  std::unique_ptr<app::TdmPreisspiegel> comparison_;
  std::unique_ptr<app::TdmRangliste> ranks_;
  std::unique_ptr<CDataModel> grid_model_;
  std::unique_ptr<CDataModel> ranks_model_;
  QTreeView* grid_ = nullptr;
  QTreeView* ranks_view_ = nullptr;
};

}  // namespace korvan::desktop
