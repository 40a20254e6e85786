#include "award/tables/tb_bieter.h"

#include "award/bid/bid_texts.h"
#include "award/tables/tb_angebot.h"
#include "boq/lv/lv_table_types.h"
#include "boq/text/long_text_store.h"
#include "boq/text/tb_texte.h"
#include "data/common/message_format.h"
#include "data/integrity/data_check.h"
#include "data/records/int_date.h"
#include "data/records/null_values.h"
#include "data/tables/table_key.h"
#include "data/tables/tb_counter.h"
#include "storage/result_codes.h"

namespace korvan::award {
namespace {

using data::KeyNumber;
using data::kNullId;

constexpr char kBidderCounterKind = 'L';
constexpr char kBidderCounter[] = "Bieter";
constexpr int kLvVersionKeyWidth = 6;
// Bidder texts are kept in the language of entry texts.
constexpr int16_t kBidderTextLanguage = 49;

std::string LvKey(int32_t lv) {
  return KeyNumber(lv);
}

}  // namespace

TTbBieter::TTbBieter(data::TStdDb& db, data::TStdDb* text_db, char table_type)
    : TTypedTB(db, table_type, kLayoutVersion, "TTbBieter"), text_db_(text_db) {
  InitRecord();
}

void TTbBieter::InitRecord() {
  TStdTB::InitRecord();
  t_Bieter_DB_VERSION_3100& rec = Rec();
  rec.ID = kNullId;
  rec.IDLv = kNullId;
  rec.IdAdresse = kNullId;
  rec.IdWaehrung = data::kOwnerCurrencyId;
  for (data::t_WaeBetrag* amount : {&rec.SummeUngeprueft, &rec.Summe, &rec.NachlassAbs,
                                    &rec.SummeNachNL, &rec.SummePsch, &rec.SummeBrutto}) {
    amount->IdWaehrung = data::kOwnerCurrencyId;
  }
  rec.USt = -1.0F;
  rec.Waehrungsfaktor = -1.0;
  rec.Waehrungskursdatum = data::TodayAsIntDate();
  rec.Status = kBidsBlanko;
  for (TCashDiscount& term : rec.CashDiscount) {
    term.CashDiscDays.Kind = static_cast<uint8_t>(TCashDiscDaysTypeOfDays::cddtCalendarDays);
  }
}

int TTbBieter::GetKeyString(data::RecordView record, char index, std::string& key) const {
  const t_Bieter_DB_VERSION_3100 rec = Of(record);
  switch (index) {
    case '1':
      key = KeyNumber(rec.ID);
      break;
    case '2':
      key = LvKey(rec.IDLv) + KeyNumber(rec.SzLv, kLvVersionKeyWidth);
      break;
    case '3':
      key = KeyNumber(rec.IdAdresse) + KeyNumber(rec.ID);
      break;
    default:
      key.clear();
      return -1;
  }
  return static_cast<int>(key.size());
}

std::string TTbBieter::CurrentRecordToString() const {
  return data::Printf("Bieter %d \"%s\" des LV %d", Rec().ID, Rec().Bietername.Get().c_str(),
                      Rec().IDLv);
}

void TTbBieter::DoValidateRecord(data::TDataCheck& check) {
  check.SetAvaRecordID(Rec().ID);
  check.CheckItemForMandatory("ID", Rec().ID, kNullId);
  check.CheckItemForMandatory("IDLv", Rec().IDLv, kNullId);
}

int TTbBieter::DeleteRec() {
  const int32_t id = Rec().ID;
  if (id != kNullId) {
    if (text_db_ != nullptr) {
      if (int result = DeleteBidderTexts(Db(), *text_db_, id); result != storage::kOk) {
        return result;
      }
    }
    TTbAngebot lines(Db());
    if (int result = lines.DeleteAllOf(id); result != storage::kOk) return result;
  }
  return TStdTB::DeleteRec();
}

int TTbBieter::NewBieter(int32_t lv, const std::string& name) {
  const std::vector<t_Bieter_DB_VERSION_3100> others = ListOfLv(lv);
  int number = 0;
  for (const t_Bieter_DB_VERSION_3100& other : others) {
    number = std::max(number, static_cast<int>(other.BieterNrIntern));
  }
  int32_t id = 0;
  data::TTbCounter counters(Db());
  if (int result = counters.NextId(kBidderCounterKind, kBidderCounter, &id);
      result != storage::kOk) {
    return result;
  }
  InitRecord();
  Rec().ID = id;
  Rec().IDLv = lv;
  Rec().SzLv = static_cast<uint16_t>(others.empty() ? 1 : others.back().SzLv + 1);
  Rec().BieterNrIntern = static_cast<uint8_t>(std::min(number + 1, 255));
  Rec().Bietername.Set(name);
  return storage::kOk;
}

bool TTbBieter::Find(int32_t id) {
  return id != kNullId && GetKey(KeyNumber(id), '1');
}

std::vector<t_Bieter_DB_VERSION_3100> TTbBieter::ListOfLv(int32_t lv) {
  std::vector<t_Bieter_DB_VERSION_3100> bidders;
  if (lv == kNullId) return bidders;  // a null pattern would match every LV
  std::vector<std::vector<uint8_t>> records;
  if (GetBatch(LvKey(lv), '2', records) != storage::kOk) return bidders;
  for (const std::vector<uint8_t>& record : records) bidders.push_back(Of(record));
  return bidders;
}

int TTbBieter::DeleteAllOfLv(int32_t lv) {
  for (const t_Bieter_DB_VERSION_3100& bidder : ListOfLv(lv)) {
    if (!Find(bidder.ID)) continue;  // gone meanwhile
    if (int result = DeleteRec(); result != storage::kOk) return result;
  }
  return storage::kOk;
}

int DeleteBidderTexts(data::TStdDb& lv_db, data::TStdDb& text_db, int32_t bidder) {
  std::vector<t_Angebot_DB_VERSION_201501> lines;
  if (int result = TTbAngebot(lv_db).LinesOf(bidder, lines); result != storage::kOk) {
    return result;
  }
  std::vector<int32_t> line_ids;
  for (const t_Angebot_DB_VERSION_201501& line : lines) line_ids.push_back(line.ID);
  if (int result = TBidTextStore(text_db).DeleteOfBidder(bidder, line_ids);
      result != storage::kOk) {
    return result;
  }
  boq::TLongTextStore texts(text_db);
  return texts.Delete(bidder, kBidderTextKind, kBidderTextLanguage);
}

}  // namespace korvan::award
