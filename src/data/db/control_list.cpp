#include "data/db/control_list.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <thread>

namespace korvan::data {
namespace {

constexpr std::string_view kHeaderLine = "QDC|1";
constexpr off_t kMaxControlFileSize = 1 << 20;

std::string ErrorText(const std::string& file, int line, const std::string& problem) {
  std::string text = "Steuerdatei \"" + file + "\"";
  if (line > 0) text += ", Zeile " + std::to_string(line);
  return text + ": " + problem;
}

std::string RegionText(const char* operation, off_t offset, off_t length) {
  char text[64];
  std::snprintf(text, sizeof text, "%s %d, %d", operation, static_cast<int>(offset),
                static_cast<int>(length));
  return text;
}

struct flock Region(short type, off_t offset, off_t length) {
  struct flock region {};
  region.l_type = type;
  region.l_whence = SEEK_SET;
  region.l_start = offset;
  region.l_len = length;
  return region;
}

// Names are stored inside one "|"-separated line.
std::string Sanitized(std::string text) {
  for (char& c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '|' || byte < 0x20 || byte == 0x7F) c = '_';
  }
  return text;
}

std::string LocalTimeNow() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  char text[32];
  std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &local);
  return text;
}

std::vector<std::string_view> SplitFields(std::string_view line) {
  std::vector<std::string_view> fields;
  std::size_t start = 0;
  for (;;) {
    const std::size_t bar = line.find('|', start);
    fields.push_back(line.substr(start, bar - start));
    if (bar == std::string_view::npos) return fields;
    start = bar + 1;
  }
}

template <typename Number>
std::optional<Number> ParseNumber(std::string_view text) {
  Number value{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size() || text.empty()) return {};
  return value;
}

// Reads the lines of a control file one by one, reporting problems with their line.
class ControlFileParser {
 public:
  ControlFileParser(std::string_view text, const std::string& file) : text_(text), file_(file) {}

  ControlFileContent Parse() {
    if (text_.empty()) return {};
    std::optional<std::string_view> line = NextLine();
    if (line != kHeaderLine) {
      Fail(line->starts_with("QDC|") ? "unbekannte Formatversion \"" + std::string(*line) + "\""
                                     : "keine Steuerdatei (Kopfzeile \"QDC|1\" fehlt)");
    }
    ControlFileContent content;
    std::size_t records = 0;
    while ((line = NextLine())) {
      const std::vector<std::string_view> fields = SplitFields(*line);
      if (fields[0] == "END") {
        ParseEnd(fields, records);
        return content;
      }
      if (fields[0] == "U") {
        AddUser(fields, content);
      } else if (fields[0] == "T") {
        AddTable(fields, content);
      } else {
        Fail("unbekannte Zeilenart \"" + std::string(fields[0]) + "\"");
      }
      ++records;
    }
    ++line_number_;
    Fail("Schlusszeile \"END\" fehlt, die Datei ist unvollständig");
  }

 private:
  std::optional<std::string_view> NextLine() {
    if (position_ >= text_.size()) return {};
    std::size_t end = text_.find('\n', position_);
    if (end == std::string_view::npos) end = text_.size();
    std::string_view line = text_.substr(position_, end - position_);
    position_ = end + 1;
    ++line_number_;
    if (line.ends_with('\r')) line.remove_suffix(1);
    return line;
  }

  void ParseEnd(const std::vector<std::string_view>& fields, std::size_t records) {
    ExpectFieldCount(fields, 2);
    if (ParseNumber<std::size_t>(fields[1]) != records) {
      Fail("Schlusszeile nennt " + std::string(fields[1]) + " Einträge, die Datei hat " +
           std::to_string(records));
    }
    while (std::optional<std::string_view> rest = NextLine()) {
      if (!rest->empty()) Fail("Text nach der Schlusszeile");
    }
  }

  void AddUser(const std::vector<std::string_view>& fields, ControlFileContent& content) {
    ExpectFieldCount(fields, 7);
    const std::optional<int> slot = ParseNumber<int>(fields[1]);
    if (!slot || *slot < 0 || *slot >= TControlList::kMaxSlots) {
      Fail("ungültige Platznummer \"" + std::string(fields[1]) + "\"");
    }
    for (const ControlEntry& other : content.users) {
      if (other.slot == *slot) Fail("Platznummer " + std::to_string(*slot) + " doppelt");
    }
    if (fields[2] != "X" && fields[2] != "S") {
      Fail("ungültige Zugriffsart \"" + std::string(fields[2]) + "\" (erwartet X oder S)");
    }
    const std::optional<int64_t> process_id = ParseNumber<int64_t>(fields[5]);
    if (!process_id) Fail("ungültige Prozessnummer \"" + std::string(fields[5]) + "\"");
    content.users.push_back({*slot, fields[2] == "X", std::string(fields[3]),
                             std::string(fields[4]), *process_id, std::string(fields[6])});
  }

