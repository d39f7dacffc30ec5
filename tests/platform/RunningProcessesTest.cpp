#include <array>
#include <csignal>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/RunningProcesses.h"
#include "tests/support/TempFolder.h"

namespace kelvane::platform {
namespace {

// A program that lives until its input is closed, called by a name of its own in this folder.
class Reader {
 public:
  explicit Reader(const std::string& folder) {
    const auto [input, output] = pipe();
    const auto [started, starting] = pipe();
    process_ = ::fork();
    if (process_ == 0) {
      if (::dup2(input, STDIN_FILENO) < 0 || ::chdir(folder.c_str()) != 0) ::_exit(126);
      ::execl("/bin/cat", "any name", "-", "", "two words", nullptr);
      ::_exit(127);
    }
    ::close(input);
    ::close(starting);
    output_ = output;
    char none = 0;  // the other end is closed by the program's start
    EXPECT_EQ(::read(started, &none, 1), 0);
    ::close(started);
  }
  ~Reader() {
    ::kill(process_, SIGKILL);
    ::waitpid(process_, nullptr, 0);
    ::close(output_);
  }
  Reader(const Reader&) = delete;
  Reader& operator=(const Reader&) = delete;

  long id() const { return process_; }

 private:
  static std::pair<int, int> pipe() {
    std::array<int, 2> ends = {-1, -1};
    EXPECT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
    return {ends[0], ends[1]};
  }

  pid_t process_ = -1;
  int output_ = -1;
};

std::vector<RunningProcess> processesWithId(long id) {
  std::vector<RunningProcess> found;
  for (const RunningProcess& process : runningProcesses()) {
    if (process.id == id) found.push_back(process);
  }
  return found;
}

TEST(RunningProcesses, HaveTheirArgumentsAndCurrentFolderOnceEach) {
  const test::TempFolder folder;
  const Reader reader(folder.path());
  const auto found = processesWithId(reader.id());
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].arguments, (std::vector<std::string>{"any name", "-", "", "two words"}));
  EXPECT_EQ(found[0].currentFolder, std::filesystem::canonical(folder.path()));
}

TEST(RunningProcesses, DoNotHoldOneThatHasEnded) {
  long id = 0;
  {
    const test::TempFolder folder;
    id = Reader(folder.path()).id();
  }
  EXPECT_TRUE(processesWithId(id).empty());
}

}  // namespace
}  // namespace kelvane::platform
