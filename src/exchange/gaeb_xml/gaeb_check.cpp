#include "exchange/gaeb_xml/gaeb_check.h"

#include <cmath>
#include <map>
#include <optional>
#include <set>
#include <string>

#include "exchange/gaeb/gaeb_values.h"
#include "exchange/gaeb_xml/gaeb_decimal.h"

namespace korvan::exchange::gaeb_xml {
namespace {

// What an amount may differ by after the schema's rounding to cents.
constexpr double kCent = 0.01;
constexpr double kEpsilon = 1e-9;

std::string Where(const TGaebElement& element) {
  std::string where = element.name;
  if (const std::optional<std::string> id = element.Attribute("ID")) where += " " + *id;
  if (const std::optional<std::string> rno = element.Attribute("RNoPart")) {
    where += " (RNoPart " + *rno + ")";
  }
  return where;
}

class StructureCheck {
 public:
  explicit StructureCheck(TGaebFindings& findings) : findings_(findings) {}

  void Document(const TGaebElement& root) {
    const TGaebElement* info = Required(root, "GAEBInfo");
    if (info != nullptr) Required(*info, "Version");
    const TGaebElement* award = root.Child("Award");
    if (award == nullptr) return;
    Required(*award, "DP");
    if (const TGaebElement* boq = award->Child("BoQ")) BoQ(*boq);
  }

 private:
  void Report(const TGaebElement& at, const std::string& message) {
    findings_.push_back({TGaebFindingKind::kStructure, at.line, message});
  }

  const TGaebElement* Required(const TGaebElement& parent, std::string_view name) {
    const TGaebElement* child = parent.Child(name);
    if (child == nullptr) {
      Report(parent, Where(parent) + ": Element " + std::string(name) + " fehlt");
    }
    return child;
  }

  void RequiredAttribute(const TGaebElement& element, std::string_view name) {
    if (!element.Attribute(name)) {
      Report(element, Where(element) + ": Attribut " + std::string(name) + " fehlt");
    }
  }

  void UniqueId(const TGaebElement& element) {
    const std::optional<std::string> id = element.Attribute("ID");
    if (id && !ids_.insert(*id).second) {
      Report(element, Where(element) + ": ID \"" + *id + "\" kommt mehrfach vor");
    }
  }

  void BoQ(const TGaebElement& boq) {
    RequiredAttribute(boq, "ID");
    UniqueId(boq);
    if (const TGaebElement* info = Required(boq, "BoQInfo")) Required(*info, "Name");
    if (const TGaebElement* body = Required(boq, "BoQBody")) Body(*body);
  }

  void Body(const TGaebElement& body) {
    for (const TGaebElement& child : body.children) {
      if (child.name == "BoQCtgy") {
        Numbered(child);
        if (const TGaebElement* inner = child.Child("BoQBody")) Body(*inner);
      } else if (child.name == "Itemlist") {
        Body(child);
      } else if (child.name == "Item" || child.name == "MarkupItem") {
        Numbered(child);
      } else if (child.name == "Remark" || child.name == "PerfDescr") {
        RequiredAttribute(child, "ID");
        UniqueId(child);
      }
    }
  }

  void Numbered(const TGaebElement& element) {
    RequiredAttribute(element, "ID");
    RequiredAttribute(element, "RNoPart");
    UniqueId(element);
  }

  TGaebFindings& findings_;
  std::set<std::string> ids_;
};

class ArithmeticCheck {
 public:
  explicit ArithmeticCheck(TGaebFindings& findings) : findings_(findings) {}

  void Document(const TGaebElement& root) {
    const TGaebElement* boq = root.Find("Award/BoQ");
    if (boq == nullptr) return;
    const TGaebElement* body = boq->Child("BoQBody");
    if (body == nullptr) return;
    const double sum = BodySum(*body);
    if (const TGaebElement* info = boq->Child("BoQInfo")) CompareTotal(*boq, *info, sum);
  }

