// The command line: every sub-command with its options, its help and what it runs.
#pragma once

#include <memory>

namespace CLI {
class App;
}

namespace kelvane::console {

class CommandLine {
 public:
  CommandLine();
  CommandLine(const CommandLine&) = delete;
  CommandLine& operator=(const CommandLine&) = delete;
  ~CommandLine();

  // What it is made of, for those that describe it.
  const CLI::App& app() const;

  // Runs the sub-command that the arguments ask for; the exit code. Bad usage and help are told on
  // standard error and standard output. Raises what the sub-command raises.
  int run(int argc, const char* const* argv);

 private:
  struct Commands;
  std::unique_ptr<Commands> commands_;
};

}  // namespace kelvane::console
