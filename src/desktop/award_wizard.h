#pragma once

#include <QWizard>
#include <cstdint>
#include <functional>
#include <string>

class QCheckBox;
class QComboBox;
class QLabel;
class QProgressBar;
class QRadioButton;

namespace korvan::app {
struct AwardOutcome;
}

namespace korvan::desktop {

// The award of one bidder's bid, "Vergabe durchführen ...", in three pages: what to do
// (with the options of the price transfer), the letters and contract documents (only
// when chosen; they wait for printing and say so), and what was done. The award itself
// is the one `korvan award` runs: one step of the journal, Ctrl+Z takes it back whole.
class AwardWizard : public QWizard {
  Q_OBJECT

 public:
  enum Page { kStart, kDetail, kEnd };

  // The LV `lv` of `project` in the installation `data_dir`; `bidder` the running number
  // of the bidder chosen first (0: the first by rank).
  AwardWizard(std::string data_dir, std::string project, int32_t lv, int bidder,
              QWidget* parent = nullptr);

  // Instead of a message box (tests): the answer to a question.
  void SetAsker(std::function<bool(const QString&)> asker) { asker_ = std::move(asker); }
  // Whether the award ran; then the LV, its prices and the contract are stored.
  bool Awarded() const { return awarded_; }
  // What the award said last: its summary, or why it did not run.
  const QString& LastMessage() const { return last_message_; }

  int nextId() const override;
  bool validateCurrentPage() override;

 private:
  QWizardPage* StartPage();
  QWizardPage* DetailPage();
  QWizardPage* EndPage();
  void FillBidders(int bidder);
  void ChoicesChanged();
  void PresetQuantities();
  void ShowOutcome(const std::string& bidder, const app::AwardOutcome& outcome, bool findings,
                   const std::string& warnings);
  bool LettersChosen() const;
  bool Run();
  bool Ask(const QString& question);
  void Refuse(const QString& why);
  void Tick(const char* line, bool done, const QString& text);

  std::string data_dir_;
  std::string project_;
  int32_t lv_;
  QComboBox* bidder_ = nullptr;
  QCheckBox* letter_ = nullptr;             // cbAnschreiben
  QCheckBox* rejections_ = nullptr;         // cbAbschreiben
  QCheckBox* contract_lv_ = nullptr;        // cbVertragsLv
  QCheckBox* contract_ = nullptr;           // cbVertraganlegen
  QCheckBox* prices_ = nullptr;             // cbBieterpreiseInLV
  QCheckBox* contract_document_ = nullptr;  // chkContract
  QRadioButton* estimate_ = nullptr;        // rbSchaetzPreise
  QCheckBox* spread_ = nullptr;             // CheckBox1
  QCheckBox* bid_quantities_ = nullptr;     // CheckBox2
  QCheckBox* bidder_texts_ = nullptr;       // CheckBox3
  QWizardPage* start_ = nullptr;
  QProgressBar* progress_ = nullptr;
  QLabel* summary_ = nullptr;
  std::function<bool(const QString&)> asker_;
  bool awarded_ = false;
  QString last_message_;
};

}  // namespace korvan::desktop
