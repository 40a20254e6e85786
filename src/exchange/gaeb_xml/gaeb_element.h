#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace korvan::exchange::gaeb_xml {

// One element of a GAEB DA XML document. A leaf keeps its character content in `text`;
// an element whose content mixes text and elements (GAEB text markup: p, span) keeps each
// text run as a child named kTextNode. Elements the system does not know stay in the tree
// like all others, so nothing read is dropped.
struct TGaebElement {
  static constexpr std::string_view kTextNode = "#text";

  std::string name;
  std::vector<std::pair<std::string, std::string>> attributes;
  std::string text;
  std::vector<TGaebElement> children;
  int line = 0;  // line in the file read; 0 for elements built in memory

  TGaebElement() = default;
  explicit TGaebElement(std::string element_name, std::string element_text = {})
      : name(std::move(element_name)), text(std::move(element_text)) {}

  bool IsTextNode() const { return name == kTextNode; }

  // The first child of that name; nullptr when there is none.
  const TGaebElement* Child(std::string_view child_name) const;
  TGaebElement* Child(std::string_view child_name);
  // The text of the first child of that name; nothing when there is no such child.
  std::optional<std::string> ChildText(std::string_view child_name) const;
  // The first element along a path of child names: "BoQInfo/Totals/Total".
  const TGaebElement* Find(std::string_view path) const;

  std::optional<std::string> Attribute(std::string_view attribute) const;
  TGaebElement& SetAttribute(std::string attribute, std::string value);

  // Appends a child and answers it.
  TGaebElement& Add(std::string child_name, std::string child_text = {});
  TGaebElement& Add(TGaebElement child);
  // Appends a text run of mixed content.
  TGaebElement& AddText(std::string run);

  // Equal in name, attributes, text and children; the line read does not count.
  friend bool operator==(const TGaebElement& a, const TGaebElement& b);
};

}  // namespace korvan::exchange::gaeb_xml
