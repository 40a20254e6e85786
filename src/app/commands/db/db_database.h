#pragma once

#include <cstdint>
#include <string>

namespace korvan::app {

// "<code> (<text>)" for a kernel result code; key-file and cache codes, which the
// kernel's message table does not know, get a short description of their own.
std::string ResultCodeText(int code);

// A database opened through the kernel for the maintenance commands, closed when the
// object goes away. Failures to open throw CommandError naming the file and the code.
class OpenDatabase {
 public:
  enum class Access { kReadOnly, kExclusiveWrite };

  OpenDatabase(const std::string& base_path, Access access);
  ~OpenDatabase();
  OpenDatabase(const OpenDatabase&) = delete;
  OpenDatabase& operator=(const OpenDatabase&) = delete;

  int handle() const { return handle_; }
  const std::string& base_path() const { return base_path_; }
  // The key length from the key file's header; throws CommandError when unreadable.
  int KeyLength() const;
  // The number of key entries, with or without the free-space ("~") keys; throws
  // CommandError naming the key file when the tree cannot be walked.
  uint32_t KeyCount(bool with_free_space_keys) const;
  // Flushes and closes; throws CommandError naming the files when that fails.
  void Close();

 private:
  std::string base_path_;
  int handle_ = 0;
};

}  // namespace korvan::app
