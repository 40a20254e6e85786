#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>

#include "award/bid/bidder_sums.h"
#include "award/tables/bieter_record.h"
#include "exchange/gaeb_import/gaeb_bid_import.h"

namespace korvan::app {

// What to read: a bidder's GAEB DA 84 file into its bid on an LV of a project.
struct BidFileImport {
  std::string lv{};      // name or id
  std::string bidder{};  // number, id or name
  std::string file{};
  bool overwrite = false;  // replace prices the bid already has
};

// A bid read from its file and stored.
struct BidFileImported {
  exchange::TGaebBidImport import{};
  int32_t lv = 0;
  std::string lv_name{};
  award::t_Bieter_DB_VERSION_3100 bidder{};  // with its sums as stored
  award::TBidderTotals totals{};
  std::string protocol{};  // the path of "Importprotokoll.txt"
};

// Reads the file's prices into the bidder's bid and stores it as one step of the journal,
// whatever calls it: the command line or the window. CommandError, and nothing stored,
// when the bid has prices and `overwrite` is not set, when the file is no bid, belongs
// to another LV or none of its items matches. Warnings go to `warnings`.
BidFileImported ImportBidFile(const std::string& data_dir, const std::string& project,
                              const BidFileImport& request, std::ostream& warnings);

// "Angebot "Musterbau" für LV "Rohbau" aus a.x84 eingelesen: ... Befunde" and the line
// "Netto ..., MwSt ..., Brutto ...".
std::string ImportedBidText(const BidFileImported& imported, const std::string& file);

}  // namespace korvan::app
