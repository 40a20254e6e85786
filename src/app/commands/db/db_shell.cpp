#include "app/commands/db/db_shell.h"

#include <charconv>
#include <cstring>
#include <istream>
#include <ostream>
#include <sstream>
#include <stdexcept>

#include "app/cli/command_error.h"
#include "app/commands/db/db_blocks.h"
#include "app/commands/db/db_command.h"
#include "app/commands/db/db_database.h"
#include "app/commands/db/key_text.h"
#include "storage/db_kernel.h"
#include "storage/result_codes.h"

namespace korvan::app {
namespace {

// The bodies the shell writes are test data; 16 MB is far more than any record needs.
constexpr int64_t kMaxBodyLength = 16 << 20;
constexpr int64_t kMaxPosition = 2147483647;
constexpr int64_t kMaxKeyPosition = 4294967295;
constexpr char kSystemWriterId[] = "FFFFFFFF";  // records of system code never conflict
constexpr char kHexDigits[] = "0123456789abcdef";

// A line the shell cannot understand.
class LineError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

void ExpectWords(const std::vector<std::string>& words, size_t count, const char* usage) {
  if (words.size() != count) throw LineError(std::string("usage: ") + usage);
}

int64_t Number(const std::string& word, int64_t max, const char* what) {
  int64_t value = -1;
  const char* end = word.data() + word.size();
  const auto [stop, error] = std::from_chars(word.data(), end, value);
  if (error != std::errc() || stop != end || value < 0 || value > max) {
    throw LineError(std::string(what) + " '" + word + "' is not a number in 0.." +
                    std::to_string(max));
  }
  return value;
}

uint8_t HexByte(const std::string& word) {
  unsigned value = 0;
  const char* end = word.data() + word.size();
  const auto [stop, error] = std::from_chars(word.data(), end, value, 16);
  if (word.empty() || word.size() > 2 || error != std::errc() || stop != end) {
    throw LineError("byte '" + word + "' is not one or two hex digits");
  }
  return static_cast<uint8_t>(value);
}

char TypeLetter(const std::string& word) {
  if (word.size() != 1 || word[0] < 'A' || word[0] > 'Z') {
    throw LineError("type '" + word + "' is not a letter A..Z");
  }
  return word[0];
}

std::string Hex(const uint8_t* bytes, size_t size) {
  std::string text;
  text.reserve(size * 2);
  for (size_t i = 0; i < size; ++i) {
    text += kHexDigits[bytes[i] >> 4];
    text += kHexDigits[bytes[i] & 0x0f];
  }
  return text;
}

// A record of the given header and a body of `body_length` copies of `fill`.
std::vector<uint8_t> MakeRecord(storage::TDbRecordHeader header, int64_t body_length,
                                uint8_t fill) {
  const auto length = static_cast<int32_t>(storage::kRecordHeaderSize + body_length);
  header.RecLen = length;
  header.Size = static_cast<uint16_t>(std::min<int32_t>(length, 65535));
  std::vector<uint8_t> record(static_cast<size_t>(length), fill);
  std::memcpy(record.data(), &header, sizeof header);
  return record;
}

storage::TDbRecordHeader NewHeader(char type) {
  storage::TDbRecordHeader header{};
  header.RecTyp = type;
  header.Version = 1;
  header.ModifiedById[0] = sizeof kSystemWriterId - 1;
  std::memcpy(header.ModifiedById + 1, kSystemWriterId, sizeof kSystemWriterId - 1);
  return header;
}

std::string Done(int result) {
  return result == storage::kOk ? "ok" : std::to_string(result);
}

}  // namespace

DbShell::DbShell(int handle, int key_length, std::ostream& out)
    : handle_(handle), key_length_(key_length), out_(out) {}

int DbShell::Run(std::istream& in) {
  int not_understood = 0;
  std::string line;
  while (std::getline(in, line)) {
    if (!Execute(line)) ++not_understood;
  }
  return not_understood;
}

bool DbShell::Execute(const std::string& line) {
  std::istringstream split(line);
  Words words;
  for (std::string word; split >> word;) words.push_back(word);
  if (words.empty() || words.front()[0] == '#') return true;
  try {
    out_ << Dispatch(words) << "\n";
  } catch (const LineError& error) {
    out_ << "error: " << error.what() << "\n";
    return false;
  } catch (const storage::EDbKernelException& error) {
    out_ << error.FErrorCode << "\n";
  }
  return true;
}

std::string DbShell::Dispatch(const Words& words) {
  const std::string& operation = words.front();
  if (operation == "insert") return Insert(words);
  if (operation == "read") return Read(words);
  if (operation == "update") return Update(words);
  if (operation == "delete") return Delete(words);
  if (operation == "key+") return ChangeKey(words, true);
  if (operation == "key-") return ChangeKey(words, false);
  if (operation == "first") return Match(words, false);
  if (operation == "last") return Match(words, true);
  if (operation == "next") return Step(words, true);
  if (operation == "prev") return Step(words, false);
  if (operation == "count") return Count(words);
  if (operation == "flush") return Flush(words);
  throw LineError("unknown operation '" + operation + "'");
}

std::string DbShell::Insert(const Words& words) {
  ExpectWords(words, 4, "insert <T> <n> <byte>");
  std::vector<uint8_t> record =
      MakeRecord(NewHeader(TypeLetter(words[1])), Number(words[2], kMaxBodyLength, "length"),
                 HexByte(words[3]));
  int32_t position = 0;
  const int result = storage::iDK_RecordInsert(
      handle_, record.data(), static_cast<int32_t>(record.size()), true, &position);
  return result == storage::kOk ? std::to_string(position) : std::to_string(result);
}

std::string DbShell::Read(const Words& words) {
  ExpectWords(words, 2, "read <pos>");
  const auto position = static_cast<int32_t>(Number(words[1], kMaxPosition, "position"));
  int32_t stored = 0;
  storage::iDK_RecordRead(handle_, position, nullptr, &stored, false);
  // The stored length may be garbage: never ask for more than a record can sensibly be.
  int32_t length = static_cast<int32_t>(std::clamp<int64_t>(
      stored, storage::kRecordHeaderSize, storage::kRecordHeaderSize + kMaxBodyLength));
  std::vector<uint8_t> record(static_cast<size_t>(length));
  storage::iDK_RecordRead(handle_, position, record.data(), &length, true);
  const size_t header_size = storage::kRecordHeaderSize;
  std::string line = std::to_string(stored) + " " + TypeLetterText(static_cast<char>(record[4]));
  if (static_cast<size_t>(length) > header_size) {
    line += " " + Hex(record.data() + header_size, static_cast<size_t>(length) - header_size);
  }
  return line;
}

std::string DbShell::Update(const Words& words) {
  ExpectWords(words, 4, "update <pos> <n> <byte>");
  const auto position = static_cast<int32_t>(Number(words[1], kMaxPosition, "position"));
  const int64_t body_length = Number(words[2], kMaxBodyLength, "length");
  const uint8_t fill = HexByte(words[3]);
  // The caller's copy of the header, as update's conflict check expects it.
  storage::TDbRecordHeader header{};
  int32_t header_length = sizeof header;
  storage::iDK_RecordRead(handle_, position, &header, &header_length, true);
  const int32_t old_length = header.RecLen;
  std::vector<uint8_t> record = MakeRecord(header, body_length, fill);
  return Done(storage::iDK_RecordUpdate(handle_, record.data(), old_length, position,
                                        static_cast<int32_t>(record.size())));
}

std::string DbShell::Delete(const Words& words) {
  ExpectWords(words, 2, "delete <pos>");
  const auto position = static_cast<int32_t>(Number(words[1], kMaxPosition, "position"));
  storage::TDbRecordHeader header{};
  return Done(storage::iDK_RecordDelete(handle_, &header, position));
}

std::string DbShell::ChangeKey(const Words& words, bool insert) {
  ExpectWords(words, 3, insert ? "key+ <pos> <key>" : "key- <pos> <key>");
  int typed = 0;
  storage::KeyEntry entry = TypedKey(words[2], &typed);
  entry.position = static_cast<uint32_t>(Number(words[1], kMaxKeyPosition, "position"));
  return Done(insert ? storage::iDK_KeyInsert(handle_, entry)
                     : storage::iDK_KeyDelete(handle_, entry));
}

std::string DbShell::Match(const Words& words, bool last) {
  ExpectWords(words, 2, last ? "last <pattern>" : "first <pattern>");
  int typed = 0;
  storage::KeyEntry entry = TypedKey(words[1], &typed);
  uint32_t position = 0;
  const int result = last ? storage::iDK_KeyLastMatch(handle_, entry, &position)
                          : storage::iDK_KeyFirstMatch(handle_, entry, &position);
  if (result != storage::kOk) return std::to_string(result);
  cursor_ = entry;
  return CursorLine();
}

std::string DbShell::Step(const Words& words, bool forward) {
  ExpectWords(words, 1, forward ? "next" : "prev");
  if (!cursor_) throw LineError(words[0] + " needs a key found by first or last");
  storage::KeyEntry entry = *cursor_;
  uint32_t position = entry.position;
  const int result = forward ? storage::iDK_KeyNext(handle_, entry, &position)
                             : storage::iDK_KeyPrev(handle_, entry, &position);
  if (result != storage::kOk) return std::to_string(result);
  cursor_ = entry;
  return CursorLine();
}

std::string DbShell::Count(const Words& words) {
  if (words.size() == 3 && words[2] != "tilde") {
    throw LineError("count takes 'tilde' after the pattern, not '" + words[2] + "'");
  }
  if (words.size() != 2 && words.size() != 3) throw LineError("usage: count <pattern> [tilde]");
  int typed = 0;
  const storage::KeyEntry entry = TypedKey(words[1], &typed);
  // Trailing pad bytes of a pattern are not significant.
  int significant = typed;
  while (significant > 0 && entry.key[significant - 1] == storage::kKeyPad) --significant;
  uint32_t count = 0;
  const int result =
      storage::iDK_KeyMatchesCount(handle_, entry.key, significant, words.size() == 3, &count);
  return result == storage::kOk ? std::to_string(count) : std::to_string(result);
}

std::string DbShell::Flush(const Words& words) {
  ExpectWords(words, 1, "flush");
  return Done(storage::iDK_DbFlush(handle_));
}

storage::KeyEntry DbShell::TypedKey(const std::string& text, int* typed_length) const {
  std::string error;
  const auto bytes = KeyFromText(text, &error);
  if (!bytes) throw LineError(error);
  if (bytes->size() > static_cast<size_t>(key_length_)) {
    throw LineError("key '" + text + "' has " + std::to_string(bytes->size()) +
                    " bytes, the key length is " + std::to_string(key_length_));
  }
  storage::KeyEntry entry;
  std::memset(entry.key, storage::kKeyPad, sizeof entry.key);
  std::memcpy(entry.key, bytes->data(), bytes->size());
  *typed_length = static_cast<int>(bytes->size());
  return entry;
}

std::string DbShell::CursorLine() const {
  return KeyEntryLine(cursor_->position, {cursor_->key, static_cast<size_t>(key_length_)});
}

int RunDbShell(const std::string& base_path, std::istream& in, Streams& streams) {
  OpenDatabase db(base_path, OpenDatabase::Access::kExclusiveWrite);
  DbShell shell(db.handle(), db.KeyLength(), streams.out);
  const int not_understood = shell.Run(in);
  db.Close();
  if (not_understood == 0) return kExitOk;
  streams.err << "korvan db shell: " << not_understood << " line(s) not understood\n";
  return kExitFailure;
}

}  // namespace korvan::app
