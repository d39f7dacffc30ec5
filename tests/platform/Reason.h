// What an action raises.
#pragma once

#include <functional>
#include <string>

#include "platform/Exception.h"

namespace kelvane::test {

inline std::string reasonOf(const std::function<void()>& action) {
  try {
    action();
  } catch (const platform::Exception& raised) {
    return raised.what();
  }
  return "nothing was raised";
}

}  // namespace kelvane::test
