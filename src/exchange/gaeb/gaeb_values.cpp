#include "exchange/gaeb/gaeb_values.h"

#include <array>

namespace korvan::exchange {
namespace {

constexpr std::array<std::string_view, 7> kAwardInfoCat = {
    "OpenProc", "ClosedProc", "NegProc", "OpenCall", "SelectCall", "NegCont", "IntNATO"};
constexpr std::array<std::string_view, 4> kBkdnTypes = {"Lot", "BoQLevel", "Item", "Index"};
constexpr std::array<std::string_view, 4> kHierarchyRows = {"Los", "LVStufe", "Position", "Index"};
constexpr std::array<std::string_view, 2> kProvis = {"WithTotal", "WithoutTotal"};
constexpr std::array<std::string_view, 3> kMarkupTypes = {"IdentAsMark", "AllInCat",
                                                          "ListInSubQty"};
constexpr std::array<std::string_view, 2> kOrigins = {"Bidder", "Owner"};
constexpr std::array<std::string_view, 3> kTextSources = {"STLB-BauZ", "StLB", "StLK"};
constexpr std::array<std::string_view, 4> kCostTypes = {"Wages", "Materials", "Plant",
                                                        "Miscellaneous"};
constexpr std::array<std::string_view, 10> kCtlgTypes = {"",
                                                         "cost group DIN 276-81",
                                                         "cost group DIN 276-93",
                                                         "cost group DIN 276-06",
                                                         "cost group DIN 276-1 2008-12",
                                                         "locality",
                                                         "work category",
                                                         "cost unit",
                                                         "miscellaneous",
                                                         "cost group DIN 276 2018-12"};
// "ObjToRecj" is how the status is spelled in the files, kept so.
constexpr std::array<std::string_view, 8> kCOStatus = {
    "Recog", "Filed", "Offered", "Withdrawn", "Rejected", "ObjToRecj", "FormAckn", "Approved"};
constexpr std::array<std::string_view, 6> kLengthUnits = {"cm", "mm", "in", "pt", "pc", "px"};

template <class Enum, size_t N>
std::string_view TextOf(const std::array<std::string_view, N>& texts, Enum value) {
  return texts[static_cast<size_t>(value)];
}

template <class Enum, size_t N>
std::optional<Enum> ValueOf(const std::array<std::string_view, N>& texts, std::string_view text) {
  for (size_t i = 0; i < N; ++i) {
    if (!texts[i].empty() && texts[i] == text) return static_cast<Enum>(i);
  }
  return std::nullopt;
}

}  // namespace

std::string_view GaebText(TAwardInfoCatType value) {
  return TextOf(kAwardInfoCat, value);
}
std::string_view GaebText(TBoQBkdnType value) {
  return TextOf(kBkdnTypes, value);
}
std::string_view GaebText(TProvis value) {
  return TextOf(kProvis, value);
}
std::string_view GaebText(TMarkupType value) {
  return TextOf(kMarkupTypes, value);
}
std::string_view GaebText(TTextOrigin value) {
  return TextOf(kOrigins, value);
}
std::string_view GaebText(TStandardTextSource value) {
  return TextOf(kTextSources, value);
}
std::string_view GaebText(TUPCostType value) {
  return TextOf(kCostTypes, value);
}
std::string_view GaebText(TExtCtlgType value) {
  return TextOf(kCtlgTypes, value);
}

std::optional<TAwardInfoCatType> AwardInfoCatTypeOf(std::string_view text) {
  return ValueOf<TAwardInfoCatType>(kAwardInfoCat, text);
}
std::optional<TBoQBkdnType> BoQBkdnTypeOf(std::string_view text) {
  return ValueOf<TBoQBkdnType>(kBkdnTypes, text);
}
std::optional<TProvis> ProvisOf(std::string_view text) {
  return ValueOf<TProvis>(kProvis, text);
}
std::optional<TMarkupType> MarkupTypeOf(std::string_view text) {
  return ValueOf<TMarkupType>(kMarkupTypes, text);
}
std::optional<TExtCtlgType> ExtCtlgTypeOf(std::string_view text) {
  return ValueOf<TExtCtlgType>(kCtlgTypes, text);
}

std::string_view HierarchyRowType(TBoQBkdnType value) {
  return TextOf(kHierarchyRows, value);
}
std::optional<TBoQBkdnType> BoQBkdnTypeOfHierarchyRow(std::string_view row_type) {
  return ValueOf<TBoQBkdnType>(kHierarchyRows, row_type);
}

std::optional<std::string_view> COStatusText(char status) {
  if (status < '1' || status > '8') return std::nullopt;
  return kCOStatus[static_cast<size_t>(status - '1')];
}

std::optional<char> COStatusOf(std::string_view text) {
  for (size_t i = 0; i < kCOStatus.size(); ++i) {
    if (kCOStatus[i] == text) return static_cast<char>('1' + i);
  }
  return std::nullopt;
}

std::optional<TProvis> ProvisOfBedarf(char bedarf) {
  if (bedarf == 'E') return TProvis::WithoutTotal;
  if (bedarf == 'M') return TProvis::WithTotal;
  return std::nullopt;
}

std::string_view GraphicLengthUnit(std::string_view unit) {
  for (const std::string_view known : kLengthUnits) {
    if (known == unit) return known;
  }
  return kLengthUnits[0];
}

std::string GetLastRNoPart(std::string_view oz, char separator) {
  const size_t last = oz.rfind(separator);
  std::string part(last == std::string_view::npos ? oz : oz.substr(last + 1));
  for (char& c : part) {
    if (c == '_') c = ' ';
  }
  return part;
}

}  // namespace korvan::exchange
