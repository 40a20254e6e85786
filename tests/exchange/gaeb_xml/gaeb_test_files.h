#pragma once

#include <cstdlib>
#include <filesystem>
#include <initializer_list>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "boq/text/rich_text.h"
#include "exchange/gaeb_xml/gaeb_decimal.h"
#include "exchange/gaeb_xml/gaeb_document.h"
#include "exchange/gaeb_xml/gaeb_finding.h"
#include "exchange/gaeb_xml/gaeb_text_converter.h"

namespace korvan::exchange::gaeb_xml {

// A tree as gtest shows it when a comparison fails: names, attributes and texts, indented.
inline void PrintTo(const TGaebElement& element, std::ostream* out, int depth = 0) {
  *out << "\n" << std::string(static_cast<size_t>(depth) * 2, ' ') << element.name;
  for (const auto& [key, value] : element.attributes) *out << " " << key << "=[" << value << "]";
  if (!element.text.empty()) *out << " text=[" << element.text << "]";
  for (const TGaebElement& child : element.children) PrintTo(child, out, depth + 1);
}

}  // namespace korvan::exchange::gaeb_xml

namespace korvan::exchange::gaeb_xml::testing {

// Every element of the tree (`root` included) whose name is one of `names`, in document order.
inline void CollectNamed(const TGaebElement& element, std::initializer_list<std::string_view> names,
                         std::vector<const TGaebElement*>& found) {
  for (const std::string_view name : names) {
    if (element.name == name) found.push_back(&element);
  }
  for (const TGaebElement& child : element.children) CollectNamed(child, names, found);
}
inline std::vector<const TGaebElement*> All(const TGaebElement& root,
                                            std::initializer_list<std::string_view> names) {
  std::vector<const TGaebElement*> found;
  CollectNamed(root, names, found);
  return found;
}
inline std::vector<const TGaebElement*> All(const TGaebElement& root, std::string_view name) {
  return All(root, {name});
}

// Findings one a line: kind, line, message.
inline std::string Listed(const TGaebFindings& findings) {
  std::string text;
  for (const TGaebFinding& finding : findings) {
    text += std::string(FindingKindText(finding.kind)) + " " + std::to_string(finding.line) + ": " +
            finding.message + "\n";
  }
  return text;
}

inline bool Mentions(const TGaebFindings& findings, const std::string& part) {
  return Listed(findings).find(part) != std::string::npos;
}

// The shared GAEB folder: $KORVAN_GAEB_DIR when set, else ../shared/gaeb beside the
// repository (fixed when the build was configured).
inline std::filesystem::path GaebDir() {
  const char* from_environment = std::getenv("KORVAN_GAEB_DIR");
  return from_environment != nullptr ? std::filesystem::path(from_environment)
                                     : std::filesystem::path(KORVAN_GAEB_DIR);
}

// The folder of the official schemas: $KORVAN_GAEB_XSD when set, else xsd-3.3 of the
// shared GAEB folder. Empty when absent.
inline std::filesystem::path SchemaDir() {
  const char* from_environment = std::getenv("KORVAN_GAEB_XSD");
  std::filesystem::path dir =
      from_environment != nullptr ? std::filesystem::path(from_environment) : GaebDir() / "xsd-3.3";
  return std::filesystem::is_directory(dir) ? dir : std::filesystem::path();
}

// The folder of the MIT-licensed synthetic sample files; empty when absent.
inline std::filesystem::path SampleDir() {
  const std::filesystem::path dir = GaebDir() / "samples";
  return std::filesystem::is_directory(dir) ? dir : std::filesystem::path();
}

inline constexpr const char* kNoSchemas =
    "the GAEB DA XML 3.3 schemas are not here (../shared/gaeb/xsd-3.3 beside the repository, "
    "or KORVAN_GAEB_XSD)";
inline constexpr const char* kNoSamples =
    "the GAEB sample files are not here (../shared/gaeb/samples beside the repository)";

inline TGaebElement Description(const std::string& long_text, const std::string& short_text) {
  TGaebElement description("Description");
  TGaebElement& complete = description.Add("CompleteText");
  complete.Add("DetailTxt").Add(RichTextToGaeb(boq::RichTextFromPlain(long_text)));
  complete.Add("OutlineText")
      .Add("OutlTxt")
      .Add(RichTextToGaeb(boq::RichTextFromPlain(short_text), "TextOutlTxt"));
  return description;
}

// An item in the element order of the schemas; prices only when `priced`.
inline TGaebElement Item(const std::string& rno, double quantity, double unit_price, bool priced,
                         bool bid = false) {
  TGaebElement item("Item");
  item.SetAttribute("ID", "ID_" + rno);
  item.SetAttribute("RNoPart", rno);
  item.Add("Qty", FormatGaebDecimal(quantity, 3));
  if (!bid) item.Add("QU", "m2");
  if (priced) {
    item.Add("UP", FormatGaebDecimal(unit_price, 2));
    item.Add("IT", FormatGaebDecimal(quantity * unit_price, 2));
  }
  if (bid) {
    item.Add("Description").Add("CompleteText").Add("DetailTxt");  // texts are the client's
  } else {
    item.Add(Description("Estrich & Belag <außen>, \"Typ A\"\nzweite Zeile", "Estrich " + rno));
  }
  return item;
}

inline void Party(TGaebElement& award, const std::string& element, const std::string& name) {
  TGaebElement& address = award.Add(element).Add("Address");
  address.Add("Name1", name);
  address.Add("Street", "Hauptstraße 1");
  address.Add("PCode", "12345");
  address.Add("City", "Musterstadt");
}

// A small LV of one section with two items as a document of a phase and version, in
// the element order of the schemas.
inline TGaebDocument SmallLv(TGAEBFormat format, TGaebPhase phase) {
  const bool priced = phase == 82 || phase == 84 || phase == 85 || phase == 86;
  TGaebDocument document;
  document.format = format;
  document.phase = phase;
  TGaebElement& info = document.root.Add("GAEBInfo");
  info.Add("Version", std::string(FormatInfo(format).xml_version));
  info.Add("VersDate", std::string(GaebVersDate(format)));
  info.Add("Date", "2026-11-23");
  info.Add("ProgSystem", "Korvan");
  TGaebElement& project = document.root.Add("PrjInfo");
  project.Add("NamePrj", "Schule Nord");
  project.Add("LblPrj", "Neubau Schule Nord");
  TGaebElement& award = document.root.Add("Award");
  award.Add("DP", std::to_string(phase));
  award.Add("AwardInfo").Add("Cur", "EUR");
  if (phase == 86) Party(award, "OWN", "Stadt Musterstadt");
  if (phase == 84 || phase == 86) Party(award, "CTR", "Musterbau GmbH");
  TGaebElement& boq = award.Add("BoQ");
  boq.SetAttribute("ID", "ID_BoQ1");
  TGaebElement& boq_info = boq.Add("BoQInfo");
  boq_info.Add("Name", "LV 1");
  const bool bid = phase == 84;  // the bid carries only what the bidder fills in
  if (!bid) {
    boq_info.Add("LblBoQ", "Estricharbeiten");
    boq_info.Add("Date", "2026-11-23");
    boq_info.Add("OutlCompl", "AllTxt");
  }
  for (const auto& [type, length] : {std::pair{"BoQLevel", "2"}, std::pair{"Item", "4"}}) {
    TGaebElement& level = boq_info.Add("BoQBkdn");
    level.Add("Type", type);
    level.Add("Length", length);
    level.Add("Num", "Yes");
  }
  const double total = 12.5 * 40.1 + 3.0 * 1234567.89;
  if (priced) boq_info.Add("Totals").Add("Total", FormatGaebDecimal(total, 2));
  TGaebElement& section = boq.Add("BoQBody").Add("BoQCtgy");
  section.SetAttribute("ID", "ID_01");
  section.SetAttribute("RNoPart", "01");
  if (!bid) section.Add(RichTextToGaeb(boq::RichTextFromPlain("Estricharbeiten"), "LblTx"));
  TGaebElement& items = section.Add("BoQBody").Add("Itemlist");
  items.Add(Item("0010", 12.5, 40.1, priced, bid));
  items.Add(Item("0020", 3.0, 1234567.89, priced, bid));
  if (priced) section.Add("Totals").Add("Total", FormatGaebDecimal(total, 2));
  return document;
}

}  // namespace korvan::exchange::gaeb_xml::testing
