// kelvane-console: submits jobs to the worker and follows them.

#include <cstdio>
#include <exception>
#include <iostream>
#include <stdexcept>

#include "console/command_line/CommandLine.h"
#include "console/job/ExitCode.h"

int main(int argc, char** argv) {
  try {
    const int exitCode = kelvane::console::CommandLine().run(argc, argv);
    if (std::cout.flush()) return exitCode;
    throw std::runtime_error("standard output cannot be written");
  } catch (const std::exception& unexpected) {
    std::fprintf(stderr, "kelvane-console: %s\n", unexpected.what());
    return kelvane::console::kInternalError;
  }
}
