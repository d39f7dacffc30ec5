// What a job file and a log are told by that are not this system's: a copy of a shared folder, or
// the two files as they were mailed. Every sub-command that only looks takes them.
#pragma once

#include <string>
#include <vector>

#include "console/commands/Command.h"
#include "console/job/Places.h"

namespace kelvane::console {

struct CopyOptions {
  bool offline = false;      // the shared folder is a copy
  std::string jobFile = {};  // in place of a shared folder's; empty: not given
  std::string logFile = {};  // likewise
};

// Their declarations: "--shared", which is then not needed, and those of a copy. `need` is what the
// folder is needed for, behind its description, such as ", for a log id".
std::vector<Option> placeOptions(const std::string& need = "");

// What was given for those of a copy. Raises Failure (bad usage) where a file was given and a
// shared folder as well; one that the environment names does not count beside a file.
CopyOptions copyOptionsOf(const Given& given);

// Whether there is any place to look at.
bool hasPlaces(const std::string& sharedFolder, const CopyOptions& copy);

// The places that are meant. `examined` is one of the functions of Arguments.h, for the shared
// folder. Raises Failure (bad usage) where nothing was given, or what was given is not there.
Places placesOf(const std::string& sharedFolder, const CopyOptions& copy,
                std::string (*examined)(const std::string& folder));

}  // namespace kelvane::console
