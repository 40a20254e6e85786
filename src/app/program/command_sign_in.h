#pragma once

#include <memory>
#include <string>
#include <vector>

#include "data/db/directory_sign_in.h"

namespace korvan::data {
class DatabaseFile;
}

namespace korvan::app {

// Who a command signs in as: `user` (the installation's user; the login name when
// empty) on this computer.
data::ControlUser CommandUser(const std::string& user);

// Signs the command in to the control files of the directories, shared (everyday work)
// or exclusively (rebuild, reorg), waiting up to the kernel's LOCK_TIMEOUT for the
// others. The sign-in lasts as long as the returned object. A refusal is a CommandError
// that starts with `action` when one is given ("Neuaufbau abgebrochen, nichts
// geändert: ..."), names the directory and the other user.
std::unique_ptr<data::TDirectorySignIn> SignInToDirectories(
    const data::ControlUser& me, const std::vector<std::string>& directories, bool exclusive,
    const std::string& action = {});
std::unique_ptr<data::TDirectorySignIn> SignInToDirectoriesOf(
    const data::ControlUser& me, const std::vector<const data::DatabaseFile*>& files,
    bool exclusive, const std::string& action = {});

}  // namespace korvan::app
