#include "app/commands/db/db_command.h"

#include <cctype>
#include <chrono>
#include <filesystem>
#include <iostream>
#include <memory>

#include <CLI/CLI.hpp>

#include "app/cli/command_error.h"
#include "app/commands/db/db_database.h"
#include "app/program/command_sign_in.h"
#include "app/program/database_open_failure.h"
#include "app/program/program_tables.h"
#include "data/db/directory_sign_in.h"
#include "storage/db_kernel.h"
#include "storage/file/file_names.h"
#include "storage/kernel_settings.h"
#include "storage/key_file.h"
#include "storage/result_codes.h"

namespace korvan::app {

CLI::App& DbCommand::AddOperation(CLI::App& app, const std::string& name,
                                  const std::string& summary, Operation operation) {
  CLI::App* sub = app.add_subcommand(name, summary);
  sub->add_option("basis", base_path_,
                  "Basispfad: die Dateien sind <basis>0 (Daten) und <basis>1 (Schlüssel)")
      ->required();
  operations_.emplace_back(sub, operation);
  return *sub;
}

void DbCommand::Define(CLI::App& app) {
  app.require_subcommand(1);
  CLI::App& create =
      AddOperation(app, "create", "legt eine leere Datenbank an", &DbCommand::Create);
  create.add_option("--type", type_, "Typbuchstabe der Datenbank")->required();
  create.add_option("--keylen", key_length_, "Schlüssellänge in Bytes")
      ->required()
      ->check(CLI::Range(storage::kMinKeyFileKeyLength, storage::kMaxKeyFileKeyLength));
  AddOperation(app, "info", "zeigt Format, Version, Zeitstempel und Anzahlen", &DbCommand::Info);
  AddOperation(app, "dump", "listet die Blöcke der Datendatei", &DbCommand::Dump)
      .add_option("--table", table_, "zeigt die Datensätze der Tabelle mit diesem Typbuchstaben");
  AddOperation(app, "keys", "listet alle Schlüssel in der Reihenfolge des Baums", &DbCommand::Keys);
  AddOperation(app, "check", "prüft Schlüsselbaum, Freiplatzindex und Datensätze",
               &DbCommand::Check);
  AddOperation(app, "shell",
               "führt Kerneloperationen aus, die von der Standardeingabe gelesen werden",
               &DbCommand::Shell);
}

namespace {

// The tool works beside everybody else on the directory (a rebuild or reorg running there
// makes it wait, then refuse). Where no control file can be kept (a directory only to be
// read), nobody can replace files either, so the operations that only read go ahead.
std::unique_ptr<data::TDirectorySignIn> SignInBeside(const std::string& base_path, bool writes) {
  std::string directory = std::filesystem::path(base_path).parent_path().string();
  if (directory.empty()) directory = ".";
  const std::chrono::milliseconds wait(storage::CurrentKernelSettings().lock_timeout_ms);
  auto sign_in = std::make_unique<data::TDirectorySignIn>(CommandUser({}), false, wait);
  try {
    sign_in->Add(directory);
  } catch (const data::DirectoryInUseError& error) {
    throw CommandError(error.what());
  } catch (const data::ControlFileError& error) {
    if (writes) throw CommandError(error.what());
  }
  return sign_in;
}

}  // namespace

int DbCommand::Run(Streams& streams) {
  for (const auto& [sub, operation] : operations_) {
    if (!sub->parsed()) continue;
    const bool writes = operation == &DbCommand::Create || operation == &DbCommand::Shell;
    const auto sign_in = SignInBeside(base_path_, writes);
    return (this->*operation)(streams);
  }
  throw UsageError("ein Unterbefehl fehlt (create, info, dump, keys, check, shell)");
}

int DbCommand::Create(Streams& streams) {
  const bool letter = type_.size() == 1 && std::isalnum(static_cast<unsigned char>(type_[0]));
  if (!letter)
    throw UsageError("--type braucht einen Buchstaben oder eine Ziffer, nicht '" + type_ + "'");
  return RunDbCreate(base_path_, type_[0], key_length_, streams);
}

int DbCommand::Info(Streams& streams) {
  return RunDbInfo(base_path_, streams);
}
int DbCommand::Dump(Streams& streams) {
  if (table_.empty()) return RunDbDump(base_path_, streams);
  if (table_.size() != 1)
    throw UsageError("--table braucht einen Typbuchstaben, nicht '" + table_ + "'");
  return RunDbDumpTable(base_path_, table_[0], ProgramTables(), streams);
}
int DbCommand::Keys(Streams& streams) {
  return RunDbKeys(base_path_, streams);
}
int DbCommand::Check(Streams& streams) {
  return RunDbCheck(base_path_, streams);
}
int DbCommand::Shell(Streams& streams) {
  return RunDbShell(base_path_, std::cin, streams);
}

int RunDbCreate(const std::string& base_path, char db_type, int key_length, Streams& streams) {
  int handle = 0;
  const int result = storage::iDK_DbCreate(db_type, base_path, key_length, &handle);
  if (result != storage::kOk) {
    throw CommandError(FileOfOpenFailure(base_path, result) + ": " + ResultCodeText(result));
  }
  if (const int closed = storage::iDK_DbClose(handle); closed != storage::kOk) {
    throw CommandError(storage::DataFileName(base_path) + ": " + ResultCodeText(closed));
  }
  streams.out << "angelegt: " << storage::DataFileName(base_path) << " und "
              << storage::KeyFileName(base_path) << "\n";
  return kExitOk;
}

}  // namespace korvan::app
