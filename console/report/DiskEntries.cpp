#include "console/report/DiskEntries.h"

#include <array>
#include <cerrno>
#include <filesystem>
#include <iomanip>
#include <sstream>
#include <system_error>

#include <sys/stat.h>

#include "console/checks/Framework.h"
#include "console/checks/RightsChecks.h"
#include "console/checks/SettingsChecks.h"
#include "contract/Paths.h"
#include "platform/File.h"

namespace kelvane::console {
namespace {

std::string permissionsOf(mode_t mode) {
  constexpr std::array<char, 3> kLetters = {'r', 'w', 'x'};
  std::string text(1, S_ISDIR(mode) ? 'd' : S_ISLNK(mode) ? 'l' : '-');
  for (int bit = 8; bit >= 0; --bit) {
    const bool isSet = (mode >> static_cast<unsigned>(bit) & 1U) != 0;
    text += isSet ? kLetters.at(static_cast<std::size_t>(8 - bit) % 3) : '-';
  }
  if ((mode & S_ISVTX) != 0) text += 't';
  return text;
}

std::string kindOf(const std::string& path, mode_t mode) {
  if (S_ISREG(mode)) return "file";
  if (S_ISDIR(mode)) return "folder";
  if (!S_ISLNK(mode)) return "neither file nor folder";
  std::error_code untold;
  const std::string target = std::filesystem::read_symlink(path, untold).string();
  std::string text = "link to ";
  text += target;
  return platform::exists(path) ? text : text + ", where nothing is";
}

void addShared(std::vector<DiskEntry>& places, const std::string& folder) {
  for (const char* part :
       {"", "utility", "utility/command", paths::kJobFile, paths::kLogFolder, paths::kLog,
        "utility/config", paths::kSharedSettings, "tmp", paths::kDownloadArea}) {
    places.push_back(diskEntryAt(folder + part));
  }
}

void addBundle(std::vector<DiskEntry>& places, const std::string& bundle) {
  places.push_back(diskEntryAt(platform::withoutLastComponent(bundle)));
  places.push_back(diskEntryAt(bundle));
  for (const char* part : {"Contents", "Contents/Resources", paths::kWorker, paths::kEngine,
                           paths::kProductSettings, paths::kFrameworks}) {
    places.push_back(diskEntryAt(bundle + "/" + part));
  }
  places.push_back(diskEntryAt(frameworkPath(bundle)));
  const std::string installed = installedApplication(bundle);
  if (installed.empty() || installed == bundle) return;
  places.push_back(diskEntryAt(platform::withoutLastComponent(installed)));
  places.push_back(diskEntryAt(installed));
  places.push_back(diskEntryAt(installed + "/Contents"));
}

std::string formatted(std::time_t moment, const char* form) {
  std::tm local = {};
  if (::localtime_r(&moment, &local) == nullptr) return {};
  std::ostringstream text;
  text << std::put_time(&local, form);
  return text.str();
}

}  // namespace

DiskEntry diskEntryAt(const std::string& path) {
  DiskEntry place{path, {}, {}, {}, {}, {}, {}};
  struct stat entry = {};
  std::string plain = path;  // with a "/" behind it a link would be followed
  while (plain.size() > 1 && plain.back() == '/') plain.pop_back();
  if (!platform::canBePath(plain) || ::lstat(plain.c_str(), &entry) != 0) {
    place.kind = errno == ENOENT || errno == ENOTDIR
                     ? "not there"
                     : std::error_code(errno, std::generic_category()).message();
    return place;
  }
  place.kind = kindOf(plain, entry.st_mode);
  place.permissions = permissionsOf(entry.st_mode);
  place.owner = userName(entry.st_uid);
  place.group = groupName(entry.st_gid);
  if (S_ISREG(entry.st_mode)) place.size = std::to_string(entry.st_size);
  place.modified = timeText(entry.st_mtime);
  return place;
}

std::vector<DiskEntry> diskEntriesOf(const Places& places, const std::string& bundle) {
  std::vector<DiskEntry> entries;
  if (places.isCopy) return entries;
  addShared(entries, places.sharedFolder);
  if (!bundle.empty()) addBundle(entries, bundle);
  return entries;
}

std::string timeText(std::time_t moment) { return formatted(moment, "%Y-%m-%d %H:%M:%S"); }

std::string timeTextWithZone(std::time_t moment) {
  return formatted(moment, "%Y-%m-%d %H:%M:%S %z");
}

}  // namespace kelvane::console
