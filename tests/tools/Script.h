// A script of the folder tools run to its end, on what is built or on programs that stand in for
// it.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "tests/support/Program.h"
#include "tests/support/TempFolder.h"

namespace kelvane::tools {

// Runs tools/NAME of the project.
test::Ended runScript(const std::string& name, const std::vector<std::string>& arguments);
// The last line of what it said, without its line feed.
std::string lastLine(const std::string& text);

// Writes a program for the shell into the folder; returns its path.
std::string writeProgram(const test::TempFolder& folder, const std::string& name,
                         const std::string& text);
// Copies the project's tools into the folder.
void copyTools(const test::TempFolder& folder);

}  // namespace kelvane::tools
