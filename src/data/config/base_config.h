#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "data/config/config_error.h"
#include "data/config/ini_file.h"

namespace korvan::data {

// The numbering options hold one value per OZ level.
inline constexpr std::size_t kConfigLevelCount = 10;
using TLevelSmallInts = std::array<int16_t, kConfigLevelCount>;
using TLevelBooleans = std::array<bool, kConfigLevelCount>;
using TLevelTexts = std::array<std::string, kConfigLevelCount>;

inline TLevelSmallInts LevelSteps(int16_t step) {
  TLevelSmallInts steps;
  steps.fill(step);
  return steps;
}

inline TLevelBooleans LevelFlags(bool flag) {
  TLevelBooleans flags;
  flags.fill(flag);
  return flags;
}

// Load and change state of a configuration object.
enum class TConfigState : uint8_t {
  csFileRead = 1,  // a file was found and read
  csChanged = 2,   // a value was changed since the last load or save
};

class TConfigStates {
 public:
  bool Contains(TConfigState state) const { return (bits_ & static_cast<uint8_t>(state)) != 0; }
  void Include(TConfigState state) { bits_ |= static_cast<uint8_t>(state); }
  void Exclude(TConfigState state) { bits_ &= static_cast<uint8_t>(~static_cast<uint8_t>(state)); }
  bool operator==(const TConfigStates&) const = default;

 private:
  uint8_t bits_ = 0;
};

// Who and what is running: recorded in every configuration object.
struct TConfigContext {
  std::string SystemUserName;
  std::string MachineName;
  std::string AvaVersionAsString;
  int32_t AvaVersionAsInt = 0;

  // The operating-system user, the host name and the given program version
  // ("major.minor.patch"; the integer form is major * 10000 + minor * 100 + patch).
  static TConfigContext FromProcess(std::string_view version);
};

// How one stored option is read from and written to its key.
struct TConfigBinding {
  std::string section;
  std::string key;
  std::string fallback_key;                         // read when `key` is missing
  std::function<bool(std::string_view text)> read;  // false: not a valid value, field unchanged
  std::function<std::string()> write;
};

// The list of stored options of a configuration object, in file order. Each Add binds
// a field by reference; the list lives only while the object loads or saves.
class TConfigBindings {
 public:
  void Add(std::string_view section, std::string_view key, bool& field);
  void Add(std::string_view section, std::string_view key, int32_t& field);  // Integer
  void Add(std::string_view section, std::string_view key, int16_t& field);  // SmallInt
  void Add(std::string_view section, std::string_view key, uint8_t& field);  // Byte
  void Add(std::string_view section, std::string_view key, uint32_t& field);
  void Add(std::string_view section, std::string_view key, double& field);
  void Add(std::string_view section, std::string_view key, std::string& field);
  void Add(std::string_view section, std::string_view key, TLevelSmallInts& field);
  void Add(std::string_view section, std::string_view key, TLevelBooleans& field);
  void Add(std::string_view section, std::string_view key, TLevelTexts& field);
  // An integer date (year * 10000 + month * 100 + day, 0 for none).
  void AddDate(std::string_view section, std::string_view key, int32_t& field);
  // The ordinal of an enumeration with the values 0..last.
  void AddOrdinal(std::string_view section, std::string_view key, uint8_t& field, uint8_t last);
  template <typename Enum>
  void AddEnum(std::string_view section, std::string_view key, Enum& field, Enum last) {
    Bind(
        section, key,
        [&field, last](std::string_view text) {
          uint8_t ordinal = 0;
          if (!ReadOrdinal(text, static_cast<uint8_t>(last), &ordinal)) return false;
          field = static_cast<Enum>(ordinal);
          return true;
        },
        [&field] { return std::to_string(static_cast<int>(field)); });
  }
  // A single character (empty allowed).
  void AddCharacter(std::string_view section, std::string_view key, std::string& field);

  // Older files keep the last added option under this key; it is read when the key of
  // the option is missing, and is never written.
  void ReadAlsoFrom(std::string_view fallback_key);

