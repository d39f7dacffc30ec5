// Completion scripts for shells, made of the table of the sub-commands. They complete sub-commands,
// options and what options and arguments take: files, folders, one of a few words, and what the
// console finds in the job file.
#pragma once

#include <string>
#include <vector>

#include "console/command_line/CommandTable.h"

namespace kelvane::console {

// The shells there are scripts for.
std::vector<std::string> completionShells();

// The script for one of these shells; std::out_of_range for another one.
std::string completionScript(const std::string& shell, const CommandTable& table);

// One shell each.
std::string bashCompletion(const CommandTable& table);
std::string zshCompletion(const CommandTable& table);
std::string fishCompletion(const CommandTable& table);

}  // namespace kelvane::console
