#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "boq/text/long_text_store.h"
#include "boq/text/tb_texte.h"
#include "data/tables/std_db.h"

// The texts of a bid, kept in the project's text database: what the bidder wrote into the
// gaps of the LV's long texts (Bietertextergänzungen) and its comments on single lines.
namespace korvan::award {

// The short-text kind of a bid line's comment ("Angebotsprüfungskommentar"), owned by the
// bid line's id.
inline constexpr char kBidCommentKind = 'B';

// What a bidder wrote into one gap of an entry's long text; gaps are counted from 1 in
// the order of the text.
struct TBidderText {
  int gap = 0;
  std::string text;  // UTF-8

  bool operator==(const TBidderText&) const = default;
};
using TBidderTexts = std::vector<TBidderText>;

// The gaps of a stored long text that are the bidder's to fill: those the client's text
// leaves empty.
std::vector<int> BidderGaps(std::string_view rich_text);

// The gaps of `gaps` that `texts` leaves unfilled or blank.
std::vector<int> UnfilledGaps(const std::vector<int>& gaps, const TBidderTexts& texts);

// Reads and writes the texts of bids. Writes answer the kernel code (0 = done).
class TBidTextStore {
 public:
  explicit TBidTextStore(data::TStdDb& text_db);

  // The bidder's gaps in the long text of an LV entry's description.
  std::vector<int> GapsOf(int32_t description);
  // A bidder's texts for the gaps of a description's long text, by gap.
  TBidderTexts TextsOf(int32_t bidder, int32_t description);
  // Replaces a bidder's texts for a description's long text.
  int StoreTexts(int32_t bidder, int32_t description, const TBidderTexts& texts);

  // "Bietertextergänzungen übernehmen": a bidder's texts for a description's long text
  // become the LV's own complements of the same gaps (a gap the LV fills already takes the
  // bidder's text). Answers the kernel code; `copied` counts the gaps.
  int CopyIntoLv(int32_t bidder, int32_t description, int* copied);

  // The lines of a bid line's comment.
  std::vector<std::string> CommentOf(int32_t bid_line);
  // Replaces a bid line's comment; lines must fit a short text (FitShortTextLines).
  boq::TShortTextResult StoreComment(int32_t bid_line, const std::vector<std::string>& lines);

  // Deletes a bidder's texts in every long text and the comments of its bid lines.
  int DeleteOfBidder(int32_t bidder, const std::vector<int32_t>& bid_lines);

 private:
  boq::TLongTextStore long_texts_;
  boq::TTbTexte short_texts_;
  data::TStdDb& text_db_;
};

}  // namespace korvan::award
