// The sub-commands query and download: what the update service offers, and fetching it.
#pragma once

#include <string>
#include <vector>

#include "console/commands/Command.h"
#include "console/commands/Submission.h"

namespace kelvane::console {

// What the update engine is asked.
struct EngineOptions {
  std::string url;
  std::string folder;  // where the engine works; empty: one below the shared folder
};

struct QueryOptions {
  JobOptions job;
  EngineOptions engine;
  std::string product;
  std::string version;
};

struct DownloadOptions {
  JobOptions job;
  EngineOptions engine;
  std::vector<std::string> products;  // "PRODUCT" or "PRODUCT=VERSION" each
};

// Both run the job from its submission to its end, show the packages as a table and return the exit
// code. They raise Failure like runJob(), and where a query found no catalogue.
int query(const QueryOptions& options, const Surroundings& surroundings);
int download(const DownloadOptions& options, const Surroundings& surroundings);

// Raises Failure where the update engine may not get this folder because it holds something: the
// worker removes it with everything in it once its files are in the download area. In the one that
// the console itself takes, below the shared folder, stands what a killed engine has left.
void requireFreeFolder(const std::string& folder, const std::string& sharedFolder);

Command queryCommand();
Command downloadCommand();

}  // namespace kelvane::console
