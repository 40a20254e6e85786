#include "exchange/gaeb_export/gaeb_export_context.h"

#include <cmath>

#include "data/records/int_date.h"
#include "exchange/gaeb_xml/gaeb_decimal.h"

namespace korvan::exchange::gaeb_export {

std::string TExportContext::LvName() const {
  return "LV " + std::to_string(Lv().FId) + " \"" + Lv().Name.Get() + "\"";
}

std::string EntryName(const boq::TLvPos& entry) {
  return "Eintrag " + std::string(entry.Oz()) + " (Art " + std::string(1, entry.Kind()) + ")";
}

std::string XmlDate(int32_t date) {
  if (data::ClassifyIntDate(date) != data::IntDateKind::kValid) return {};
  const data::CivilDate parts = data::IntDateParts(date);
  char text[16];
  std::snprintf(text, sizeof text, "%04d-%02d-%02d", parts.year, parts.month, parts.day);
  return text;
}

std::string CutToChars(const std::string& text, size_t max_chars) {
  size_t chars = 0;
  for (size_t i = 0; i < text.size(); ++i) {
    const bool starts_char = (static_cast<unsigned char>(text[i]) & 0xC0) != 0x80;
    if (starts_char && chars++ == max_chars) return text.substr(0, i);
  }
  return text;
}

std::string Decimal(double value, int decimals, int total_digits, const std::string& what) {
  const double limit = std::pow(10.0, total_digits - decimals);
  if (!std::isfinite(value) || std::fabs(value) >= limit) {
    throw EGaebExportError(what + ": der Wert " + std::to_string(value) +
                           " passt nicht in GAEB (höchstens " +
                           std::to_string(total_digits - decimals) + " Stellen vor dem Komma)");
  }
  return gaeb_xml::FormatGaebDecimal(value, decimals);
}

}  // namespace korvan::exchange::gaeb_export
