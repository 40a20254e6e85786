#include "boq/text/long_text_store.h"

#include <set>
#include <vector>

#include "boq/text/long_text_trace.h"
#include "boq/text/text_conversions.h"
#include "data/tables/table_key.h"
#include "storage/file/atomic_file.h"

namespace korvan::boq {
namespace {

using data::KeyNumber;

// The counters of the text database that hand out header ids.
constexpr char kCounterKind = 'T';
constexpr char kHeaderCounter[] = "TEXTHEADER";
constexpr char kComplementCounter[] = "TEXTERG";

}  // namespace

TLongTextStore::TLongTextStore(data::TStdDb& text_db)
    : headers_(text_db),
      lines_(text_db),
      complements_(text_db),
      counter_(text_db),
      trace_folder_(TLongTextTrace::Instance().Folder()) {}

std::string TLongTextStore::ReadText(int32_t id_header, char kz_header) {
  if (lines_.GetKey(TTbTextzeile::LineKey(id_header, kz_header, 'R', 1))) {
    return ExpandEscapedLineFeeds(lines_.Text());
  }
  std::string joined;
  const std::string pattern = TTbTextzeile::LinesKey(id_header, kz_header, 'T');
  for (bool more = lines_.GetFirstKey(pattern); more; more = lines_.GetNextKey(pattern)) {
    if (!joined.empty()) joined += "\r\n";
    joined += lines_.Text();
  }
  return joined;
}

TLongText TLongTextStore::Read(int32_t id_bezug, char kz_bezug, int16_t id_lang,
                               int32_t id_bieter) {
  TLongText text;
  if (!headers_.GetKey(TTbTextHeader::OwnerKey(id_bezug, kz_bezug, id_lang), '2')) return text;
  text.found = true;
  text.header_id = headers_.Rec().Id;
  text.rich_text = ReadText(text.header_id, 'T');
  Trace("AfterRead", id_bezug, kz_bezug, text.rich_text);

  std::vector<TTEItem> items;
  const std::string pattern = TTbTextErgHeader::OwnerKey(id_bezug, kz_bezug, id_bieter, id_lang);
  for (bool more = complements_.GetFirstKey(pattern, '2'); more;
       more = complements_.GetNextKey(pattern, '2')) {
    const t_TextErgHeader_201501& erg = complements_.Rec();
    items.push_back(TTEItem{ComplementName(erg.Knr, erg.KnrArt),
                            erg.Id,
                            erg.Knr,
                            erg.KnrArt,
                            erg.IdBieter,
                            erg.TErgStart,
                            erg.ComplBodyKind,
                            erg.ComplBodyDecFormat,
                            {}});
  }
  for (TTEItem& item : items) {
    item.text = ReadText(item.id, 'E');
    text.complements.Add(item.name, item);
  }
  return text;
}

int TLongTextStore::WriteText(int32_t id_header, char kz_header, std::string_view text) {
  const std::string stored = InsertMissingLineFeeds(text);
  const bool exists = lines_.GetKey(TTbTextzeile::LineKey(id_header, kz_header, 'R', 1));
  if (exists) {
    if (lines_.Text() == stored) return 0;
  } else {
    lines_.InitRecord();
    lines_.Rec().IdHeader = id_header;
    lines_.Rec().KzHeader = kz_header;
    lines_.Rec().KzTyp = 'R';
    lines_.Rec().Zeile = 1;
  }
  lines_.SetText(stored);
  if (int result = lines_.UpDateRec(); result != 0) return result;
  Trace(exists ? "AfterUpdate" : "AfterInsert", id_header, kz_header, stored);
  return 0;
}

void TLongTextStore::Trace(const char* event, int32_t id, char kind, std::string_view text) {
  if (trace_folder_.empty()) return;
  const std::string file = trace_folder_ + event + "Langtext(" + std::to_string(id) + ")-" +
                           std::string(1, kind) + ".rtf";
  WriteTrace(file, text);
}

void TLongTextStore::TraceLoad(int32_t id_bezug, std::string_view text) {
  if (trace_folder_.empty()) return;
  WriteTrace(trace_folder_ + "Load_Ltx_" + std::to_string(id_bezug) + ".rtf", text);
}

// A trace is a help for finding faults, so one that cannot be written is noted for a
// warning and never fails the text operation.
void TLongTextStore::WriteTrace(const std::string& file, std::string_view text) {
  const storage::FileWriteResult written =
      storage::WriteFileAtomically(file, text, storage::Durability::kAtomic);
  if (written.ok()) return;
  trace_problems_.push_back(file + ": " + written.ErrorText());
  TLongTextTrace::Instance().NoteProblem(trace_problems_.back());
}

int TLongTextStore::FindOrMakeHeader(int32_t id_bezug, char kz_bezug, int16_t id_lang,
                                     int32_t* id) {
  if (headers_.GetKey(TTbTextHeader::OwnerKey(id_bezug, kz_bezug, id_lang), '2')) {
    *id = headers_.Rec().Id;
    return 0;
  }
  if (int result = counter_.NextId(kCounterKind, kHeaderCounter, id); result != 0) return result;
  headers_.InitRecord();
  headers_.Rec().Id = *id;
  headers_.Rec().IdBezug = id_bezug;
  headers_.Rec().KzBezug = kz_bezug;
  headers_.Rec().IdLang = id_lang;
  return headers_.UpDateRec();
}

int TLongTextStore::StoreComplement(const TTEItem& item, int32_t id_bezug, char kz_bezug,
                                    int16_t id_lang, int32_t id_bieter) {
  const std::string key =
      TTbTextErgHeader::OwnerKey(id_bezug, kz_bezug, id_bieter, id_lang) + KeyNumber(item.start);
  if (!complements_.GetKey(key, '2')) {
    int32_t id = 0;
    if (int result = counter_.NextId(kCounterKind, kComplementCounter, &id); result != 0) {
      return result;
    }
    complements_.InitRecord();
    complements_.Rec().Id = id;
    complements_.Rec().IdBezug = id_bezug;
    complements_.Rec().KzBezug = kz_bezug;
    complements_.Rec().IdLang = id_lang;
    complements_.Rec().IdBieter = id_bieter;
    complements_.Rec().TErgStart = item.start;
  }
  complements_.Rec().Knr = item.knr;
  complements_.Rec().KnrArt = item.knr_art;
  complements_.Rec().ComplBodyKind = item.body_kind;
  complements_.Rec().ComplBodyDecFormat = item.body_decimals;
  if (complements_.IsChanged() || !complements_.HasPosition()) {
    if (int result = complements_.UpDateRec(); result != 0) return result;
  }
  return WriteText(complements_.Rec().Id, 'E', item.text);
}

int TLongTextStore::Store(int32_t id_bezug, char kz_bezug, int16_t id_lang,
                          std::string_view rich_text, const TTEList& complements,
                          int32_t id_bieter) {
  int32_t header_id = 0;
  if (int result = FindOrMakeHeader(id_bezug, kz_bezug, id_lang, &header_id); result != 0) {
    return result;
  }
  if (int result = WriteText(header_id, 'T', rich_text); result != 0) return result;
  return StoreComplements(id_bezug, kz_bezug, id_lang, complements, id_bieter);
}

int TLongTextStore::StoreComplements(int32_t id_bezug, char kz_bezug, int16_t id_lang,
                                     const TTEList& complements, int32_t id_bieter) {
  std::set<int32_t> kept;
  for (const TTEItem& item : complements.Items()) {
    if (int result = StoreComplement(item, id_bezug, kz_bezug, id_lang, id_bieter); result != 0) {
      return result;
    }
    kept.insert(complements_.Rec().Id);
  }
  std::vector<int32_t> gone;
  const std::string pattern = TTbTextErgHeader::OwnerKey(id_bezug, kz_bezug, id_bieter, id_lang);
  for (bool more = complements_.GetFirstKey(pattern, '2'); more;
       more = complements_.GetNextKey(pattern, '2')) {
    if (!kept.count(complements_.Rec().Id)) gone.push_back(complements_.Rec().Id);
  }
  for (int32_t id : gone) {
    if (!complements_.GetKey(KeyNumber(id), '1')) continue;
    if (int result = complements_.DeleteRec(); result != 0) return result;
  }
  return 0;
}

int TLongTextStore::Delete(int32_t id_bezug, char kz_bezug, int16_t id_lang) {
  if (!headers_.GetKey(TTbTextHeader::OwnerKey(id_bezug, kz_bezug, id_lang), '2')) return 0;
  return headers_.DeleteRec();
}

}  // namespace korvan::boq