  void AddTable(const std::vector<std::string_view>& fields, ControlFileContent& content) {
    ExpectFieldCount(fields, 3);
    if (fields[1].empty()) Fail("Tabellenname fehlt");
    const std::optional<uint64_t> counter = ParseNumber<uint64_t>(fields[2]);
    if (!counter) Fail("ungültiger Änderungszähler \"" + std::string(fields[2]) + "\"");
    if (!content.table_counters.emplace(std::string(fields[1]), *counter).second) {
      Fail("Tabelle \"" + std::string(fields[1]) + "\" doppelt");
    }
  }

  void ExpectFieldCount(const std::vector<std::string_view>& fields, std::size_t count) {
    if (fields.size() != count) {
      Fail(std::to_string(fields.size()) + " Felder statt " + std::to_string(count));
    }
  }

  [[noreturn]] void Fail(const std::string& problem) {
    throw ControlFileError(file_, line_number_, problem);
  }

  std::string_view text_;
  const std::string& file_;
  std::size_t position_ = 0;
  int line_number_ = 0;
};

// Holds the list lock of a control list for one operation.
class ListLockGuard {
 public:
  explicit ListLockGuard(TControlList& list) : list_(list) { list_.Lock(); }
  ~ListLockGuard() { list_.Unlock(); }
  ListLockGuard(const ListLockGuard&) = delete;
  ListLockGuard& operator=(const ListLockGuard&) = delete;

 private:
  TControlList& list_;
};

// Language texts 1455 and 1449. The text catalogue is not part of the program yet;
// until it is, the German wording is kept here.
std::string CatalogueText1455() {
  return "Das Datenverzeichnis kann zur Zeit nicht benutzt werden.";
}
std::string CatalogueText1449(const std::string& user) {
  return "Es wird von \"" + user + "\" exklusiv oder gemeinsam mit anderen benutzt.";
}

}  // namespace

ControlFileError::ControlFileError(const std::string& file, int line, const std::string& problem)
    : std::runtime_error(ErrorText(file, line, problem)), file_(file), line_(line) {}

std::string ControlEntry::DisplayName() const {
  return user.empty() ? kStandardUser : user;
}

// ---------------------------------------------------------------------------------------
// TControlStream

TControlStream::TControlStream(std::string path, std::chrono::milliseconds lock_timeout,
                               ControlDiagnostics diagnostics)
    : path_(std::move(path)), lock_timeout_(lock_timeout), diagnostics_(std::move(diagnostics)) {
  fd_ = storage::UniqueFd(::open(path_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666));
  if (!fd_.valid()) Fail(std::string("kann nicht geöffnet werden: ") + std::strerror(errno));
}

void TControlStream::Fail(const std::string& problem) const {
  throw ControlFileError(path_, 0, problem);
}

