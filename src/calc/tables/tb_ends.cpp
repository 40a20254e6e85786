#include "calc/tables/tb_ends.h"

#include <cstddef>
#include <cstring>
#include <utility>

#include "calc/model/cost_types.h"
#include "data/records/null_values.h"
#include "data/tables/table_key.h"
#include "storage/result_codes.h"

namespace korvan::calc {

using data::KeyNumber;
using data::RecordView;

TTbEndsP::TTbEndsP(data::TStdDb& db, char table_type)
    : TTypedTB(db, table_type, kLayoutVersion, "TTbEndsP") {
  InitRecord();
}

void TTbEndsP::InitRecord() {
  TStdTB::InitRecord();
  Rec().IDLV = data::kNullId;
  Rec().IDUMLLV = data::kNullId;
}

int TTbEndsP::GetKeyString(RecordView record, char index, std::string& key) const {
  if (index != '1') {
    key.clear();
    return -1;
  }
  key = KeyNumber(Of(record).IDLV);
  return static_cast<int>(key.size());
}

std::string TTbEndsP::CurrentRecordToString() const {
  return "Endsummen-Einstellungen LV " + std::to_string(Rec().IDLV);
}

int TTbEndsP::InitTable(int32_t lv, TTbZuR& master) {
  if (ExistsRec(KeyNumber(lv), '1')) return storage::kOk;
  const t_KpENDS defaults = DefaultsFor(lv, master);
  InitRecord();
  std::memcpy(CurrentRecord().data(), &defaults, sizeof defaults);
  return UpDateRec();
}

t_KpENDS TTbEndsP::DefaultsFor(int32_t lv, TTbZuR& master) {
  // Written by offset: the fields of a packed record are not aligned for a double.
  const std::pair<char, std::size_t> fields[] = {
      {'M', offsetof(t_KpENDS, UMLPRZMAT)},    {'R', offsetof(t_KpENDS, UMLPRZRSV)},
      {'S', offsetof(t_KpENDS, UMLPRZSOKO)},   {'G', offsetof(t_KpENDS, UMLPRZAVR)},
      {'B', offsetof(t_KpENDS, UMLPRZBS)},     {'F', offsetof(t_KpENDS, UMLPRZFL)},
      {'K', offsetof(t_KpENDS, ENDSAGKPRZEL)}, {'L', offsetof(t_KpENDS, ENDSAGKPRZFL)},
      {'N', offsetof(t_KpENDS, ENDSWUGPRZEL)}, {'O', offsetof(t_KpENDS, ENDSWUGPRZFL)},
      {'P', offsetof(t_KpENDS, UMLLOHN)},
  };
  InitRecord();
  t_KpENDS record = Rec();
  record.IDLV = lv;
  for (const auto& [code, offset] : fields) {
    const double percent = master.Find(kKalkArtEndsumme, code).value_or(0.0);
    std::memcpy(reinterpret_cast<char*>(&record) + offset, &percent, sizeof percent);
  }
  return record;
}

std::optional<t_KpENDS> TTbEndsP::Get(int32_t lv) {
  if (!GetKey(KeyNumber(lv), '1')) return std::nullopt;
  return Rec();
}

int TTbEndsP::Put(const t_KpENDS& values) {
  if (!GetKey(KeyNumber(values.IDLV), '1')) return storage::kKeyNoMatch;
  const data::TDbRecordHeader header = Rec().Header;
  Rec() = values;
  Rec().Header = header;
  return UpDateRec();
}

int TTbEndsP::DeleteAllOf(int32_t lv) {
  if (lv == data::kNullId) return storage::kOk;
  return DeleteMatching(KeyNumber(lv), '1');
}

}  // namespace korvan::calc
