// `korvan db keys`: every entry of the key file in tree order.
#include <ostream>

#include "app/commands/db/db_command.h"
#include "app/commands/db/db_database.h"
#include "app/commands/db/db_key_walk.h"
#include "app/commands/db/key_text.h"

namespace korvan::app {

int RunDbKeys(const std::string& base_path, Streams& streams) {
  const OpenDatabase db(base_path, OpenDatabase::Access::kReadOnly);
  WalkKeys(db, [&](uint32_t position, std::span<const uint8_t> key) {
    streams.out << KeyEntryLine(position, key) << "\n";
  });
  return kExitOk;
}

}  // namespace korvan::app
