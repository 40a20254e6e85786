#pragma once

#include <string>
#include <vector>

namespace korvan::data {

// Which database groups exist in which kind of directory, by name. Copying, backup and
// deletion of a project's data ask it for the data files of a directory.
class TDBFileRegister {
 public:
  // Records that the group `name` with the type letter exists for the path type.
  void RegisterDBFile(const std::string& name, char path_type, char type_letter);

  // Adds the data file name of every group registered for the path type, in
  // registration order, named as in storage/file/file_names.h.
  void GetFiles(char path_type, const std::string& directory, std::vector<std::string>& list) const;

  // Adds every path type in use, once each, in order of first registration.
  void GetPathTypes(std::vector<char>& list) const;

 private:
  struct Entry {
    std::string name;
    char path_type;
    char type_letter;
  };
  std::vector<Entry> entries_;
};

// Registers the system's groups. The property database is registered under the
// letters "A", "B" and "C" as it always was: these are the type letters of the LV,
// catalog and text databases it accompanies, not path types, so the clip-block and
// clipboard directories ("B", "C") also list it and "A" appears as a path type.
void RegisterStandardDbFiles(TDBFileRegister& file_register);

}  // namespace korvan::data
