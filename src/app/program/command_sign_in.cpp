#include "app/program/command_sign_in.h"

#include <unistd.h>

#include <chrono>
#include <climits>
#include <cstdlib>

#include "app/cli/command_error.h"
#include "data/db/db_groups.h"
#include "storage/kernel_settings.h"

namespace korvan::app {
namespace {

std::string HostName() {
  char name[HOST_NAME_MAX + 1] = {};
  return ::gethostname(name, sizeof name - 1) == 0 ? std::string(name) : std::string();
}

std::string LoginName() {
  const char* name = std::getenv("USER");
  return name != nullptr ? std::string(name) : std::string();
}

std::string Refused(const std::string& action, const std::string& reason) {
  return action.empty() ? reason : action + " abgebrochen, nichts geändert: " + reason;
}

}  // namespace

data::ControlUser CommandUser(const std::string& user) {
  return {user.empty() ? LoginName() : user, HostName()};
}

std::unique_ptr<data::TDirectorySignIn> SignInToDirectories(
    const data::ControlUser& me, const std::vector<std::string>& directories, bool exclusive,
    const std::string& action) {
  const std::chrono::milliseconds wait(storage::CurrentKernelSettings().lock_timeout_ms);
  auto sign_in = std::make_unique<data::TDirectorySignIn>(me, exclusive, wait);
  try {
    for (const std::string& directory : directories) sign_in->Add(directory);
  } catch (const data::DirectoryInUseError& error) {
    throw CommandError(Refused(action, error.what()));
  } catch (const data::ControlFileError& error) {
    throw CommandError(Refused(action, error.what()));
  }
  return sign_in;
}

std::unique_ptr<data::TDirectorySignIn> SignInToDirectoriesOf(
    const data::ControlUser& me, const std::vector<const data::DatabaseFile*>& files,
    bool exclusive, const std::string& action) {
  std::vector<std::string> directories;
  for (const data::DatabaseFile* file : files) directories.push_back(file->directory());
  return SignInToDirectories(me, directories, exclusive, action);
}

}  // namespace korvan::app
