#pragma once

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "storage/key_file.h"

namespace korvan::app {

// The line interpreter of `korvan db shell`: one kernel operation per line, one result
// line each, on a database the caller has open for writing.
//
//   insert <T> <n> <byte>   record of type letter T, body n copies of byte (hex) -> position
//   read <pos>              -> stored length, type letter, body as hex
//   update <pos> <n> <byte> | delete <pos>                      -> ok
//   key+ <pos> <key> | key- <pos> <key>                         -> ok
//   first <pattern> | last <pattern> | next | prev              -> position and key
//   count <pattern> [tilde]                                     -> number of matches
//   flush                                                       -> ok
//
// Keys and patterns are typed with "\xNN" escapes and padded with 0x04 to the key
// length. A kernel failure prints its numeric code; a line that cannot be understood
// prints "error: <why>". Blank lines and lines starting with "#" print nothing.
class DbShell {
 public:
  DbShell(int handle, int key_length, std::ostream& out);

  // Runs every line of `in`; returns how many lines were not understood.
  int Run(std::istream& in);
  // Runs one line and prints its result; false when the line was not understood.
  bool Execute(const std::string& line);

 private:
  using Words = std::vector<std::string>;

  std::string Dispatch(const Words& words);
  std::string Insert(const Words& words);
  std::string Read(const Words& words);
  std::string Update(const Words& words);
  std::string Delete(const Words& words);
  std::string ChangeKey(const Words& words, bool insert);
  std::string Match(const Words& words, bool last);
  std::string Step(const Words& words, bool forward);
  std::string Count(const Words& words);
  std::string Flush(const Words& words);

  // The key buffer a typed key stands for, padded with 0x04; *typed_length receives
  // the number of bytes typed.
  storage::KeyEntry TypedKey(const std::string& text, int* typed_length) const;
  std::string CursorLine() const;

  int handle_;
  int key_length_;
  std::ostream& out_;
  std::optional<storage::KeyEntry> cursor_;  // from the last first/last/next/prev
};

}  // namespace korvan::app
