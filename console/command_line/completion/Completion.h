// Completion scripts for shells, made of the command line's shape. They complete sub-commands,
// options and what options take: files, folders, one of a few words.
#pragma once

#include <string>
#include <vector>

#include "console/command_line/CommandShape.h"

namespace kelvane::console {

// The shells there are scripts for.
std::vector<std::string> completionShells();

// The script for one of these shells; std::out_of_range for another one.
std::string completionScript(const std::string& shell, const CommandShape& app);

// One shell each.
std::string bashCompletion(const CommandShape& app);
std::string zshCompletion(const CommandShape& app);
std::string fishCompletion(const CommandShape& app);

// The words with a separator between them.
std::string joined(const std::vector<std::string>& words, const std::string& separator);

}  // namespace kelvane::console
