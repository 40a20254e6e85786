#include "award/bid/bid_texts.h"

#include <algorithm>
#include <map>

#include "boq/model/lv_pos_list_io.h"
#include "boq/text/rich_text.h"
#include "boq/text/rtf_reader.h"
#include "boq/text/rtf_writer.h"
#include "boq/text/tb_text_erg_header.h"
#include "data/tables/table_key.h"
#include "storage/result_codes.h"

namespace korvan::award {
namespace {

constexpr char kLongTextKind = 'L';
constexpr char kBidderComplement = 'B';

bool IsBlank(const std::string& text) {
  return text.find_first_not_of(" \t\r\n") == std::string::npos;
}

// Whether each complement of the runs holds anything, by number.
void NoteComplements(const boq::TRichRuns& runs, std::map<int, bool>& filled) {
  for (const boq::TRichRun& run : runs) {
    if (run.complement == 0) continue;
    filled[run.complement] = filled[run.complement] || !IsBlank(run.text);
  }
}

std::string PlainOf(const std::string& rich_text) {
  std::string plain = boq::PlainView(boq::ReadRtf(rich_text).text);
  while (!plain.empty() && (plain.back() == '\n' || plain.back() == '\r')) plain.pop_back();
  return plain;
}

// The LV's text with the bidder's words in the open gaps they fill, so that whatever
// reads the text (the views, the award file) shows them.
std::string WithGapsFilled(const std::string& rich_text, const boq::TTEList& complements) {
  if (rich_text.empty()) return rich_text;
  boq::TRichText text = boq::ReadRtf(rich_text).text;
  bool changed = false;
  const auto fill = [&](boq::TRichRuns& runs) {
    std::map<int, bool> filled;
    NoteComplements(runs, filled);
    for (const boq::TTEItem& item : complements.Items()) {
      const auto gap = filled.find(item.start);
      if (gap == filled.end() || gap->second) continue;
      for (boq::TRichRun& run : runs) {
        if (run.complement != item.start) continue;
        run.text = PlainOf(item.text);
        changed = true;
        break;
      }
    }
  };
  for (boq::TRichBlock& block : text.blocks) {
    fill(block.runs);
    for (boq::TRichCell& cell : block.cells) fill(cell.runs);
  }
  return changed ? boq::WriteRtf(text) : rich_text;
}

}  // namespace

std::vector<int> BidderGaps(std::string_view rich_text) {
  if (rich_text.empty()) return {};
  std::map<int, bool> filled;
  for (const boq::TRichBlock& block : boq::ReadRtf(rich_text).text.blocks) {
    NoteComplements(block.runs, filled);
    for (const boq::TRichCell& cell : block.cells) NoteComplements(cell.runs, filled);
  }
  std::vector<int> gaps;
  for (const auto& [number, has_text] : filled) {
    if (!has_text) gaps.push_back(number);
  }
  return gaps;
}

std::vector<int> UnfilledGaps(const std::vector<int>& gaps, const TBidderTexts& texts) {
  std::vector<int> unfilled;
  for (int gap : gaps) {
    const bool filled = std::any_of(texts.begin(), texts.end(), [&](const TBidderText& text) {
      return text.gap == gap && !IsBlank(text.text);
    });
    if (!filled) unfilled.push_back(gap);
  }
  return unfilled;
}

TBidTextStore::TBidTextStore(data::TStdDb& text_db)
    : long_texts_(text_db), short_texts_(text_db), text_db_(text_db) {}

std::vector<int> TBidTextStore::GapsOf(int32_t description) {
  return BidderGaps(
      long_texts_.Read(description, kLongTextKind, boq::kEntryTextLanguage).rich_text);
}

TBidderTexts TBidTextStore::TextsOf(int32_t bidder, int32_t description) {
  TBidderTexts texts;
  const boq::TLongText stored =
      long_texts_.Read(description, kLongTextKind, boq::kEntryTextLanguage, bidder);
  for (const boq::TTEItem& item : stored.complements.Items()) {
    texts.push_back({item.start, PlainOf(item.text)});
  }
  std::sort(texts.begin(), texts.end(),
            [](const TBidderText& a, const TBidderText& b) { return a.gap < b.gap; });
  return texts;
}

int TBidTextStore::StoreTexts(int32_t bidder, int32_t description, const TBidderTexts& texts) {
  boq::TTEList complements;
  for (const TBidderText& text : texts) {
    boq::TTEItem item;
    item.name = boq::ComplementName(text.gap, kBidderComplement);
    item.knr = text.gap;
    item.knr_art = kBidderComplement;
    item.id_bieter = bidder;
    item.start = text.gap;
    item.text = boq::WriteRtf(boq::RichTextFromPlain(text.text));
    complements.Add(item.name, item);
  }
  return long_texts_.StoreComplements(description, kLongTextKind, boq::kEntryTextLanguage,
                                      complements, bidder);
}

int TBidTextStore::CopyIntoLv(int32_t bidder, int32_t description, int* copied) {
  *copied = 0;
  const boq::TLongText offered =
      long_texts_.Read(description, kLongTextKind, boq::kEntryTextLanguage, bidder);
  if (offered.complements.Count() == 0) return storage::kOk;
  boq::TLongText own = long_texts_.Read(description, kLongTextKind, boq::kEntryTextLanguage);
  for (const boq::TTEItem& item : offered.complements.Items()) {
    boq::TTEItem taken = item;
    taken.id = data::kNullId;
    taken.id_bieter = data::kNullId;
    bool replaced = false;
    for (int i = 0; i < own.complements.Count(); ++i) {
      boq::TTEItem& present = own.complements.GetItem(i);
      if (present.start != item.start) continue;
      present.text = item.text;
      replaced = true;
    }
    if (!replaced) own.complements.Add(taken.name, taken);
    ++*copied;
  }
  return long_texts_.Store(description, kLongTextKind, boq::kEntryTextLanguage,
                           WithGapsFilled(own.rich_text, offered.complements), own.complements);
}

std::vector<std::string> TBidTextStore::CommentOf(int32_t bid_line) {
  return short_texts_.ReadLines(bid_line, kBidCommentKind, boq::kEntryTextLanguage);
}

boq::TShortTextResult TBidTextStore::StoreComment(int32_t bid_line,
                                                  const std::vector<std::string>& lines) {
  return short_texts_.WriteLines(bid_line, kBidCommentKind, boq::kEntryTextLanguage, lines);
}

int TBidTextStore::DeleteOfBidder(int32_t bidder, const std::vector<int32_t>& bid_lines) {
  for (int32_t line : bid_lines) {
    if (int result = short_texts_.DeleteOwner(line, kBidCommentKind); result != storage::kOk) {
      return result;
    }
  }
  boq::TTbTextErgHeader complements(text_db_);
  const std::string pattern = std::string(1, kLongTextKind) + data::KeyNumber(bidder);
  while (complements.GetFirstKey(pattern, '3')) {
    if (int result = complements.DeleteRec(); result != storage::kOk) return result;
  }
  return storage::kOk;
}

}  // namespace korvan::award
