#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

#include "storage/block_cache.h"
#include "storage/db_handle_table.h"
#include "storage/db_kernel.h"
#include "storage/file/file_names.h"
#include "testing/child_process.h"
#include "testing/temp_dir.h"

namespace korvan::storage::testing {

// A record: header with length, type letter and writer id, then one repeated byte.
inline std::vector<uint8_t> MakeRecord(char type, int32_t length, uint8_t fill,
                                       const std::string& modified_by = "TESTER") {
  std::vector<uint8_t> record(static_cast<size_t>(length), fill);
  TDbRecordHeader header{};
  header.RecLen = length;
  header.RecTyp = type;
  header.Size = static_cast<uint16_t>(length);
  header.Version = 1;
  header.ModifiedById[0] = static_cast<uint8_t>(modified_by.size());
  std::memcpy(header.ModifiedById + 1, modified_by.data(), modified_by.size());
  std::memcpy(record.data(), &header, sizeof header);
  return record;
}

inline TDbRecordHeader HeaderOf(const std::vector<uint8_t>& record) {
  TDbRecordHeader header;
  std::memcpy(&header, record.data(), sizeof header);
  return header;
}

inline std::vector<uint8_t> FileBytes(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

inline void WriteFileBytes(const std::string& path, const std::vector<uint8_t>& bytes) {
  std::ofstream(path, std::ios::binary | std::ios::trunc)
      .write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
}

// In a forked child: drops the databases inherited from the parent without touching
// their files, so that the child opens them anew like any other process.
inline void ForgetInheritedDatabases() {
  for (int handle = 1; handle <= kMaxDbHandles; ++handle) {
    if (DbHandleTable::Instance().Find(handle) == nullptr) continue;
    BlockCache::Instance().Close(handle);
    DbHandleTable::Instance().Release(handle);
  }
}

// What `work` returns when run in a child that opens its databases anew.
inline int32_t InFreshChild(const std::function<int32_t()>& work) {
  return korvan::testing::ResultInChild([&] {
    ForgetInheritedDatabases();
    return work();
  });
}

// The same, with the child killed as soon as `work` has returned.
inline int32_t KilledAfter(const std::function<int32_t()>& work) {
  return korvan::testing::ResultThenKill([&] {
    ForgetInheritedDatabases();
    return work();
  });
}

// Creates databases in a fresh directory and closes whatever a test left open. Type 'S'
// is shareable (with a lock file) for the duration of the test.
class DbKernelTest : public ::testing::Test {
 protected:
  DbKernelTest() { iDK_SetTypeShareable('S', true); }
  void TearDown() override {
    for (int handle = 1; handle <= 40; ++handle) iDK_DbClose(handle);
    iDK_SetTypeShareable('S', false);
  }

  std::string Base(const std::string& name) const { return dir_.File(name); }
  std::string DataFile(const std::string& name) const { return DataFileName(Base(name)); }
  std::string KeyFile(const std::string& name) const { return KeyFileName(Base(name)); }

  int Create(const std::string& name, char type = 'T', int key_length = 40) {
    int handle = 0;
    EXPECT_EQ(iDK_DbCreate(type, Base(name), key_length, &handle), 0);
    return handle;
  }

  // Inserts and returns the position (-1 on failure).
  int32_t Insert(int handle, std::vector<uint8_t>& record, bool reuse = true) {
    int32_t position = -1;
    const auto length = static_cast<int32_t>(record.size());
    EXPECT_EQ(iDK_RecordInsert(handle, record.data(), length, reuse, &position), 0);
    return position;
  }

  std::vector<uint8_t> Read(int handle, int32_t position, int32_t buffer_size = 4096) {
    std::vector<uint8_t> buffer(static_cast<size_t>(buffer_size));
    int32_t length = buffer_size;
    iDK_RecordRead(handle, position, buffer.data(), &length, true);
    buffer.resize(static_cast<size_t>(length));
    return buffer;
  }

  int32_t StoredLength(int handle, int32_t position) {
    int32_t length = 0;
    iDK_RecordRead(handle, position, nullptr, &length, false);
    return length;
  }

  korvan::testing::TempDir dir_;
};

}  // namespace korvan::storage::testing
