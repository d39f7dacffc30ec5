// What cmake --install makes of the build tree.
#pragma once

#include <string>
#include <vector>

namespace kelvane::test {

// Installs a component ("worker") below the prefix. Raises, with the complaint, where that fails.
void installComponent(const std::string& component, const std::string& prefix);

// What it puts below the prefix where no component is named.
void installPlainly(const std::string& prefix);

// All files and links below the folder, relative to it, sorted.
std::vector<std::string> filesBelow(const std::string& folder);
// Those that are programs or shared libraries, links left out.
std::vector<std::string> binariesBelow(const std::string& folder);

}  // namespace kelvane::test
