#include "boq/text/short_text_fit.h"

#include <algorithm>

#include "boq/text/tb_texte.h"

namespace korvan::boq {
namespace {

// A stored line cut into pieces of at most `width` bytes, at the last blank where there
// is one.
std::vector<std::string> Wrapped(const std::string& line, std::size_t width) {
  std::vector<std::string> pieces;
  std::string rest = line;
  while (rest.size() > width) {
    std::size_t cut = rest.rfind(' ', width);
    if (cut == std::string::npos || cut == 0) cut = width;
    pieces.push_back(rest.substr(0, cut));
    rest = rest.substr(rest[cut] == ' ' ? cut + 1 : cut);
  }
  pieces.push_back(rest);
  return pieces;
}

}  // namespace

TFittedShortText FitShortTextLines(const std::string& utf8) {
  TFittedShortText fitted;
  const std::string stored = data::Utf8ToCp1252(utf8, &fitted.report);
  const std::size_t width = static_cast<std::size_t>(TTbTexte::kLineCapacity);
  std::size_t start = 0;
  while (start <= stored.size()) {
    const std::size_t end = std::min(stored.find('\n', start), stored.size());
    const std::vector<std::string> pieces = Wrapped(stored.substr(start, end - start), width);
    fitted.wrapped = fitted.wrapped || pieces.size() > 1;
    for (const std::string& piece : pieces) fitted.lines.push_back(data::Cp1252ToUtf8(piece));
    start = end + 1;
  }
  return fitted;
}

}  // namespace korvan::boq
