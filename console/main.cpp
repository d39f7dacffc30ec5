// kelvane-console: submits jobs to the worker and follows them.

#include <cstdio>
#include <exception>

#include "console/CommandLine.h"
#include "console/ExitCode.h"

int main(int argc, char** argv) {
  try {
    return kelvane::console::CommandLine().run(argc, argv);
  } catch (const std::exception& unexpected) {
    std::fprintf(stderr, "kelvane-console: %s\n", unexpected.what());
    return kelvane::console::kInternalError;
  }
}
