#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace korvan::data {

// What the placeholders of a number pattern are filled with.
struct NumberPatternInputs {
  int32_t date = 0;             // integer date (yyyymmdd) for {*MM*} and {*JJJJ*}
  int32_t running_number = 0;   // {*LNR*}, e.g. the contract's running number in its project
  int32_t counter = 0;          // {*%...*}: last value of the document kind's own counter
  int32_t project_counter = 0;  // {*&...*}: last value of [Numerics] "ProjektCounter"
};

struct NumberPatternResult {
  std::string text;
  bool counter_advanced = false;          // the caller stores counter + 1
  bool project_counter_advanced = false;  // the caller stores project_counter + 1
};

// Expands the contract, invoice and project number patterns (`FVertragFormat`,
// `FRechnungFormat`, `FProjektFormat`). Text outside "{*" ... "*}" is copied as it is.
// Placeholders (names in either case):
//   {*LNR*}   the running number in decimal, without padding
//   {*MM*}    the month of the date, two digits
//   {*JJJJ*}  the year of the date, four digits
//   {*%W.P+*} the counter formatted like printf("%W.Pd"): at least P digits with
//             leading zeros, right-aligned with blanks in at least W characters; W, ".P"
//             and "+" may each be left out, W and P are at most 20. With "+" the next
//             value (last + 1) is used and the result says that the counter advanced;
//             every "+" placeholder of one pattern gets the same next value. Without
//             "+" the last value is used as it is.
//   {*&W.P+*} the same for the project counter.
// So "{*%5.5+*}-{*MM*}-{*JJJJ*}" with counter 41 on 20240307 gives "00042-03-2024".
// EAvaConfigError names the pattern and what is wrong: an unclosed "{*", an unknown
// placeholder, an invalid date where month or year are asked for, a counter at its
// maximum that is to be advanced.
NumberPatternResult ExpandNumberPattern(std::string_view pattern,
                                        const NumberPatternInputs& inputs);

}  // namespace korvan::data
