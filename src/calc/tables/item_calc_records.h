#pragma once

#include <cstddef>
#include <cstdint>

#include "data/records/record_header_fields.h"
#include "data/records/short_string.h"
#include "data/records/wae_betrag.h"

// Further records of an item's calculation (project) and the sub-item catalogue (master,
// database DB_UP).
namespace korvan::calc {

#pragma pack(push, 1)

// A material assigned to a cost approach line: factor, manual value and surcharge.
struct t_KpMAT_729 {
  data::TDbRecordHeader Header;
  char KZMD;  // from the master data
  int32_t ID;
  int32_t IDLIEF;  // supplier
  double FAKTOR;
  char KZWMAN;  // "N": no manual value, the group's value times FAKTOR applies
  data::t_WaeBetrag WMAN;
  double ZU;
  int32_t SORT;
};

// The standard-text identifiers of a sub-item.
struct t_KpSIDENT {
  data::TDbRecordHeader Header;
  int32_t IDBES;
  int32_t IDUPOS;
  int16_t SME;
  int16_t SMI;
  int16_t TYP;
  int16_t APR;
};

// The tree of the sub-item catalogue: groups and sub-items in order.
struct t_UpStruktur {
  data::TDbRecordHeader Header;
  int32_t ZuBg;  // parent group
  int32_t SzBg;  // sort number below it
  int32_t IdBgUPos;
  char KzBgUPos;  // group or sub-item
};

// One cost type of a catalogue sub-item: quantity and value.
struct t_UpKa_729 {
  char KzKa;
  double Menge;
  data::t_WaeBetrag Wert;
};

// A catalogue sub-item with up to seven cost types.
struct t_UpBg_729 {
  data::TDbRecordHeader Header;
  int32_t ID;
  int32_t IDLbTlg;
  data::ShortString<55> Bez;
  t_UpKa_729 Ka[7];
};

#pragma pack(pop)

static_assert(sizeof(t_KpMAT_729) == 88);
static_assert(offsetof(t_KpMAT_729, KZMD) == 48);
static_assert(offsetof(t_KpMAT_729, ID) == 49);
static_assert(offsetof(t_KpMAT_729, IDLIEF) == 53);
static_assert(offsetof(t_KpMAT_729, FAKTOR) == 57);
static_assert(offsetof(t_KpMAT_729, KZWMAN) == 65);
static_assert(offsetof(t_KpMAT_729, WMAN) == 66);
static_assert(offsetof(t_KpMAT_729, ZU) == 76);
static_assert(offsetof(t_KpMAT_729, SORT) == 84);

static_assert(sizeof(t_KpSIDENT) == 64);
static_assert(offsetof(t_KpSIDENT, IDBES) == 48);
static_assert(offsetof(t_KpSIDENT, IDUPOS) == 52);
static_assert(offsetof(t_KpSIDENT, SME) == 56);
static_assert(offsetof(t_KpSIDENT, APR) == 62);

static_assert(sizeof(t_UpStruktur) == 61);
static_assert(offsetof(t_UpStruktur, ZuBg) == 48);
static_assert(offsetof(t_UpStruktur, SzBg) == 52);
static_assert(offsetof(t_UpStruktur, IdBgUPos) == 56);
static_assert(offsetof(t_UpStruktur, KzBgUPos) == 60);

static_assert(sizeof(t_UpKa_729) == 19);
static_assert(sizeof(t_UpBg_729) == 245);
static_assert(offsetof(t_UpBg_729, ID) == 48);
static_assert(offsetof(t_UpBg_729, IDLbTlg) == 52);
static_assert(offsetof(t_UpBg_729, Bez) == 56);
static_assert(offsetof(t_UpBg_729, Ka) == 112);

}  // namespace korvan::calc
