// What follows a job that has come to its end, whoever has submitted it: what its result does not
// tell, and the exit code. The worker ends installations and queries with 0 whatever became of
// them.
#pragma once

#include <string>

#include "console/display/Screen.h"
#include "console/job/View.h"

namespace kelvane::console {

// Shows the packages of a query or a download, and returns the exit code. Raises Failure where a
// query found no catalogue, with what was said on standard error. Not of an installation.
int endOfJob(const Look& finished, const std::string& sharedFolder, const Screen& screen);

// An installation, as it was known before its end: the bundle's settings go with the application.
struct Installation {
  std::string installed = {};    // where the application stands; empty where it is not known
  std::string whyNotKnown = {};  // then
  std::string replaced = {};     // the version that stood there; empty where it is not known
};

// What the worker of this bundle would replace, bar the version. Of a worker that is not the
// bundle's the settings are not known; the bundle may be empty.
Installation installationOf(const std::string& bundle);

// Compares what stands there with the package of the finished installation, says where it stands,
// for machines in a line of its own, and returns the exit code. Raises Failure where the two differ
// or could not be compared, with what the system's tools said.
int endOfInstallation(const Look& finished, const Installation& installation,
                      const std::string& sharedFolder, const Screen& screen);

}  // namespace kelvane::console
