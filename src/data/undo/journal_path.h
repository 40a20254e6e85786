#pragma once

#include <string>

namespace korvan::data {

// How the persistent journal names a database: relative to the journal's directory (the
// data directory of the installation) when the database lies below it, so that an
// installation copied or mounted elsewhere can still take its steps back; absolute
// otherwise.
std::string JournalPathOf(const std::string& base_path, const std::string& journal_dir);

// Whether the journal's name of a database means the database with base path
// `base_path`. A relative name is taken from `journal_dir` (from the working directory
// when that is empty). An absolute name, as older journals stored every name, matches
// the same path, or a database in a directory of the same name under the same file
// name ("STAMMDATEN/DB_Stamm"), so that such a journal still works after a move.
bool IsJournalPathOf(const std::string& journal_path, const std::string& base_path,
                     const std::string& journal_dir);

}  // namespace korvan::data
