#include "data/config/number_pattern.h"

#include <charconv>
#include <climits>
#include <cstdio>

#include "data/common/ascii_text.h"
#include "data/config/config_error.h"
#include "data/records/int_date.h"

namespace korvan::data {
namespace {

constexpr std::string_view kOpen = "{*";
constexpr std::string_view kClose = "*}";
constexpr int kMaxWidth = 20;

// "%W.P+" or "&W.P+" without the prefix.
struct CounterFormat {
  int width = 0;
  int precision = 0;
  bool advance = false;
};

bool ReadWidth(std::string_view* text, int* value) {
  const char* begin = text->data();
  const auto [end, error] = std::from_chars(begin, begin + text->size(), *value);
  if (error == std::errc::invalid_argument) return true;  // left out
  if (error != std::errc() || *value < 0 || *value > kMaxWidth) return false;
  text->remove_prefix(static_cast<std::size_t>(end - begin));
  return true;
}

bool ParseCounterFormat(std::string_view text, CounterFormat* format) {
  if (!ReadWidth(&text, &format->width)) return false;
  if (text.starts_with('.')) {
    text.remove_prefix(1);
    if (text.empty() || text.front() < '0' || text.front() > '9') return false;
    if (!ReadWidth(&text, &format->precision)) return false;
  }
  if (text.starts_with('+')) {
    format->advance = true;
    text.remove_prefix(1);
  }
  return text.empty();
}

class Expander {
 public:
  Expander(std::string_view pattern, const NumberPatternInputs& inputs)
      : pattern_(pattern), inputs_(inputs) {}

  NumberPatternResult Run() {
    std::string_view rest = pattern_;
    while (!rest.empty()) {
      const auto open = rest.find(kOpen);
      result_.text.append(rest.substr(0, open));
      if (open == std::string_view::npos) break;
      rest.remove_prefix(open + kOpen.size());
      const auto close = rest.find(kClose);
      if (close == std::string_view::npos) Fail("\"{*\" ohne \"*}\"");
      Placeholder(rest.substr(0, close));
      rest.remove_prefix(close + kClose.size());
    }
    return result_;
  }

 private:
  [[noreturn]] void Fail(const std::string& what) const {
    throw EAvaConfigError("Nummernformat \"" + std::string(pattern_) + "\": " + what);
  }

  void Placeholder(std::string_view name) {
    if (EqualsIgnoringCase(name, "LNR")) {
      result_.text.append(std::to_string(inputs_.running_number));
    } else if (EqualsIgnoringCase(name, "MM")) {
      AppendPadded(Date().month, 2);
    } else if (EqualsIgnoringCase(name, "JJJJ")) {
      AppendPadded(Date().year, 4);
    } else if (name.starts_with('%')) {
      Counter(name, inputs_.counter, &result_.counter_advanced);
    } else if (name.starts_with('&')) {
      Counter(name, inputs_.project_counter, &result_.project_counter_advanced);
    } else {
      Fail("unbekannter Platzhalter \"{*" + std::string(name) + "*}\"");
    }
  }

  CivilDate Date() const {
    if (ClassifyIntDate(inputs_.date) != IntDateKind::kValid) {
      Fail("kein gültiges Datum " + std::to_string(inputs_.date) + " für Monat und Jahr");
    }
    return IntDateParts(inputs_.date);
  }

  void AppendPadded(int value, int digits) { AppendFormatted(value, 0, digits); }

  void AppendFormatted(int64_t value, int width, int precision) {
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%*.*lld", width, precision,
                  static_cast<long long>(value));
    result_.text.append(buffer);
  }

  void Counter(std::string_view name, int32_t last, bool* advanced) {
    CounterFormat format;
    if (!ParseCounterFormat(name.substr(1), &format)) {
      Fail("unbekannter Platzhalter \"{*" + std::string(name) + "*}\"");
    }
    int64_t value = last;
    if (format.advance) {
      if (last == INT32_MAX) Fail("der Zähler hat seinen Höchstwert erreicht");
      value = static_cast<int64_t>(last) + 1;
      *advanced = true;
    }
    AppendFormatted(value, format.width, format.precision);
  }

  std::string_view pattern_;
  const NumberPatternInputs& inputs_;
  NumberPatternResult result_;
};

}  // namespace

NumberPatternResult ExpandNumberPattern(std::string_view pattern,
                                        const NumberPatternInputs& inputs) {
  return Expander(pattern, inputs).Run();
}

}  // namespace korvan::data
