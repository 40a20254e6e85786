#pragma once

#include <string>

#include <CLI/CLI.hpp>

namespace korvan::app {

// The German text of an argument error of the command-line parser, by the kind of the
// error, keeping the names and values it is about. An error of a kind or form not known
// here is answered with a general German text naming the options it mentions, never with
// the parser's English.
std::string GermanParseError(const CLI::ParseError& error);

}  // namespace korvan::app
