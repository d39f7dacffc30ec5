// kelvane-console: the command line. Each sub-command fills its options here and runs elsewhere.

#include <iostream>
#include <memory>

#include <CLI/CLI.hpp>

#include "console/Clock.h"
#include "console/ExitCode.h"
#include "console/Terminal.h"
#include "console/UpdateFw.h"

namespace {

using namespace kelvane::console;

int runUpdateFw(const UpdateFwOptions& options) {
  const Charset charset = charsetOfLocale();
  const std::unique_ptr<View> view = viewOfStandardOutput(std::cout, charset);
  SystemClock clock;
  return updateFw(options, {clock, *view, std::cerr, charset});
}

void addUpdateFw(CLI::App& app, UpdateFwOptions& options, int& exitCode) {
  CLI::App* command = app.add_subcommand("update-fw", "Update the firmware of controllers");
  command->add_option("--shared", options.sharedFolder, "The folder shared with the worker")
      ->type_name("FOLDER")
      ->required();
  command->add_option("--bundle", options.bundle, "The application bundle that holds the worker")
      ->type_name("APP.app");
  command->add_option("--worker", options.worker, "The worker, if not the bundle's")
      ->type_name("PATH");
  command->add_option("--log-id", options.logId, "The job's log id, if not the next free number")
      ->type_name("ID");
  command->add_flag("--verbose", options.verbose, "Show what the worker prints");
  command->add_option("updates", options.updates, "A controller and the image it gets")
      ->type_name("WWN=IMAGE")
      ->required();
  command->footer(
      "Example:\n"
      "  kelvane-console update-fw --shared ~/Shared --bundle /Applications/Manager.app \\\n"
      "    5000A1B2C3D4E5F6=controller.img\n"
      "Exit status: 0 result 0, 1 the job failed, 2 bad usage, 3 the worker could not be\n"
      "started or did not finish, 4 the job file is damaged or cannot be written,\n"
      "130 interrupted (the worker goes on).");
  command->callback([&options, &exitCode] { exitCode = runUpdateFw(options); });
}

int run(int argc, char** argv) {
  CLI::App app("Submits jobs to the firmware worker and follows them.", "kelvane-console");
  app.require_subcommand(1);
  int exitCode = kSuccess;
  UpdateFwOptions updateFwOptions;
  addUpdateFw(app, updateFwOptions, exitCode);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? kSuccess : kBadUsage;  // asking for help is no error
  }
  return exitCode;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run(argc, argv);
  } catch (const std::exception& unexpected) {
    std::fprintf(stderr, "kelvane-console: %s\n", unexpected.what());
    return kInternalError;
  }
}
