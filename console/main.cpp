// kelvane-console: submits jobs to the worker and follows them.

#include <iostream>

#include "console/command_line/CommandLine.h"
#include "console/commands/Guard.h"
#include "console/display/Terminal.h"
#include "console/job/ExitCode.h"

int main(int argc, char** argv) {
  namespace console = kelvane::console;
  const console::Charset charset = console::charsetOfLocale();
  const std::size_t columns = console::columnsOfStandardError();
  const int exitCode = console::guarded(
      std::cerr, charset, [&] { return console::CommandLine().run(argc, argv); }, columns);
  return console::guarded(
      std::cerr, charset,
      [exitCode] {
        if (std::cout.flush()) return exitCode;
        throw console::Failure(console::kInternalError, "standard output cannot be written");
      },
      columns);
}
