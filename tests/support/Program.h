// A program run to its end by a test, with what it wrote.
#pragma once

#include <map>
#include <string>
#include <vector>

namespace kelvane::test {

struct Ended {
  int exitStatus = -1;  // -1 where a signal ended it
  int signal = 0;
  std::string out;
  std::string err;
};

// Runs the program (argv[0] is its path) in the folder, with these variables on top of the test's
// own environment and with empty standard input.
Ended runProgram(const std::vector<std::string>& argv, const std::string& folder,
                 const std::map<std::string, std::string>& variables = {});

// Becomes the program in the folder, with these variables on top of the present environment; for a
// child process. Where that fails the process ends with the exit status 127.
[[noreturn]] void becomeProgram(const std::vector<std::string>& argv, const std::string& folder,
                                const std::map<std::string, std::string>& variables);

}  // namespace kelvane::test
