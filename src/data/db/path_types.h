#pragma once

#include <string>
#include <string_view>

namespace korvan::data {

// The directories that hold database files, filled from the machine configuration's
// SystemDirectory, ObjektDirectory, FormularDirectory, StammDatenDirectory,
// KatalogDirectory, ClipBlockDirectory and ClipDirectory. Each is a path, normally
// ending in the path separator, or empty when the directory is not available (no
// catalog folder, no project open).
struct DatabaseDirectories {
  std::string system_directory;
  std::string objekt_directory;  // the current project
  std::string formular_directory;
  std::string stammdaten_directory;  // master data
  std::string katalog_directory;
  std::string clip_block_directory;
  std::string clip_directory;
};

// The path-type letters of the database groups.
inline constexpr char kPathSystem = 'S';
inline constexpr char kPathSystemSys = 'Y';
inline constexpr char kPathObjekt = 'O';
inline constexpr char kPathFormular = 'F';
inline constexpr char kPathStammdaten = 'U';
inline constexpr char kPathKatalog = 'K';
inline constexpr char kPathClipBlock = 'B';
inline constexpr char kPathClip = 'C';

// The one place where a path-type letter becomes a directory. The result ends in the
// path separator, or is empty when the directory is not available. "Y" is the system
// directory's subfolder "SYS". Any other letter throws std::invalid_argument
// "illegal path type key".
std::string DirectoryOfPathType(char path_type, const DatabaseDirectories& directories);

// The name of the directory a letter stands for ("SystemDirectory", ...), for
// messages and reports. Unknown letters throw like DirectoryOfPathType.
std::string_view PathTypeDirectoryName(char path_type);

// Appends the path separator unless the path is empty or already ends in one.
std::string WithTrailingSeparator(std::string path);

}  // namespace korvan::data
