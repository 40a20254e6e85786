#include "award/prices/dm_price_levels.h"

#include <cmath>

#include "award/prices/mean_value.h"
#include "award/prices/tb_price_tables.h"
#include "data/records/int_date.h"
#include "data/records/null_values.h"
#include "data/tables/tb_counter.h"
#include "storage/result_codes.h"

namespace korvan::award {
namespace {

constexpr char kPriceCounterKind = 'P';
constexpr char kLevelCounter[] = "PrNiveau";
constexpr char kEntryCounter[] = "PrEntry";
constexpr double kTolerance = 0.0001;

[[noreturn]] void Fail(data::TStdDb& db, const std::string& what, int code) {
  throw EPriceDbError(db.BasePath() + "0: " + what + " (Fehler " + std::to_string(code) + ")");
}

int32_t NextId(data::TStdDb& db, const char* counter) {
  int32_t id = 0;
  data::TTbCounter counters(db);
  if (int result = counters.NextId(kPriceCounterKind, counter, &id); result != storage::kOk) {
    Fail(db, std::string("für ") + counter + " gibt es keine Nummer", result);
  }
  return id;
}

}  // namespace

TdmPrNiveau::TdmPrNiveau(data::TStdDb& price_db, std::string user)
    : db_(price_db), user_(std::move(user)) {}

std::optional<t_PrNiveau> TdmPrNiveau::Find(const std::string& name) {
  return TTbPrNiveau(db_).FindByName(name);
}

t_PrNiveau TdmPrNiveau::FindOrCreate(const std::string& name) {
  TTbPrNiveau table(db_);
  if (std::optional<t_PrNiveau> found = table.FindByName(name)) return *found;
  const int32_t id = NextId(db_, kLevelCounter);
  table.InitRecord();
  table.Rec().Id = id;
  table.Rec().Bez.Set(name);
  table.Rec().CreateUser.Set(user_.substr(0, 10));
  table.Rec().ModifyUser.Set(user_.substr(0, 10));
  if (int result = table.UpDateRec(); result != storage::kOk) {
    Fail(db_, "das Preisniveau \"" + name + "\" kann nicht geschrieben werden", result);
  }
  return table.Rec();
}

TdmPrEntry::TdmPrEntry(data::TStdDb& price_db, std::string user)
    : db_(price_db), user_(std::move(user)) {}

std::optional<t_PrEntry> TdmPrEntry::Find(int32_t level, int32_t item) {
  TTbPrEntry table(db_);
  if (!table.FindOf(level, item)) return std::nullopt;
  return table.Rec();
}

t_PrEntry TdmPrEntry::Write(TTbPrEntry& table, const char* what) {
  if (int result = table.UpDateRec(); result != storage::kOk) {
    Fail(db_,
         std::string(what) + " kann nicht geschrieben werden (Preiseintrag " +
             std::to_string(table.Rec().Id) + ")",
         result);
  }
  return table.Rec();
}

bool TdmPrEntry::PassPrice(int32_t level, int32_t item, double price, TPriceOrigin origin,
                           const TPassOptions& options) {
  TTbPrEntry table(db_);
  std::optional<double> stored;
  if (table.FindOf(level, item)) {
    stored = table.Rec().Wert.Betrag;
    if (options.max_deviation > 0.0 && std::fabs(*stored) >= kTolerance &&
        std::fabs(100.0 - price / *stored * 100.0) > options.max_deviation) {
      return false;
    }
    table.Rec().ModifyDate = data::TodayAsIntDate();
    table.Rec().ModifyUser.Set(user_.substr(0, 10));
  } else {
    table.InitRecord();
    table.Rec().Id = NextId(db_, kEntryCounter);
    table.Rec().IdPrNiveau = level;
    table.Rec().IdBezug = item;
    table.Rec().CreateUser.Set(user_.substr(0, 10));
    table.Rec().ModifyUser.Set(user_.substr(0, 10));
  }
  table.Rec().Wert.Betrag = options.average_with_stored ? AveragedPrice(stored, price) : price;
  table.Rec().IdProjekt = origin.project;
  table.Rec().IdBieter = origin.bidder;
  Write(table, "der Preis");
  return true;
}

double TdmPrEntry::BasePrice(const t_PrEntry& entry) {
  if (entry.IdIdxBezug == data::kNullId) return entry.Wert.Betrag * entry.ProzFak;
  TTbPrEntry table(db_);
  if (!table.Find(entry.IdIdxBezug)) return 0.0;  // a base deleted meanwhile prices nothing
  return table.Rec().Wert.Betrag * table.Rec().ProzFak * entry.ProzFak;
}

t_PrEntry TdmPrEntry::SetPercentOfBase(int32_t entry, double percent) {
  TTbPrEntry table(db_);
  if (!table.Find(entry)) {
    throw EPriceDbError(db_.BasePath() + "0: es gibt keinen Preiseintrag " + std::to_string(entry));
  }
  const double factor = percent / 100.0;
  if (factor == table.Rec().ProzFak) return table.Rec();
  table.Rec().ProzFak = factor;
  table.Rec().ModifyDate = data::TodayAsIntDate();
  table.Rec().ModifyUser.Set(user_.substr(0, 10));
  return Write(table, "\"% zu Basis\"");
}

t_PrEntry TdmPrEntry::SetBase(int32_t entry, int32_t base, double percent) {
  TTbPrEntry table(db_);
  if (!table.Find(entry) || entry == base) {
    throw EPriceDbError(db_.BasePath() + "0: der Preiseintrag " + std::to_string(entry) +
                        " kann nicht auf " + std::to_string(base) + " bezogen werden");
  }
  table.Rec().IdIdxBezug = base;
  Write(table, "die Basis");
  return SetPercentOfBase(entry, percent);
}

}  // namespace korvan::award
