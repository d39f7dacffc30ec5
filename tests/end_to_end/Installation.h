// The real worker in a bundle of its own, a shared folder, and a fleet of simulated controllers.
#pragma once

#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/Value.h"
#include "tests/support/Program.h"
#include "tests/support/TempFolder.h"

namespace kelvane {

class Installation : public ::testing::Test {
 protected:
  Installation();
  // Every version of the job file that the worker wrote has to be valid.
  void TearDown() override { validateVersions(); }

  std::string shared() const { return folder / "shared/"; }
  // The fleet's clock moves by two seconds with each progress query.
  void writeFleet(const std::string& controllers, const std::string& faults = "[]") const;
  platform::Value fleet() const;
  // Makes an image with the tool; returns its path.
  std::string makeImage(const std::string& name, std::vector<std::string> options) const;

  // Puts a program or library into the bundle.
  void install(const std::string& file, const std::string& name) const;

  void writeJobs(const std::string& json) const;
  platform::Value jobs() const;
  // Runs `worker`; its sleeps and job file versions are kept until the next run.
  test::Ended runWorker(const std::vector<std::string>& arguments) const;
  // Runs a firmware job with log id "17" over these WWNs and images, alone in the job file.
  void updateFirmware(const std::vector<std::pair<std::string, std::string>>& inputs) const;

  std::int64_t result() const { return jobs().at(0).get("result").integerValue(); }
  // Every version of the job file, as a reader could have seen it.
  std::vector<platform::Value> versions() const;
  // The same in short: "RUN 50/100/0", state and total/CPLD/firmware percentage per controller.
  std::vector<std::string> progress() const;
  std::vector<std::string> sleeps() const;
  // "fsync PATH", "syncfs PATH", "rename FROM TO" and "rmdir PATH", in their order.
  std::vector<std::string> writes() const;
  std::string log() const { return folder.read("shared/utility/logs/TarselVistrelUtility.txt"); }
  // What the simulated framework found wrong with the worker's calls.
  std::vector<std::string> violations() const;
  // The framework's functions in the order they were called.
  std::vector<std::string> calls() const;

  void validateVersions() const;

  test::TempFolder bundle{".app"};
  test::TempFolder folder;
  std::string worker = bundle / "Contents/Resources/Kelvane";
  std::map<std::string, std::string> environment;
};

}  // namespace kelvane
