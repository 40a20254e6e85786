#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "data/records/short_string.h"
#include "exchange/gaeb_import/gaeb_import.h"
#include "exchange/gaeb_xml/gaeb_element.h"

// What the parts of one import share. Internal to the import.
namespace korvan::exchange::gaeb_import {

using gaeb_xml::TGaebElement;

// Refuses the file: EGaebImportError naming the file, the line and what was expected.
[[noreturn]] void Refuse(const std::string& file, int line, const std::string& message);

// The run state of one import: the options, the result being built, and which elements
// of the document were taken over, so that whatever was not is reported and nothing is
// dropped silently.
class TImportContext {
 public:
  TImportContext(const std::string& file, const TGaebImportOptions& options, TGaebImport& result);

  const std::string& File() const { return file_; }
  const TGaebImportOptions& Options() const { return options_; }
  TGaebImport& Result() { return result_; }
  // Where the file's unit prices go; upkNONE when prices are not taken over.
  TUPKind PriceKind() const { return price_kind_; }

  // Marks an element as taken over (its own content; children are marked one by one).
  void Use(const TGaebElement& element) { used_.push_back(&element); }
  // Marks an element with everything below it as taken over (texts, numbers).
  void UseWhole(const TGaebElement& element) { whole_.push_back(&element); }
  // The first child of that name, marked whole; nullptr when there is none.
  const TGaebElement* Take(const TGaebElement& parent, std::string_view name);
  std::optional<std::string> TakeText(const TGaebElement& parent, std::string_view name);
  bool TakeYes(const TGaebElement& parent, std::string_view name);
  // A decimal child; a value that is no decimal is reported and read as absent.
  std::optional<double> TakeDecimal(const TGaebElement& parent, std::string_view name);
  std::optional<int> TakeInteger(const TGaebElement& parent, std::string_view name, int low,
                                 int high);
  // An xs:date child as an integer date.
  std::optional<int32_t> TakeDate(const TGaebElement& parent, std::string_view name);

  // Stores a text into a record field; a text cut or changed to fit is reported.
  template <std::size_t N>
  void Store(data::ShortString<N>& field, const std::string& text, const char* what, int line) {
    data::Cp1252Report report;
    const data::ShortStringStore store = field.Set(text, &report);
    if (!store.Exact(report)) {
      Warn(line, std::string(what) + " \"" + text + "\" passt nicht ganz (höchstens " +
                     std::to_string(N) + " Zeichen in Windows-1252); übernommen als \"" +
                     field.Get() + "\"");
    }
  }

  void Warn(int line, std::string message);
  void Hint(int line, std::string message);
  // "Read: No <element>": an element the import needs is absent; a warning as well.
  void ReadNo(int line, const std::string& element, const std::string& message);
  // "Read: Bad <element>": an element is present but cannot be read; a warning as well.
  void ReadBad(int line, const std::string& element, const std::string& message);

  // Reports every element of the tree below `root` that was not taken over, the topmost
  // of each such branch once. Call once, at the end.
  void ReportUnused(const TGaebElement& root);

  int32_t NextTemporaryId() { return next_id_--; }

 private:
  const std::string& file_;
  const TGaebImportOptions& options_;
  TGaebImport& result_;
  TUPKind price_kind_;
  // Kept as lists and sorted once for ReportUnused: a file of 10 000 items marks some
  // 200 000 elements, and a set would allocate for each.
  std::vector<const TGaebElement*> used_;
  std::vector<const TGaebElement*> whole_;
  void ReportUnusedBelow(const TGaebElement& root);
  int32_t next_id_ = -1;
};

// --- Information (gaeb_import_info.cpp) ----------------------------------------------
// PrjInfo, AwardInfo, OWN, CTR and BoQInfo into the options data, the LV header and the
// GAEB header record.
void ReadInformation(TImportContext& context, const TGaebElement& root, const TGaebElement& award,
                     const TGaebElement& boq);

// --- Breakdown (gaeb_import_mask.cpp) -----------------------------------------------
// The LV's OZ mask from the BoQ's breakdown (BoQBkdn), completed from the numbers of the
// body (none: the breakdown alone); EGaebImportError when it cannot number an LV.
std::string MaskOfBreakdown(TImportContext& context, const TGaebElement& boq_info,
                            const TGaebElement* body);

// --- Texts (gaeb_import_texts.cpp) --------------------------------------------------
// The short and long text of a Description (or of its OutlineText alone).
void ReadDescription(TImportContext& context, const TGaebElement& description, boq::TLvPos& entry);
// A short text as the LV can store it: lines of at most 70 characters of Windows-1252
// (longer lines wrapped, other characters "?"), each change reported at `line`.
std::string FitShortText(TImportContext& context, int line, const std::string& text);
// The plain text of an element of text markup (LblTx, OutlineAddText).
std::string PlainTextOf(const TGaebElement& markup);
// The rich text of an element of text markup, stored as RTF.
std::string RtfOf(const TGaebElement& markup);

// --- Body (gaeb_import_body.cpp) ----------------------------------------------------
// The BoQ body, walked in document order, into the entries of the LV.
void ReadBoQBody(TImportContext& context, const TGaebElement& body,
                 const TGaebImportProgress& progress);

// --- Items (gaeb_import_item.cpp) ---------------------------------------------------
// The flags, quantity, unit and prices of an Item (or of a SubDescr) into `entry`.
void ReadItemValues(TImportContext& context, const TGaebElement& item, boq::TLvPos& entry);

}  // namespace korvan::exchange::gaeb_import
