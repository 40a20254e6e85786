#pragma once

#include <map>
#include <string>

namespace korvan::data {

// The program's user-visible texts by number, for one language. A number the catalogue
// does not hold yields "cLoadStr(<number>) failed", so that a missing text is visible
// without stopping the program.
class TTextCatalogue {
 public:
  // The German texts the program carries.
  static const TTextCatalogue& German();

  std::string cLoadStr(int number) const;
  bool Contains(int number) const { return texts_.count(number) != 0; }

 private:
  explicit TTextCatalogue(std::map<int, std::string> texts) : texts_(std::move(texts)) {}
  std::map<int, std::string> texts_;
};

// Texts used by the data component and the master-data lists.
inline constexpr int kTextListeSpeichern = 46222;  // shown while a row list is saved

}  // namespace korvan::data
