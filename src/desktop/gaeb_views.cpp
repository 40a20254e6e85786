#include "desktop/gaeb_views.h"

#include <QApplication>
#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QFormLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QProgressDialog>
#include <QRadioButton>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <functional>
#include <sstream>

#include "app/commands/bid/bid_file_import.h"
#include "app/commands/gaeb/gaeb_lv_export.h"
#include "app/commands/gaeb/gaeb_lv_import.h"
#include "app/commands/gaeb/gaeb_price_option.h"
#include "exchange/gaeb/gaeb_file_name.h"
#include "exchange/gaeb/gaeb_format.h"
#include "exchange/gaeb/gaeb_phase.h"

namespace korvan::desktop {
namespace {

// Thrown from a progress report when the user stops the run; no std::exception, so that
// nothing on the way takes it for a failure of the file.
struct StoppedByUser {};

constexpr const char* kImportFilter =
    "GAEB DA XML (*.X81 *.X82 *.X83 *.X84 *.X85 *.X86 *.x81 *.x82 *.x83 *.x84 *.x85 *.x86 *.xml "
    "*.XML);;Alle Dateien (*)";

// A progress dialog told by the run's progress reports; its button stops the run.
class RunProgress {
 public:
  RunProgress(QWidget* parent, const QString& label, bool can_stop)
      : dialog_(label, can_stop ? QString("Abbrechen") : QString(), 0, 0, parent) {
    dialog_.setWindowTitle("Korvan");
    dialog_.setWindowModality(Qt::WindowModal);
    dialog_.setMinimumDuration(400);
    if (!can_stop) dialog_.setCancelButton(nullptr);
    dialog_.setValue(0);
  }
  void operator()(int done, int total) {
    if (dialog_.maximum() != total) dialog_.setMaximum(total);
    dialog_.setValue(done);
    if (dialog_.wasCanceled()) throw StoppedByUser{};
  }

