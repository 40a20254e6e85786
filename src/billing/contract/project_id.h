#pragma once

#include <cstdint>

#include "data/tables/std_db.h"

// Contracts of all projects share the installation's billing database; a project is known
// there by a number it gets with its first contract. The number is kept in the project's
// own LV database, so that it moves with the project's folder.
namespace korvan::billing {

// The project's number, or the null id when it has none yet.
int32_t ProjectNumberOf(data::TStdDb& lv_db);

// The project's number, handed out from the billing database's counter when it has none
// yet; 0 or a kernel code.
int AssignProjectNumber(data::TStdDb& lv_db, data::TStdDb& billing_db, int32_t* number);

}  // namespace korvan::billing
