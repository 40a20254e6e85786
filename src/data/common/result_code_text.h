#pragma once

#include <string>

namespace korvan::data {

// "<code> (<text>)" for a result code of the storage engine: the kernel's own codes with
// their German message texts, key-file and cache codes, which the kernel's message table
// does not know, with a short German description of their own.
std::string ResultCodeText(int code);

}  // namespace korvan::data