 private:
  QProgressDialog dialog_;
};

// A refused file's message names the file and line first ("a.x83:12: ..."): they go into
// their columns.
GaebFinding FailureFinding(const std::string& file, const std::string& message) {
  GaebFinding finding{"Fehler", file, 0, message};
  if (message.rfind(file + ":", 0) != 0) return finding;
  const size_t from = file.size() + 1;
  const size_t colon = message.find(':', from);
  if (colon == std::string::npos || colon == from) return finding;
  const std::string digits = message.substr(from, colon - from);
  if (digits.size() > 9 || digits.find_first_not_of("0123456789") != std::string::npos) {
    return finding;
  }
  finding.line = std::stoi(digits);
  finding.message = message.substr(colon + 1 + (message[colon + 1] == ' ' ? 1 : 0));
  return finding;
}

void AddFindings(GaebOutcome& outcome, const std::string& file,
                 const exchange::gaeb_xml::TGaebFindings& findings) {
  for (const exchange::gaeb_xml::TGaebFinding& finding : findings) {
    outcome.findings.push_back({std::string(exchange::gaeb_xml::FindingKindText(finding.kind)),
                                file, finding.line, finding.message});
  }
}

// The warnings a run wrote ("Warnung: ..." lines) as findings without a line.
void AddWarnings(GaebOutcome& outcome, const std::string& file, const std::string& warnings) {
  std::istringstream lines(warnings);
  for (std::string line; std::getline(lines, line);) {
    if (line.empty()) continue;
    const std::string prefix = "Warnung: ";
    if (line.rfind(prefix, 0) == 0) line.erase(0, prefix.size());
    outcome.findings.push_back({"Warnung", file, 0, line});
  }
}

exchange::TGaebImportOptions ImportOptions(const GaebImportChoice& choice) {
  exchange::TGaebImportOptions options;
  options.prices = choice.prices != "none";
  if (options.prices && !choice.prices.empty()) {
    options.price_kind = app::PriceKindOption(choice.prices);
  }
  options.ignore_project_info = choice.ignore_project_info;
  options.ignore_currency = choice.ignore_currency;
  options.lv_name = choice.lv_name;
  return options;
}

GaebOutcome ImportLv(QWidget* parent, const GaebPlace& place, const GaebImportChoice& choice) {
  GaebOutcome outcome;
  std::ostringstream warnings;
  try {
    RunProgress progress(parent, "GAEB-Datei wird eingelesen …", true);
    const app::GaebLvImported imported =
        app::ImportGaebLv(place.data_dir, place.project, choice.file, ImportOptions(choice),
                          warnings, std::ref(progress));
    outcome.done = true;
    outcome.new_lv = imported.id;
    outcome.summary = app::ImportedLvText(imported, choice.file);
    AddFindings(outcome, choice.file, imported.import.findings);
  } catch (const StoppedByUser&) {
    outcome.summary = "Einlesen abgebrochen; es wurde nichts gespeichert.";
  } catch (const std::exception& error) {
    outcome.summary = "Die Datei wurde nicht eingelesen.";
    outcome.findings.push_back(FailureFinding(choice.file, error.what()));
  }
  AddWarnings(outcome, choice.file, warnings.str());
  return outcome;
}

// The bid import reads the file in one go: the dialog only says that it works.
GaebOutcome ImportBid(QWidget* parent, const GaebPlace& place, const GaebImportChoice& choice) {
  GaebOutcome outcome;
  std::ostringstream warnings;
  try {
    RunProgress progress(parent, "Angebotsdatei wird eingelesen …", false);
    const app::BidFileImported imported =
        app::ImportBidFile(place.data_dir, place.project,
                           {.lv = std::to_string(place.lv),
                            .bidder = std::to_string(choice.bidder),
                            .file = choice.file,
                            .overwrite = choice.overwrite},
                           warnings);
    outcome.done = true;
    outcome.summary = app::ImportedBidText(imported, choice.file);
    AddFindings(outcome, choice.file, imported.import.findings);
  } catch (const std::exception& error) {
    outcome.summary = "Die Angebotsdatei wurde nicht eingelesen.";
    outcome.findings.push_back(FailureFinding(choice.file, error.what()));
  }
  AddWarnings(outcome, choice.file, warnings.str());
  return outcome;
}

QComboBox* BidderBox(const GaebPlace& place, QWidget* parent) {
  auto* box = new QComboBox(parent);
  for (const auto& [number, name] : place.bidders) {
    box->addItem(QString::number(number) + " – " + QString::fromStdString(name), number);
  }
  return box;
}

bool EndsWithX84(const std::string& file) {
  return QString::fromStdString(file).endsWith(".x84", Qt::CaseInsensitive);
}

// The choices of `korvan gaeb import` and `korvan bid import` for a chosen file.
class ImportChoiceDialog : public QDialog {
 public:
  ImportChoiceDialog(const GaebPlace& place, const std::string& file, QWidget* parent)
      : QDialog(parent) {
    setWindowTitle("GAEB-Import");
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(QString::fromStdString(file), this));
    new_lv_ = new QRadioButton(
        QString::fromStdString("Neues LV im Projekt \"" + place.project + "\""), this);
    bid_ = new QRadioButton(
        QString::fromStdString("Angebot eines Bieters (DA 84) für LV \"" + place.lv_name + "\""),
        this);
    const bool bid_possible = place.lv != 0 && !place.bidders.empty();
    bid_->setEnabled(bid_possible);
    (bid_possible && EndsWithX84(file) ? bid_ : new_lv_)->setChecked(true);
    layout->addWidget(new_lv_);
    auto* lv_form = new QFormLayout;
    name_ = new QLineEdit(this);
    name_->setPlaceholderText("Name aus der Datei");
    lv_form->addRow("Name des LV:", name_);
    prices_ = new QComboBox(this);
    const std::pair<const char*, const char*> prices[] = {
        {"Vorgabe der Phase", ""},        {"Schätzpreise", "estimate"},
        {"Vergabepreise", "award"},       {"Angebotspreise", "bid"},
        {"Abrechnungspreise", "billing"}, {"keine Preise übernehmen", "none"}};
    for (const auto& [caption, word] : prices) prices_->addItem(caption, QString(word));
    lv_form->addRow("Einheitspreise als:", prices_);
    ignore_project_info_ = new QCheckBox(
        "Projekt- und Vergabeangaben, Auftraggeber und Auftragnehmer ignorieren", this);
    ignore_currency_ = new QCheckBox("Währung der Datei ignorieren", this);
    lv_form->addRow(ignore_project_info_);
    lv_form->addRow(ignore_currency_);
    layout->addLayout(lv_form);
    layout->addWidget(bid_);
    auto* bid_form = new QFormLayout;
    bidder_ = BidderBox(place, this);
    bid_form->addRow("Bieter:", bidder_);
    overwrite_ = new QCheckBox("vorhandene Preise des Bieters überschreiben", this);
    bid_form->addRow(overwrite_);
    layout->addLayout(bid_form);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);
  }

