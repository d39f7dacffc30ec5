#include "console/checks/BundleChecks.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <system_error>

#include "console/checks/Access.h"
#include "console/checks/Framework.h"
#include "console/checks/ProcessChecks.h"
#include "console/checks/SettingsChecks.h"
#include "console/job/Processes.h"
#include "contract/Paths.h"
#include "platform/File.h"

namespace kelvane::console {

namespace fs = std::filesystem;

namespace {

constexpr char kNoWorker[] = "The worker cannot be started: every job stays in state WAIT.";

fs::path realPath(const std::string& path) {
  std::error_code untold;
  return fs::weakly_canonical(path, untold);
}

// The levels below the root.
std::ptrdiff_t depthOf(const fs::path& absolute) {
  const fs::path relative = absolute.relative_path();
  return std::distance(relative.begin(), relative.end());
}

// The first two levels of the worker's place are what it takes for the bundle.
std::string takenForTheBundle(const fs::path& bundle) {
  fs::path taken = "/";
  int levels = 0;
  for (const fs::path& level : (bundle / "Contents").relative_path()) {
    if (levels++ < 2) taken /= level;
  }
  return taken.string();
}

void findDepth(const std::string& bundle, Findings& findings) {
  const fs::path real = realPath(bundle);
  const std::ptrdiff_t depth = depthOf(real);
  if (depth == 2) return;
  findings.push_back(
      {Code::bundleDepth, Severity::error,
       real.string() + " stands " + std::to_string(depth) + (depth == 1 ? " level" : " levels") +
           " below the root, not two",
       "The worker takes " + takenForTheBundle(real) +
           " for its bundle, and looks for the product's settings there. Firmware jobs are not "
           "concerned.",
       "Put the bundle into a folder at the root, such as /Applications."});
}

void findElsewhere(const std::string& bundle, const std::string& worker, Findings& findings) {
  const fs::path expected = workerIn(realPath(bundle).string());
  const fs::path real = realPath(worker);
  if (real == expected) return;
  findings.push_back({Code::workerElsewhere, Severity::error, worker + " leads to " + real.string(),
                      "The worker takes the place that the link leads to for its own: it looks for "
                      "its settings and its framework there, not in this bundle.",
                      "Put the worker itself in the link's place."});
}

void findWorker(const std::string& bundle, Findings& findings) {
  const std::string worker = workerIn(bundle);
  const EntryKind kind = kindOf(worker);
  if (kind != EntryKind::file && kind != EntryKind::unreachable) {
    const char* fault = kind == EntryKind::missing ? " does not exist" : " is no regular file";
    findings.push_back({Code::workerMissing, Severity::error, "the worker " + worker + fault,
                        kNoWorker, "Install the worker into the bundle."});
    return;
  }
  if (const std::string cause = refusal(worker, Access::execute); !cause.empty()) {
    findings.push_back({Code::workerNotExecutable, Severity::error,
                        "the worker " + worker + " cannot be executed: " + cause, kNoWorker,
                        "Make it executable for the user that runs the application."});
  } else if (const std::string fault = programFault(worker); !fault.empty()) {
    findings.push_back({Code::workerNoProgram, Severity::error,
                        "the worker " + worker + " cannot be started: " + fault, kNoWorker,
                        "Install the worker into the bundle."});
  }
  findElsewhere(bundle, worker, findings);
}

void findLibrary(const std::string& path, Findings& findings) {
  if (kindOf(path) != EntryKind::file) return;
  const std::string fault = libraryFault(path);
  if (fault.empty()) return;
  findings.push_back({Code::libraryDamaged, Severity::error,
                      "the library " + path + " cannot be loaded: " + fault,
                      "A program that needs it cannot be started: jobs stay in state WAIT.",
                      "Install the worker into the bundle anew.", path});
}

// The libraries that the bundle brings along, the framework aside.
void findLibraries(const std::string& bundle, Findings& findings) {
  const fs::path folder = bundle + "/" + paths::kFrameworks;
  std::vector<std::string> names = platform::listFolder(folder.string());
  std::sort(names.begin(), names.end());
  for (const std::string& name : names) {
    const std::string path = (folder / name).string();
    if (name.rfind("lib", 0) == 0 && path != frameworkPath(bundle)) findLibrary(path, findings);
  }
}

}  // namespace

std::string workerIn(const std::string& bundle) { return bundle + "/" + paths::kWorker; }

Findings bundleFindings(const std::string& bundle) {
  Findings findings = installationProcessFindings(bundle, platform::runningProcesses());
  if (kindOf(bundle) != EntryKind::folder) {
    const char* fault = kindOf(bundle) == EntryKind::missing ? " does not exist" : " is no folder";
    findings.push_back({Code::bundleMissing, Severity::error, "the bundle " + bundle + fault,
                        kNoWorker, "Name the application's bundle, a folder that ends with .app.",
                        bundle});
    return findings;
  }
  findDepth(bundle, findings);
  findings = concerning(bundle, findings);
  findWorker(bundle, findings);
  findings = concerning(workerIn(bundle), findings);
  append(findings, productSettingsFindings(productSettingsPath(bundle)));
  append(findings, frameworkFindings(frameworkPath(bundle)));
  findLibraries(bundle, findings);
  return findings;
}

}  // namespace kelvane::console
