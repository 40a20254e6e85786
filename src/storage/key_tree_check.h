#pragma once

#include <string>
#include <vector>

namespace korvan::storage {

// Checks the key file registered under `registration` with the block cache and returns
// its problems, one sentence each; an empty list means the tree is sound: a readable
// header, every node with 1..M entries (the root may be the only node), all leaves at
// one depth, every (key, position) pair in order across the whole tree, and the
// allocation matching the tree (version 3: the free list is acyclic, lies within the
// highest node and holds exactly the nodes outside the tree; version 2: the bitmap
// marks exactly the nodes of the tree). Never changes the file; stops at a bounded
// number of problems and never follows a cycle.
std::vector<std::string> CheckKeyFile(int registration);

}  // namespace korvan::storage
