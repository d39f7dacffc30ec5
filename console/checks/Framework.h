// ZORAPI, the controller framework, as a library in the bundle.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "console/checks/Finding.h"

namespace kelvane::console {

// What came of loading a library in a process of its own, where it can do no harm.
struct LibraryTrial {
  std::string fault;                 // why it could not be loaded; empty where it could
  std::vector<std::string> missing;  // the functions that it has not
};
LibraryTrial tryLibrary(const std::string& path);

// The names that the framework may have in the bundle's folder for it, the usual one first. One
// source file for each system.
std::span<const char* const> frameworkLibraries();

// The framework's path in the bundle; where none is there the one that it should have.
std::string frameworkPath(const std::string& bundle);

// There, loadable, complete.
Findings frameworkFindings(const std::string& path);

}  // namespace kelvane::console