 private:
  void Report(const TGaebElement& at, const std::string& message) {
    findings_.push_back({TGaebFindingKind::kError, at.line, message});
  }

  std::optional<double> Number(const TGaebElement& owner, std::string_view name) {
    const TGaebElement* element = owner.Child(name);
    if (element == nullptr) return std::nullopt;
    const std::optional<double> value = ParseGaebDecimal(element->text);
    if (!value) {
      Report(*element, Where(owner) + ": " + std::string(name) + " \"" + element->text +
                           "\" ist keine Dezimalzahl (erwartet Ziffern mit \".\" als "
                           "Dezimaltrennzeichen, ohne Exponent)");
    }
    return value;
  }

  // The sum of a body's counted item totals and its sections' totals.
  double BodySum(const TGaebElement& body) {
    double sum = 0.0;
    std::set<std::string> alternative_groups;
    for (const TGaebElement& child : body.children) {
      if (child.name == "BoQCtgy") {
        sum += SectionTotal(child);
      } else if (child.name == "Itemlist") {
        sum += BodySum(child);
      } else if (child.name == "Item") {
        const double total = ItemTotal(child);
        if (Counts(child, alternative_groups)) sum += total;
      } else if (child.name == "MarkupItem") {
        sum += Number(child, "IT").value_or(0.0);
      }
    }
    return sum;
  }

  static bool Counts(const TGaebElement& item, std::set<std::string>& alternative_groups) {
    if (item.ChildText("Provis") == GaebText(TProvis::WithoutTotal)) return false;
    if (item.ChildText("NotAppl") == kGaebYes) return false;
    if (const std::optional<std::string> group = item.ChildText("ALNGroupNo")) {
      return alternative_groups.insert(*group).second;
    }
    return true;
  }

  double SectionTotal(const TGaebElement& section) {
    const TGaebElement* body = section.Child("BoQBody");
    const double sum = body != nullptr ? BodySum(*body) : 0.0;
    return CompareTotal(section, section, sum);
  }

  // Compares the stated Total of `holder`'s Totals with the sum; answers the stated one
  // when there is one, so that one wrong section is reported once, not at every level.
  double CompareTotal(const TGaebElement& owner, const TGaebElement& holder, double sum) {
    const TGaebElement* totals = holder.Child("Totals");
    if (totals == nullptr) return sum;
    const std::optional<double> total = Number(*totals, "Total");
    if (!total) return sum;
    if (std::fabs(*total - sum) > kCent + kEpsilon) {
      Report(*totals->Child("Total"), Where(owner) + ": Summe " + FormatGaebDecimal(*total, 2) +
                                          " weicht von der Summe der enthaltenen Beträge " +
                                          FormatGaebDecimal(sum, 2) + " ab");
    }
    return *total;
  }

  double ItemTotal(const TGaebElement& item) {
    const std::optional<double> quantity = Number(item, "Qty");
    const std::optional<double> unit_price = Number(item, "UP");
    for (int component = 1; component <= 6; ++component) {
      Number(item, "UPComp" + std::to_string(component));
    }
    const std::optional<double> total = Number(item, "IT");
    if (!unit_price || !total) return total.value_or(0.0);
    const double expected = quantity.value_or(1.0) * *unit_price;
    if (std::fabs(expected - *total) > kCent + kEpsilon) {
      Report(*item.Child("IT"),
             Where(item) + ": IT " + FormatGaebDecimal(*total, 2) +
                 " ist nicht Menge × Einheitspreis = " + FormatGaebDecimal(expected, 2));
    }
    return *total;
  }

  TGaebFindings& findings_;
};

}  // namespace

TGaebFindings CheckGaebStructure(const TGaebDocument& document) {
  TGaebFindings findings;
  StructureCheck(findings).Document(document.root);
  return findings;
}

TGaebFindings CheckGaebArithmetic(const TGaebDocument& document) {
  TGaebFindings findings;
  ArithmeticCheck(findings).Document(document.root);
  return findings;
}

}  // namespace korvan::exchange::gaeb_xml
