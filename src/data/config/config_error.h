#pragma once

#include <stdexcept>
#include <string>

namespace korvan::data {

// Raised by the configuration layer: a configuration file that cannot be read or
// written, a file of the wrong configuration kind, a number pattern that cannot be
// expanded. The message names the file or the text that was wrong.
class EAvaConfigError : public std::runtime_error {
 public:
  explicit EAvaConfigError(const std::string& message) : std::runtime_error(message) {}
};

}  // namespace korvan::data
