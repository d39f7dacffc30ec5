// The shape of the command line: its sub-commands, options and arguments as plain data, for the
// manual page and the completions, which are made of it.
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace kelvane::console {

enum class ValueKind {
  none,  // a flag
  text,
  file,
  folder,
  assignedFile,  // a file behind a sign: "WWN=IMAGE"
  choice,
};

// An option or an argument of the command line.
struct OptionShape {
  std::vector<std::string> names;  // "-h", "--help"; an argument has none
  std::string valueName;           // "FOLDER"; empty for a flag
  std::string description;
  std::string variable;              // of the environment, which stands in for the option; or empty
  std::vector<std::string> choices;  // all values that may be given, where they are limited
  bool required = false;
  bool repeated = false;  // more than one value may be given
};

struct CommandShape {
  std::string name;
  std::string description;
  std::string footer;
  std::vector<OptionShape> options;    // help included
  std::vector<OptionShape> arguments;  // in their order
  std::vector<CommandShape> commands;
};

// Options and sub-commands that the help does not show are left out.
CommandShape shapeOf(const CLI::App& app);

// What may be given for the value, as the value's name tells it: "FOLDER" and "APP.app" are
// folders, "PATH" and "FILE" are files, and so is what stands behind the sign of "WWN=IMAGE".
ValueKind kindOf(const OptionShape& option);

}  // namespace kelvane::console
