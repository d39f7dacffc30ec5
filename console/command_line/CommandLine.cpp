#include "console/command_line/CommandLine.h"

#include <iostream>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <variant>

#include <CLI/CLI.hpp>

#include "console/commands/CommonOptions.h"
#include "console/commands/Given.h"
#include "console/commands/Submission.h"
#include "console/display/DisplayText.h"
#include "console/display/Terminal.h"
#include "console/display/Words.h"
#include "console/display/Wrapping.h"
#include "console/job/Clock.h"
#include "console/job/ExitCode.h"

namespace kelvane::console {
namespace {

CLI::Option& addFlag(CLI::App& app, const Option& flag, Given& given) {
  const auto take = [&given, key = flag.names.back()] { given.set(key, {"true"}); };
  return *app.add_flag_callback(joined(flag.names, ","), take, flag.description);
}

CLI::Option& addWithValue(CLI::App& app, const Option& option, Given& given) {
  const std::string names = joined(option.names, ",");
  const std::string key = option.names.back();
  if (option.repeated) {
    const auto take = [&given, key](const Given::Values& values) { given.set(key, values); };
    return *app.add_option_function<Given::Values>(names, take, option.description);
  }
  const auto take = [&given, key](const std::string& value) { given.set(key, {value}); };
  return *app.add_option_function<std::string>(names, take, option.description);
}

// What is read for it goes to `given`.
void add(CLI::App& app, const Option& option, Given& given) {
  if (isHelp(option)) {
    app.set_help_flag(joined(option.names, ","), option.description);
    return;
  }
  given.declare(option.names.back());
  if (option.kind == ValueKind::none) {
    addFlag(app, option, given);
    return;
  }
  CLI::Option& added = addWithValue(app, option, given);
  added.type_name(option.valueName)->envname(option.variable)->required(option.required);
  if (option.kind == ValueKind::choice) added.check(CLI::IsMember(option.choices));
}

// The parser of a table, and what it has read.
class Parser {
 public:
  explicit Parser(const CommandTable& table) : app_(table.description, table.name), table_(table) {
    app_.require_subcommand(1);
    app_.footer(table.footer);
    for (const Option& option : table.options) {
      if (isVersion(option)) {
        app_.set_version_flag(joined(option.names, ","), table.name + " " + table.version,
                              option.description);
      } else {
        add(app_, option, general_);
      }
    }
    for (const Command& command : table.commands) addCommand(command);
  }

  CLI::App& app() { return app_; }

  // Runs what was asked for.
  int run() const;

 private:
  void addCommand(const Command& command) {
    CLI::App& app = *app_.add_subcommand(command.name, command.description);
    app.footer(command.footer);
    Given& given = given_[command.name];
    for (const Option& option : command.options) add(app, option, given);
    for (const Option& argument : command.arguments) add(app, argument, given);
  }

  CLI::App app_;
  const CommandTable& table_;
  Given general_;  // before the sub-command
  // Of each sub-command: a variable of the environment reaches all of them.
  std::map<std::string, Given> given_;
};

int runHere(const Shows& run, const Given& given, const Screen& screen) {
  return run(given, screen);
}

// A sub-command that follows a job has the clock, which takes the first interrupt for itself.
int runHere(const Follows& run, const Given& given, const Screen& screen) {
  const std::unique_ptr<View> view = viewOn(screen);
  SystemClock clock;
  return run(given, {clock, *view, screen});
}

int runHere(const Command& command, const Given& given) {
  const bool json = given.knows(kJsonOption) && given.has(kJsonOption);
  const Screen screen = screenOfStandardOutput(std::cout, json);
  return std::visit([&](const auto& run) { return runHere(run, given, screen); }, command.run);
}

int Parser::run() const {
  const std::string name = app_.get_subcommands().front()->get_name();
  Given given = given_.at(name);
  given.completeFrom(general_);
  return runHere(commandNamed(name, table_), given);
}

// Tells of bad usage, or shows the help; the exit code.
int answer(const CLI::App& app, const CLI::ParseError& error, int argc, const char* const* argv) {
  if (argc > 1 && *argv[1] != '-' && app.get_subcommands().empty()) {
    std::cerr << "there is no sub-command " << displayText(argv[1], Charset::ascii) << '\n';
  }
  std::ostringstream out;
  std::ostringstream err;
  const int exitCode = app.exit(error, out, err);
  std::cout << fittedLines(out.str(), screenOfStandardOutput(std::cout, false).columns);
  std::cerr << err.str();
  return exitCode == 0 ? kSuccess : kBadUsage;  // asking for help is no error
}

}  // namespace

int CommandLine::run(int argc, const char* const* argv) const {
  Parser parser(table_);
  try {
    parser.app().parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return answer(parser.app(), error, argc, argv);
  }
  return parser.run();
}

}  // namespace kelvane::console
