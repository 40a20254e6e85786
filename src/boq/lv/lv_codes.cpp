#include "boq/lv/lv_codes.h"

namespace korvan::boq {

std::string_view LvStatusMeaning(char status) {
  switch (status) {
    case 'N':
      return "neu";
    case 'S':
      return "geschätzt";
    case 'A':
      return "ausgeschrieben";
    case 'B':
      return "angeboten";
    case 'V':
      return "vergeben";
    case 'F':
      return "abgerechnet";
    default:
      return {};
  }
}

}  // namespace korvan::boq
