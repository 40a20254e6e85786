#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "exchange/gaeb/gaeb_values.h"

// The objects that carry project, award and BoQ information between a GAEB file and the
// database. Field names are the GAEB element names. A value that is absent from the file,
// or is to be left out on export, is an empty optional: an absent element never
// overwrites a stored value, and an empty stored value is never written as an empty
// element.
namespace korvan::exchange {

// One additional text: short and long text as GAEB text markup and as plain text.
struct TAvaGXmlAddTextItem {
  std::optional<std::string> OutlineAddText;
  std::optional<std::string> DetailAddText;
  std::optional<std::string> OutlineAddTextAsANSI;
  std::optional<std::string> DetailAddTextAsANSI;
};

struct TAvaGXmlPrjInfo {
  std::optional<std::string> NamePrj;  // at most 60 characters
  std::optional<std::string> LblPrj;   // at most 100 characters
  std::optional<std::string> Descrip;  // rich text
  std::optional<std::string> Cur;      // at most 4 characters
  std::optional<std::string> CurLbl;   // at most 50 characters
  std::optional<bool> BidCommPerm;
  std::optional<bool> AlterBidPerm;
  std::vector<TAvaGXmlAddTextItem> AddTexts;
  std::optional<int> UPFracDig;  // 2 or 3
};

struct TAvaGXmlCashDiscDays {
  TCashDiscDaysTypeOfDays TypeOfDays = TCashDiscDaysTypeOfDays::cddtNONE;
  int32_t Days = 0;
};

struct TAvaGXmlCashDiscountItem {
  std::optional<TAvaGXmlCashDiscDays> CashDiscDays;
  std::optional<int32_t> CashDiscDate;  // integer date
  std::optional<double> DiscountPcnt;
};

struct TAvaGXmlAwardInfo {
  std::optional<std::string> BoQID;  // GUID
  std::optional<TAwardInfoCatType> Cat;
  std::optional<TAwardInfoSpecialType> SpecialType;
  std::optional<std::string> Cur;
  std::optional<std::string> CurLbl;
  std::optional<int32_t> BidDate;  // integer dates and times from here on
  std::optional<int32_t> OpenDate;
  std::optional<int32_t> OpenTime;
  std::optional<int32_t> EvalEnd;
  std::optional<std::string> SubmLoc;
  std::optional<int32_t> CnstStart;
  std::optional<int32_t> CnstEnd;
  std::optional<std::string> ContrNo;
  std::optional<int32_t> ContrDate;
  std::optional<std::string> AcceptType;
  std::optional<int32_t> AcceptDate;
  std::optional<int> WarrDur;  // 0 ... 99
  std::optional<TAwardInfoWarrUnit> WarrUnit;
  std::optional<int32_t> WarrEnd;
  std::optional<double> PerformPcnt;
  std::optional<double> WarrantPcnt;
  std::vector<TAvaGXmlCashDiscountItem> CashDiscounts;
};

// One level of the OZ structure.
struct TAvaGXmlBoQBkdnItem {
  std::optional<TBoQBkdnType> Type;
  std::optional<std::string> LblBoQBkdn;  // at most 40 characters
  std::optional<int> Length;              // 0 ... 14
  std::optional<bool> Num;
  std::optional<TBoQBkdnAligment> Alignment;
};

struct TAvaGXmlCtlgItem {
  std::optional<std::string> CtlgID;
  std::optional<TExtCtlgType> CtlgType;
  std::optional<std::string> CtlgName;
};

struct TAvaGXmlCtlgAssignItem {
  std::optional<std::string> CtlgID;
  std::optional<std::string> CtlgCode;
};

// The label of one unit-price component.
struct TAvaGXmlLblUpCompItem {
  int attr_Type = 0;  // component number 1 ... 6
  std::string Value;  // at most 20 characters
};

struct TAvaGXmlBoQInfo {
  std::optional<std::string> Name;
  std::optional<std::string> LblBoQ;
  std::optional<int32_t> Date;
  std::optional<std::string> CONo;
  std::optional<std::string> COStatus;
  std::optional<bool> OutlCompl;
  std::optional<int> NoUPComps;
  std::optional<std::string> LblTime;
  std::vector<TAvaGXmlLblUpCompItem> LblUPComps;
  std::vector<TAvaGXmlBoQBkdnItem> BoQBkdns;
  std::vector<TAvaGXmlCtlgAssignItem> CtlgAssigns;
  std::vector<TAvaGXmlCtlgItem> Ctlgs;
};

struct TAvaGXmlBankItem {
  std::optional<std::string> LblBank;
  std::optional<std::string> BRNo;
  std::optional<std::string> AcctNo;
  std::optional<std::string> BIC;
  std::optional<std::string> IBAN;
};

struct TAvaGXmlAddress {
  std::optional<std::string> Name1, Name2, Name3, Name4;
  std::optional<std::string> Street;
  std::optional<std::string> PCode;
  std::optional<std::string> City;
  std::optional<std::string> Country;
  std::optional<std::string> ILN;
  std::vector<TAvaGXmlCtlgAssignItem> CtlgAssigns;
  std::optional<std::string> Contact;
  std::optional<std::string> Phone;
  std::optional<std::string> Fax;
  std::optional<std::string> Email;
  std::optional<std::string> VATID;
  std::vector<TAvaGXmlBankItem> Banks;
};

// What client and contractor share.
struct TAvaGXmlParty {
  TAvaGXmlAddress Address;
  std::optional<std::string> DPNo;
  std::optional<std::string> AwardNo;
  std::optional<TAvaCntryType> CntryType;
  std::optional<std::string> CntryName;
  std::vector<TAvaGXmlAddTextItem> AddTexts;
};

// The client.
struct TAvaGXmlOWN : TAvaGXmlParty {
  std::optional<std::string> AcctRecNo;
};

// The contractor.
struct TAvaGXmlCTR : TAvaGXmlParty {
  std::optional<std::string> AcctsPayNo;
  std::optional<std::string> BidderNo;  // at most 8 characters
  std::optional<TSectorType> SectorType;
  std::optional<TPrefBidType> PrefBidType;
  std::optional<TSCType> ScType;
};

}  // namespace korvan::exchange
