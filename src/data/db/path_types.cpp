#include "data/db/path_types.h"

#include <stdexcept>

namespace korvan::data {
namespace {

[[noreturn]] void IllegalPathType() {
  throw std::invalid_argument("illegal path type key");
}

}  // namespace

std::string WithTrailingSeparator(std::string path) {
  if (!path.empty() && path.back() != '/') path.push_back('/');
  return path;
}

std::string DirectoryOfPathType(char path_type, const DatabaseDirectories& directories) {
  switch (path_type) {
    case kPathSystem:
      return WithTrailingSeparator(directories.system_directory);
    case kPathSystemSys:
      if (directories.system_directory.empty()) return {};
      return WithTrailingSeparator(directories.system_directory) + "SYS/";
    case kPathObjekt:
      return WithTrailingSeparator(directories.objekt_directory);
    case kPathFormular:
      return WithTrailingSeparator(directories.formular_directory);
    case kPathStammdaten:
      return WithTrailingSeparator(directories.stammdaten_directory);
    case kPathKatalog:
      return WithTrailingSeparator(directories.katalog_directory);
    case kPathClipBlock:
      return WithTrailingSeparator(directories.clip_block_directory);
    case kPathClip:
      return WithTrailingSeparator(directories.clip_directory);
  }
  IllegalPathType();
}

std::string_view PathTypeDirectoryName(char path_type) {
  switch (path_type) {
    case kPathSystem:
      return "SystemDirectory";
    case kPathSystemSys:
      return "SystemDirectory plus SYS";
    case kPathObjekt:
      return "ObjektDirectory";
    case kPathFormular:
      return "Formulardirectory";
    case kPathStammdaten:
      return "StammdatenDirectory";
    case kPathKatalog:
      return "KatalogDirectory";
    case kPathClipBlock:
      return "ClipBlockDirectory";
    case kPathClip:
      return "ClipDirectory";
  }
  IllegalPathType();
}

}  // namespace korvan::data
