// Runs an action in a child process and kills the child right before a system call of its.
#pragma once

#include <functional>

namespace kelvane::test {

// Whether the child was killed before its n-th system call (from 1); false where it ended by
// itself earlier.
bool killedBeforeSystemCall(int n, const std::function<void()>& action);

}  // namespace kelvane::test
