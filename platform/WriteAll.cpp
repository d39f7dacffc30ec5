#include "platform/WriteAll.h"

#include <algorithm>

#include <unistd.h>

#include "platform/Restarted.h"

namespace kelvane::platform {

bool writeAll(int file, std::string_view bytes) {
  while (!bytes.empty()) {
    const std::size_t size = std::min(bytes.size(), kMostAtOnce);
    const ssize_t written = restarted([&] { return ::write(file, bytes.data(), size); });
    if (written < 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

}  // namespace kelvane::platform
