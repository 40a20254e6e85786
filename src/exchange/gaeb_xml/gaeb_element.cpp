#include "exchange/gaeb_xml/gaeb_element.h"

namespace korvan::exchange::gaeb_xml {

const TGaebElement* TGaebElement::Child(std::string_view child_name) const {
  for (const TGaebElement& child : children) {
    if (child.name == child_name) return &child;
  }
  return nullptr;
}

TGaebElement* TGaebElement::Child(std::string_view child_name) {
  for (TGaebElement& child : children) {
    if (child.name == child_name) return &child;
  }
  return nullptr;
}

std::optional<std::string> TGaebElement::ChildText(std::string_view child_name) const {
  const TGaebElement* child = Child(child_name);
  if (child == nullptr) return std::nullopt;
  return child->text;
}

const TGaebElement* TGaebElement::Find(std::string_view path) const {
  const TGaebElement* element = this;
  while (element != nullptr && !path.empty()) {
    const size_t slash = path.find('/');
    element = element->Child(path.substr(0, slash));
    path = slash == std::string_view::npos ? std::string_view() : path.substr(slash + 1);
  }
  return element;
}

std::optional<std::string> TGaebElement::Attribute(std::string_view attribute) const {
  for (const auto& [key, value] : attributes) {
    if (key == attribute) return value;
  }
  return std::nullopt;
}

TGaebElement& TGaebElement::SetAttribute(std::string attribute, std::string value) {
  for (auto& [key, old_value] : attributes) {
    if (key == attribute) {
      old_value = std::move(value);
      return *this;
    }
  }
  attributes.emplace_back(std::move(attribute), std::move(value));
  return *this;
}

TGaebElement& TGaebElement::Add(std::string child_name, std::string child_text) {
  children.emplace_back(std::move(child_name), std::move(child_text));
  return children.back();
}

TGaebElement& TGaebElement::Add(TGaebElement child) {
  children.push_back(std::move(child));
  return children.back();
}

TGaebElement& TGaebElement::AddText(std::string run) {
  return Add(std::string(kTextNode), std::move(run));
}

bool operator==(const TGaebElement& a, const TGaebElement& b) {
  return a.name == b.name && a.attributes == b.attributes && a.text == b.text &&
         a.children == b.children;
}

}  // namespace korvan::exchange::gaeb_xml
