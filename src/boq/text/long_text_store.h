#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "boq/text/tb_text_erg_header.h"
#include "boq/text/tb_text_header.h"
#include "boq/text/tb_textzeile.h"
#include "boq/text/text_complement.h"
#include "data/records/null_values.h"
#include "data/tables/tb_counter.h"

namespace korvan::boq {

// A long text as stored: the rich text's bytes and the complements of one bidder (or of
// the client).
struct TLongText {
  bool found = false;  // a header exists
  int32_t header_id = data::kNullId;
  std::string rich_text;
  TTEList complements;
};

// Reads and writes long texts through the text tables of one database of the text
// group. Writes report the kernel code (0 = done); the table layer has shown failures
// already.
class TLongTextStore {
 public:
  explicit TLongTextStore(data::TStdDb& text_db);

  // The long text of an owner (kind, language) with the complements of `id_bieter`. The
  // rich-text line is the text; without one the plain lines are joined with CR LF. No
  // header: an empty text, `found` false.
  TLongText Read(int32_t id_bezug, char kz_bezug, int16_t id_lang,
                 int32_t id_bieter = data::kNullId);

  // Stores a whole text in the one rich-text line (KzTyp 'R', line 1) of a header
  // (KzHeader 'T') or complement header ('E'): inserted when missing, updated when it
  // differs, not written when equal. Lone carriage returns get their line feed first.
  int WriteText(int32_t id_header, char kz_header, std::string_view text);

  // Stores an owner's long text and the complements of `id_bieter`: the header is made
  // when missing (a new id from the text counter), each complement is matched with the
  // stored one filling the same gap (TErgStart), complements no longer given are deleted.
  int Store(int32_t id_bezug, char kz_bezug, int16_t id_lang, std::string_view rich_text,
            const TTEList& complements, int32_t id_bieter = data::kNullId);

  // Stores only the complements of `id_bieter` for an owner's text, as Store does: a
  // bidder fills the gaps of the client's text without changing the text.
  int StoreComplements(int32_t id_bezug, char kz_bezug, int16_t id_lang, const TTEList& complements,
                       int32_t id_bieter);

  // Deletes the long text of an owner in one language with its lines and complements.
  int Delete(int32_t id_bezug, char kz_bezug, int16_t id_lang);

  // Text tracing: with a folder (ending in a separator) every long text read, inserted or
  // updated is also written there, as "AfterReadLangtext(<owner>)-<kind>.rtf",
  // "AfterInsertLangtext(<header>)-<kind>.rtf" or "AfterUpdateLangtext(<header>)-<kind>.rtf".
  // Empty: no tracing. A new store starts with the folder of TLongTextTrace.
  void SetTraceFolder(std::string folder) { trace_folder_ = std::move(folder); }
  // Traces a long text loaded into an editor or list as "Load_Ltx_<owner>.rtf".
  void TraceLoad(int32_t id_bezug, std::string_view text);
  // The trace files that could not be written, with the reason.
  const std::vector<std::string>& TraceProblems() const { return trace_problems_; }

 private:
  std::string ReadText(int32_t id_header, char kz_header);
  int FindOrMakeHeader(int32_t id_bezug, char kz_bezug, int16_t id_lang, int32_t* id);
  int StoreComplement(const TTEItem& item, int32_t id_bezug, char kz_bezug, int16_t id_lang,
                      int32_t id_bieter);
  void Trace(const char* event, int32_t id, char kind, std::string_view text);
  void WriteTrace(const std::string& file, std::string_view text);

  TTbTextHeader headers_;
  TTbTextzeile lines_;
  TTbTextErgHeader complements_;
  data::TTbCounter counter_;
  std::string trace_folder_;
  std::vector<std::string> trace_problems_;
};

}  // namespace korvan::boq
