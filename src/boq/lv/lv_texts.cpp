#include "boq/lv/lv_texts.h"

#include <string_view>

#include "boq/lv/lv_codes.h"
#include "boq/lv/tb_lv_beschr.h"
#include "boq/lv/tb_lv_bg.h"
#include "boq/lv/tb_struktur.h"
#include "boq/text/tb_text_header.h"
#include "boq/text/tb_texte.h"
#include "data/records/null_values.h"
#include "data/tables/table_key.h"
#include "storage/result_codes.h"

namespace korvan::boq {

using data::KeyNumber;
using data::kNullId;

namespace {

// The short texts of an LV: its name, then the names of the six unit-price components.
constexpr std::string_view kLvShortTextKinds = "123456L";
constexpr char kLvComment = 'C';
constexpr char kShortTextOfDescription = 'K';
constexpr char kLongTextOfDescription = 'L';

int32_t DescriptionOf(data::TStdDb& lv_db, const t_Struktur& row) {
  const std::string key = KeyNumber(row.IdBgBeschr);
  if (row.KzBgBeschr == kKindGroup) {
    TTbLvBg groups(lv_db);
    return groups.GetKey(key, '1') ? groups.Rec().LvBgBeschr1.IDBeschr : kNullId;
  }
  TTbLvBeschr items(lv_db);
  return items.GetKey(key, '1') ? items.Rec().LvBgBeschr1.IDBeschr : kNullId;
}

}  // namespace

std::vector<int32_t> DescriptionsOf(data::TStdDb& lv_db, int32_t lv_id) {
  std::vector<int32_t> descriptions;
  if (lv_id == kNullId) return descriptions;
  TTbStruktur rows(lv_db);
  std::vector<std::vector<uint8_t>> records;
  if (rows.GetBatch(KeyNumber(lv_id), '2', records) != storage::kOk) return descriptions;
  for (const std::vector<uint8_t>& record : records) {
    const int32_t description = DescriptionOf(lv_db, TTbStruktur::Of(record));
    if (description != kNullId) descriptions.push_back(description);
  }
  return descriptions;
}

int DeleteLvTexts(data::TStdDb& text_db, int32_t lv_id, const std::vector<int32_t>& descriptions) {
  // A null owner would be a pattern that matches every owner.
  if (lv_id == kNullId) return storage::kOk;
  TTbTexte short_texts(text_db);
  TTbTextHeader long_texts(text_db);
  for (const char kind : kLvShortTextKinds) {
    if (int result = short_texts.DeleteOwner(lv_id, kind); result != storage::kOk) return result;
  }
  if (int result = long_texts.DeleteOwner(lv_id, kLvComment); result != storage::kOk) {
    return result;
  }
  for (const int32_t description : descriptions) {
    if (description == kNullId) continue;
    if (int result = short_texts.DeleteOwner(description, kShortTextOfDescription);
        result != storage::kOk) {
      return result;
    }
    for (const char kind : {kShortTextOfDescription, kLongTextOfDescription}) {
      if (int result = long_texts.DeleteOwner(description, kind); result != storage::kOk) {
        return result;
      }
    }
  }
  return storage::kOk;
}

}  // namespace korvan::boq
