// System calls that a signal interrupts.
#pragma once

#include <cerrno>

namespace kelvane::platform {

// What the call returns once no signal has interrupted it. `call` returns -1, with errno, where it
// fails. Not for closing a file: that is done, interrupted or not.
template <typename Call>
auto restarted(Call call) {
  for (;;) {
    const auto result = call();
    if (result != -1 || errno != EINTR) return result;
  }
}

}  // namespace kelvane::platform
