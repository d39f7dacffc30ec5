// What a user may not: for tests that run as the super user, who may everything, and as another.
#pragma once

#include <functional>
#include <string>

namespace kelvane::test {

// Runs the action in a child process without the super user's rights; what it returned.
std::string asOrdinaryUser(const std::function<std::string()>& action);

// Gives up the super user's rights for the rest of the process's life; nothing for other users.
void becomeOrdinaryUser();

// Permission bits for the time of its life.
class PermissionBits {
 public:
  PermissionBits(const std::string& path, unsigned bits);
  PermissionBits(const PermissionBits&) = delete;
  PermissionBits& operator=(const PermissionBits&) = delete;
  ~PermissionBits();

 private:
  std::string path_;
  unsigned before_ = 0;
};

}  // namespace kelvane::test
