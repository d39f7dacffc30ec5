#include "console/command_line/CommandLine.h"

#include <cstdlib>
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
  const auto take = [&given, key](const CLI::results_t& values) {
    given.set(key, values);
    return true;
  };
  return *app.add_option(names, CLI::callback_t(take), option.description);
}

bool isArgument(const Option& option) { return option.names.back().front() != '-'; }

// "FOLDER REQUIRED (Env:KELVANE_SHARED)", for the help.
std::string helpOfValue(const Option& option) {
  std::string text = option.valueName;
  if (option.required) text += " REQUIRED";
  if (!option.variable.empty()) text.append(" (Env:").append(option.variable).append(")");
  return text;
}

// That it is given at all, and once, is seen to when all is read: it may stand at several places.
void allowManyTimes(CLI::Option& added, const Option& option) {
  added.option_text(helpOfValue(option));
  added.multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  added.expected(1, CLI::detail::expected_max_vector_size);
  added.allow_extra_args(false);  // one value each time
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
  added.type_name(option.valueName);
  if (isArgument(option)) {
    added.required(option.required);
  } else {
    allowManyTimes(added, option);
  }
  if (option.kind == ValueKind::choice) added.check(CLI::IsMember(option.choices));
}

// --- what was given at all places together

void requireNoEmptyValue(const std::string& key, const Given::Values& values) {
  for (const std::string& value : values) {
    if (value.empty()) throw Failure(kBadUsage, key + " is given without a value");
  }
}

void requireOneValue(const Option& option, const Given& given) {
  const std::string& key = option.names.back();
  const Given::Values& values = given.texts(key);
  for (const std::string& value : values) {
    if (value == values.front()) continue;
    std::string message = key + " is given twice: ";
    throw Failure(kBadUsage, message.append(values.front()).append(" and ").append(value));
  }
}

void lookIntoEnvironment(const Option& option, Given& given) {
  const char* value = option.variable.empty() ? nullptr : std::getenv(option.variable.c_str());
  if (value != nullptr && *value != '\0') given.fallBack(option.names.back(), value);
}

void requireGiven(const Command& command, const Option& option, const Given& given) {
  if (!option.required || isArgument(option) || given.has(option.names.back())) return;
  std::string message = command.name + " needs " + option.names.back();
  message.append(" ").append(option.valueName);
  if (!option.variable.empty()) {
    message.append("; the environment variable ").append(option.variable).append(" can name it");
  }
  throw Failure(kBadUsage, message);
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
  const Command& command = commandNamed(name, table_);
  Given given = given_.at(name);
  given.addFrom(general_);
  for (const Option& option : command.options) {
    if (option.kind == ValueKind::none) continue;
    requireNoEmptyValue(option.names.back(), given.texts(option.names.back()));
    if (!option.repeated) requireOneValue(option, given);
    lookIntoEnvironment(option, given);
    requireGiven(command, option, given);
  }
  return runHere(command, given);
}

// The first word that stands for a sub-command; empty where there is none.
std::string subCommandIn(const CommandTable& table, int argc, const char* const* argv) {
  for (int i = 1; i < argc; ++i) {
    std::string word = argv[i];
    if (word.empty() || word.front() != '-') return word;
    for (const Option& option : table.options) {
      if (option.kind != ValueKind::none && option.names.back() == word) ++i;  // its value
    }
  }
  return {};
}

// Of an argument that is missing the parser knows only its key, not how the help shows it.
std::string missingArgument(const CommandTable& table, const CLI::App& app,
                            const CLI::ParseError& error) {
  if (error.get_name() != "RequiredError" || app.get_subcommands().empty()) return {};
  const Command& command = commandNamed(app.get_subcommands().front()->get_name(), table);
  for (const Option& argument : command.arguments) {
    if (error.what() != argument.names.back() + " is required") continue;
    return command.name + " needs " + argument.valueName +
           "\nRun with --help for more information.\n";
  }
  return {};
}

// Tells of bad usage, or shows the help; the exit code.
int answer(const CLI::App& app, const CLI::ParseError& error, const CommandTable& table,
           const std::string& subCommand) {
  std::ostringstream out;
  std::ostringstream err;
  if (error.get_exit_code() != 0) err << table.name << ": ";
  if (!subCommand.empty() && app.get_subcommands().empty()) {
    err << "there is no sub-command " << displayText(subCommand, Charset::ascii) << '\n';
  }
  const std::string missing = missingArgument(table, app, error);
  if (!missing.empty()) {
    std::cerr << fittedLines(err.str() + missing, columnsOfStandardError());
    return kBadUsage;
  }
  const int exitCode = app.exit(error, out, err);
  std::cout << fittedLines(out.str(), screenOfStandardOutput(std::cout, false).columns);
  std::cerr << fittedLines(err.str(), columnsOfStandardError());
  return exitCode == 0 ? kSuccess : kBadUsage;  // asking for help is no error
}

}  // namespace

int CommandLine::run(int argc, const char* const* argv) const {
  Parser parser(table_);
  try {
    parser.app().parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return answer(parser.app(), error, table_, subCommandIn(table_, argc, argv));
  }
  return parser.run();
}

}  // namespace kelvane::console
