#pragma once

#include <cstddef>
#include <cstdint>

#include "data/records/field_descriptor.h"
#include "data/records/record_header_fields.h"
#include "data/records/short_string.h"

// The records of the text database group (DB_Texte): short text lines, long-text headers,
// long-text lines and the headers of text complements. Every text hangs on its owner by
// IdBezug and a reference-kind letter KzBezug and exists once per language IdLang.
namespace korvan::boq {

using string70 = data::ShortString<70>;

#pragma pack(push, 1)

// One line of a short text (an LV's name, an entry's short text, a label, ...).
struct t_Texte {
  data::TDbRecordHeader Header;
  int32_t IdBezug;
  char KzBezug;
  int16_t IdLang;
  int16_t Zeile;  // from 1
  string70 Text;
};

// The header of a long text; its lines carry its Id.
struct t_Textheader {
  data::TDbRecordHeader Header;
  int32_t Id;
  int32_t IdBezug;
  int16_t IdLang;
  char KzBezug;
  char RandUnit;  // unit of TextBreite: 'M' mm x 100, 'Z' characters
  int16_t TextBreite;
  int32_t Formatlength;
};

// One line of a long text or of a complement's text. The text's LENTEXT bytes follow
// the fixed part in the same record; TEXT is the place the text's reference had in
// memory and is stored as zeros.
struct t_TextZeile {
  data::TDbRecordHeader Header;
  int32_t IdHeader;  // the long-text header's Id, or the complement header's Id
  char KzHeader;     // 'T' text, 'E' complement text, 'L' performance code
  char KzTyp;        // 'T' plain text, 'F' format, 'R' rich text
  int16_t Zeile;     // from 1
  int32_t LENTEXT;   // bytes of text after the fixed part
  uint8_t TEXT[8];
};

// A text complement: a gap in an owner's text, filled by the client (KnrArt 'A') or a
// bidder (KnrArt 'B'); its text lies in lines with KzHeader 'E' under its Id.
struct t_TextErgHeader_201501 {
  data::TDbRecordHeader Header;
  int32_t Id;
  int32_t IdBezug;    // the owner (description) id
  int32_t TErgStart;  // position of the complement in the owner's text
  int16_t IdLang;
  char KzBezug;      // 'K' short text, 'L' long text of a description
  int32_t IdBieter;  // null id: the client's own text
  int32_t Knr;       // number within the text
  char KnrArt;       // 'A' Auslober, 'B' Bieter
  uint8_t ComplBodyKind;
  uint8_t ComplBodyDecFormat;
  int16_t Formatlength;
  uint8_t GUID[16];
  int32_t IdSme;  // also IdBsm: standard-text element references
  int32_t IdSmi;  // also IdLage
  int32_t IdApr;  // also IdApr2
};

#pragma pack(pop)

static_assert(sizeof(t_Texte) == 128);
static_assert(offsetof(t_Texte, IdBezug) == 48);
static_assert(offsetof(t_Texte, KzBezug) == 52);
static_assert(offsetof(t_Texte, IdLang) == 53);
static_assert(offsetof(t_Texte, Zeile) == 55);
static_assert(offsetof(t_Texte, Text) == 57);

static_assert(sizeof(t_Textheader) == 66);
static_assert(offsetof(t_Textheader, Id) == 48);
static_assert(offsetof(t_Textheader, IdBezug) == 52);
static_assert(offsetof(t_Textheader, IdLang) == 56);
static_assert(offsetof(t_Textheader, KzBezug) == 58);
static_assert(offsetof(t_Textheader, RandUnit) == 59);
static_assert(offsetof(t_Textheader, TextBreite) == 60);
static_assert(offsetof(t_Textheader, Formatlength) == 62);

static_assert(sizeof(t_TextZeile) == 68);
static_assert(offsetof(t_TextZeile, IdHeader) == 48);
static_assert(offsetof(t_TextZeile, KzHeader) == 52);
static_assert(offsetof(t_TextZeile, KzTyp) == 53);
static_assert(offsetof(t_TextZeile, Zeile) == 54);
static_assert(offsetof(t_TextZeile, LENTEXT) == 56);
static_assert(offsetof(t_TextZeile, TEXT) == 60);

static_assert(sizeof(t_TextErgHeader_201501) == 104);
static_assert(offsetof(t_TextErgHeader_201501, Id) == 48);
static_assert(offsetof(t_TextErgHeader_201501, IdBezug) == 52);
static_assert(offsetof(t_TextErgHeader_201501, TErgStart) == 56);
static_assert(offsetof(t_TextErgHeader_201501, IdLang) == 60);
static_assert(offsetof(t_TextErgHeader_201501, KzBezug) == 62);
static_assert(offsetof(t_TextErgHeader_201501, IdBieter) == 63);
static_assert(offsetof(t_TextErgHeader_201501, Knr) == 67);
static_assert(offsetof(t_TextErgHeader_201501, KnrArt) == 71);
static_assert(offsetof(t_TextErgHeader_201501, ComplBodyKind) == 72);
static_assert(offsetof(t_TextErgHeader_201501, ComplBodyDecFormat) == 73);
static_assert(offsetof(t_TextErgHeader_201501, Formatlength) == 74);
static_assert(offsetof(t_TextErgHeader_201501, GUID) == 76);
static_assert(offsetof(t_TextErgHeader_201501, IdSme) == 92);
static_assert(offsetof(t_TextErgHeader_201501, IdSmi) == 96);
static_assert(offsetof(t_TextErgHeader_201501, IdApr) == 100);

inline constexpr data::FieldDescriptor kTexteFields[] = {
    data::HeaderField(),
    {"IdBezug", offsetof(t_Texte, IdBezug), 4, data::FieldType::kInt32},
    {"KzBezug", offsetof(t_Texte, KzBezug), 1, data::FieldType::kChar},
    {"IdLang", offsetof(t_Texte, IdLang), 2, data::FieldType::kInt16},
    {"Zeile", offsetof(t_Texte, Zeile), 2, data::FieldType::kInt16},
    {"Text", offsetof(t_Texte, Text), 71, data::FieldType::kShortString},
};
inline constexpr data::RecordLayout kTexteLayout{"t_Texte", sizeof(t_Texte), kTexteFields};
static_assert(data::DescribesLayoutExactly(kTexteLayout));

inline constexpr data::FieldDescriptor kTextheaderFields[] = {
    data::HeaderField(),
    {"Id", offsetof(t_Textheader, Id), 4, data::FieldType::kInt32},
    {"IdBezug", offsetof(t_Textheader, IdBezug), 4, data::FieldType::kInt32},
    {"IdLang", offsetof(t_Textheader, IdLang), 2, data::FieldType::kInt16},
    {"KzBezug", offsetof(t_Textheader, KzBezug), 1, data::FieldType::kChar},
    {"RandUnit", offsetof(t_Textheader, RandUnit), 1, data::FieldType::kChar},
    {"TextBreite", offsetof(t_Textheader, TextBreite), 2, data::FieldType::kInt16},
    {"Formatlength", offsetof(t_Textheader, Formatlength), 4, data::FieldType::kInt32},
};
inline constexpr data::RecordLayout kTextheaderLayout{"t_Textheader", sizeof(t_Textheader),
                                                      kTextheaderFields};
static_assert(data::DescribesLayoutExactly(kTextheaderLayout));

// The fixed part only; the dump names the number of text bytes after it.
inline constexpr data::FieldDescriptor kTextZeileFields[] = {
    data::HeaderField(),
    {"IdHeader", offsetof(t_TextZeile, IdHeader), 4, data::FieldType::kInt32},
    {"KzHeader", offsetof(t_TextZeile, KzHeader), 1, data::FieldType::kChar},
    {"KzTyp", offsetof(t_TextZeile, KzTyp), 1, data::FieldType::kChar},
    {"Zeile", offsetof(t_TextZeile, Zeile), 2, data::FieldType::kInt16},
    {"LENTEXT", offsetof(t_TextZeile, LENTEXT), 4, data::FieldType::kInt32},
    {"TEXT", offsetof(t_TextZeile, TEXT), 8, data::FieldType::kBytes},
};
inline constexpr data::RecordLayout kTextZeileLayout{"t_TextZeile", sizeof(t_TextZeile),
                                                     kTextZeileFields};
static_assert(data::DescribesLayoutExactly(kTextZeileLayout));

inline constexpr data::FieldDescriptor kTextErgHeaderFields[] = {
    data::HeaderField(),
    {"Id", offsetof(t_TextErgHeader_201501, Id), 4, data::FieldType::kInt32},
    {"IdBezug", offsetof(t_TextErgHeader_201501, IdBezug), 4, data::FieldType::kInt32},
    {"TErgStart", offsetof(t_TextErgHeader_201501, TErgStart), 4, data::FieldType::kInt32},
    {"IdLang", offsetof(t_TextErgHeader_201501, IdLang), 2, data::FieldType::kInt16},
    {"KzBezug", offsetof(t_TextErgHeader_201501, KzBezug), 1, data::FieldType::kChar},
    {"IdBieter", offsetof(t_TextErgHeader_201501, IdBieter), 4, data::FieldType::kInt32},
    {"Knr", offsetof(t_TextErgHeader_201501, Knr), 4, data::FieldType::kInt32},
    {"KnrArt", offsetof(t_TextErgHeader_201501, KnrArt), 1, data::FieldType::kChar},
    {"ComplBodyKind", offsetof(t_TextErgHeader_201501, ComplBodyKind), 1, data::FieldType::kByte},
    {"ComplBodyDecFormat", offsetof(t_TextErgHeader_201501, ComplBodyDecFormat), 1,
     data::FieldType::kByte},
    {"Formatlength", offsetof(t_TextErgHeader_201501, Formatlength), 2, data::FieldType::kInt16},
    {"GUID", offsetof(t_TextErgHeader_201501, GUID), 16, data::FieldType::kBytes},
    {"IdSme", offsetof(t_TextErgHeader_201501, IdSme), 4, data::FieldType::kInt32},
    {"IdSmi", offsetof(t_TextErgHeader_201501, IdSmi), 4, data::FieldType::kInt32},
    {"IdApr", offsetof(t_TextErgHeader_201501, IdApr), 4, data::FieldType::kInt32},
};
inline constexpr data::RecordLayout kTextErgHeaderLayout{
    "t_TextErgHeader_201501", sizeof(t_TextErgHeader_201501), kTextErgHeaderFields};
static_assert(data::DescribesLayoutExactly(kTextErgHeaderLayout));

}  // namespace korvan::boq
