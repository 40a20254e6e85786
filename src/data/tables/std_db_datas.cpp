#include "data/tables/std_db_datas.h"

#include <cstdio>
#include <fstream>

#include "storage/db_kernel.h"
#include "storage/db_kernel_locks.h"
#include "storage/result_codes.h"

namespace korvan::data {
namespace {

int OpenKernel(const TStdDbOpenParams& params, int* handle) {
  return storage::iDK_DbOpen(params.type_letter, params.base_path, params.write_wanted,
                             params.shareable, handle);
}

}  // namespace

TStdDbDatas& TStdDbDatas::Instance() {
  static TStdDbDatas instance;
  return instance;
}

TStdDbData* TStdDbDatas::QueryDBdata(const std::string& base_path) {
  auto it = FEntries.find(base_path);
  return it == FEntries.end() ? nullptr : it->second.get();
}

TStdDbData* TStdDbDatas::FindByHandle(int handle) {
  for (auto& [name, data] : FEntries) {
    if (data->FHandle == handle) return data.get();
  }
  return nullptr;
}

TStdDbData* TStdDbDatas::GetDBdata(const TStdDbOpenParams& params, int* result) {
  *result = storage::kOk;
  if (TStdDbData* data = QueryDBdata(params.base_path)) {
    if (params.write_wanted && !data->FParams.write_wanted) {
      // Reopened in place: every database object keeps using the same entry.
      if (int closed = Close(*data); closed != storage::kOk) {
        *result = closed;
        return nullptr;
      }
      TStdDbOpenParams writing = data->FParams;
      writing.write_wanted = true;
      int handle = 0;
      *result = OpenKernel(writing, &handle);
      if (*result != storage::kOk) {
        FEntries.erase(params.base_path);
        return nullptr;
      }
      data->FParams = writing;
      data->FHandle = handle;
    }
    data->AddRef();
    return data;
  }
  int handle = 0;
  *result = OpenKernel(params, &handle);
  if (*result != storage::kOk) return nullptr;
  return Adopt(params, handle);
}

TStdDbData* TStdDbDatas::Adopt(const TStdDbOpenParams& params, int handle) {
  auto data = std::make_unique<TStdDbData>(params, handle);
  data->AddRef();
  TStdDbData* raw = data.get();
  FEntries[params.base_path] = std::move(data);
  return raw;
}

int TStdDbDatas::Close(TStdDbData& data) {
  if (data.FHandle == 0) return storage::kOk;
  if (data.FLockID != kNoLockTask) storage::iDK_DbUnlock(data.FHandle);
  data.FLockID = kNoLockTask;
  data.FLockCount = 0;
  const int result = storage::iDK_DbClose(data.FHandle);
  data.FHandle = 0;
  return result;
}

int TStdDbDatas::ReleaseDBdata(TStdDbData* data) {
  if (data == nullptr || data->Release() > 0) return storage::kOk;
  const std::string name = data->FileName();
  const int result = Close(*data);
  FEntries.erase(name);
  return result;
}

int TStdDbDatas::FreeDBdata(const std::string& base_path) {
  TStdDbData* data = QueryDBdata(base_path);
  if (data == nullptr) return storage::kOk;
  const int result = Close(*data);
  FEntries.erase(base_path);
  return result;
}

void TStdDbDatas::ReleaseEmpty() {
  for (auto it = FEntries.begin(); it != FEntries.end();) {
    if (it->second->RefCount() == 0) {
      Close(*it->second);
      it = FEntries.erase(it);
    } else {
      ++it;
    }
  }
}

void TStdDbDatas::Update(const std::string& base_path, int handle) {
  if (TStdDbData* data = QueryDBdata(base_path)) data->FHandle = handle;
}

std::string TStdDbDatas::Describe() const {
  std::string text;
  for (const auto& [name, data] : FEntries) {
    char line[64];
    std::snprintf(line, sizeof line, "\tHandle:%d\tLockID: %d\tLockCount: %d\tRefCount: %d",
                  data->Handle(), data->LockID(), data->LockCount(), data->RefCount());
    text += name + line + "\r\n";
  }
  return text;
}

bool TStdDbDatas::SaveToFile(const std::string& path) const {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out << Describe();
  return static_cast<bool>(out);
}

}  // namespace korvan::data