  GaebImportChoice Choice(const std::string& file) const {
    GaebImportChoice choice{.file = file, .bid = bid_->isChecked()};
    choice.lv_name = name_->text().trimmed().toStdString();
    choice.prices = prices_->currentData().toString().toStdString();
    choice.ignore_project_info = ignore_project_info_->isChecked();
    choice.ignore_currency = ignore_currency_->isChecked();
    choice.bidder = bidder_->currentData().toInt();
    choice.overwrite = overwrite_->isChecked();
    return choice;
  }

 private:
  QRadioButton* new_lv_ = nullptr;
  QRadioButton* bid_ = nullptr;
  QLineEdit* name_ = nullptr;
  QComboBox* prices_ = nullptr;
  QCheckBox* ignore_project_info_ = nullptr;
  QCheckBox* ignore_currency_ = nullptr;
  QComboBox* bidder_ = nullptr;
  QCheckBox* overwrite_ = nullptr;
};

// The phase, version and, for a bid, the bidder of `korvan gaeb export`.
class ExportChoiceDialog : public QDialog {
 public:
  ExportChoiceDialog(const GaebPlace& place, QWidget* parent) : QDialog(parent) {
    setWindowTitle(QString::fromStdString("GAEB-Export – LV \"" + place.lv_name + "\""));
    auto* form = new QFormLayout(this);
    phase_ = new QComboBox(this);
    for (const exchange::TGaebPhaseInfo& info : exchange::ExportPhases()) {
      phase_->addItem(QString::fromStdString(exchange::PhaseCaption(info.phase)), info.phase);
    }
    phase_->setCurrentIndex(phase_->findData(exchange::kPhaseInvitation));
    form->addRow("Phase:", phase_);
    version_ = new QComboBox(this);
    version_->addItems({"3.3", "3.2", "3.1"});
    form->addRow("GAEB-DA-XML-Version:", version_);
    bidder_ = BidderBox(place, this);
    bidder_->insertItem(0, "– Preise des LV –", 0);
    bidder_->setCurrentIndex(0);
    form->addRow("Angebot des Bieters (nur Phase 84):", bidder_);
    auto follow = [this] { bidder_->setEnabled(Phase() == exchange::kPhaseBid); };
    connect(phase_, &QComboBox::currentIndexChanged, this, follow);
    follow();
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    form->addRow(buttons);
  }
  int Phase() const { return phase_->currentData().toInt(); }
  GaebExportChoice Choice() const {
    return {.phase = Phase(),
            .version = version_->currentText().toStdString(),
            .bidder = Phase() == exchange::kPhaseBid ? bidder_->currentData().toInt() : 0};
  }

 private:
  QComboBox* phase_ = nullptr;
  QComboBox* version_ = nullptr;
  QComboBox* bidder_ = nullptr;
};

exchange::TGAEBFormat FormatOf(const std::string& version) {
  return exchange::XmlFormatOfVersion(version).value_or(exchange::TGAEBFormat::gfXML330);
}

}  // namespace

