// A whole installation as the people around the worker meet it: with all settings, an application
// to be replaced, and the console in the bundle.
#pragma once

#include <string>
#include <vector>

#include "tests/end_to_end/OnlineInstallation.h"
#include "tests/support/JobFiles.h"

namespace kelvane {

class SupportInstallation : public OnlineInstallation {
 protected:
  SupportInstallation();

  test::Ended console(const std::vector<std::string>& arguments) const;
  // The same with the simulated controllers, and without what is put around the worker.
  test::Ended consoleWithFleet(const std::vector<std::string>& arguments) const;
  test::Ended check() const;
  // The findings of check in short, "error: what is wrong" each, and expects its exit status to go
  // with them.
  std::vector<std::string> findings() const;
  // The same, of a user without the super user's rights.
  std::vector<std::string> findingsOfOrdinaryUser() const;
  // What explain tells of job 17, as the one explanation for machines.
  platform::Value explained() const;

  std::string state() const { return jobs().at(0).get("state_id").string(); }
  // Puts a waiting firmware job of controller A1 with log id "17" into the job file.
  void addFirmwareJob() const;
  // So that a worker without the super user's rights can write there what a worker writes.
  void giveSharedFolderToEveryone() const;
  void installFramework(const std::string& library) const;

  std::string jobFile() const { return folder / test::kJobFile; }
  std::string logFile() const { return shared() + "utility/logs/TarselVistrelUtility.txt"; }
  std::string sharedSettings() const { return shared() + "utility/config/setting.json"; }
  std::string productSettings() const { return bundle / "Contents/Resources/Config/setting.json"; }
  std::string engine() const { return bundle / "Contents/Resources/EngineRunner"; }
  std::string worker() const { return bundle / "Contents/Resources/Kelvane"; }
  std::string framework() const { return bundle / "Contents/Frameworks/libZORAPI.so"; }

 private:
  std::vector<std::string> consoleCall(const std::vector<std::string>& arguments) const;
  std::vector<std::string> checkCommand() const;
};

}  // namespace kelvane
