#include "data/common/text_catalogue.h"

namespace korvan::data {

namespace {

std::map<int, std::string> GermanTexts() {
  return {
      // Measurement protocol: "<error> in Zeile <n>: <expression>=".
      {1670, "in Zeile "},
      // Deduction list.
      {45501, "ID"},
      {45506, "Abzug"},
      // Data component.
      {46222, "Liste wird gespeichert ..."},
      // Currency list.
      {47101, "ID"},
      {47102, "Land"},
      {47103, "Währung"},
      {47104, "Symbol"},
      {47105, "Faktor"},
      {47106, "Nachkommastellen"},
      {47107, "Basiswährung"},
      {47108, "Landeswährung"},
      {47109, "Nachkommastellen EP"},
      {47110, "Ländernummer"},
      {47111, "Währungen"},
      // Unit list.
      {47201, "Sprache"},
      {47202, "Nr"},
      {47203, "Sortierung"},
      {47204, "Bezeichnung"},
      {47205, "Einheit"},
      {47206, "Preisanteile"},
      {47207, "Nachkommastellen"},
      {47208, "Format"},
      {47209, "Frei 3"},
      {47210, "Frei 4"},
      {47211, "Einheiten"},
      // Entries of an LV.
      {48001, "OZ"},
      {48002, "Art"},
      {48003, "Kurztext"},
      {48004, "Menge"},
      {48005, "Einheit"},
      {48006, "EP"},
      {48007, "GP"},
      {48008, "Vergabe-EP"},
      {48009, "Vergabe-GP"},
      // Projects and their LVs.
      {48101, "Projekt / LV"},
      {48102, "Status"},
      {48103, "Summe"},
      // The bidders of an LV by rank.
      {48201, "Rang"},
      {48202, "Nr"},
      {48203, "Bieter"},
      {48204, "Geprüft"},
      {48205, "Summe ./. NL"},
      {48206, "Brutto"},
      {48207, "Status"},
      // The lines of a bid.
      {48301, "OZ"},
      {48302, "Menge"},
      {48303, "Einh."},
      {48304, "Kurztext"},
      {48305, "EP"},
      {48306, "GP"},
      {48307, "Nachl.%"},
      {48308, "GP nach NL."},
      {48309, "Pauschal"},
      {48310, "Anm."},
      {48311, "Kommentar"},
      {48312, "LV-Menge"},
  };
}

}  // namespace

const TTextCatalogue& TTextCatalogue::German() {
  static const TTextCatalogue catalogue(GermanTexts());
  return catalogue;
}

std::string TTextCatalogue::cLoadStr(int number) const {
  auto it = texts_.find(number);
  if (it != texts_.end()) return it->second;
  return "cLoadStr(" + std::to_string(number) + ") failed";
}

}  // namespace korvan::data
