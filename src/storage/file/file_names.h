#pragma once

// Every file name a database consists of, built in one place. A database of group G
// and type letter L in directory D has the base path D + G + ".Q" + L; its files are
// the base path followed by one digit:
//   "0"  the data file (records and free blocks)
//   "1"  the key file (all indexes of all tables of the database)
//   "2"  the lock file of a shared database
// A rebuild writes the new files under the group "DB_TEMP" next to the old ones,
// commits them with a mark file and keeps the old files as "<file>.bak" backups.

#include <string>

namespace korvan::storage {

// directory + group + ".Q" + type letter; `directory` ends with its separator or is "".
std::string DatabaseBasePath(const std::string& directory, const std::string& group,
                             char type_letter);

// The type letter of a base path built as above, or '\0' when the path does not end in
// ".Q" and a letter.
char TypeLetterOfBasePath(const std::string& base_path);

std::string DataFileName(const std::string& base_path);
std::string KeyFileName(const std::string& base_path);
std::string LockFileName(const std::string& base_path);

// The group under which a rebuild writes the new files of a database.
inline constexpr char kRebuildTempGroup[] = "DB_TEMP";

// The base path of the new files a rebuild of a database of `type_letter` writes.
std::string RebuildTempBasePath(const std::string& directory, char type_letter);
// The mark that commits a rebuild of `type_letter`: while it exists, the new files
// replace the old ones.
std::string RebuildCommitMarkName(const std::string& directory, char type_letter);
// Where a rebuild keeps the old content of `file`.
std::string BackupFileName(const std::string& file);
// Whether a file name (without directory) is one a rebuild may leave next to a database:
// a file of its temporary group or a backup.
bool IsRebuildLeftoverName(const std::string& file_name);

}  // namespace korvan::storage
