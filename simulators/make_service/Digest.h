// Size and SHA-256 of what is delivered.
#pragma once

#include <cstdint>
#include <map>
#include <string>

namespace kelvane::simulator {

struct Digest {
  std::int64_t size = 0;  // bytes
  std::string sha256;     // 64 hexadecimal digits, lower case
};

// Of the bytes of all files, one after the other: the entries in the order of their names, of a
// folder the files in the order of their paths, links left out. Of a single file that is its own
// SHA-256. `paths` holds real paths by delivered name. Raises, with the path and the cause, where
// something cannot be read.
Digest digestOf(const std::map<std::string, std::string>& paths);

}  // namespace kelvane::simulator
