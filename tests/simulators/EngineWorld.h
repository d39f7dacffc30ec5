// The real update engine in a bundle of its own, with a service folder.
#pragma once

#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/Program.h"
#include "tests/support/TempFolder.h"

namespace kelvane::test {

class EngineWorld : public ::testing::Test {
 protected:
  // A service with a catalogue of two rules, and two packages of the product "fw".
  EngineWorld();

  void writeFaults(const std::string& json) const;
  // The engine's command line for the product "fw" and the folder "into".
  std::vector<std::string> commandLine(const std::string& verb) const;
  // The command line with another value of an option.
  std::vector<std::string> with(const std::string& option, const std::string& value) const;
  Ended run(const std::vector<std::string>& argv) const;
  Ended run() const { return run(commandLine("run")); }
  Ended dryrun() const { return run(commandLine("dryrun")); }
  // A run in a shell script, which finds the command line in "$@".
  Ended script(const std::string& commands) const;
  // What was delivered: the names in "into".
  std::vector<std::string> delivered() const { return folder.names("into"); }
  std::string read(const std::string& name) const { return folder.read("into/" + name); }

  TempFolder folder;
  std::string catalogue;
  std::string engine;
  std::map<std::string, std::string> environment;
};

}  // namespace kelvane::test
