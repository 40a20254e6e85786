#include "formula/reb/reb_ansatz_record.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "data/common/cp1252.h"

namespace korvan::formula {
namespace {

char BlankIfZero(char c) {
  return c == '\0' ? ' ' : c;
}

}  // namespace

TRebLine RebLineOf(const t_RebAnsatz_2900& record) {
  TRebLine line;
  line.Id = record.ID;
  line.KZ = BlankIfZero(record.KZ);
  line.Erlaeuterung = record.Erlaeuterung.Get();
  line.Vorzeichen = BlankIfZero(record.Vorzeichen);
  line.Faktor = record.Faktor;
  line.FormelNr = record.FormelNr.Get();
  const std::string_view formel(record.Formel, sizeof(record.Formel));
  line.Formel = data::Cp1252ToUtf8(formel.substr(0, std::min(formel.find('\0'), formel.size())));
  line.Ergebnis = record.Ergebnis;
  line.Adresse = record.BlattNr.Get();
  line.VarName = record.VarName.Get();
  return line;
}

bool StoreRebLine(const TRebLine& line, t_RebAnsatz_2900& record) {
  record.ID = line.Id;
  record.KZ = line.KZ;
  record.Erlaeuterung.Set(line.Erlaeuterung);
  record.Vorzeichen = line.Vorzeichen;
  record.Faktor = line.Faktor;
  record.FormelNr.Set(line.FormelNr);
  record.Ergebnis = line.Ergebnis;
  record.BlattNr.Set(line.Adresse);
  record.VarName.Set(line.VarName);
  const std::string formel = data::Utf8ToCp1252(line.Formel);
  std::memset(record.Formel, 0, sizeof(record.Formel));
  std::memcpy(record.Formel, formel.data(), std::min(formel.size(), sizeof(record.Formel)));
  return formel.size() <= sizeof(record.Formel);
}

}  // namespace korvan::formula