std::optional<GaebImportChoice> AskGaebImport(QWidget* parent, const GaebPlace& place) {
  const QString file =
      QFileDialog::getOpenFileName(parent, "GAEB-Import", QDir::homePath(), kImportFilter);
  if (file.isEmpty()) return std::nullopt;
  ImportChoiceDialog dialog(place, file.toStdString(), parent);
  if (dialog.exec() != QDialog::Accepted) return std::nullopt;
  return dialog.Choice(file.toStdString());
}

std::optional<GaebExportChoice> AskGaebExport(QWidget* parent, const GaebPlace& place) {
  ExportChoiceDialog dialog(place, parent);
  if (dialog.exec() != QDialog::Accepted) return std::nullopt;
  GaebExportChoice choice = dialog.Choice();
  const std::string extension = exchange::GaebExtension(FormatOf(choice.version), choice.phase);
  const std::string name = exchange::DefaultGaebFileName(place.project, place.lv_name) + extension;
  const QString file = QFileDialog::getSaveFileName(
      parent, "GAEB-Export", QDir(QDir::homePath()).filePath(QString::fromStdString(name)),
      QString::fromStdString("GAEB DA XML (*" + extension + ")"));
  if (file.isEmpty()) return std::nullopt;
  choice.file = file.toStdString();
  return choice;
}

GaebOutcome RunGaebImport(QWidget* parent, const GaebPlace& place, const GaebImportChoice& choice) {
  return choice.bid ? ImportBid(parent, place, choice) : ImportLv(parent, place, choice);
}

GaebOutcome RunGaebExport(QWidget* parent, const GaebPlace& place, const GaebExportChoice& choice) {
  GaebOutcome outcome;
  app::GaebLvExport request{.lv = std::to_string(place.lv), .file = choice.file};
  request.options.phase = choice.phase;
  request.options.format = FormatOf(choice.version);
  if (choice.bidder != 0) request.bidder = std::to_string(choice.bidder);
  try {
    RunProgress progress(parent, "GAEB-Datei wird geschrieben …", true);
    const app::GaebLvExported exported =
        app::ExportGaebLv(place.data_dir, place.project, request, std::ref(progress));
    outcome.done = true;
    outcome.summary = app::ExportedLvText(exported, request.options);
    for (const std::string& warning : exported.result.warnings) {
      outcome.findings.push_back({"Warnung", exported.path, 0, warning});
    }
  } catch (const StoppedByUser&) {
    outcome.summary = "Ausgabe abgebrochen; es wurde keine Datei geschrieben.";
  } catch (const std::exception& error) {
    outcome.summary = "Die Datei wurde nicht geschrieben.";
    outcome.findings.push_back({"Fehler", choice.file, 0, error.what()});
  }
  return outcome;
}

FindingsDialog::FindingsDialog(const QString& title, const GaebOutcome& outcome, QWidget* parent)
    : QDialog(parent) {
  setWindowTitle(title);
  auto* layout = new QVBoxLayout(this);
  auto* summary = new QLabel(QString::fromStdString(outcome.summary), this);
  summary->setObjectName("zusammenfassung");
  summary->setWordWrap(true);
  layout->addWidget(summary);
  list_ = new QTreeWidget(this);
  list_->setObjectName("befunde");
  list_->setRootIsDecorated(false);
  list_->setAlternatingRowColors(true);
  list_->setHeaderLabels({"Art", "Datei", "Zeile", "Meldung"});
  for (const GaebFinding& finding : outcome.findings) {
    auto* item = new QTreeWidgetItem(list_);
    item->setText(0, QString::fromStdString(finding.kind));
    item->setText(1, QString::fromStdString(finding.file));
    item->setText(2, finding.line == 0 ? QString() : QString::number(finding.line));
    item->setTextAlignment(2, Qt::AlignRight | Qt::AlignVCenter);
    item->setText(3, QString::fromStdString(finding.message));
  }
  list_->header()->resizeSection(0, 90);
  list_->header()->resizeSection(1, 220);
  list_->header()->resizeSection(2, 60);
  layout->addWidget(list_);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::close);
  layout->addWidget(buttons);
  resize(900, 360);
}

}  // namespace korvan::desktop
