#pragma once

#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "data/component/c_data_events.h"

namespace korvan::data {

// Rows taken to the clipboard: the keys of their records, where they came from and
// whether they were copied or cut.
struct TClipContent {
  std::string SourcePath;
  int SourceId = 0;
  TStringList Keys;
  TClipPasteType Mode = TClipPasteType::CLIP_COPY;
  TCData* Source = nullptr;  // the component the rows were taken from
};

// The clipboard the data components of one program share; the program owns it.
class TCDataClipboard {
 public:
  void Put(TClipContent content) { content_ = std::move(content); }
  const std::optional<TClipContent>& Content() const { return content_; }
  void Clear() { content_.reset(); }
  // A component going away takes its cut rows with it.
  void Forget(const TCData* source) {
    if (content_ && content_->Source == source) content_->Source = nullptr;
  }

 private:
  std::optional<TClipContent> content_;
};

inline constexpr std::string_view kBlockFileName = "BLOCK.BLK";
inline constexpr std::string_view kBlockFilePattern = "*.blk";

// A block of rows saved to a file: each row's key, kind, level and values.
struct TBlockRow {
  std::string Key;
  char ZArt = ' ';
  int Level = 0;
  TStringList Values;
};

struct TBlockFile {
  std::string Origin;  // the data path and component id the rows came from
  std::string Info;    // what the block holds, for the user
  std::vector<TBlockRow> Rows;
};

// A block file that cannot be read or written; the message names the file and, for a
// damaged file, the line.
class EBlockFileError : public std::runtime_error {
 public:
  explicit EBlockFileError(const std::string& message) : std::runtime_error(message) {}
};

// Writes the block; the file appears complete or not at all.
void WriteBlockFile(const std::filesystem::path& path, const TBlockFile& block);
TBlockFile ReadBlockFile(const std::filesystem::path& path);

}  // namespace korvan::data
