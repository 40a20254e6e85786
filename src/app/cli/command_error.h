#pragma once

#include <stdexcept>
#include <string>

namespace korvan::app {

// A failure of a command's work that the user should read as it is (exit code 1).
class CommandError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// A wrong call the parser could not catch, such as a value out of range (exit code 2).
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace korvan::app
