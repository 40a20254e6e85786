#pragma once

#include <map>
#include <memory>
#include <string>

// The kernel handles of the databases this process has open. A database may be open only
// once per process, so every database object for the same file shares one entry, which
// keeps the handle, this process's lock task and a reference count; the handle is closed
// when the last user releases the entry.
namespace korvan::data {

inline constexpr int kNoLockTask = -1;

struct TStdDbOpenParams {
  std::string base_path;  // directory + group + ".Q" + type letter
  char type_letter = 0;
  int key_length = 0;
  bool write_wanted = true;
  bool shareable = true;
};

class TStdDbData {
 public:
  explicit TStdDbData(TStdDbOpenParams params, int handle)
      : FParams(std::move(params)), FHandle(handle) {}

  const std::string& FileName() const { return FParams.base_path; }
  const TStdDbOpenParams& Params() const { return FParams; }
  int Handle() const { return FHandle; }
  int LockID() const { return FLockID; }
  int LockCount() const { return FLockCount; }
  int RefCount() const { return FRefCount; }

  int AddRef() { return ++FRefCount; }
  int Release() { return FRefCount > 0 ? --FRefCount : 0; }

  // The task under which this process holds locks in the database.
  void SetLockID(int task) { FLockID = task; }
  int AddLock() { return ++FLockCount; }
  int ReleaseLock() { return FLockCount > 0 ? --FLockCount : 0; }

 private:
  friend class TStdDbDatas;
  TStdDbOpenParams FParams;
  int FHandle;
  int FLockID = kNoLockTask;
  int FLockCount = 0;
  int FRefCount = 0;
};

class TStdDbDatas {
 public:
  static TStdDbDatas& Instance();

  // The entry of a file, or nullptr.
  TStdDbData* QueryDBdata(const std::string& base_path);
  TStdDbData* FindByHandle(int handle);

  // The entry of a file with one more reference; the database is opened when this
  // process has no entry for it yet, and reopened for writing when writing is wanted
  // and it was open for reading only. *result receives the kernel's code; nullptr on
  // failure.
  TStdDbData* GetDBdata(const TStdDbOpenParams& params, int* result);
  // Takes over a handle the caller opened or created (one reference).
  TStdDbData* Adopt(const TStdDbOpenParams& params, int handle);

  // One reference less; the last one closes the database. Returns the kernel's code of
  // the close (0 when the database stays open).
  int ReleaseDBdata(TStdDbData* data);
  // Closes and forgets the file whatever its references (rebuild, deletion).
  int FreeDBdata(const std::string& base_path);
  // Closes every entry nobody references.
  void ReleaseEmpty();
  // Tells the entry of a file that its database now has another handle (after reopen).
  void Update(const std::string& base_path, int handle);

  // Writes one line per entry: "%s\tHandle:%d\tLockID: %d\tLockCount: %d\tRefCount: %d".
  bool SaveToFile(const std::string& path) const;
  std::string Describe() const;
  size_t size() const { return FEntries.size(); }

 private:
  TStdDbDatas() = default;
  int Close(TStdDbData& data);

  std::map<std::string, std::unique_ptr<TStdDbData>> FEntries;
};

// "DbDatas.TXT"
inline constexpr char kDbDatasFileName[] = "DbDatas.TXT";

}  // namespace korvan::data
