#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "data/common/guid_text.h"
#include "data/tables/std_tb.h"

namespace korvan::data {

// Keeps the GUIDs of each table unique while the records of a database are copied
// ("ReplaceDuplicateGUIDs"). A GUID names one record to the world outside the
// database (exchange files, links), so two records with one GUID make every such
// reference ambiguous. The first record in data-file order keeps its GUID, since
// references made so far most likely mean the record that had it first; every later
// record with the same GUID gets a fresh one, and so does a record without a GUID
// where its table declares the GUID mandatory.
//
// Only tables that declare a GUID field (TStdTB::GuidField) are looked at. One object
// serves the copy of one database.
class TDuplicateGuidReplacer {
 public:
  // The record with a fresh GUID when it needs one, or nothing when it can be copied
  // as it is. For a replacement, the protocol gets "ReplaceDuplicateGUIDs in <table>"
  // before the table's first one and a line naming the record (its description by
  // the table, `position` in the data file, old and new GUID). The table's current
  // record is used to describe the record.
  std::optional<std::vector<uint8_t>> ReplaceDuplicateGUIDs(TStdTB& table, RecordView record,
                                                            int32_t position,
                                                            std::vector<std::string>& lines);

  int Replaced() const { return FReplaced; }

 private:
  // The text for the protocol that names the record.
  static std::string Describe(TStdTB& table, RecordView record);

  std::map<char, std::set<std::string>> FSeen;  // normalised GUIDs per table letter
  std::set<char> FAnnounced;                    // tables whose protocol line is written
  TGuidGenerator FGenerator;
  int FReplaced = 0;
};

}  // namespace korvan::data
