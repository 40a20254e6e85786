#include "data/undo/journal_path.h"

#include <filesystem>

namespace korvan::data {

namespace fs = std::filesystem;

namespace {

fs::path Absolute(const fs::path& path) {
  std::error_code error;
  const fs::path absolute = fs::absolute(path, error);
  return (error ? path : absolute).lexically_normal();
}

// The directory's name and the file's name: what stays the same when an installation
// moves.
fs::path Tail(const fs::path& path) {
  return path.parent_path().filename() / path.filename();
}

}  // namespace

std::string JournalPathOf(const std::string& base_path, const std::string& journal_dir) {
  const fs::path base = Absolute(base_path);
  if (journal_dir.empty()) return base.string();
  const fs::path relative = base.lexically_relative(Absolute(journal_dir));
  if (relative.empty() || *relative.begin() == "..") return base.string();
  return relative.generic_string();
}

bool IsJournalPathOf(const std::string& journal_path, const std::string& base_path,
                     const std::string& journal_dir) {
  const fs::path named = journal_path;
  const fs::path base = Absolute(base_path);
  if (named.is_relative()) {
    const fs::path dir = journal_dir.empty() ? fs::path(".") : fs::path(journal_dir);
    return Absolute(dir / named) == base;
  }
  const fs::path absolute = named.lexically_normal();
  return absolute == base || Tail(absolute) == Tail(base);
}

}  // namespace korvan::data
