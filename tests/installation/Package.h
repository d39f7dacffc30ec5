// The packages, made by cpack from the build tree, and a system to install the Debian one into.
#pragma once

#include <string>
#include <vector>

#include "tests/support/Program.h"
#include "tests/support/TempFolder.h"

namespace kelvane::test {

// A package of a kind, "TGZ", "DEB" or "SOURCE" (the source archive), in a folder of its own; made
// with a umask that keeps new folders to whoever makes them. Raises, with the complaint, where
// cpack fails.
class Package {
 public:
  explicit Package(const std::string& kind);
  const std::string& path() const { return path_; }

 private:
  TempFolder folder_;
  std::string path_;
};

// A root folder with a package database of its own, in which what the runtime needs is installed.
// Works for root and for others, and leaves the machine's own database alone.
class DebianRoot {
 public:
  DebianRoot();
  Ended install(const std::string& package) const { return dpkg({"--install", package}); }
  Ended purge(const std::string& name) const { return dpkg({"--purge", name}); }
  std::string operator/(const std::string& name) const { return folder_ / name; }
  // Folders and files in it, the database left out.
  std::vector<std::string> names() const;
  // The packages that the database lists files of.
  std::vector<std::string> packages() const;

 private:
  Ended dpkg(std::vector<std::string> arguments) const;

  TempFolder folder_;
  TempFolder log_;
};

}  // namespace kelvane::test