void TControlStream::LockRegion(off_t offset, off_t length) {
  if (diagnostics_) diagnostics_(RegionText("LockRegion", offset, length));
  const auto start = std::chrono::steady_clock::now();
  for (;;) {
    if (TryLockRegion(offset, length)) return;
    if (std::chrono::steady_clock::now() - start >= lock_timeout_) {
      Fail("ist seit " + std::to_string(lock_timeout_.count()) +
           " ms von einem anderen Benutzer gesperrt");
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
}

void TControlStream::UnLockRegion(off_t offset, off_t length) {
  if (diagnostics_) diagnostics_(RegionText("UnLockRegion", offset, length));
  struct flock region = Region(F_UNLCK, offset, length);
  // Unlocking an open descriptor's own region cannot fail; closing drops it anyway.
  ::fcntl(fd_.get(), F_OFD_SETLK, &region);
}

bool TControlStream::TryLockRegion(off_t offset, off_t length) {
  struct flock region = Region(F_WRLCK, offset, length);
  if (::fcntl(fd_.get(), F_OFD_SETLK, &region) == 0) return true;
  if (errno == EAGAIN || errno == EACCES || errno == EINTR) return false;
  Fail(std::string("Sperre nicht möglich: ") + std::strerror(errno));
}

bool TControlStream::IsRegionLockedByOther(off_t offset, off_t length) const {
  struct flock region = Region(F_WRLCK, offset, length);
  if (::fcntl(fd_.get(), F_OFD_GETLK, &region) != 0) {
    Fail(std::string("Sperrzustand nicht lesbar: ") + std::strerror(errno));
  }
  return region.l_type != F_UNLCK;
}

std::string TControlStream::ReadAll() const {
  struct stat status {};
  if (::fstat(fd_.get(), &status) != 0) Fail(std::string("nicht lesbar: ") + std::strerror(errno));
  if (status.st_size > kMaxControlFileSize) {
    Fail("ist mit " + std::to_string(status.st_size) + " Bytes zu groß für eine Steuerdatei");
  }
  std::string content(static_cast<std::size_t>(status.st_size), '\0');
  std::size_t done = 0;
  while (done < content.size()) {
    const ssize_t got =
        ::pread(fd_.get(), content.data() + done, content.size() - done, static_cast<off_t>(done));
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) Fail(std::string("nicht lesbar: ") + std::strerror(errno));
    if (got == 0) break;  // shrunk meanwhile: the parser reports what is missing
    done += static_cast<std::size_t>(got);
  }
  content.resize(done);
  return content;
}

void TControlStream::WriteAll(std::string_view content) {
  std::size_t done = 0;
  while (done < content.size()) {
    const ssize_t put =
        ::pwrite(fd_.get(), content.data() + done, content.size() - done, static_cast<off_t>(done));
    if (put < 0 && errno == EINTR) continue;
    if (put < 0) Fail(std::string("nicht schreibbar: ") + std::strerror(errno));
    done += static_cast<std::size_t>(put);
  }
  if (::ftruncate(fd_.get(), static_cast<off_t>(content.size())) != 0 ||
      ::fdatasync(fd_.get()) != 0) {
    Fail(std::string("nicht schreibbar: ") + std::strerror(errno));
  }
}

// ---------------------------------------------------------------------------------------
// Parsing and formatting

ControlFileContent ParseControlFile(std::string_view text, const std::string& file) {
  return ControlFileParser(text, file).Parse();
}

std::string FormatControlFile(const ControlFileContent& content) {
  std::string text = std::string(kHeaderLine) + "\n";
  for (const ControlEntry& entry : content.users) {
    text += "U|" + std::to_string(entry.slot) + (entry.exclusive ? "|X|" : "|S|") +
            Sanitized(entry.user) + "|" + Sanitized(entry.machine) + "|" +
            std::to_string(entry.process_id) + "|" + Sanitized(entry.since) + "\n";
  }
  for (const auto& [table, counter] : content.table_counters) {
    text += "T|" + Sanitized(table) + "|" + std::to_string(counter) + "\n";
  }
  const std::size_t records = content.users.size() + content.table_counters.size();
  return text + "END|" + std::to_string(records) + "\n";
}

// ---------------------------------------------------------------------------------------
// TControlList

TControlList::TControlList(std::string directory) : TControlList(std::move(directory), {}) {}

TControlList::TControlList(std::string directory, Options options)
    : directory_(std::move(directory)), options_(std::move(options)) {
  if (!directory_.empty() && directory_.back() != '/') directory_.push_back('/');
}

TControlList::~TControlList() {
  try {
    Close();
  } catch (...) {
    // Closing the stream releases the slot; the next user drops the entry.
  }
}

std::string TControlList::ControlFilePath() const {
  return directory_ + kControlFileName;
}

TControlStream& TControlList::Stream() {
  if (!stream_) throw std::logic_error("control list of " + directory_ + " is not open");
  return *stream_;
}

bool TControlList::Open(const ControlUser& me, bool exclusive) {
  if (stream_) throw std::logic_error("control list of " + directory_ + " is already open");
  stream_ = std::make_unique<TControlStream>(ControlFilePath(), options_.lock_timeout,
                                             options_.diagnostics);
  try {
    return AddLockUser(me, exclusive);
  } catch (...) {
    stream_.reset();
    lock_depth_ = 0;
    throw;
  }
}

void TControlList::Close() {
  if (!stream_) return;
  try {
    DeleteLockUser();
  } catch (...) {
    stream_.reset();
    lock_depth_ = 0;
    throw;
  }
  stream_.reset();
  lock_depth_ = 0;
}

void TControlList::Lock() {
  if (lock_depth_ == 0) Stream().LockRegion(kListLockOffset, 1);
  ++lock_depth_;
}

void TControlList::Unlock() {
  if (lock_depth_ == 0 || !stream_) return;
  if (--lock_depth_ == 0) stream_->UnLockRegion(kListLockOffset, 1);
}

ControlFileContent TControlList::ReadContent() {
  return ParseControlFile(Stream().ReadAll(), ControlFilePath());
}

void TControlList::WriteContent(const ControlFileContent& content) {
  Stream().WriteAll(FormatControlFile(content));
}

bool TControlList::DropLeftovers(ControlFileContent& content) const {
  const std::size_t before = content.users.size();
  std::erase_if(content.users, [this](const ControlEntry& entry) {
    if (own_slot_ == entry.slot) return false;
    return !stream_->IsRegionLockedByOther(kSlotLockBase + entry.slot, 1);
  });
  return content.users.size() != before;
}

std::optional<ControlEntry> TControlList::Holder(const ControlFileContent& content,
                                                 bool exclusive) const {
  for (const ControlEntry& entry : content.users) {
    if (own_slot_ != entry.slot && entry.exclusive) return entry;
  }
  if (!exclusive) return {};
  for (const ControlEntry& entry : content.users) {
    if (own_slot_ != entry.slot) return entry;
  }
  return {};
}

int TControlList::ClaimSlot(const ControlFileContent& content) {
  for (int slot = 0; slot < kMaxSlots; ++slot) {
    const bool listed =
        std::any_of(content.users.begin(), content.users.end(),
                    [slot](const ControlEntry& entry) { return entry.slot == slot; });
    if (!listed && Stream().TryLockRegion(kSlotLockBase + slot, 1)) return slot;
  }
  throw ControlFileError(ControlFilePath(), 0,
                         "mehr als " + std::to_string(kMaxSlots) + " Benutzer gleichzeitig");
}

bool TControlList::AddLockUser(const ControlUser& me, bool exclusive) {
  if (own_slot_) throw std::logic_error("already signed in to " + directory_);
  ListLockGuard guard(*this);
  ControlFileContent content = ReadContent();
  const bool dropped = DropLeftovers(content);
  lock_user_ = Holder(content, exclusive);
  if (lock_user_) {
    if (dropped) WriteContent(content);
    return false;
  }
  const int slot = ClaimSlot(content);
  content.users.push_back({slot, exclusive, Sanitized(me.user), Sanitized(me.machine),
                           static_cast<int64_t>(::getpid()), LocalTimeNow()});
  try {
    WriteContent(content);
  } catch (...) {
    Stream().UnLockRegion(kSlotLockBase + slot, 1);
    throw;
  }
  own_slot_ = slot;
  seen_counters_ = content.table_counters;
  return true;
}

void TControlList::DeleteLockUser() {
  if (!own_slot_) return;
  const int slot = *own_slot_;
  try {
    ListLockGuard guard(*this);
    ControlFileContent content = ReadContent();
    std::erase_if(content.users, [slot](const ControlEntry& entry) { return entry.slot == slot; });
    own_slot_.reset();
    DropLeftovers(content);
    WriteContent(content);
  } catch (...) {
    own_slot_.reset();
    Stream().UnLockRegion(kSlotLockBase + slot, 1);
    throw;
  }
  Stream().UnLockRegion(kSlotLockBase + slot, 1);
}

std::vector<ControlEntry> TControlList::Users() {
  ListLockGuard guard(*this);
  ControlFileContent content = ReadContent();
  DropLeftovers(content);
  return content.users;
}

void TControlList::TableModify(const std::string& table) {
  ListLockGuard guard(*this);
  ControlFileContent content = ReadContent();
  const uint64_t counter = ++content.table_counters[Sanitized(table)];
  WriteContent(content);
  seen_counters_[Sanitized(table)] = counter;
}

bool TControlList::IsTableChanged(const std::string& table) {
  ListLockGuard guard(*this);
  const ControlFileContent content = ReadContent();
  const std::string name = Sanitized(table);
  const auto stored = content.table_counters.find(name);
  const uint64_t now = stored == content.table_counters.end() ? 0 : stored->second;
  uint64_t& seen = seen_counters_[name];
  const bool changed = now != seen;
  seen = now;
  return changed;
}

// ---------------------------------------------------------------------------------------

bool CreateControlFile(const std::string& directory) {
  TControlList list(directory);
  TControlStream stream(list.ControlFilePath(), TControlList::Options{}.lock_timeout, {});
  stream.LockRegion(TControlList::kListLockOffset, 1);
  const bool empty = stream.ReadAll().empty();
  if (empty) stream.WriteAll(FormatControlFile({}));
  stream.UnLockRegion(TControlList::kListLockOffset, 1);
  return empty;
}

ExclusiveLockingResult CheckExclusiveLocking(const std::string& directory, bool exclusive,
                                             bool configured_exclusive, const ControlUser& me,
                                             TControlList::Options options) {
  ExclusiveLockingResult result;
  auto list = std::make_unique<TControlList>(directory, std::move(options));
  if (list->Open(me, exclusive || configured_exclusive)) {
    result.list = std::move(list);
    return result;
  }
  result.held_by_other = true;
  result.holder = list->GetLockUser();
  result.message = CatalogueText1455() + "\n" + CatalogueText1449(result.holder->DisplayName());
  list->Close();
  return result;
}

}  // namespace korvan::data
