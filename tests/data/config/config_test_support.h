#pragma once

#include <string>
#include <vector>

#include "data/config/base_config.h"

namespace korvan::data::testing {

inline TConfigContext TestContext() {
  return {"anna", "ws01", "0.1.0", 100};
}

inline bool Contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

// Gives every option of `config` a value other than its current one, trying texts of
// all the stored types until one is accepted. Returns the keys where none was.
inline std::vector<std::string> ChangeEveryOption(TBaseConfig& config) {
  static const char* const kCandidates[] = {"Größe € äÖü",
                                            "\"a,b\",ä,,d,e,f,g,h,i,j",
                                            "1,0,1,0,1,0,1,0,1,0",
                                            "3,4,5,6,7,8,9,10,11,12",
                                            "0",
                                            "1",
                                            "2",
                                            "7.25",
                                            "20240229"};
  std::vector<std::string> unchanged;
  for (const auto& entry : config.Entries()) {
    bool changed = false;
    for (const char* candidate : kCandidates) {
      if (candidate == entry.value) continue;
      try {
        config.SetFromText(entry.section, entry.key, candidate);
        changed = true;
        break;
      } catch (const EAvaConfigError&) {
      }
    }
    if (!changed) unchanged.push_back(entry.section + "/" + entry.key);
  }
  return unchanged;
}

}  // namespace korvan::data::testing
