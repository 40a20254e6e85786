#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "data/records/null_values.h"
#include "data/tables/std_db.h"

// The LVs of a project as a whole: listing, naming, creating and deleting them in the
// project's LV database. The commands of the program and later the shell use these.
namespace korvan::boq {

// One LV as a list shows it.
struct LvSummary {
  int32_t id = 0;
  std::string name;
  char status = 'N';
  uint32_t entries = 0;  // structure rows: groups, items and texts
  double total = 0.0;    // the stored LV total (net, before discount)
  // The LV's currency (its header's IdWae); none until a currency conversion records one.
  int16_t currency = data::kOwnerCurrencyId;
};

// The LVs of the database in project order (sort number, line kind, id). Records that
// cannot be read are a failure: EStoredLvError naming the database.
std::vector<LvSummary> ListLvs(data::TStdDb& db);

// The project's currency. There is no project record to keep it: it is the currency the
// project's LVs record, which a currency conversion sets in all of them alike, and amounts
// without a currency of their own are in it; `fallback` (the installation's base
// currency) while no LV records one. EStoredLvError when LVs record different ones.
int16_t ProjectCurrency(const std::vector<LvSummary>& lvs, int16_t fallback);

// What naming an LV by its id or its name found: exactly one LV, or why not.
struct LvLookup {
  int32_t id = 0;
  std::string problem;  // German, when no LV or more than one is meant
  bool found() const { return problem.empty(); }
};

// The LV that `name_or_id` names: an id (digits) or a name, compared exactly. A text that
// is the id of one LV and the name of another names no LV but says so.
LvLookup FindLvByIdOrName(data::TStdDb& db, std::string_view name_or_id);

// A new LV: its name and the OZ mask it will be numbered by (may be empty).
struct NewLv {
  std::string name;
  std::string mask;
  int16_t currency = data::kOwnerCurrencyId;  // the project's, when its LVs record one
};

// Why a name and mask cannot be those of an LV ("" when they can): name empty, too
// long, not in the code page of the records, or only digits (it could not be told from
// an id); mask too long or not in the code page.
std::string CheckNewLv(const NewLv& lv);

// The LV called `name`, if there is one.
std::optional<LvSummary> FindLvNamed(data::TStdDb& db, std::string_view name);

// Creates the LV with the defaults of a new header, the next LV id and the place after
// the project's last LV; returns its id. The caller checks with CheckNewLv and
// FindLvNamed first.
// EStoredLvError when the database refuses.
int32_t CreateLv(data::TStdDb& db, const NewLv& lv);

// Deletes the LV with everything that hangs on it: its texts and those of its entries'
// descriptions in `text_db` (the project's text database; none: no texts are touched),
// then its records in `db`. EStoredLvError when a database refuses; the records deleted
// up to then are in the journal of the caller's step.
void DeleteLv(data::TStdDb& db, int32_t id, data::TStdDb* text_db = nullptr);

// A failure of the LV database (reading, writing) in German, naming the database.
class EStoredLvError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace korvan::boq
