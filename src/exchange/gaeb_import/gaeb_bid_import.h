#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "award/bid/dm_angebot.h"
#include "exchange/gaeb_xml/gaeb_finding.h"

// Reading a bidder's priced bid (GAEB DA XML phase 84) into the bid of a bidder of an LV:
// every position of the file is matched with the LV's entry of the same kind and OZ (an
// OZ without points is rebuilt against the LV's mask first) and its prices go into the
// bidder's line. The bid in memory is changed; storing it is the caller's.
namespace korvan::exchange {

// The totals a bid file states (BoQInfo/Totals); absent ones stay empty.
struct TGaebBidTotals {
  std::optional<double> total;           // Total: before the discount
  std::optional<double> discount_pcnt;   // DiscountPcnt
  std::optional<double> discount_amt;    // DiscountAmt
  std::optional<double> after_discount;  // TotAfterDisc
  std::optional<double> vat_rate;        // VAT
  std::optional<double> net;             // TotalNet
  std::optional<double> vat;             // VATAmount
  std::optional<double> gross;           // TotalGross
};

struct TGaebBidImport {
  std::string file;
  std::string boq_name;  // BoQInfo/Name
  int items = 0;         // items and markup items of the file
  int sections = 0;
  int matched_items = 0;
  int matched_sections = 0;
  int prices = 0;        // items whose unit price was taken over
  int comments = 0;      // items with the bidder's comment (BidComm)
  int bidder_texts = 0;  // gaps of the LV's texts the bidder filled (TextComplement)
  TGaebBidTotals totals;
  // Set when the file belongs to another LV: then nothing may be stored.
  std::string other_lv;
  gaeb_xml::TGaebFindings findings;
  std::vector<std::string> protocol;  // "Read: No ..." and "Read: Bad ..." lines
};

// The OZ of a DA 84 position as the LV compares it: an OZ without points gets "0" for
// blanks and a point wherever the mask has a point or a blank ("01020030" under
// "11.22.PPPP" is "01.02.0030"); an OZ with points stays as it is.
std::string NormaliseBidOz(std::string_view oz, std::string_view mask);

// Reads the file's positions into `bid` (opened for its bidder) and recalculates it; the
// bidder's comments and text additions go with the lines (read the bid's texts first, so
// that they are replaced and the additions checked against the gaps of the LV's texts).
// EGaebImportError (gaeb_import.h) when the file is no GAEB DA XML bid (phase 84).
TGaebBidImport ImportGaebBid(std::string_view xml, const std::string& file, award::TdmAngebot& bid);
TGaebBidImport ImportGaebBidFile(const std::string& path, award::TdmAngebot& bid);

// The protocol of a bid import: the file, the counts, each finding and each "Read:" line.
std::string BidImportProtocolText(const TGaebBidImport& import);

}  // namespace korvan::exchange
