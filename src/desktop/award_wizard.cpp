#include "desktop/award_wizard.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QProgressBar>
#include <QRadioButton>
#include <QToolButton>
#include <QVBoxLayout>
#include <sstream>

#include "app/cli/german_number.h"
#include "app/commands/award/award_action.h"
#include "app/modules/dm_rangliste.h"

namespace korvan::desktop {
namespace {

constexpr const char* kPrintingMissing =
    "Noch nicht verfügbar: Briefe und Vertragsunterlagen brauchen den Druck, den es noch nicht "
    "gibt. Die Vergabe läuft ohne sie; es wird nichts gedruckt oder gesendet.";

// A page whose "OK" waits for a condition.
class ChoicesPage : public QWizardPage {
 public:
  explicit ChoicesPage(std::function<bool()> complete) : complete_(std::move(complete)) {}
  bool isComplete() const override { return complete_(); }

 private:
  std::function<bool()> complete_;
};

QCheckBox* Choice(QWidget* parent, QLayout* layout, const char* name, const QString& text,
                  bool on) {
  auto* box = new QCheckBox(text, parent);
  box->setObjectName(name);
  box->setChecked(on);
  layout->addWidget(box);
  return box;
}

// A document chosen with "...": shown, but printing does not exist yet.
void DocumentLine(QWidget* parent, QFormLayout* form, const QString& caption, const char* name) {
  auto* line = new QHBoxLayout();
  auto* file = new QLineEdit(parent);
  file->setObjectName(name);
  file->setPlaceholderText("*.doc");
  file->setEnabled(false);
  auto* choose = new QToolButton(parent);
  choose->setText("...");
  choose->setEnabled(false);
  auto* now = new QCheckBox("sofort Drucken", parent);
  now->setEnabled(false);
  line->addWidget(file);
  line->addWidget(choose);
  line->addWidget(now);
  form->addRow(caption, line);
}

}  // namespace

AwardWizard::AwardWizard(std::string data_dir, std::string project, int32_t lv, int bidder,
                         QWidget* parent)
    : QWizard(parent), data_dir_(std::move(data_dir)), project_(std::move(project)), lv_(lv) {
  setWindowTitle("Vergabe durchführen ...");
  setWizardStyle(QWizard::ClassicStyle);
  setOption(QWizard::NoCancelButtonOnLastPage);  // the award is stored by then
  setButtonText(QWizard::NextButton, "&Weiter >");
  setButtonText(QWizard::BackButton, "< &Zurück");
  setButtonText(QWizard::CommitButton, "OK");
  setButtonText(QWizard::FinishButton, "OK");
  setButtonText(QWizard::CancelButton, "Abbrechen");
  setPage(kStart, StartPage());
  setPage(kDetail, DetailPage());
  setPage(kEnd, EndPage());
  FillBidders(bidder);
  PresetQuantities();
  connect(bidder_, &QComboBox::currentIndexChanged, this, &AwardWizard::PresetQuantities);
  ChoicesChanged();
  resize(640, 560);
}

QWizardPage* AwardWizard::StartPage() {
  auto* page = new ChoicesPage(
      [this] { return bidder_->count() > 0 && (LettersChosen() || contract_->isChecked()); });
  start_ = page;
  page->setTitle("Was möchten Sie tun:");
  auto* layout = new QVBoxLayout(page);
  auto* who = new QFormLayout();
  bidder_ = new QComboBox(page);
  bidder_->setObjectName("bieter");
  who->addRow("Bieter:", bidder_);
  layout->addLayout(who);

  letter_ = Choice(page, layout, "cbAnschreiben", "Anschreiben an den Bieter", false);
  rejections_ = Choice(page, layout, "cbAbschreiben", "Abschreiben an die übrigen Bieter", false);
  contract_lv_ = Choice(page, layout, "cbVertragsLv", "VertragsLv drucken/senden", false);
  contract_document_ = Choice(page, layout, "chkContract", "Vertrag drucken/senden", false);
  contract_ = Choice(page, layout, "cbVertraganlegen", "Vertrag anlegen", true);
  prices_ = Choice(page, layout, "cbBieterpreiseInLV", "Bieterpreise in LV übertragen", true);
  QCheckBox* journal =
      Choice(page, layout, "cbJournal", "Journaleintrag schreiben (noch nicht verfügbar)", false);
  journal->setEnabled(false);

  auto* transfer = new QGroupBox("Bieterpreise ins LV übertragen", page);
  transfer->setObjectName("optionenUebertragung");
  auto* options = new QVBoxLayout(transfer);
  auto* target = new QHBoxLayout();
  target->addWidget(new QLabel("Preise übertragen in", transfer));
  estimate_ = new QRadioButton("Schätzpreise", transfer);
  estimate_->setObjectName("rbSchaetzPreise");
  auto* award = new QRadioButton("Vergabepreise", transfer);
  award->setObjectName("rbVergabePreise");
  award->setChecked(true);
  target->addWidget(estimate_);
  target->addWidget(award);
  target->addStretch();
  options->addLayout(target);
  spread_ = Choice(transfer, options, "CheckBox1",
                   "Nachlässe und Pauschalierungen auf Einheitspreise umlegen", false);
  bid_quantities_ =
      Choice(transfer, options, "CheckBox2", "geänderte Mengen aus Angebot übernehmen", false);
  bidder_texts_ = Choice(transfer, options, "CheckBox3", "Bietertextergänzungen übernehmen", false);
  layout->addWidget(transfer);
  layout->addStretch();

  for (QCheckBox* box :
       {letter_, rejections_, contract_lv_, contract_document_, contract_, prices_}) {
    connect(box, &QCheckBox::toggled, this, &AwardWizard::ChoicesChanged);
  }
  connect(prices_, &QCheckBox::toggled, transfer, &QWidget::setEnabled);
  return page;
}

QWizardPage* AwardWizard::DetailPage() {
  auto* page = new QWizardPage();
  page->setTitle("An-/Abschreiben und Vertragsunterlagen:");
  page->setCommitPage(true);
  auto* layout = new QVBoxLayout(page);
  auto* missing = new QLabel(kPrintingMissing, page);
  missing->setObjectName("nichtVerfuegbar");
  missing->setWordWrap(true);
  missing->setStyleSheet("font-weight: bold");
  layout->addWidget(missing);
  auto* how = new QHBoxLayout();
  auto* print = new QRadioButton("Drucken", page);
  print->setObjectName("rbDrucken");
  print->setChecked(true);
  auto* send = new QRadioButton("Senden", page);
  send->setObjectName("rbSenden");
  for (QRadioButton* button : {print, send}) {
    button->setEnabled(false);
    how->addWidget(button);
  }
  how->addStretch();
  layout->addLayout(how);
  auto* form = new QFormLayout();
  DocumentLine(page, form, "Anschreiben:", "anschreiben");
  DocumentLine(page, form, "Abschreiben:", "abschreiben");
  layout->addLayout(form);
  layout->addStretch();
  return page;
}

QWizardPage* AwardWizard::EndPage() {
  auto* page = new QWizardPage();
  page->setTitle("Erfolgreich durchgeführt:");
  auto* layout = new QVBoxLayout(page);
  progress_ = new QProgressBar(page);
  progress_->setRange(0, 5);
  progress_->setValue(0);
  layout->addWidget(progress_);
  for (const char* line :
       {"lAngebotsCheck", "lBieterpreise", "lVergabeCheck", "lVertrag", "lAN", "lAnschreiben",
        "lAbschreiben", "lVertragsLv", "lVertragsunterlagen", "lFertig"}) {
    auto* label = new QLabel(page);
    label->setObjectName(line);
    layout->addWidget(label);
  }
  summary_ = new QLabel(page);
  summary_->setObjectName("zusammenfassung");
  summary_->setWordWrap(true);
  layout->addWidget(summary_);
  layout->addStretch();
  return page;
}

void AwardWizard::FillBidders(int bidder) {
  app::TdmRangliste ranks(data_dir_, project_, lv_);
  if (!ranks.Loaded()) {
    last_message_ = QString::fromStdString(ranks.LastError());
    return;
  }
  for (int z = 1; z <= ranks.CData1.GetRmax(); ++z) {
    const int number = ranks.BidderNumberOf(z);
    const std::vector<std::string> cells = ranks.CData1.Data2Screen(z);
    bidder_->addItem(QString::fromStdString(cells[app::TdmRangliste::cBieter]), number);
    if (number == bidder) bidder_->setCurrentIndex(bidder_->count() - 1);
  }
}

bool AwardWizard::LettersChosen() const {
  return letter_->isChecked() || rejections_->isChecked() || contract_lv_->isChecked() ||
         contract_document_->isChecked();
}

void AwardWizard::ChoicesChanged() {
  // Without letters the start page is the last before the award runs.
  start_->setCommitPage(!LettersChosen());
  emit start_->completeChanged();
}

int AwardWizard::nextId() const {
  switch (currentId()) {
    case kStart:
      return LettersChosen() ? kDetail : kEnd;
    case kDetail:
      return kEnd;
    default:
      return -1;
  }
}

bool AwardWizard::validateCurrentPage() {
  if (currentId() == kEnd || nextId() != kEnd) return QWizard::validateCurrentPage();
  return Run();
}

bool AwardWizard::Ask(const QString& question) {
  if (asker_) return asker_(question);
  return QMessageBox::question(this, windowTitle(), question) == QMessageBox::Yes;
}

void AwardWizard::Refuse(const QString& why) {
  last_message_ = why;
  if (!asker_) QMessageBox::warning(this, windowTitle(), why);
}

void AwardWizard::Tick(const char* line, bool done, const QString& text) {
  findChild<QLabel*>(line)->setText((done ? "✔  " : "–  ") + text);
}

bool AwardWizard::Run() {
  const int number = bidder_->currentData().toInt();
  try {
    app::BidLv target(data_dir_, project_, std::to_string(lv_), true);
    const award::t_Bieter_DB_VERSION_3100 bidder = target.Bidder(std::to_string(number));
    const award::TBidCheck check = app::CheckBidForAward(target, bidder);
    if (check.Found() && !Ask(QString(award::kCheckQuestion) + "\n\n" +
                              QString::fromStdString(award::CheckFindingsText(check)))) {
      Refuse("Vergabe abgebrochen: es wurde nichts geändert.");
      return false;
    }
    app::AwardRequest request;
    request.options.accept_check_findings = true;  // asked above
    request.options.transfer_prices = prices_->isChecked();
    request.options.transfer.target =
        estimate_->isChecked() ? award::TBidPriceTarget::kEstimate : award::TBidPriceTarget::kAward;
    request.options.transfer.spread = spread_->isChecked();
    request.options.transfer.bid_quantities = bid_quantities_->isChecked();
    request.bidder_texts = prices_->isChecked() && bidder_texts_->isChecked();
    request.contract = contract_->isChecked();
    std::ostringstream warnings;
    const app::AwardOutcome outcome = app::AwardToBidder(target, bidder, request, warnings);
    awarded_ = true;
    ShowOutcome(bidder.Bietername.Get(), outcome, check.Found(), warnings.str());
  } catch (const std::exception& failure) {
    Refuse(QString::fromStdString(failure.what()));
    return false;
  }
  return true;
}

void AwardWizard::PresetQuantities() {
  // Preset on when the bid's quantities differ from the LV's, as the transfer would do.
  try {
    app::BidLv target(data_dir_, project_, std::to_string(lv_), false);
    const award::t_Bieter_DB_VERSION_3100 bidder =
        target.Bidder(std::to_string(bidder_->currentData().toInt()));
    bid_quantities_->setChecked(!app::CheckBidForAward(target, bidder).other_quantity.empty());
  } catch (const std::exception&) {
    bid_quantities_->setChecked(false);  // the award run says what is wrong with the bid
  }
}

void AwardWizard::ShowOutcome(const std::string& bidder, const app::AwardOutcome& outcome,
                              bool findings, const std::string& warnings) {
  const award::TAwardResult& result = outcome.result;
  Tick("lAngebotsCheck", true,
       findings ? "Angebotscheck: mit Befund, Vergabe bestätigt" : "Angebotscheck: ohne Befund");
  Tick("lBieterpreise", result.prices_transferred,
       result.prices_transferred
           ? QString("Bieterpreise übertragen: %1 Positionen").arg(result.transfer.items)
           : QString("Bieterpreise nicht übertragen"));
  Tick("lVergabeCheck", result.items_without_award_price == 0,
       result.items_without_award_price == 0
           ? QString("Vergabecheck des LV")
           : QString("Vergabecheck: %1 Positionen ohne Vergabepreis")
                 .arg(result.items_without_award_price));
  Tick("lVertrag", outcome.contract.has_value(),
       outcome.contract
           ? QString::fromStdString("Vertrag \"" + outcome.contract->AuftragsNr.Get() +
                                    "\" angelegt, Auftragssumme " +
                                    app::GermanMoney(outcome.contract->Auftragssumme.Betrag))
           : QString("kein Vertrag angelegt"));
  Tick("lAN", outcome.contract.has_value(), QString::fromStdString("Auftragnehmer: " + bidder));
  Tick("lAnschreiben", false, "Anschreiben: noch nicht verfügbar");
  Tick("lAbschreiben", false, "Abschreiben: noch nicht verfügbar");
  Tick("lVertragsLv", false, "VertragsLv: noch nicht verfügbar");
  Tick("lVertragsunterlagen", false, "Vertragsunterlagen: noch nicht verfügbar");
  Tick("lFertig", true, "Fertig");
  progress_->setValue(progress_->maximum());
  const boq::t_Lv_DB_VERSION_3100& lv = outcome.lv.FLv();
  last_message_ = QString::fromStdString(
      "Vergabe an \"" + bidder + "\" im LV \"" + lv.Name.Get() + "\": Status " +
      std::string(1, lv.Status) + ", Vergabesumme " + app::GermanMoney(lv.VergabeSum.Betrag) +
      ". " + app::kLettersUnavailable + " Rückgängig mit Strg+Z im Hauptfenster.");
  if (!warnings.empty()) last_message_ += "\n" + QString::fromStdString(warnings);
  summary_->setText(last_message_);
}

}  // namespace korvan::desktop
