// The download area: one folder per kind of product under the shared folder, into which the update
// engine's results are moved. What the file system refuses is passed over in silence.

#include <string>
#include <vector>

#include "Kelvane.h"
#include "contract/JobFile.h"
#include "contract/Paths.h"
#include "contract/Settings.h"
#include "log/iLog.h"
#include "online_update/Parameters.h"
#include "platform/File.h"
#include "platform/Text.h"

namespace kelvane {

using platform::Value;

namespace {

struct ProductFolder {
  const char* setting;  // the setting that holds the product's identifier
  const char* name;
};

constexpr ProductFolder kProductFolders[] = {
    {settings::kProductIdSw, paths::kSoftware},
    {settings::kProductIdKorfw, paths::kKorFirmware},
    {settings::kProductIdZentanfw, paths::kZentanFirmware},
};

const char* folderName(const Value& productId, const Value& productSettings) {
  for (const ProductFolder& folder : kProductFolders) {
    if (platform::equalStrings(productId, productSettings.get(folder.setting))) {
      return folder.name;
    }
  }
  return paths::kOtherFirmware;
}

// A whole copy, still under a hidden name.
struct Copy {
  std::string staged;
  std::string path;
};

// Adds the copies that could be made. What stood in their places is gone, also where one failed.
void stageEntries(const Value& source, const Value& target, std::vector<Copy>& copies) {
  int index = 0;
  for (const std::string& name : platform::listFolder(source.string())) {
    KELVANE_LOG("syncFiles:withTarget:", "dirs %d = %@", index++, name);
    if (name.starts_with('.')) continue;
    const std::string to = target.string() + "/" + name;
    if (platform::exists(to)) platform::discardTree(to);
    const auto staged = platform::stageCopy(source.string() + "/" + name, to);
    if (staged) copies.push_back({*staged, to});
  }
}

// Everything lasts before any of it is seen, and is seen to last before the source may go.
void publish(const std::vector<Copy>& copies, const Value& folder) {
  if (copies.empty()) return;
  platform::synchroniseTree(folder.string());
  for (const Copy& copy : copies) platform::publishCopy(copy.staged, copy.path);
  platform::synchroniseFolder(folder.string());
}

}  // namespace

void Kelvane::createTmpFolder(const Value& path) {
  try {
    std::string whole;  // always from the root, also for a relative path: meant so
    const Value levels = platform::split(path.string(), '/');
    for (const Value& level : levels.elements()) {
      if (!level.string().empty()) whole += "/" + level.string();
    }
    platform::makeFolders(whole);
  } catch (const std::exception& caught) {
    KELVANE_LOG_CAUGHT("createTmpFolder:", caught);
  }
}

void Kelvane::syncFiles(const Value& source, const Value& target) {
  const auto attempt = [](const auto& act) {
    try {
      act();
    } catch (const std::exception& caught) {
      KELVANE_LOG_CAUGHT("syncFiles:withTarget:", caught);
    }
  };
  std::vector<Copy> copies;
  attempt([&] { stageEntries(source, target, copies); });
  attempt([&] { publish(copies, target); });  // what could be copied before one raised, too
}

Value Kelvane::syncDownloadFiles(const Value& record) {
  try {
    KELVANE_LOG("syncDownloadFiles:", "syncDownloadFiles start, inputDict = %@", record);
    if (!record.has(job::kInputParameters) || !record.has(job::kJobId)) return {};
    const Value parameters = firstParameters(record.get(job::kInputParameters));
    const Value& folder = parameters.get(job::kFolder);
    if (folder.isNothing()) return {};
    const std::string catalogue =
        platform::format("%@/%@.plist", folder, _settingDict.get(settings::kCatalogueName));
    if (!platform::exists(catalogue)) return {};

    const char* name = folderName(parameters.get(job::kProductId), _settingDict);
    const std::string target =
        platform::format("%@%s/%s", _GroupContainerPath, paths::kDownloadArea, name);
    if (!platform::exists(target)) platform::makeFolders(target);
    syncFiles(folder, target);
    if (platform::exists(folder.string())) platform::removeTree(folder.string());
    return target;
  } catch (const std::exception& caught) {
    KELVANE_LOG_CAUGHT("syncDownloadFiles:", caught);
    return {};
  }
}

}  // namespace kelvane
