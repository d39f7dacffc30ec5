#include "simulators/engine/EngineArguments.h"

#include <algorithm>
#include <iterator>
#include <map>

#include "contract/Engine.h"
#include "simulators/support/Files.h"

namespace kelvane::simulator {
namespace {

using Pairs = std::map<std::string, std::string>;

template <typename Names>
bool contains(const Names& names, const std::string& name) {
  return std::find(std::begin(names), std::end(names), name) != std::end(names);
}

bool readVerb(const std::vector<std::string>& arguments) {
  if (arguments.empty()) throw UsageError("there is no verb");
  const std::string& verb = arguments.front();
  if (verb != engine::kDownload && verb != engine::kQuery)
    throw UsageError(verb + ": is not a known verb");
  return verb == engine::kDownload;
}

// By hand: option names have one dash and many letters, and a value may begin with a dash, which
// no library for command lines takes together.
Pairs readPairs(const std::vector<std::string>& arguments) {
  Pairs pairs;
  for (std::size_t i = 1; i < arguments.size(); i += 2) {
    const std::string& name = arguments[i];
    if (!contains(engine::kNeeded, name) && !contains(engine::kOptional, name)) {
      throw UsageError(name + ": is not a known option");
    }
    if (i + 1 == arguments.size()) {
      if (contains(engine::kNeeded, name)) throw UsageError(name + ": has no value");
      break;
    }
    if (!pairs.emplace(name, arguments[i + 1]).second) throw UsageError(name + ": stands twice");
  }
  return pairs;
}

}  // namespace

std::string engineUsage() {
  return "usage: EngineRunner dryrun|run -productid PRODUCT -version VERSION -url SERVICE"
         " -folder FOLDER [-logId ID] [-logPath FILE] [-log FOLDER]";
}

EngineArguments readEngineArguments(const std::vector<std::string>& arguments) {
  const bool withPackages = readVerb(arguments);
  const Pairs pairs = readPairs(arguments);
  for (const char* name : engine::kNeeded) {
    if (!pairs.contains(name)) throw UsageError(std::string(name) + ": is missing");
  }
  if (pairs.at(engine::kFolder).empty())
    throw UsageError(std::string(engine::kFolder) + ": is empty");
  const std::string& productId = pairs.at(engine::kProductId);
  if (!isEntryName(productId)) {
    throw platform::Exception("product \"" + productId +
                              "\": must be a name without \"/\", and neither \".\" nor \"..\"");
  }
  return {withPackages, productId, pairs.at(engine::kVersion), pairs.at(engine::kUrl),
          pairs.at(engine::kFolder)};
}

}  // namespace kelvane::simulator
