#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "billing/tables/abzug_record.h"
#include "data/component/std_data_module.h"
#include "data/tables/std_db.h"

// The deductions of one contract or invoice (TdmAbzug): list, add, change, delete, each
// with its name and formula kept as short text beside it.
namespace korvan::billing {

// A deduction refused or not written; the message names it and what was expected.
class EDeductionError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct TDeduction {
  TAbzug record{};      // the owner fields are set by the module
  std::string name;     // "Bezeichnung", UTF-8
  std::string formula;  // "Ansatz"; empty when the fixed AbzugBetrag counts
};

// A deduction with the fields a new one starts from: net, among the other deductions.
TDeduction NewDeduction(char type, const std::string& name);

// EDeductionError naming the deduction when a field does not fit: no name, an invoice kind
// or a code letter the system does not know.
void CheckDeduction(const TDeduction& deduction);

class TdmAbzug : public data::TSTDdataModule {
 public:
  // `owner_kind`: kDeductionOfContract or kDeductionOfInvoice.
  TdmAbzug(data::TStdDb& billing_db, char owner_kind, int32_t owner);

  // The owner's deductions in the order they were made.
  std::vector<TDeduction> List();
  // Writes a new deduction of the owner and returns it with its id.
  TDeduction Add(TDeduction deduction);
  // Writes the fields, name and formula of one of the owner's deductions.
  void Change(const TDeduction& deduction);
  // Removes one of the owner's deductions with its texts.
  void Delete(int32_t id);

 private:
  void Write(const TDeduction& deduction);
  void RequireOwn(int32_t id);
  [[noreturn]] void Fail(const std::string& what, int code) const;

  data::TStdDb& db_;
  char owner_kind_;
  int32_t owner_;
};

}  // namespace korvan::billing
