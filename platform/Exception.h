// The one exception of the platform layer: code asked something impossible of a value, a file or
// a process. Everything that the layer raises is of this type.
#pragma once

#include <stdexcept>

namespace kelvane::platform {

// what() is the reason: one line of text for the log, with the path and the cause where a file is
// concerned.
class Exception : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace kelvane::platform
