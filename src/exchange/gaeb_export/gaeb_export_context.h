#pragma once

#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "exchange/gaeb_export/gaeb_export.h"
#include "exchange/gaeb_export/gaeb_phase_rules.h"
#include "exchange/gaeb_xml/gaeb_element.h"

// What the parts of one export share. Internal to the export.
namespace korvan::exchange::gaeb_export {

using gaeb_xml::TGaebElement;

struct TExportContext {
  const TGaebExportSource& source;
  const TGaebExportOptions& options;
  TGaebPhaseRules rules;
  TUPKind price_kind;
  int up_decimals;  // decimals of unit prices: 2 or 3
  std::vector<std::string>& warnings;

  const boq::t_Lv_DB_VERSION_3100& Lv() const { return source.lv.FLv(); }
  // "LV \"Rohbau\"" for messages.
  std::string LvName() const;
};

// The entry's OZ for messages: "Eintrag 01.02.0010".
std::string EntryName(const boq::TLvPos& entry);

// An integer date as xs:date ("2026-11-23"); empty when it is no valid date.
std::string XmlDate(int32_t date);

// `text` cut to at most `max_chars` characters (not bytes: UTF-8 stays whole).
std::string CutToChars(const std::string& text, size_t max_chars);

// A decimal of the schema's form, refused when it does not fit `total_digits`.
std::string Decimal(double value, int decimals, int total_digits, const std::string& what);

// --- Texts (gaeb_export_texts.cpp) -------------------------------------------------
// Description with CompleteText (long and short text) or, without long texts, only the
// OutlineText. An empty text is written as one blank so that the element exists. A bid
// (DA 84) carries only the text complements; nothing when there are none.
std::optional<TGaebElement> DescriptionOf(const TExportContext& context, const boq::TLvPos& entry);
// A section's label (LblTx) from its short text.
TGaebElement SectionLabelOf(const TExportContext& context, const boq::TLvPos& entry);
// A leading or trailing text of the LV as an additional text of the document.
TGaebElement AddTextOf(const TExportContext& context, const boq::TLvPos& entry);

// --- Information (gaeb_export_info.cpp) ----------------------------------------------
TGaebElement GaebInfoOf(const TExportContext& context);
TGaebElement PrjInfoOf(const TExportContext& context);
TGaebElement AwardInfoOf(const TExportContext& context);
// The client and the contractor; nothing when the phase does not take them or the LV
// has nothing to say about them.
std::optional<TGaebElement> OwnOf(const TExportContext& context);
std::optional<TGaebElement> CtrOf(const TExportContext& context);
// BoQInfo without the totals (the body adds them).
TGaebElement BoQInfoOf(const TExportContext& context);

// --- Items (gaeb_export_item.cpp) ---------------------------------------------------
// The element IDs of the entries, by list index, and the list index of each entry id.
struct TEntryIds {
  std::vector<std::string> ids;
  std::unordered_map<int32_t, int> index_of_id;
};
TEntryIds EntryIdsOf(const boq::TLVPosList& list);

// The RNoPart of a section: the last part of its OZ.
std::string SectionRNoPart(const boq::TLvPos& entry);

// The Item of the entry at `index` (kind P or L) with the sub-descriptions at `subs`.
// `counted_total` receives what the item adds to its section's total.
TGaebElement ItemOf(const TExportContext& context, const TEntryIds& ids, int index,
                    const std::vector<int>& subs, double* counted_total);

// --- Body (gaeb_export_body.cpp) -----------------------------------------------------
struct TBodyResult {
  TGaebElement body{"BoQBody"};
  double total = 0.0;                   // counted total of the body
  std::vector<TGaebElement> add_texts;  // leading and trailing texts met on the way
};
TBodyResult BoQBodyOf(const TExportContext& context, const TGaebExportProgress& progress);

// A Totals element of a section or the BoQ: the total, a discount and the VAT when
// asked for.
TGaebElement TotalsOf(const TExportContext& context, double total, double discount_amount,
                      double discount_percent);

}  // namespace korvan::exchange::gaeb_export
