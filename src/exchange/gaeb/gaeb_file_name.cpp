#include "exchange/gaeb/gaeb_file_name.h"

#include <cctype>

namespace korvan::exchange {
namespace {

bool AllowedInFileName(char c) {
  constexpr std::string_view kForbidden = "\\/:*?\"<>|";
  return static_cast<unsigned char>(c) >= 0x20 && kForbidden.find(c) == std::string_view::npos;
}

std::string WithoutForbidden(std::string_view text) {
  std::string kept;
  for (const char c : text) {
    if (AllowedInFileName(c)) kept += c;
  }
  return kept;
}

std::string Upper(std::string_view text) {
  std::string upper(text);
  for (char& c : upper) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return upper;
}

}  // namespace

std::string GaebExtension(TGAEBFormat format, TGaebPhase phase, bool catalog_transfer) {
  std::string extension = ".";
  extension += FormatInfo(format).extension_letter;
  extension += catalog_transfer ? std::string("BD") : std::to_string(phase % 100);
  return extension;
}

std::string DefaultGaebFileName(std::string_view project_name, std::string_view lv_name) {
  return WithoutForbidden(project_name) + "_" + WithoutForbidden(lv_name);
}

bool IsGaebFileName(std::string_view file_name) {
  const size_t dot = file_name.rfind('.');
  const size_t slash = file_name.find_last_of("/\\");
  if (dot == std::string_view::npos || (slash != std::string_view::npos && slash > dot)) {
    return false;
  }
  const std::string extension = Upper(file_name.substr(dot + 1));
  if (extension == "XML") return true;
  return extension.size() >= 2 &&
         (extension[0] == 'D' || extension[0] == 'P' || extension[0] == 'X') && extension[1] == '8';
}

}  // namespace korvan::exchange
