#include "desktop/award_views.h"

#include <QDoubleSpinBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLocale>
#include <QPainter>
#include <QPushButton>
#include <QSplitter>
#include <QTreeView>
#include <QVBoxLayout>
#include <algorithm>

#include "app/cli/german_number.h"
#include "app/modules/dm_preisspiegel.h"
#include "app/modules/dm_rangliste.h"
#include "desktop/cdata_model.h"
#include "desktop/desk_settings.h"
#include "desktop/list_view.h"

namespace korvan::desktop {

TotalsChart::TotalsChart(std::vector<std::pair<std::string, double>> totals, QWidget* parent)
    : QWidget(parent), totals_(std::move(totals)) {
  setMinimumHeight(sizeHint().height());
}

void TotalsChart::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), palette().base());
  double highest = 0.0;
  double lowest = 0.0;
  bool first = true;
  for (const auto& [name, total] : totals_) {
    highest = std::max(highest, total);
    if (total > 0.0 && (first || total < lowest)) lowest = total;
    if (total > 0.0) first = false;
  }
  const int label_width = 180;
  const int figure_width = 110;
  const int bar_room = std::max(40, width() - label_width - figure_width - 30);
  int y = 14;
  for (const auto& [name, total] : totals_) {
    painter.setPen(palette().text().color());
    painter.drawText(QRect(10, y, label_width - 10, 24), Qt::AlignVCenter | Qt::AlignLeft,
                     QString::fromStdString(name));
    const int length = highest > 0.0 ? static_cast<int>(bar_room * total / highest) : 0;
    const bool cheapest = total > 0.0 && total == lowest;
    painter.fillRect(QRect(label_width, y + 3, length, 18),
                     cheapest ? QColor(90, 170, 90) : QColor(110, 140, 190));
    painter.drawText(QRect(label_width + length + 8, y, figure_width, 24),
                     Qt::AlignVCenter | Qt::AlignLeft,
                     QString::fromStdString(app::GermanMoney(total)));
    y += 34;
  }
}

BiddersDialog::BiddersDialog(std::unique_ptr<app::TdmRangliste> module, const QString& lv_name,
                             QWidget* parent)
    : QDialog(parent), module_(std::move(module)) {
  setWindowTitle("Bieter – " + lv_name);
  model_ = std::make_unique<CDataModel>(module_->CData1);
  auto* layout = new QVBoxLayout(this);
  view_ = NewListView(*model_, this);
  view_->setObjectName("bieter");
  layout->addWidget(view_);
  open_bid_ = new QPushButton("&Angebot", this);
  open_bid_->setObjectName("angebotOeffnen");
  open_bid_->setEnabled(false);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  buttons->addWidget(open_bid_);
  award_ = new QPushButton("&Vergabe durchführen ...", this);
  award_->setObjectName("vergabeDurchfuehren");
  award_->setEnabled(false);
  buttons->addWidget(award_);
  layout->addLayout(buttons);
  connect(award_, &QPushButton::clicked, this, [this] {
    if (start_award_) start_award_(CurrentBidder());
  });
  connect(open_bid_, &QPushButton::clicked, this, &BiddersDialog::OpenBid);
  connect(view_, &QTreeView::doubleClicked, this, &BiddersDialog::OpenBid);
  if (module_->CData1.GetRmax() > 0) view_->setCurrentIndex(model_->IndexOfRow(1));
  resize(900, 320);
}

BiddersDialog::~BiddersDialog() = default;

void BiddersDialog::SetOpenBid(std::function<void(int bidder)> open) {
  open_ = std::move(open);
  open_bid_->setEnabled(open_ != nullptr && module_->CData1.GetRmax() > 0);
}

void BiddersDialog::SetAward(std::function<void(int bidder)> award) {
  start_award_ = std::move(award);
  award_->setEnabled(start_award_ != nullptr && module_->CData1.GetRmax() > 0);
}

void BiddersDialog::Refresh() {
  const int z = model_->RowOf(view_->currentIndex());
  module_->CData1.ListOperation(0, data::loReload);
  model_->Refresh();
  FitColumns(*view_, *model_);
  if (z != 0 && z <= module_->CData1.GetRmax()) view_->setCurrentIndex(model_->IndexOfRow(z));
}

int BiddersDialog::CurrentBidder() const {
  return module_->BidderNumberOf(model_->RowOf(view_->currentIndex()));
}

void BiddersDialog::OpenBid() {
  const int bidder = CurrentBidder();
  if (open_ && bidder != 0) open_(bidder);
}

ComparisonDialog::ComparisonDialog(std::unique_ptr<app::TdmPreisspiegel> comparison,
                                   std::unique_ptr<app::TdmRangliste> ranks, const QString& lv_name,
                                   std::string data_dir, QWidget* parent)
    : QDialog(parent),
      comparison_(std::move(comparison)),
      ranks_(std::move(ranks)),
      data_dir_(std::move(data_dir)) {
  setWindowTitle("Preisspiegel – " + lv_name);
  grid_model_ = std::make_unique<CDataModel>(comparison_->CData1);
  grid_model_->SetMarks([this](int z, int column) { return comparison_->Deviates(z, column); });
  ranks_model_ = std::make_unique<CDataModel>(ranks_->CData1);

  auto* layout = new QVBoxLayout(this);
  layout->addLayout(Options());
  auto* down = new QSplitter(Qt::Vertical, this);
  grid_ = NewListView(*grid_model_, down);
  grid_->setObjectName("preisspiegel");
  auto* across = new QSplitter(Qt::Horizontal, down);
  ranks_view_ = NewListView(*ranks_model_, across);
  ranks_view_->setObjectName("rangliste");
  auto* chart = new TotalsChart(comparison_->Totals(), across);
  chart->setObjectName("diagramm");
  down->setStretchFactor(0, 3);
  down->setStretchFactor(1, 1);
  layout->addWidget(down);
  resize(1280, 760);
}

ComparisonDialog::~ComparisonDialog() = default;

QLayout* ComparisonDialog::Options() {
  auto* line = new QHBoxLayout();
  line->addWidget(
      new QLabel(QString::fromStdString("100 %: " + comparison_->ReferenceText() + ".   "), this));
  line->addWidget(new QLabel("Kennzeichnen von Positionen, die mehr als ", this));
  deviation_ = new QDoubleSpinBox(this);
  deviation_->setObjectName("eMaxAbweichung");
  deviation_->setLocale(QLocale(QLocale::German, QLocale::Germany));  // "10,0 %"
  deviation_->setRange(0.0, 1000.0);
  deviation_->setDecimals(1);
  deviation_->setSuffix(" %");
  deviation_->setSpecialValueText("0 % (keine)");
  deviation_->setValue(comparison_->MaxDeviation());
  deviation_->setKeyboardTracking(false);  // one comparison run per finished entry
  connect(deviation_, &QDoubleSpinBox::valueChanged, this, &ComparisonDialog::SetMaxDeviation);
  line->addWidget(deviation_);
  line->addWidget(new QLabel(" vom Mittelwert abweichen (rot)", this));
  line->addStretch();
  return line;
}

bool ComparisonDialog::SetMaxDeviation(double percent) {
  if (!comparison_->Remark(percent)) {
    last_message_ = QString::fromStdString(comparison_->LastError());
    return false;
  }
  grid_model_->Refresh();
  grid_->expandAll();
  std::string error;
  if (!RememberComparisonMaxDeviation(data_dir_, percent, &error)) {
    last_message_ = QString::fromStdString(error);
    return false;
  }
  last_message_.clear();
  return true;
}

}  // namespace korvan::desktop
