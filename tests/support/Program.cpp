#include "tests/support/Program.h"

#include <cstdlib>
#include <cstring>
#include <stdexcept>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/support/TempFolder.h"

namespace kelvane::test {
namespace {

void openAs(int stream, const std::string& path, int flags) {
  ::dup2(::open(path.c_str(), flags, 0600), stream);
}

}  // namespace

void becomeProgram(const std::vector<std::string>& argv, const std::string& folder,
                   const std::map<std::string, std::string>& variables) {
  for (const auto& [name, value] : variables) ::setenv(name.c_str(), value.c_str(), 1);
  std::vector<char*> arguments;
  arguments.reserve(argv.size() + 1);
  for (const std::string& argument : argv) arguments.push_back(::strdup(argument.c_str()));
  arguments.push_back(nullptr);
  if (::chdir(folder.c_str()) == 0) ::execv(arguments[0], arguments.data());
  ::_exit(127);
}

Ended runProgram(const std::vector<std::string>& argv, const std::string& folder,
                 const std::map<std::string, std::string>& variables) {
  const TempFolder output;
  const pid_t child = ::fork();
  if (child < 0) throw std::runtime_error("no process for the program");
  if (child == 0) {
    openAs(STDIN_FILENO, "/dev/null", O_RDONLY);
    openAs(STDOUT_FILENO, output / "out", O_WRONLY | O_CREAT);
    openAs(STDERR_FILENO, output / "err", O_WRONLY | O_CREAT);
    becomeProgram(argv, folder, variables);
  }
  int status = 0;
  if (::waitpid(child, &status, 0) != child) throw std::runtime_error("the program is lost");
  Ended ended;
  if (WIFEXITED(status)) ended.exitStatus = WEXITSTATUS(status);
  if (WIFSIGNALED(status)) ended.signal = WTERMSIG(status);
  ended.out = output.read("out");
  ended.err = output.read("err");
  return ended;
}

}  // namespace kelvane::test
