// An installation with an update engine and an update service: settings, products, packages.
#pragma once

#include <string>
#include <vector>

#include "tests/end_to_end/Installation.h"

namespace kelvane {

class OnlineInstallation : public Installation {
 protected:
  // Products "sw" (the application, Manager.app), "fw2" and "fw3" (firmware images); the service
  // offers one package of each.
  OnlineInstallation();

  // Makes the service anew from a description, as text.
  void makeService(const std::string& description) const;
  void writeFaults(const std::string& json) const { folder.write("service/service.json", json); }
  platform::Value parameters(const std::string& product) const;
  // Runs a job with log id "17", alone in the job file, and expects a quiet worker.
  test::Ended runJob(const std::string& command, const platform::Value& inputs) const;
  test::Ended query(const std::string& product = "fw3") const;
  test::Ended download(const std::vector<std::string>& products) const;

  platform::Value job() const { return jobs().at(0); }
  // The states of the job file's versions.
  std::vector<std::string> states() const;
  // A folder of the download area: "SW" or "FW".
  std::string area(const std::string& name) const { return shared() + "tmp/OnlineUpdate/" + name; }
  std::string engineFolder() const { return folder / "engine's folder"; }
};

}  // namespace kelvane
