#include "app/cli/json_text.h"

#include <cmath>
#include <cstdio>

namespace korvan::app {

std::string JsonString(std::string_view utf8) {
  std::string out = "\"";
  for (const char c : utf8) {
    switch (c) {
      case '"':
        out += "\\\"";
        break;
      case '\\':
        out += "\\\\";
        break;
      case '\n':
        out += "\\n";
        break;
      case '\r':
        out += "\\r";
        break;
      case '\t':
        out += "\\t";
        break;
      default:
        if (static_cast<unsigned char>(c) < 0x20) {
          char escaped[8];
          std::snprintf(escaped, sizeof escaped, "\\u%04x", static_cast<unsigned char>(c));
          out += escaped;
        } else {
          out += c;
        }
    }
  }
  return out + "\"";
}

std::string JsonNumber(double value) {
  if (!std::isfinite(value)) return "null";
  char text[32];
  if (value == std::trunc(value) && std::fabs(value) < 1e15) {
    std::snprintf(text, sizeof text, "%.0f", value);
  } else {
    std::snprintf(text, sizeof text, "%.15g", value);
  }
  return text;
}

}  // namespace korvan::app
