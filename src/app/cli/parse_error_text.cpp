#include "app/cli/parse_error_text.h"

#include <regex>
#include <string_view>

namespace korvan::app {
namespace {

// One form of an English message and its German text ($1, $2, ... the parts kept).
struct Translation {
  std::string_view kind;  // the parser's name of the error kind
  const char* english;    // the whole message, as a regular expression
  const char* german;
};

const Translation kTranslations[] = {
    {"ExtrasError", "The following arguments? (?:was|were) not expected: (.*)",
     "nicht erwartet: $1"},
    {"RequiredError", "A subcommand is required", "ein Unterbefehl fehlt"},
    {"RequiredError", "(.+) is required", "$1 fehlt"},
    {"RequiredError", "Requires at least (\\d+) subcommands", "mindestens $1 Unterbefehle fehlen"},
    {"ArgumentMismatch", "Expected exactly (\\d+) arguments to (.+), got (\\d+)",
     "$2 erwartet genau $1 Werte, angegeben: $3"},
    {"ArgumentMismatch", "Expected at least (\\d+) arguments to (.+), got (\\d+)",
     "$2 erwartet mindestens $1 Werte, angegeben: $3"},
    {"ArgumentMismatch", "(.+): At least (\\d+) required but received (\\d+)",
     "$1 erwartet mindestens $2 Werte, angegeben: $3"},
    {"ArgumentMismatch", "(.+): At Most (\\d+) required but received (\\d+)",
     "$1 erwartet höchstens $2 Werte, angegeben: $3"},
    {"ArgumentMismatch", "(.+): (\\d+) required .* missing", "$1: der Wert fehlt"},
    {"ArgumentMismatch", "(.+) was given a disallowed flag override",
     "$1: dieser Wert ist nicht erlaubt"},
    {"ConversionError", "The value (.+) is not an allowed value for (.+)",
     "$2: der Wert $1 ist nicht erlaubt"},
    {"ConversionError", "Could not convert: (.+) = (.*)", "$1: \"$2\" ist kein gültiger Wert"},
    {"ConversionError", "(.+): too many inputs for a flag", "$1 ist ein Schalter ohne Wert"},
    {"ConversionError", "(.+): Should be true/false or a number",
     "$1: erwartet true, false oder eine Zahl"},
    {"ValidationError", "(.+): Value (.+) not in range (.+) to (.+)",
     "$1: $2 liegt nicht im Bereich $3 bis $4"},
    {"ValidationError", "(.+): Value (.+) could not be converted.*",
     "$1: \"$2\" ist kein gültiger Wert"},
    {"ExcludesError", "(.+) excludes (.+)", "$1 und $2 schließen einander aus"},
    {"RequiresError", "(.+) requires (.+)", "$1 geht nur zusammen mit $2"},
};

// The kind of an error; the parser's own name of it (`get_name`) is replaced by the
// command's name for some errors of subcommands.
std::string_view KindOf(const CLI::ParseError& error) {
  if (dynamic_cast<const CLI::ExtrasError*>(&error)) return "ExtrasError";
  if (dynamic_cast<const CLI::RequiredError*>(&error)) return "RequiredError";
  if (dynamic_cast<const CLI::ArgumentMismatch*>(&error)) return "ArgumentMismatch";
  if (dynamic_cast<const CLI::ConversionError*>(&error)) return "ConversionError";
  if (dynamic_cast<const CLI::ValidationError*>(&error)) return "ValidationError";
  if (dynamic_cast<const CLI::ExcludesError*>(&error)) return "ExcludesError";
  if (dynamic_cast<const CLI::RequiresError*>(&error)) return "RequiresError";
  return error.get_name();
}

// The options and arguments an untranslated message names, for the general text.
std::string NamedOptions(const std::string& message) {
  static const std::regex option("(^|[\\s\\[,])(--?[A-Za-z][A-Za-z0-9_-]*)");
  std::string names;
  for (auto it = std::sregex_iterator(message.begin(), message.end(), option);
       it != std::sregex_iterator(); ++it) {
    names += (names.empty() ? "" : ", ") + (*it)[2].str();
  }
  return names;
}

}  // namespace

std::string GermanParseError(const CLI::ParseError& error) {
  const std::string message = error.what();
  for (const Translation& translation : kTranslations) {
    if (translation.kind != KindOf(error)) continue;
    const std::regex form(translation.english);
    if (std::regex_match(message, form))
      return std::regex_replace(message, form, translation.german);
  }
  const std::string names = NamedOptions(message);
  return "ungültiger Aufruf" + (names.empty() ? std::string() : " (betrifft " + names + ")");
}

}  // namespace korvan::app
