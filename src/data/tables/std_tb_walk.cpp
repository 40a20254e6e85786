// Key walks: an index of a table in key order, within a key pattern.
#include <algorithm>
#include <map>

#include "data/tables/std_tb.h"
#include "data/tables/table_key.h"
#include "data/tables/tree_hold.h"
#include "storage/db_kernel.h"
#include "storage/db_kernel_codes.h"
#include "storage/result_codes.h"

namespace korvan::data {

using storage::kDkKeyNotFound;
using storage::kOk;

namespace {

// Pairs one read-ahead of a walk reads at most.
constexpr size_t kMaxReadAhead = 256;

// Index characters are 7-bit.
char IndexChar(char index) {
  return static_cast<char>(index & 0x7F);
}

// Order of (key, position) pairs as the tree keeps them.
int ComparePairs(const storage::KeyEntry& a, const storage::KeyEntry& b, int key_length) {
  if (int c = std::memcmp(a.key, b.key, static_cast<size_t>(key_length)); c != 0) return c;
  const auto pa = static_cast<int32_t>(a.position);
  const auto pb = static_cast<int32_t>(b.position);
  return (pa > pb) - (pa < pb);
}

}  // namespace

bool TStdTB::GetFirstKey(std::string_view pattern, char index) {
  return StartWalk(pattern, index, Direction::kForward);
}

bool TStdTB::GetNextKey(std::string_view pattern, char index) {
  return StepWalk(pattern, index, Direction::kForward);
}

bool TStdTB::GetLastKey(std::string_view pattern, char index) {
  return StartWalk(pattern, index, Direction::kBackward);
}

bool TStdTB::GetPreviousKey(std::string_view pattern, char index) {
  return StepWalk(pattern, index, Direction::kBackward);
}

bool TStdTB::GetFirstKeyEx(std::string_view pattern, char index, std::string& found_key) {
  const bool found = GetFirstKey(pattern, index);
  found_key = found ? sFilterResultKey : std::string();
  return found;
}

bool TStdTB::GetNextKeyEx(std::string_view pattern, char index, std::string& found_key) {
  const bool found = GetNextKey(pattern, index);
  found_key = found ? sFilterResultKey : std::string();
  return found;
}

bool TStdTB::GetLastKeyEx(std::string_view pattern, char index, std::string& found_key) {
  const bool found = GetLastKey(pattern, index);
  found_key = found ? sFilterResultKey : std::string();
  return found;
}

bool TStdTB::GetPreviousKeyEx(std::string_view pattern, char index, std::string& found_key) {
  const bool found = GetPreviousKey(pattern, index);
  found_key = found ? sFilterResultKey : std::string();
  return found;
}

bool TStdTB::StartWalk(std::string_view pattern, char index, Direction direction) {
  FLastFilterKey.clear();
  FWalkActive = false;
  DropAhead();
  FCurrentFilterKey = std::string(pattern);
  FFilterIndex = IndexChar(index);
  ClearTbRecord();
  nLastError = kOk;
  FWalkPattern = BuildKeyPattern(FTableType, FFilterIndex, pattern, FDbOwner.KeyLength());
  storage::KeyEntry entry = MakeKeyEntry(FWalkPattern);
  uint32_t position = 0;
  // The key and its record as one read for other processes, and one lock.
  TTreeHold hold(FDbOwner, false);
  const int result = direction == Direction::kForward
                         ? storage::iDK_KeyFirstMatch(FDbOwner.Handle(), entry, &position)
                         : storage::iDK_KeyLastMatch(FDbOwner.Handle(), entry, &position);
  if (result == kDkKeyNotFound) return false;
  if (result != kOk) {
    Fail("KeyMatch", result);
    return false;
  }
  FWalkCursor = entry;
  FWalkPosition = position;
  if (!LoadFound(position)) return false;
  FLastFilterKey = FCurrentFilterKey;
  FWalkActive = true;
  // A walk that goes on reads ahead; one that stops at its first record read nothing more.
  FAheadWindow = 2;
  FAheadDirection = direction;
  storage::iDK_ChangeMark(FDbOwner.Handle(), &FAheadMark);
  return true;
}

bool TStdTB::StepWalk(std::string_view pattern, char index, Direction direction) {
  if (!FWalkActive || pattern != FLastFilterKey || IndexChar(index) != FFilterIndex) return false;
  FLastRecord.clear();
  ClearTbRecord();
  TTreeHold hold(FDbOwner, false);
  if (!AheadIsCurrent(direction)) {
    DropAhead();
  } else if (FAhead.empty() && FAheadReachesEnd) {
    FWalkActive = false;
    return false;
  }
  if (FAhead.empty()) {
    if (int result = FillAhead(direction); result != kOk) {
      FWalkActive = false;
      if (result != kDkKeyNotFound) Fail("KeyMatch", result);
      return false;
    }
    if (FAhead.empty()) {
      FWalkActive = false;
      return false;
    }
  }
  return ServeAhead();
}

// Whether the pairs read ahead still are what a step would find: read for this direction
// and nothing changed since.
bool TStdTB::AheadIsCurrent(Direction direction) {
  uint64_t mark = 0;
  storage::iDK_ChangeMark(FDbOwner.Handle(), &mark);
  return direction == FAheadDirection && mark == FAheadMark;
}

void TStdTB::DropAhead() {
  FAhead.clear();
  FAheadReachesEnd = false;
  FAheadWindow = 1;
}

int TStdTB::StepKey(Direction direction, storage::KeyEntry* cursor, uint32_t* position) {
  return direction == Direction::kForward
             ? storage::iDK_KeyNext(FDbOwner.Handle(), *cursor, position)
             : storage::iDK_KeyPrev(FDbOwner.Handle(), *cursor, position);
}

// Under the caller's hold: the pairs that follow the last one returned, as many as the
// window allows, and their records. 0 also when the walk has ended (nothing read).
int TStdTB::FillAhead(Direction direction) {
  storage::KeyEntry cursor = FWalkCursor;
  uint32_t position = FWalkPosition;
  int result = StepKey(direction, &cursor, &position);
  if (result == kDkKeyNotFound) result = Reseek(direction, &cursor, &position);
  while (result == kOk) {
    if (!KeyMatchesPattern(KeyOf(cursor, FDbOwner.KeyLength()), FWalkPattern)) break;
    FAhead.push_back({cursor, position, {}});
    if (FAhead.size() >= FAheadWindow) break;
    result = StepKey(direction, &cursor, &position);
  }
  FAheadReachesEnd = result == kOk ? FAhead.size() < FAheadWindow : result == kDkKeyNotFound;
  // A failing step after good pairs fails again when the walk gets there.
  if (result != kOk && result != kDkKeyNotFound && FAhead.empty()) return result;
  ReadAheadRecords();
  FAheadDirection = direction;
  FAheadWindow = std::min(FAheadWindow * 2, kMaxReadAhead);
  storage::iDK_ChangeMark(FDbOwner.Handle(), &FAheadMark);
  return kOk;
}

// The records of the pairs read ahead, in file order. From a record whose read fails on,
// the pairs are dropped but that one, whose read is made again (and reported) when the
// walk returns it.
void TStdTB::ReadAheadRecords() {
  std::vector<int32_t> positions;
  for (const AheadPair& pair : FAhead) positions.push_back(static_cast<int32_t>(pair.position));
  storage::RecordBatch records;
  size_t failed = 0;
  const int result =
      storage::iDK_RecordReadMany(FDbOwner.Handle(), positions, FTbPhysRecLen, &records, &failed);
  const size_t good = result == kOk ? FAhead.size() : failed;
  for (size_t i = 0; i < good; ++i) FAhead[i].raw.assign(records[i].begin(), records[i].end());
  if (result != kOk) {
    FAhead.resize(failed + 1);
    FAheadReachesEnd = false;
  }
}

// Returns the next pair read ahead as the walk's current record.
bool TStdTB::ServeAhead() {
  AheadPair pair = std::move(FAhead.front());
  FAhead.pop_front();
  FWalkCursor = pair.cursor;
  FWalkPosition = pair.position;
  const auto position = static_cast<int32_t>(pair.position);
  if (pair.raw.empty()) return LoadFound(pair.position);
  sFilterResultKey = KeyOf(FWalkCursor, FDbOwner.KeyLength());
  StoredRecord stored;
  stored.raw = std::move(pair.raw);
  if (DecodeStored(position, stored, "GetRec") != kOk) {
    FFailedPosition = position;
    FWalkActive = false;
    sFilterResultKey.clear();
    return false;
  }
  return TakeStored(position, std::move(stored));
}

// The step found no neighbour. Either the walk is at its end, or the pair it stood on
// is gone (the current record was deleted or its key changed meanwhile): then the walk
// continues at the first pair beyond the old one.
int TStdTB::Reseek(Direction direction, storage::KeyEntry* cursor, uint32_t* position) {
  const int handle = FDbOwner.Handle();
  const int key_length = FDbOwner.KeyLength();
  storage::KeyEntry probe = FWalkCursor;
  probe.position = FWalkPosition;
  bool still_there = false;
  if (int result = storage::iDK_KeyMatchEx(handle, probe, key_length, &still_there);
      result != kOk && result != kDkKeyNotFound) {
    return result;
  }
  if (still_there) return kDkKeyNotFound;

  storage::KeyEntry old = FWalkCursor;
  old.position = FWalkPosition;
  storage::KeyEntry entry = MakeKeyEntry(FWalkPattern);
  uint32_t at = 0;
  const bool forward = direction == Direction::kForward;
  int result = forward ? storage::iDK_KeyFirstMatch(handle, entry, &at)
                       : storage::iDK_KeyLastMatch(handle, entry, &at);
  while (result == kOk) {
    entry.position = at;
    const int order = ComparePairs(entry, old, key_length);
    if (forward ? order > 0 : order < 0) break;
    result = StepKey(direction, &entry, &at);
  }
  if (result != kOk) return result;
  *cursor = entry;
  *position = at;
  return kOk;
}

bool TStdTB::LoadFound(uint32_t position) {
  sFilterResultKey = KeyOf(FWalkCursor, FDbOwner.KeyLength());
  if (!GetRec(static_cast<int32_t>(position))) {
    FWalkActive = false;
    sFilterResultKey.clear();
    return false;
  }
  return true;
}

bool TStdTB::GetKey(std::string_view pattern, char index) {
  const std::string full =
      BuildKeyPattern(FTableType, IndexChar(index), pattern, FDbOwner.KeyLength());
  storage::KeyEntry entry = MakeKeyEntry(full);
  uint32_t position = 0;
  TTreeHold hold(FDbOwner, false);
  const int result = storage::iDK_KeyFirstMatch(FDbOwner.Handle(), entry, &position);
  if (result != kOk) {
    ClearTbRecord();
    nLastError = result;
    if (result != kDkKeyNotFound) Fail("KeyMatch", result);
    return false;
  }
  if (!GetRec(static_cast<int32_t>(position))) return false;
  if (IndexChar(index) != FUniqueIndex) sFilterResultKey = KeyOf(entry, FDbOwner.KeyLength());
  return true;
}

bool TStdTB::ExistsRec(std::string_view pattern, char index) {
  const std::string full =
      BuildKeyPattern(FTableType, IndexChar(index), pattern, FDbOwner.KeyLength());
  storage::KeyEntry entry = MakeKeyEntry(full);
  uint32_t position = 0;
  return storage::iDK_KeyFirstMatch(FDbOwner.Handle(), entry, &position) == kOk;
}

// ---------------------------------------------------------------------------------------

int TStdTB::GetKeyBatch(std::string_view pattern, char index, std::vector<std::string>& keys,
                        std::vector<int32_t>& positions, size_t max_count) {
  keys.clear();
  positions.clear();
  const int handle = FDbOwner.Handle();
  const int key_length = FDbOwner.KeyLength();
  const std::string full = BuildKeyPattern(FTableType, IndexChar(index), pattern, key_length);
  storage::KeyEntry entry = MakeKeyEntry(full);
  uint32_t position = 0;
  int result = storage::iDK_KeyFirstMatch(handle, entry, &position);
  while (result == kOk && (max_count == 0 || keys.size() < max_count)) {
    std::string key = KeyOf(entry, key_length);
    if (!KeyMatchesPattern(key, full)) break;
    keys.push_back(std::move(key));
    positions.push_back(static_cast<int32_t>(position));
    result = storage::iDK_KeyNext(handle, entry, &position);
  }
  return result == kDkKeyNotFound ? kOk : result;
}

int TStdTB::GetBatchFromPositions(const std::vector<int32_t>& positions,
                                  std::vector<std::vector<uint8_t>>& records) {
  // Read in file order, nearby records together; handed out in the order asked for.
  storage::RecordBatch raws;
  size_t failed = 0;
  if (storage::iDK_RecordReadMany(FDbOwner.Handle(), positions, FTbPhysRecLen, &raws, &failed) !=
      kOk) {
    // Once more record by record: the failing read reports what is wrong the usual way.
    return GetBatchOneByOne(positions, records);
  }
  records.assign(positions.size(), {});
  for (size_t i = 0; i < positions.size(); ++i) {
    StoredRecord stored;
    stored.raw.assign(raws[i].begin(), raws[i].end());
    if (int result = DecodeStored(positions[i], stored, "GetBatch"); result != kOk) return result;
    records[i] = std::move(stored.current);
  }
  return kOk;
}

int TStdTB::GetBatchOneByOne(const std::vector<int32_t>& positions,
                             std::vector<std::vector<uint8_t>>& records) {
  std::vector<size_t> order(positions.size());
  for (size_t i = 0; i < order.size(); ++i) order[i] = i;
  std::sort(order.begin(), order.end(),
            [&](size_t a, size_t b) { return positions[a] < positions[b]; });
  records.assign(positions.size(), {});
  for (size_t i : order) {
    StoredRecord stored;
    if (int result = ReadStored(positions[i], stored, "GetBatch"); result != kOk) return result;
    records[i] = std::move(stored.current);
  }
  return kOk;
}

int TStdTB::GetBatch(std::string_view pattern, char index,
                     std::vector<std::vector<uint8_t>>& records, size_t max_count) {
  std::vector<std::string> keys;
  std::vector<int32_t> positions;
  // Keys and records of one state of the file: no record goes between the two.
  TTreeHold hold(FDbOwner, false);
  if (int result = GetKeyBatch(pattern, index, keys, positions, max_count); result != kOk) {
    records.clear();
    return result;
  }
  return GetBatchFromPositions(positions, records);
}

}  // namespace korvan::data
