// The update engine's command line.
#pragma once

#include <string>
#include <vector>

#include "platform/Exception.h"

namespace kelvane::simulator {

// A command line of another shape than the engine's.
class UsageError : public platform::Exception {
 public:
  using Exception::Exception;
};

struct EngineArguments {
  bool withPackages = false;  // "run"; "dryrun" leaves the catalogue alone
  std::string productId;
  std::string version;
  std::string url;
  std::string folder;
};

// How the command line has to look, in one line.
std::string engineUsage();

// The arguments after the program's name: the verb, then pairs of an option and its value. Raises
// UsageError for anything else, and Exception for a product identifier that can name no folder.
// Of the last three options nothing is kept, and the line may end with one that has no value.
EngineArguments readEngineArguments(const std::vector<std::string>& arguments);

}  // namespace kelvane::simulator
