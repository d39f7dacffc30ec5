// What a sub-command is declared as, in plain data: the command line, the help, the manual page and
// the completions are made of it.
#pragma once

#include <functional>
#include <string>
#include <variant>
#include <vector>

namespace kelvane::console {

class Given;
struct Screen;
struct Surroundings;

// What a value is, which the completions offer.
enum class ValueKind {
  none,  // a flag has no value
  text,
  file,
  folder,
  assignedFile,  // a file behind a sign: "WWN=IMAGE"
  choice,
  logId,    // of a job of the job file
  product,  // one that the update service offers
};

// An option or an argument.
struct Option {
  // "-h", "--help"; an argument's is a word, such as "product". The last one is its key in Given.
  std::vector<std::string> names;
  ValueKind kind = ValueKind::text;
  std::string valueName = {};  // as help and manual page show it, such as "FOLDER"; a flag has none
  std::string description = {};
  std::string variable = {};  // of the environment, which stands in for the option; or empty
  std::vector<std::string> choices = {};  // of a choice: all values that may be given
  bool required = false;
  bool repeated = false;  // more than one value may be given
};

// Both return the exit code, and raise Failure. The first shows something at once; the second
// follows a job, so that interrupts are taken while it runs.
using Shows = std::function<int(const Given&, const Screen&)>;
using Follows = std::function<int(const Given&, const Surroundings&)>;
using Run = std::variant<Shows, Follows>;

struct Command {
  std::string name;
  std::string description;
  std::vector<Option> options = {};    // "--help" aside, which every sub-command has
  std::vector<Option> arguments = {};  // in their order
  std::string footer = {};             // below the help: an example at least
  Run run = {};
};

}  // namespace kelvane::console
