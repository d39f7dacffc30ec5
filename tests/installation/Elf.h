// What programs and shared libraries say about the libraries that they need.
#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

namespace kelvane::test {

bool isElf(const std::string& path);

// The names of the libraries that a program or library asks for itself.
std::vector<std::string> neededLibraries(const std::string& path);
// The name that a library is asked for by.
std::string libraryName(const std::string& path);
// The folders that it has the loader look into, as they are written down.
std::vector<std::string> runPaths(const std::string& path);

// Where the loader finds each library that the program needs, directly or not: real paths by name,
// "" where there is none. Nothing of the program is run.
std::map<std::string, std::string> loadedLibraries(const std::string& program);

// The names of the functions and data that are in it; all of them, where it is not stripped.
std::set<std::string> definedSymbols(const std::string& path);

// What of cmake/Hardening.cmake can be seen of it from outside.
struct Hardening {
  bool positionIndependent = false;
  bool readOnlyRelocations = false;
  bool immediateBinding = false;
  bool stackWithoutCode = false;
  bool stackProtector = false;
  bool fortified = false;    // calls of the C library that know the size of what they write to
  bool controlFlow = false;  // of x86 processors
};
Hardening hardeningOf(const std::string& path);

// Of the system's C and C++ runtime.
bool isSystemRuntime(const std::string& library);

}  // namespace kelvane::test
