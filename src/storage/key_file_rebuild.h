#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "storage/db_handle_table.h"

// Rebuilding a key file in place from its data file, for a key file that was not
// closed cleanly (key_file_sharing.h). The free-space keys come from the free blocks;
// which keys a record has is known only to the tables above the kernel, which lend
// that knowledge through a RecordKeySource installed at start-up.
namespace korvan::storage {

class RecordKeySource {
 public:
  virtual ~RecordKeySource() = default;
  // Whether the records of databases of this type can be given their keys.
  virtual bool Knows(char db_type) const = 0;
  // The full keys (key_length bytes each) of a live record. False when the record
  // belongs to no known table or is not valid for it: it then stays without keys.
  virtual bool KeysOf(char db_type, int key_length, const uint8_t* record, size_t length,
                      std::vector<std::string>* keys) = 0;
  // A line for the user about what was done.
  virtual void Tell(const std::string& line) = 0;
};

// The source used from now on (nullptr: none; key files that need a rebuild then
// refuse to open). Returns the previous one. The caller keeps the source alive.
RecordKeySource* SetRecordKeySource(RecordKeySource* source);
RecordKeySource* CurrentRecordKeySource();

namespace kernel {

// Rebuilds the key file of an open handle from its data file: every free block gets
// its "~" key, every live record its keys from the installed source. The caller holds
// the tree lock exclusively and knows that no other writer is alive. Until the rebuild
// is complete the header keeps the marks of the writers that were gone, so a rebuild
// cut short is done again at the next open. Records whose keys the source cannot build
// would lose their keys: then nothing is changed and the result is 4325, as when no
// source knows the type or the header has no usable key length; 4320 for I/O errors.
int RebuildKeyFile(int handle, DbHandleSlot& slot);

}  // namespace kernel
}  // namespace korvan::storage
