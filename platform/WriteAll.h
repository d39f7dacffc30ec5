// Bytes into open files.
#pragma once

#include <cstddef>
#include <string_view>

namespace kelvane::platform {

// What every system reads or writes in one call.
inline constexpr std::size_t kMostAtOnce = std::size_t{1} << 30U;

// Writes the bytes where the open file stands, in as many calls as it takes. Returns whether all
// of them arrived; errno tells what failed.
bool writeAll(int file, std::string_view bytes);

}  // namespace kelvane::platform
