#include "tests/support/OrdinaryUser.h"

#include <array>
#include <stdexcept>

#include <grp.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kelvane::test {
namespace {

constexpr unsigned kNobody = 65534;
constexpr mode_t kAllBits = 07777;

// What is thrown ends here: above stands the whole test program.
[[noreturn]] void runInChild(const std::function<std::string()>& action, int pipe) noexcept {
  becomeOrdinaryUser();
  const std::string text = action();
  const bool written = ::write(pipe, text.data(), text.size()) == static_cast<ssize_t>(text.size());
  ::_exit(written ? 0 : 1);
}

std::string readToEnd(int pipe) {
  std::string text;
  std::array<char, 4096> block;
  for (ssize_t got = 0; (got = ::read(pipe, block.data(), block.size())) > 0;) {
    text.append(block.data(), static_cast<std::size_t>(got));
  }
  return text;
}

}  // namespace

void becomeOrdinaryUser() {
  if (::geteuid() != 0) return;
  if (::setgroups(0, nullptr) != 0 || ::setgid(kNobody) != 0 || ::setuid(kNobody) != 0) {
    ::_exit(126);
  }
}

std::string asOrdinaryUser(const std::function<std::string()>& action) {
  std::array<int, 2> ends = {-1, -1};
  if (::pipe(ends.data()) != 0) throw std::runtime_error("no pipe for the child");
  const pid_t child = ::fork();
  if (child < 0) throw std::runtime_error("no child");
  if (child == 0) runInChild(action, ends[1]);
  ::close(ends[1]);
  std::string text = readToEnd(ends[0]);
  ::close(ends[0]);
  int status = 0;
  if (::waitpid(child, &status, 0) != child || !WIFEXITED(status) || WEXITSTATUS(status) != 0) {
    throw std::runtime_error("the child failed");
  }
  return text;
}

PermissionBits::PermissionBits(const std::string& path, unsigned bits) : path_(path) {
  struct stat entry = {};
  if (::stat(path.c_str(), &entry) != 0 || ::chmod(path.c_str(), bits) != 0) {
    throw std::runtime_error("no permission bits for " + path);
  }
  before_ = entry.st_mode & kAllBits;
}

PermissionBits::~PermissionBits() { ::chmod(path_.c_str(), before_); }

}  // namespace kelvane::test
