#include "console/checks/DownloadAreaChecks.h"

#include <algorithm>
#include <vector>

#include "console/checks/Access.h"
#include "contract/Paths.h"
#include "platform/File.h"

namespace kelvane::console {
namespace {

Finding leftover(const std::string& path, const char* meaning) {
  return {Code::downloadLeftover,
          Severity::warning,
          path + " is left over",
          meaning,
          "Remove it while no worker runs, or leave it: a later download of the same package "
          "removes it.",
          path};
}

}  // namespace

Findings downloadAreaFindings(const std::string& sharedFolder) {
  const std::string refused = changeRefusal(sharedFolder + paths::kDownloadArea);
  if (refused.empty()) return {};
  return {{Code::downloadAreaFixed, Severity::error,
           "the download area cannot be changed: " + refused,
           "Downloaded packages cannot be put there, and no one is told: a download ends with 259.",
           "Give the user that runs the worker the right to write in the folder."}};
}

Findings leftoverDownloadFindings(const std::string& sharedFolder) {
  Findings findings;
  for (const char* product : paths::kProductFolders) {
    const std::string folder = sharedFolder + paths::kDownloadArea + "/" + product;
    std::vector<std::string> names = platform::listFolder(folder);
    std::sort(names.begin(), names.end());
    for (const std::string& name : names) {
      std::string path = folder;
      path.append("/").append(name);
      if (name.rfind(platform::kArrivingPrefix, 0) == 0) {
        findings.push_back(leftover(path,
                                    "A worker was killed, or the computer went down, while it "
                                    "copied a package there. The package is not in the download "
                                    "area."));
      } else if (name.rfind(platform::kLeavingPrefix, 0) == 0) {
        findings.push_back(leftover(path,
                                    "A worker was killed, or the computer went down, while it "
                                    "removed an older package. Nobody uses what is left of it."));
      }
    }
  }
  return findings;
}

}  // namespace kelvane::console
