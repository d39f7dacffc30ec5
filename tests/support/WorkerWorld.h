// The world of a worker in a unit test: a bundle and a shared folder below a folder of its own, a
// host whose time does not pass, a scripted framework.
#pragma once

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Kelvane.h"
#include "platform/Value.h"
#include "tests/support/FakeFramework.h"
#include "tests/support/FakeHost.h"
#include "tests/support/TempFolder.h"

namespace kelvane::test {

using Lines = std::vector<std::string>;

class WorkerWorld : public ::testing::Test {
 protected:
  // Makes the folders, an empty log and the product settings, and initialises the worker.
  WorkerWorld();
  ~WorkerWorld() override;

  // The shared folder, with its trailing "/".
  std::string shared() const { return folder / "shared/"; }
  void writeJobs(const std::string& json) const;
  std::string jobText() const;
  platform::Value jobs() const;

  // One log line, in short: "run: message" or "run error: message". Of a message over several lines
  // only the first.
  std::vector<std::string> log() const;
  // The same without the lines of the job file store, which stand between all others.
  std::vector<std::string> logWithoutStore() const;
  std::string logText() const;

  // The job file's versions, as someone would see them who looks at every framework call, at every
  // sleep and at the end; each described by the test's own choice.
  void watchJobFile(std::function<std::string(const platform::Value& jobs)> describe);
  std::vector<std::string> versions();
  // The version that stood in the file at each sleep, and the versions as they were.
  std::vector<std::string> versionsAtSleeps;
  std::vector<platform::Value> wholeVersions;

  TempFolder folder;
  FakeHost host;
  FakeFramework framework;
  Kelvane worker{host};

 private:
  void look();

  std::string lastSeen_;
  std::vector<std::string> versions_;
  std::function<std::string(const platform::Value&)> describe_;
};

}  // namespace kelvane::test
