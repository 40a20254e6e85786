#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>

#include "award/prices/price_records.h"
#include "data/tables/std_db.h"

// The price database's levels (TdmPrNiveau) and entries (TdmPrEntry): find, create,
// update, prices relative to a base ("% zu Basis"), and prices passed in from bids.
namespace korvan::award {

// A price level or entry that cannot be read or written, naming the database and record.
class EPriceDbError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

class TdmPrNiveau {
 public:
  // `user`: the name stamped into what is created or changed (at most 10 characters kept).
  TdmPrNiveau(data::TStdDb& price_db, std::string user);

  std::optional<t_PrNiveau> Find(const std::string& name);
  // The level of that name, created when there is none. EPriceDbError when it cannot be
  // written.
  t_PrNiveau FindOrCreate(const std::string& name);

 private:
  data::TStdDb& db_;
  std::string user_;
};

// How "Übergabe in Preisverwaltung" treats a price already stored.
struct TPassOptions {
  // "nur Preise übergeben mit einer maximalen Abweichung vom gespeicherten Preis von ... %";
  // 0: no limit.
  double max_deviation = 0.0;
  // "Mittelwert zwischen altem und neuem Preis bilden".
  bool average_with_stored = false;
};

// Where a price comes from.
struct TPriceOrigin {
  int32_t project;
  int32_t bidder;
};

class TdmPrEntry {
 public:
  TdmPrEntry(data::TStdDb& price_db, std::string user);

  std::optional<t_PrEntry> Find(int32_t level, int32_t item);
  // Passes a price for `item` into `level`: a new entry takes it; a stored one is left as
  // it is when the price lies further from it than the options allow, else takes it or,
  // with averaging, the mean of old and new. Answers whether the entry was written.
  bool PassPrice(int32_t level, int32_t item, double price, TPriceOrigin origin,
                 const TPassOptions& options = {});
  // "EP Basis": the price times its factor, or with a base entry the base's price times
  // the base's factor times this factor.
  double BasePrice(const t_PrEntry& entry);
  // Editing "% zu Basis": the factor becomes percent / 100; a change stamps the date and
  // the user. EPriceDbError when the entry is gone or cannot be written.
  t_PrEntry SetPercentOfBase(int32_t entry, double percent);
  // Makes `entry` relative to `base` with the factor percent / 100.
  t_PrEntry SetBase(int32_t entry, int32_t base, double percent);

 private:
  t_PrEntry Write(class TTbPrEntry& table, const char* what);

  data::TStdDb& db_;
  std::string user_;
};

}  // namespace korvan::award