  const std::vector<TConfigBinding>& Items() const { return items_; }

 private:
  void Bind(std::string_view section, std::string_view key,
            std::function<bool(std::string_view)> read, std::function<std::string()> write);
  static bool ReadOrdinal(std::string_view text, uint8_t last, uint8_t* ordinal);

  std::vector<TConfigBinding> items_;
};

// Declares a stored option: the field F<Name> with its default, the read property
// Name() and the setter SetName(), which marks the object changed. Leaves the class in
// the private section.
#define KORVAN_CONFIG_FIELD(Type, Name, ...) \
 public:                                     \
  const Type& Name() const {                 \
    return F##Name;                          \
  }                                          \
  void Set##Name(const Type& value) {        \
    if (F##Name == value) return;            \
    F##Name = value;                         \
    MarkChanged();                           \
  }                                          \
                                             \
 private:                                    \
  Type F##Name{__VA_ARGS__};

// Base of the machine, system and user configuration. Each object starts with its
// defaults, then Load() reads its file over them: a missing key keeps the default, a
// value that cannot be read keeps it too and is listed in Warnings(). Save() writes
// every option back into the tree that was read, so comments, unknown keys and their
// order survive, and replaces the file atomically.
class TBaseConfig {
 public:
  virtual ~TBaseConfig() = default;
  TBaseConfig(const TBaseConfig&) = default;
  TBaseConfig& operator=(const TBaseConfig&) = default;

  bool OnlyRead() const { return FOnlyRead; }
  const IniFile& Tree() const { return FTree; }
  const TConfigStates& States() const { return FStates; }
  const std::string& SyskonPath() const { return FSyskonPath; }
  const std::string& SystemUserName() const { return FSystemUserName; }
  const std::string& MachineName() const { return FMachineName; }
  const std::string& AvaVersionAsString() const { return FAvaVersionAsString; }
  int32_t AvaVersionAsInt() const { return FAvaVersionAsInt; }

  // "Sys", "Machine" or "User": the [Globals] "ConfigTyp" of the file.
  const std::string& ConfigTyp() const { return config_typ_; }

  // Reads `file` over the current values. A missing file leaves every value as it is.
  // EAvaConfigError when the file cannot be read or names another kind of
  // configuration in [Globals] "ConfigTyp".
  void Load(const std::filesystem::path& file, bool only_read = false);

  // Writes every option to the file last loaded (or given to SaveAs). EAvaConfigError
  // when the object is read-only or the file cannot be written.
  void Save();
  void SaveAs(const std::filesystem::path& file);

  // Every stored option with its text as it would be written, in file order.
  struct TConfigEntry {
    std::string section;
    std::string key;
    std::string value;
  };
  std::vector<TConfigEntry> Entries() const;

  // Sets one option from its text form. False when the object has no such option;
  // EAvaConfigError when the text is not a valid value (the field is unchanged).
  bool SetFromText(std::string_view section, std::string_view key, std::string_view text);

  // Lines that could not be read and values that were invalid or could not be written
  // exactly, each naming the file and line; collected since the object was created.
  const std::vector<IniProblem>& Warnings() const { return warnings_; }

 protected:
  TBaseConfig(const TConfigContext& context, std::string config_typ);

  // Lists the stored options in file order.
  virtual void BindValues(TConfigBindings& bindings) = 0;
  // Runs after a load; the machine configuration derives its directories here.
  virtual void AfterLoad() {}

  void MarkChanged() { FStates.Include(TConfigState::csChanged); }
  IniFile& MutableTree() { return FTree; }

 private:
  void ReadBinding(const TConfigBinding& binding, std::string_view file_name);

  bool FOnlyRead = false;
  IniFile FTree;
  TConfigStates FStates;
  std::string FSyskonPath;
  std::string FSystemUserName;
  std::string FMachineName;
  std::string FAvaVersionAsString;
  int32_t FAvaVersionAsInt = 0;

  std::string config_typ_;
  std::vector<IniProblem> warnings_;
};

}  // namespace korvan::data
