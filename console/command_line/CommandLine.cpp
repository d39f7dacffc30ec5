#include "console/command_line/CommandLine.h"

#include <iostream>
#include <sstream>
#include <string>

#include <CLI/CLI.hpp>

#include "console/command_line/completion/Completion.h"
#include "console/commands/Check.h"
#include "console/commands/Explain.h"
#include "console/commands/Jobs.h"
#include "console/commands/OnlineUpdate.h"
#include "console/commands/ShowLog.h"
#include "console/commands/UpdateFw.h"
#include "console/commands/UpdateSw.h"
#include "console/display/DisplayText.h"
#include "console/display/Terminal.h"
#include "console/display/Wrapping.h"
#include "console/job/Clock.h"
#include "console/job/ExitCode.h"

namespace kelvane::console {

struct CommandLine::Commands {
  CLI::App app{"Submits jobs to the enclosure worker and follows them.", "kelvane-console"};
  QueryOptions query;
  DownloadOptions download;
  UpdateSwOptions updateSw;
  UpdateFwOptions updateFw;
  OneJobOptions watch;
  ListOptions list;
  OneJobOptions show;
  ShowLogOptions log;
  CheckOptions check;
  ExplainOptions explain;
  std::string completionShell;
  bool json = false;
  int exitCode = kSuccess;
};

namespace {

constexpr char kFooter[] =
    "Exit status: 0 success, 1 the job failed or check has findings, 2 bad usage,\n"
    "3 the worker could not be started or died, 4 the job file is damaged or cannot be read\n"
    "or written, 5 not found, 70 internal error, 130 interrupted (the worker goes on).";

template <typename Options>
int runHere(const Options& options, bool json, int (*subCommand)(const Options&, const Screen&)) {
  return subCommand(options, screenOfStandardOutput(std::cout, json));
}

// A sub-command that follows a job has the clock, which takes the first interrupt for itself.
template <typename Options>
int runHere(const Options& options, bool json,
            int (*subCommand)(const Options&, const Surroundings&)) {
  const Screen screen = screenOfStandardOutput(std::cout, json);
  const std::unique_ptr<View> view = viewOn(screen);
  SystemClock clock;
  return subCommand(options, {clock, *view, screen});
}

void addSharedOption(CLI::App& command, std::string& folder) {
  command.add_option("--shared", folder, "The folder shared with the worker")
      ->type_name("FOLDER")
      ->envname("KELVANE_SHARED")
      ->required();
}

void addJsonFlag(CLI::App& command, bool& json) {
  command.add_flag("--json", json, "Show JSON for machines");
}

void addJobOptions(CLI::App& command, JobOptions& options, bool& json) {
  addSharedOption(command, options.sharedFolder);
  command.add_option("--bundle", options.bundle, "The application bundle that holds the worker")
      ->type_name("APP.app")
      ->envname("KELVANE_BUNDLE");
  command.add_option("--worker", options.worker, "The worker, if not the bundle's")
      ->type_name("PATH");
  command.add_option("--log-id", options.logId, "The job's log id, if not the next free number")
      ->type_name("ID");
  command.add_flag("--verbose", options.verbose, "Show what the worker prints");
  addJsonFlag(command, json);
}

void addEngineOptions(CLI::App& command, EngineOptions& options) {
  command.add_option("--url", options.url, "The update service")->type_name("URL")->required();
  command
      .add_option("--folder", options.folder,
                  "An empty folder for the update engine, which is removed afterwards, if not one "
                  "below the shared folder")
      ->type_name("FOLDER");
}

// Runs the sub-command on standard output when it is called.
template <typename Options, typename Stage>
void onCall(CLI::App& command, const Options& options, bool& json, int& exitCode,
            int (*subCommand)(const Options&, const Stage&)) {
  command.callback(
      [&options, &json, &exitCode, subCommand] { exitCode = runHere(options, json, subCommand); });
}

CLI::App& addQuery(CLI::App& app, QueryOptions& options, bool& json) {
  CLI::App& command =
      *app.add_subcommand("query", "Ask the update service which packages it offers");
  addJobOptions(command, options.job, json);
  addEngineOptions(command, options.engine);
  command.add_option("product", options.product, "The product that is asked for")
      ->type_name("PRODUCT")
      ->required();
  command.add_option("version", options.version, "The version that is there now, if any")
      ->type_name("VERSION");
  command.footer(
      "Example:\n"
      "  kelvane-console query --shared ~/Shared --bundle /Manager/Manager.app \\\n"
      "    --url file:///srv/updates manager 1.0.0");
  return command;
}

CLI::App& addDownload(CLI::App& app, DownloadOptions& options, bool& json) {
  CLI::App& command = *app.add_subcommand("download", "Fetch packages from the update service");
  addJobOptions(command, options.job, json);
  addEngineOptions(command, options.engine);
  command
      .add_option("products", options.products,
                  "Products to look for; the first one's packages are fetched")
      ->type_name("PRODUCT[=VERSION]")
      ->required();
  command.footer(
      "Example:\n"
      "  kelvane-console download --shared ~/Shared --bundle /Manager/Manager.app \\\n"
      "    --url file:///srv/updates manager=2.0.0");
  return command;
}

CLI::App& addUpdateSw(CLI::App& app, UpdateSwOptions& options, bool& json) {
  CLI::App& command =
      *app.add_subcommand("update-sw", "Replace the installed application by a new one");
  addJobOptions(command, options.job, json);
  command.add_option("package", options.package, "The new application bundle")
      ->type_name("APP.app")
      ->required();
  command.footer(
      "Example:\n"
      "  kelvane-console update-sw --shared ~/Shared --bundle /Manager/Manager.app \\\n"
      "    ~/Shared/tmp/OnlineUpdate/SW/Manager.app");
  return command;
}

CLI::App& addUpdateFw(CLI::App& app, UpdateFwOptions& options, bool& json) {
  CLI::App& command = *app.add_subcommand("update-fw", "Update the firmware of controllers");
  addJobOptions(command, options.job, json);
  command.add_option("updates", options.updates, "A controller and the image it gets")
      ->type_name("WWN=IMAGE")
      ->required();
  command.footer(
      "Example:\n"
      "  kelvane-console update-fw --shared ~/Shared --bundle /Manager/Manager.app \\\n"
      "    5000A1B2C3D4E5F6=controller.img");
  return command;
}

CLI::App& addOneJob(CLI::App& app, const char* name, const char* description,
                    OneJobOptions& options, bool& json) {
  CLI::App& command = *app.add_subcommand(name, description);
  addSharedOption(command, options.sharedFolder);
  addJsonFlag(command, json);
  command.add_option("log_id", options.logId, "The job")->type_name("LOG_ID")->required();
  command.footer("Example:\n  kelvane-console " + std::string(name) + " --shared ~/Shared 17");
  return command;
}

CLI::App& addList(CLI::App& app, ListOptions& options, bool& json) {
  CLI::App& command = *app.add_subcommand("list", "Show the jobs of the job file as a table");
  addSharedOption(command, options.sharedFolder);
  addJsonFlag(command, json);
  command.footer("Example:\n  kelvane-console list --shared ~/Shared");
  return command;
}

CLI::App& addLog(CLI::App& app, ShowLogOptions& options, bool& json) {
  CLI::App& command = *app.add_subcommand("log", "Show the worker's log, objects folded");
  addSharedOption(command, options.sharedFolder);
  addJsonFlag(command, json);
  command.add_option("--level", options.level, "The least level that is shown")
      ->type_name("LEVEL")
      ->check(
          CLI::IsMember(std::vector<std::string>(std::begin(kLogLevels), std::end(kLogLevels))));
  command.add_option("--function", options.function, "Show the entries of this function alone")
      ->type_name("NAME");
  command.add_flag("--full", options.full, "Show objects whole");
  command.footer("Example:\n  kelvane-console log --shared ~/Shared --level error");
  return command;
}

CLI::App& addCheck(CLI::App& app, CheckOptions& options, bool& json) {
  CLI::App& command = *app.add_subcommand(
      "check", "Examine a shared folder and a bundle as the worker will see them");
  addSharedOption(command, options.sharedFolder);
  command.add_option("--bundle", options.bundle, "The application bundle that holds the worker")
      ->type_name("APP.app")
      ->envname("KELVANE_BUNDLE");
  command.add_flag("--json", json, "Show the findings as JSON for machines");
  command.footer(
      "Exit status: 0 no findings, 1 findings.\n"
      "Example:\n"
      "  kelvane-console check --shared ~/Shared --bundle /Manager/Manager.app");
  return command;
}

CLI::App& addExplain(CLI::App& app, ExplainOptions& options, bool& json) {
  CLI::App& command =
      *app.add_subcommand("explain", "Say what a result code or a job means, and what to do");
  command
      .add_option("--shared", options.sharedFolder,
                  "The folder shared with the worker, for a log id")
      ->type_name("FOLDER")
      ->envname("KELVANE_SHARED");
  command.add_flag("--json", json, "Show the explanation as JSON for machines");
  command
      .add_option("subject", options.subject, "A result code, such as 0x8050, or a job's log id")
      ->type_name("CODE|LOG_ID")
      ->required();
  command.footer(
      "Examples:\n"
      "  kelvane-console explain 0x8050\n"
      "  kelvane-console explain --shared ~/Shared 17");
  return command;
}

void addCompletion(CLI::App& app, std::string& shell) {
  CLI::App& command = *app.add_subcommand("completion", "Print what completes the command line");
  command.add_option("shell", shell, "The shell that is to complete it")
      ->type_name("SHELL")
      ->required()
      ->check(CLI::IsMember(completionShells()));
  command.footer(
      "Example, for this bash alone:\n"
      "  source <(kelvane-console completion bash)");
  command.callback([&app, &shell] { std::cout << completionScript(shell, shapeOf(app)); });
}

}  // namespace

CommandLine::CommandLine() : commands_(std::make_unique<Commands>()) {
  Commands& all = *commands_;
  all.app.require_subcommand(1);
  all.app.footer(kFooter);
  all.app.set_version_flag("--version", "kelvane-console " KELVANE_VERSION, "Show the version");
  onCall(addQuery(all.app, all.query, all.json), all.query, all.json, all.exitCode, query);
  onCall(addDownload(all.app, all.download, all.json), all.download, all.json, all.exitCode,
         download);
  onCall(addUpdateSw(all.app, all.updateSw, all.json), all.updateSw, all.json, all.exitCode,
         updateSw);
  onCall(addUpdateFw(all.app, all.updateFw, all.json), all.updateFw, all.json, all.exitCode,
         updateFw);
  onCall(addOneJob(all.app, "watch", "Follow a job that someone else started", all.watch, all.json),
         all.watch, all.json, all.exitCode, watch);
  onCall(addList(all.app, all.list, all.json), all.list, all.json, all.exitCode, list);
  onCall(addOneJob(all.app, "show", "Show one job whole", all.show, all.json), all.show, all.json,
         all.exitCode, show);
  onCall(addLog(all.app, all.log, all.json), all.log, all.json, all.exitCode, showLog);
  onCall(addCheck(all.app, all.check, all.json), all.check, all.json, all.exitCode, check);
  onCall(addExplain(all.app, all.explain, all.json), all.explain, all.json, all.exitCode, explain);
  addCompletion(all.app, all.completionShell);
}

CommandLine::~CommandLine() = default;

const CLI::App& CommandLine::app() const { return commands_->app; }

int CommandLine::run(int argc, const char* const* argv) {
  try {
    commands_->app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    if (argc > 1 && *argv[1] != '-' && commands_->app.get_subcommands().empty()) {
      std::cerr << "there is no sub-command " << displayText(argv[1], Charset::ascii) << '\n';
    }
    std::ostringstream out;
    std::ostringstream err;
    const int exitCode = commands_->app.exit(error, out, err);
    std::cout << fittedLines(out.str(), screenOfStandardOutput(std::cout, false).columns);
    std::cerr << err.str();
    return exitCode == 0 ? kSuccess : kBadUsage;  // asking for help is no error
  }
  return commands_->exitCode;
}

}  // namespace kelvane::console
