#include "desktop/bid_view.h"

#include <QLabel>
#include <QTreeView>
#include <QVBoxLayout>

#include "app/modules/dm_angebot_zeilen.h"
#include "desktop/cdata_model.h"
#include "desktop/list_view.h"

namespace korvan::desktop {

BidDialog::BidDialog(std::unique_ptr<app::TdmAngebotZeilen> module, const QString& lv_name,
                     QWidget* parent)
    : QDialog(parent), module_(std::move(module)) {
  setWindowTitle(QString::fromStdString("Angebot " + module_->BidderName() + " – ") + lv_name);
  model_ = std::make_unique<CDataModel>(module_->CData1);
  auto* layout = new QVBoxLayout(this);
  lines_ = NewListView(*model_, this);
  lines_->setObjectName("angebotszeilen");
  layout->addWidget(lines_);
  sums_ = new QLabel(QString::fromStdString(module_->TotalsText()), this);
  sums_->setObjectName("angebotssummen");
  sums_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  layout->addWidget(sums_);
  resize(1280, 600);
}

BidDialog::~BidDialog() = default;

}  // namespace korvan::desktop
