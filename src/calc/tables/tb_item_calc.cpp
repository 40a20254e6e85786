#include "calc/tables/tb_item_calc.h"

#include "data/records/null_values.h"
#include "data/tables/table_key.h"

namespace korvan::calc {

using data::KeyNumber;
using data::RecordView;

namespace {

int Key(char index, std::string value, std::string& key) {
  if (index != '1') {
    key.clear();
    return -1;
  }
  key = std::move(value);
  return static_cast<int>(key.size());
}

}  // namespace

TTbMatP::TTbMatP(data::TStdDb& db, char table_type)
    : TTypedTB(db, table_type, kLayoutVersion, "TTbMatP") {
  InitRecord();
}

void TTbMatP::InitRecord() {
  TStdTB::InitRecord();
  Rec().KZMD = ' ';
  Rec().ID = Rec().IDLIEF = data::kNullId;
  Rec().FAKTOR = 1.0;
  Rec().KZWMAN = 'N';
  Rec().WMAN.IdWaehrung = data::kOwnerCurrencyId;
}

int TTbMatP::GetKeyString(RecordView record, char index, std::string& key) const {
  return Key(index, KeyNumber(Of(record).ID), key);
}

std::string TTbMatP::CurrentRecordToString() const {
  return "Material " + std::to_string(Rec().ID);
}

TTbSIdent::TTbSIdent(data::TStdDb& db, char table_type)
    : TTypedTB(db, table_type, kLayoutVersion, "TTbSIdent") {
  InitRecord();
}

void TTbSIdent::InitRecord() {
  TStdTB::InitRecord();
  Rec().IDBES = Rec().IDUPOS = data::kNullId;
}

int TTbSIdent::GetKeyString(RecordView record, char index, std::string& key) const {
  const t_KpSIDENT row = Of(record);
  return Key(index, KeyNumber(row.IDBES) + KeyNumber(row.IDUPOS), key);
}

std::string TTbSIdent::CurrentRecordToString() const {
  return "Standardtext-Kennung " + std::to_string(Rec().IDBES) + "/" + std::to_string(Rec().IDUPOS);
}

TTbUpStruktur::TTbUpStruktur(data::TStdDb& db, char table_type)
    : TTypedTB(db, table_type, kLayoutVersion, "TTbUpStruktur") {
  InitRecord();
}

void TTbUpStruktur::InitRecord() {
  TStdTB::InitRecord();
  Rec().ZuBg = data::kRootParentId;
  Rec().IdBgUPos = data::kNullId;
  Rec().KzBgUPos = ' ';
}

int TTbUpStruktur::GetKeyString(RecordView record, char index, std::string& key) const {
  const t_UpStruktur row = Of(record);
  return Key(index, KeyNumber(row.ZuBg) + KeyNumber(row.SzBg), key);
}

std::string TTbUpStruktur::CurrentRecordToString() const {
  return "Unterpositionsstruktur " + std::to_string(Rec().ZuBg) + "/" + std::to_string(Rec().SzBg);
}

TTbUpBg::TTbUpBg(data::TStdDb& db, char table_type)
    : TTypedTB(db, table_type, kLayoutVersion, "TTbUpBg") {
  InitRecord();
}

void TTbUpBg::InitRecord() {
  TStdTB::InitRecord();
  Rec().ID = Rec().IDLbTlg = data::kNullId;
  for (t_UpKa_729& cost_type : Rec().Ka) {
    cost_type.KzKa = ' ';
    cost_type.Wert.IdWaehrung = data::kOwnerCurrencyId;
  }
}

int TTbUpBg::GetKeyString(RecordView record, char index, std::string& key) const {
  return Key(index, KeyNumber(Of(record).ID), key);
}

std::string TTbUpBg::CurrentRecordToString() const {
  return "Unterposition " + std::to_string(Rec().ID) + " \"" + Rec().Bez.Get() + "\"";
}

}  // namespace korvan::calc
