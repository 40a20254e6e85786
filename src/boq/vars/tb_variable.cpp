#include "boq/vars/tb_variable.h"

#include <cstring>

#include "boq/qty/tb_lv_teilmenge.h"
#include "boq/text/tb_texte.h"
#include "boq/vars/variable_codes.h"
#include "data/common/cp1252.h"
#include "data/integrity/data_check.h"
#include "data/records/null_values.h"
#include "data/tables/table_key.h"
#include "data/tables/tb_counter.h"
#include "storage/result_codes.h"

namespace korvan::boq {

using data::KeyNumber;
using data::KeyNumber16;
using data::KeyText;
using data::kNullId;
using data::kNullId16;
using data::RecordView;
using data::TDataCheck;
using data::TStdDb;
using data::TStdTB;

namespace {

constexpr int kNameKeyWidth = 20;
// The counter of variable ids in the LV database.
constexpr char kVariableCounterKind = 'L';
constexpr char kVariableCounter[] = "Variable";
constexpr int kDrawingKeyWidth = 6;

// The table an owner kind's records live in, or '\0' for kinds this installation does
// not keep yet (cost elements, building components, partial quantities of the cost
// planning outside the LV database).
char OwnerTableOf(char owner_kind) {
  switch (owner_kind) {
    case kOwnerLvItem:
      return kLvBeschrTableType;
    case kOwnerLvPartialQty:
      return kLvTeilmengeTableType;
    default:
      return '\0';
  }
}

}  // namespace

TTbVariable::TTbVariable(TStdDb& db, TStdDb* text_db, char table_type)
    : TTypedTB(db, table_type, kLayoutVersion, "TTbVariable"), text_db_(text_db) {
  InitRecord();
}

void TTbVariable::InitRecord() {
  TStdTB::InitRecord();
  Rec().ID = kNullId;
  Rec().IdBezug = kNullId;
  Rec().KzBezug = kOwnerLvItem;
  Rec().Typ = kTypeInput;
  Rec().IdCad = {kNullId16, kNullId};
  Rec().IdEinheit = kNullId16;
  Rec().IdProperty = kNullId;
}

std::string TTbVariable::OwnerKey(int32_t owner, char owner_kind) {
  return KeyNumber(owner) + std::string(1, owner_kind);
}

int TTbVariable::GetKeyString(RecordView record, char index, std::string& key) const {
  const t_Variable_2600 variable = Of(record);
  switch (index) {
    case '1':
      key = KeyNumber(variable.ID);
      break;
    case '2':
      key = OwnerKey(variable.IdBezug, variable.KzBezug) + std::string(1, variable.Typ);
      break;
    case '3':
      key = OwnerKey(variable.IdBezug, variable.KzBezug) +
            KeyText(variable.Name.Raw(), kNameKeyWidth) + KeyNumber(variable.IdCad.IdEntity) +
            KeyNumber16(variable.IdCad.IdDrawing, kDrawingKeyWidth);
      break;
    case '4':
      key = OwnerKey(variable.IdBezug, variable.KzBezug) + KeyNumber16(variable.SzBezug);
      break;
    default:
      key.clear();
      return -1;
  }
  return static_cast<int>(key.size());
}

std::string TTbVariable::CurrentRecordToString() const {
  return "Variable " + std::to_string(Rec().ID) + " \"" + Rec().Name.Get() + "\"";
}

int TTbVariable::Convert(RecordView old_record, std::vector<uint8_t>& new_record) {
  if (int result = TStdTB::Convert(old_record, new_record); result != storage::kOk) return result;
  // Older records name a percentage "PROZENT"; the unit list knows it as "%".
  t_Variable_2600 variable = Of(new_record);
  variable.Einheit.SetRaw(NormalizedVariableUnit(variable.Einheit.Raw()));
  std::memcpy(new_record.data(), &variable, sizeof variable);
  return storage::kOk;
}

void TTbVariable::DoValidateRecord(TDataCheck& check) {
  t_Variable_2600& variable = Rec();
  check.SetAvaRecordID(variable.ID);
  check.CheckItemForMandatory("ID", variable.ID, kNullId);
  check.CheckItemForUniqueKey("ID", variable.ID);
  check.CheckItemForCharSelector("KzBezug", variable.KzBezug, kOwnerLvItem, kVariableOwnerCodes,
                                 kVariableOwnerText, data::TRepair::kClarify);
  check.CheckItemForCharSelector("Typ", variable.Typ, kTypeInput, kVariableTypeCodes,
                                 kVariableTypeText);
  check.CheckItemForOwnerReference("IdBezug", variable.IdBezug, kNullId, variable.KzBezug,
                                   kLvDbType, OwnerTableOf(variable.KzBezug));
}

int TTbVariable::DeleteRec() {
  if (text_db_ != nullptr && Rec().ID != kNullId) {
    TTbTexte lines(*text_db_);
    if (int result = lines.DeleteOwner(Rec().ID, kVariableTextKind); result != storage::kOk) {
      return result;
    }
  }
  return TStdTB::DeleteRec();
}

int TTbVariable::NewVariable(int32_t owner, char owner_kind, const std::string& name) {
  const std::vector<t_Variable_2600> others = ListOf(owner, owner_kind);
  int32_t id = 0;
  data::TTbCounter counters(Db());
  if (int result = counters.NextId(kVariableCounterKind, kVariableCounter, &id);
      result != storage::kOk) {
    return result;
  }
  InitRecord();
  Rec().ID = id;
  Rec().IdBezug = owner;
  Rec().KzBezug = owner_kind;
  Rec().Typ = kTypeInput;
  Rec().Name.Set(name);
  Rec().SzBezug = static_cast<int16_t>(others.empty() ? 1 : others.back().SzBezug + 1);
  return storage::kOk;
}

int TTbVariable::DeleteAllOf(int32_t owner, char owner_kind) {
  if (owner == kNullId) return storage::kOk;  // a null pattern would match every owner
  return DeleteMatching(OwnerKey(owner, owner_kind), '2');
}

std::vector<t_Variable_2600> TTbVariable::ListOf(int32_t owner, char owner_kind) {
  std::vector<t_Variable_2600> variables;
  if (owner == kNullId) return variables;
  std::vector<std::vector<uint8_t>> records;
  if (GetBatch(OwnerKey(owner, owner_kind), '4', records) != storage::kOk) return variables;
  for (const std::vector<uint8_t>& record : records) variables.push_back(Of(record));
  return variables;
}

bool TTbVariable::FindByName(int32_t owner, char owner_kind, const std::string& name) {
  if (owner == kNullId) return false;
  // Pads match any CAD entity: the walk looks for the variable that has none.
  const std::string pattern =
      OwnerKey(owner, owner_kind) + KeyText(data::Utf8ToCp1252(name), kNameKeyWidth);
  for (bool found = GetFirstKey(pattern, '3'); found; found = GetNextKey(pattern, '3')) {
    if (Rec().IdCad.IdEntity == kNullId && Rec().IdCad.IdDrawing == kNullId16) return true;
  }
  return false;
}

bool TTbVariable::IsPercent() const {
  return IsPercentUnit(Rec().Einheit.Raw());
}

}  // namespace korvan::boq
