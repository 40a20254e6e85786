#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "storage/db_kernel_codes.h"
#include "storage/db_kernel_exception.h"
#include "storage/key_file.h"
#include "storage/record_batch.h"
#include "storage/record_header.h"

// The database kernel: databases as pairs of files (data file of variable-length
// records, key file of one B-tree), addressed through handles 1..40. Every operation
// validates its handle first (4288) and returns 0 or a kernel code of
// db_kernel_codes.h; record read and the 2 GB check of an insert raise
// EDbKernelException instead. Called from one thread only.
namespace korvan::storage {

// --- Databases -------------------------------------------------------------------

// Declares whether databases of a type are shared between users (from the registry of
// database types); unknown types are not shared.
void iDK_SetTypeShareable(char db_type, bool shareable);

// Creates data file (base_path + "0") and key file (base_path + "1") and opens them.
// 4304 when the data file exists, 4305 when all handles are taken.
int iDK_DbCreate(char db_type, const std::string& base_path, int key_length, int* handle);
// Opens an existing database. 4290 (with the existing handle) when this process has
// the path open already; 4307/4308 data/key file missing; 4319 sharing violation;
// 4318 no write permission.
int iDK_DbOpen(char db_type, const std::string& base_path, bool write_wanted, bool shareable,
               int* handle);
// Flushes and closes; 4316 when the flush fails (the handle then stays open).
int iDK_DbClose(int handle);
// Writes every changed key-file block and syncs both files.
int iDK_DbFlush(int handle);
// Whether the key file (base_path + "1") ended cleanly: false while a writer that
// changed it has ended without closing it. Such a key file is rebuilt from the data
// file when the database is opened next with nobody else writing it.
int iDK_KeyFileClosedCleanly(const std::string& base_path, bool* clean);

// The format code of a data file: 4345 current, 4344..4338, 4331, 4303, 4312, 4311 old
// formats, 4310 no banner; for type "G" 0 or 4309. 4307 missing, 4320 unreadable.
int iDK_DbCheckFile(char db_type, const std::string& data_file_path);
// Marks a data file with the banner of an old format (first 80 bytes rewritten).
// 4310 when the code has no banner.
int iDK_DbWriteBanner(const std::string& data_file_path, int format_code);
// Version and time stamp of a data file, without opening the database.
int iDK_DbFileInfo(const std::string& data_file_path, uint32_t* version, double* time_stamp);
// Sets the stamp for new files and rewrites the open data file's stamp when it differs.
int iDK_DbSetTimeStamp(int handle, double time_stamp);
// Sets the version written into data files created from now on.
int iDK_DbSetVersion(uint32_t version);
int iDK_IsWritable(int handle, bool* writable);
int iDK_DbType(int handle, char* db_type);

// --- One lock over several operations -------------------------------------------

// Holds the key file's tree lock over the operations that follow, until iDK_TreeUnlock:
// shared (change false) for reads, exclusive for changes. The operations inside take no
// lock of their own, so other processes wait until the unlock; key blocks changed inside
// are written back when the outermost hold ends (a process killed meanwhile leaves a key
// file that the next open rebuilds). Holds nest; a change inside a shared hold, or an
// exclusive hold on a handle not open for writing, is refused with 4320.
int iDK_TreeLock(int handle, bool change);
// Ends the innermost hold: 0, or the result of writing back the changed key blocks;
// 4320 when the handle holds nothing.
int iDK_TreeUnlock(int handle);

// A mark of the database's state as this handle sees it, taken inside a hold: two marks
// taken in two holds are equal only when nobody changed the database in between. Another
// process's change is noticed by its stamp when the tree lock is taken, this process's
// own with each change. Without a hold, or for a key file without a change stamp, every
// call gives a new mark. 0 or 4288.
int iDK_ChangeMark(int handle, uint64_t* mark);

// --- Records ---------------------------------------------------------------------

// Reads the record at a position into buffer. *length: in the buffer size, out the
// bytes read (the stored length when it fits, else the record is cut to the buffer).
// With read_whole false only the stored length is returned (negative for free space).
// Raises EDbKernelException ("Read") on every failure.
int iDK_RecordRead(int handle, int32_t position, void* buffer, int32_t* length, bool read_whole);
// Reads the whole records at several positions, in file order, nearby ones with one
// system call: (*records)[i] is the record at positions[i]. Records longer than
// length_hint are read on their own. Take a hold around it (and around the reads of the
// keys that named the positions) to read one state of the files. 0, or the code
// iDK_RecordRead raises for the first position that fails (*failed receives its index).
int iDK_RecordReadMany(int handle, const std::vector<int32_t>& positions, int32_t length_hint,
                       RecordBatch* records, size_t* failed);
// Writes a new record (at least the 48-byte header; dates set by the kernel). With
// reuse_free_space the largest free block is split when it is big enough. Raises
// EDbKernelException 4357 ("Insert") when an append would pass 2 GB.
int iDK_RecordInsert(int handle, void* record, int32_t length, bool reuse_free_space,
                     int32_t* position);
// Overwrites a record in its slot: slot length minus old and minus new length must be
// 0..3, else 4313. May raise EDbKernelConcurrencyException.
int iDK_RecordUpdate(int handle, void* record, int32_t old_length, int32_t position,
                     int32_t new_length);
// Frees a record and merges it with the free blocks that follow; record receives the
// record's header as it was stored. May raise EDbKernelConcurrencyException.
int iDK_RecordDelete(int handle, void* record, int32_t position);
// Counts live records of a type letter (0: all). *count is -2 when the scan could not
// read a block and -3 when a live block has no letter "A".."Z" (only when counting all).
int iDK_RecordCount(int handle, char record_type, int32_t* count);

// Conflict detection on update and delete; both return the previous state.
bool iDK_DisableConcurrencyDetection();
bool iDK_EnableConcurrencyDetection();
bool iDK_ConcurrencyDetectionEnabled();

// --- Keys ------------------------------------------------------------------------

int iDK_KeyInsert(int handle, const KeyEntry& entry);
int iDK_KeyDelete(int handle, const KeyEntry& entry);
// The first/last key matching entry's key (pad bytes 0x04 match anything); entry
// receives the found key and position, which KeyNext/KeyPrev continue from.
int iDK_KeyFirstMatch(int handle, KeyEntry& entry, uint32_t* position);
int iDK_KeyLastMatch(int handle, KeyEntry& entry, uint32_t* position);
// Steps from the (entry key, *position) pair to the following/preceding key.
int iDK_KeyNext(int handle, KeyEntry& entry, uint32_t* position);
int iDK_KeyPrev(int handle, KeyEntry& entry, uint32_t* position);
int iDK_KeyMatchesCount(int handle, const uint8_t* pattern, int significant_length,
                        bool count_tilde, uint32_t* count);
int iDK_KeyMatchesList(int handle, const uint8_t* pattern, int significant_length, bool count_tilde,
                       std::vector<uint32_t>* positions);
// Whether a key matching entry's first significant_length bytes exists with
// entry.position; when found, entry's key receives it.
int iDK_KeyMatchEx(int handle, KeyEntry& entry, int significant_length, bool* found);

}  // namespace korvan::storage
