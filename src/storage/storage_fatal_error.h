#pragma once

#include <stdexcept>
#include <string>

namespace korvan::storage {

// A failure that left a file in a state the engine cannot repair in place, for example
// the cache refusing to write back a node in the middle of a split. It names the
// internal step ("xNodeSplit1", "NodeAlloc2", ...) and the caption of the classic
// message box ("Database Index Error" for version 3 key files, "FatalError" for
// version 2). The program must stop using the database; the shell decides how to
// show the message.
class StorageFatalError : public std::runtime_error {
 public:
  StorageFatalError(std::string caption, std::string step, int code)
      : std::runtime_error(caption + ": " + step + " (" + std::to_string(code) + ")"),
        caption_(std::move(caption)),
        step_(std::move(step)),
        code_(code) {}

  const std::string& caption() const { return caption_; }
  const std::string& step() const { return step_; }
  int code() const { return code_; }

 private:
  std::string caption_;
  std::string step_;
  int code_;
};

}  // namespace korvan::storage
