#include "data/config/base_config.h"

#include <pwd.h>
#include <unistd.h>

#include <climits>
#include <cstdlib>
#include <utility>

#include "data/common/cp1252.h"
#include "data/config/config_value.h"
#include "data/records/int_date.h"

namespace korvan::data {
namespace {

constexpr std::string_view kGlobals = "Globals";
constexpr std::string_view kConfigTyp = "ConfigTyp";

template <typename Int>
std::function<bool(std::string_view)> IntegerReader(Int& field) {
  return [&field](std::string_view text) {
    const auto value =
        ParseConfigInteger(text, std::numeric_limits<Int>::min(), std::numeric_limits<Int>::max());
    if (!value) return false;
    field = static_cast<Int>(*value);
    return true;
  };
}

template <typename Int>
std::function<std::string()> IntegerWriter(const Int& field) {
  return [&field] { return std::to_string(field); };
}

// Reads a list of exactly one value per level; every item must be valid.
template <typename Item, typename Parse>
bool ReadLevels(std::string_view text, std::array<Item, kConfigLevelCount>* levels, Parse parse) {
  const auto items = SplitConfigList(text);
  if (!items || items->size() != kConfigLevelCount) return false;
  std::array<Item, kConfigLevelCount> parsed{};
  for (std::size_t i = 0; i < kConfigLevelCount; ++i) {
    if (!parse((*items)[i], &parsed[i])) return false;
  }
  *levels = std::move(parsed);
  return true;
}

template <typename Item, typename Format>
std::string WriteLevels(const std::array<Item, kConfigLevelCount>& levels, Format format) {
  std::vector<std::string> items;
  for (const Item& item : levels) items.push_back(format(item));
  return JoinConfigList(items);
}

int32_t VersionAsInt(std::string_view version) {
  int32_t result = 0;
  int parts = 0;
  while (parts < 3) {
    const auto dot = version.find('.');
    const auto number = ParseConfigInteger(version.substr(0, dot), 0, 99);
    result = result * 100 + static_cast<int32_t>(number.value_or(0));
    ++parts;
    if (dot == std::string_view::npos) break;
    version.remove_prefix(dot + 1);
  }
  for (; parts < 3; ++parts) result *= 100;
  return result;
}

}  // namespace

TConfigContext TConfigContext::FromProcess(std::string_view version) {
  TConfigContext context;
  char host[HOST_NAME_MAX + 1] = {};
  if (::gethostname(host, sizeof host - 1) == 0) context.MachineName = host;
  if (const passwd* entry = ::getpwuid(::geteuid()); entry && entry->pw_name) {
    context.SystemUserName = entry->pw_name;
  } else if (const char* user = std::getenv("USER")) {
    context.SystemUserName = user;
  }
  context.AvaVersionAsString = std::string(version);
  context.AvaVersionAsInt = VersionAsInt(version);
  return context;
}

void TConfigBindings::Bind(std::string_view section, std::string_view key,
                           std::function<bool(std::string_view)> read,
                           std::function<std::string()> write) {
  items_.push_back({std::string(section), std::string(key), {}, std::move(read), std::move(write)});
}

void TConfigBindings::ReadAlsoFrom(std::string_view fallback_key) {
  items_.back().fallback_key = std::string(fallback_key);
}

bool TConfigBindings::ReadOrdinal(std::string_view text, uint8_t last, uint8_t* ordinal) {
  const auto value = ParseConfigInteger(text, 0, last);
  if (!value) return false;
  *ordinal = static_cast<uint8_t>(*value);
  return true;
}

void TConfigBindings::Add(std::string_view section, std::string_view key, bool& field) {
  Bind(
      section, key,
      [&field](std::string_view text) {
        const auto value = ParseConfigBool(text);
        if (value) field = *value;
        return value.has_value();
      },
      [&field] { return FormatConfigBool(field); });
}

void TConfigBindings::Add(std::string_view section, std::string_view key, int32_t& field) {
  Bind(section, key, IntegerReader(field), IntegerWriter(field));
}

void TConfigBindings::Add(std::string_view section, std::string_view key, int16_t& field) {
  Bind(section, key, IntegerReader(field), IntegerWriter(field));
}

void TConfigBindings::Add(std::string_view section, std::string_view key, uint8_t& field) {
  Bind(section, key, IntegerReader(field), IntegerWriter(field));
}

void TConfigBindings::Add(std::string_view section, std::string_view key, uint32_t& field) {
  Bind(section, key, IntegerReader(field), IntegerWriter(field));
}

void TConfigBindings::Add(std::string_view section, std::string_view key, double& field) {
  Bind(
      section, key,
      [&field](std::string_view text) {
        const auto value = ParseConfigDouble(text);
        if (value) field = *value;
        return value.has_value();
      },
      [&field] { return FormatConfigDouble(field); });
}

void TConfigBindings::Add(std::string_view section, std::string_view key, std::string& field) {
  Bind(
      section, key,
      [&field](std::string_view text) {
        field = std::string(text);
        return true;
      },
      [&field] { return field; });
}

void TConfigBindings::Add(std::string_view section, std::string_view key, TLevelSmallInts& field) {
  Bind(
      section, key,
      [&field](std::string_view text) {
        return ReadLevels(text, &field, [](const std::string& item, int16_t* value) {
          const auto number = ParseConfigInteger(item, INT16_MIN, INT16_MAX);
          if (number) *value = static_cast<int16_t>(*number);
          return number.has_value();
        });
      },
      [&field] { return WriteLevels(field, [](int16_t value) { return std::to_string(value); }); });
}

void TConfigBindings::Add(std::string_view section, std::string_view key, TLevelBooleans& field) {
  Bind(
      section, key,
      [&field](std::string_view text) {
        return ReadLevels(text, &field, [](const std::string& item, bool* value) {
          const auto flag = ParseConfigBool(item);
          if (flag) *value = *flag;
          return flag.has_value();
        });
      },
      [&field] { return WriteLevels(field, FormatConfigBool); });
}

void TConfigBindings::Add(std::string_view section, std::string_view key, TLevelTexts& field) {
  Bind(
      section, key,
      [&field](std::string_view text) {
        return ReadLevels(text, &field, [](const std::string& item, std::string* value) {
          *value = item;
          return true;
        });
      },
      [&field] { return WriteLevels(field, [](const std::string& item) { return item; }); });
}

void TConfigBindings::AddDate(std::string_view section, std::string_view key, int32_t& field) {
  Bind(
      section, key,
      [&field](std::string_view text) {
        const auto value = ParseConfigInteger(text, INT32_MIN, INT32_MAX);
        if (!value || ClassifyIntDate(static_cast<int32_t>(*value)) == IntDateKind::kInvalid) {
          return false;
        }
        field = static_cast<int32_t>(*value);
        return true;
      },
      IntegerWriter(field));
}

void TConfigBindings::AddOrdinal(std::string_view section, std::string_view key, uint8_t& field,
                                 uint8_t last) {
  Bind(
      section, key,
      [&field, last](std::string_view text) { return ReadOrdinal(text, last, &field); },
      IntegerWriter(field));
}

void TConfigBindings::AddCharacter(std::string_view section, std::string_view key,
                                   std::string& field) {
  Bind(
      section, key,
      [&field](std::string_view text) {
        std::size_t length = 0;
        if (!text.empty() && (!DecodeUtf8(text, &length) || length != text.size())) return false;
        field = std::string(text);
        return true;
      },
      [&field] { return field; });
}

TBaseConfig::TBaseConfig(const TConfigContext& context, std::string config_typ)
    : FSystemUserName(context.SystemUserName),
      FMachineName(context.MachineName),
      FAvaVersionAsString(context.AvaVersionAsString),
      FAvaVersionAsInt(context.AvaVersionAsInt),
      config_typ_(std::move(config_typ)) {}

void TBaseConfig::Load(const std::filesystem::path& file, bool only_read) {
  std::vector<IniProblem> problems;
  auto tree = IniFile::Load(file, &problems);
  const std::string file_name = file.filename().string();
  if (tree) {
    const auto typ = tree->Get(kGlobals, kConfigTyp);
    if (typ && !IniNamesEqual(*typ, config_typ_)) {
      throw EAvaConfigError("\"" + file.string() + "\" enthält die Konfiguration \"" + *typ +
                            "\", erwartet wurde \"" + config_typ_ + "\"");
    }
  }
  FSyskonPath = file.string();
  FOnlyRead = only_read;
  warnings_.insert(warnings_.end(), problems.begin(), problems.end());
  if (tree) {
    FTree = std::move(*tree);
    FStates.Include(TConfigState::csFileRead);
    TConfigBindings bindings;
    BindValues(bindings);
    for (const TConfigBinding& binding : bindings.Items()) ReadBinding(binding, file_name);
  }
  AfterLoad();
  FStates.Exclude(TConfigState::csChanged);
}

void TBaseConfig::ReadBinding(const TConfigBinding& binding, std::string_view file_name) {
  std::string_view key = binding.key;
  auto text = FTree.Get(binding.section, key);
  if (!text && !binding.fallback_key.empty()) {
    key = binding.fallback_key;
    text = FTree.Get(binding.section, key);
  }
  if (!text || binding.read(*text)) return;
  warnings_.push_back({std::string(file_name), FTree.LineNumber(binding.section, key),
                       "[" + binding.section + "] \"" + binding.key + "\": ungültiger Wert \"" +
                           *text + "\", es gilt der Vorgabewert"});
}

void TBaseConfig::Save() {
  if (FSyskonPath.empty()) {
    throw EAvaConfigError("Konfiguration \"" + config_typ_ + "\" hat keine Datei");
  }
  SaveAs(FSyskonPath);
}

void TBaseConfig::SaveAs(const std::filesystem::path& file) {
  if (FOnlyRead) {
    throw EAvaConfigError("Konfiguration \"" + file.string() + "\" ist schreibgeschützt geladen");
  }
  IniFile tree = FTree;
  tree.Set(kGlobals, kConfigTyp, config_typ_);
  for (const TConfigEntry& entry : Entries()) tree.Set(entry.section, entry.key, entry.value);
  std::vector<IniProblem> problems;
  tree.Save(file, &problems);
  warnings_.insert(warnings_.end(), problems.begin(), problems.end());
  FTree = std::move(tree);
  FSyskonPath = file.string();
  FStates.Exclude(TConfigState::csChanged);
}

std::vector<TBaseConfig::TConfigEntry> TBaseConfig::Entries() const {
  // The bindings only read the fields here; they are declared for both directions.
  TConfigBindings bindings;
  const_cast<TBaseConfig*>(this)->BindValues(bindings);
  std::vector<TConfigEntry> entries;
  for (const TConfigBinding& binding : bindings.Items()) {
    entries.push_back({binding.section, binding.key, binding.write()});
  }
  return entries;
}

bool TBaseConfig::SetFromText(std::string_view section, std::string_view key,
                              std::string_view text) {
  TConfigBindings bindings;
  BindValues(bindings);
  for (const TConfigBinding& binding : bindings.Items()) {
    if (!IniNamesEqual(binding.section, section) || !IniNamesEqual(binding.key, key)) continue;
    const std::string before = binding.write();
    if (!binding.read(text)) {
      throw EAvaConfigError("[" + binding.section + "] \"" + binding.key +
                            "\": ungültiger Wert \"" + std::string(text) + "\"");
    }
    if (binding.write() != before) MarkChanged();
    return true;
  }
  return false;
}

}  // namespace korvan::data
