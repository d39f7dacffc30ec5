#include "console/checks/RightsChecks.h"

#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include "contract/Paths.h"

namespace kelvane::console {
namespace {

constexpr const char* kPlaces[] = {"", "utility", "utility/config", paths::kSharedSettings};

// Many systems give each user a group of the same name, with nobody else in it.
bool isOwnersAlone(const struct stat& entry) {
  const ::group* found = ::getgrgid(entry.st_gid);
  return found != nullptr && (found->gr_mem == nullptr || *found->gr_mem == nullptr) &&
         userName(entry.st_uid) == found->gr_name;
}

}  // namespace

std::string userName(uid_t user) {
  const passwd* found = ::getpwuid(user);
  return found == nullptr ? "user " + std::to_string(user) : found->pw_name;
}

std::string groupName(gid_t group) {
  const ::group* found = ::getgrgid(group);
  return found == nullptr ? "group " + std::to_string(group) : found->gr_name;
}

std::string othersWhoMayWrite(const struct stat& entry, uid_t user) {
  if ((entry.st_mode & S_IWOTH) != 0) return "everyone";
  if (entry.st_uid != user && entry.st_uid != 0) return "its owner, " + userName(entry.st_uid);
  if ((entry.st_mode & S_IWGRP) == 0 || isOwnersAlone(entry)) return {};
  return "its group, " + groupName(entry.st_gid);
}

Findings rightsFindings(const std::string& sharedFolder) {
  Findings findings;
  for (const char* place : kPlaces) {
    const std::string path = sharedFolder + place;
    struct stat entry = {};
    if (::stat(path.c_str(), &entry) != 0) continue;
    const std::string others = othersWhoMayWrite(entry, ::geteuid());
    if (others.empty()) continue;
    std::string what = path;
    findings.push_back(
        {Code::othersMayWrite, Severity::warning, what.append(" can be written by ").append(others),
         "AppPath in the shared folder's settings names the program that queries and downloads "
         "start: whoever may write there runs programs with the worker's rights.",
         "Take the right to write away from others, and run the worker as the folder's owner.",
         path});
  }
  return findings;
}

}  // namespace kelvane::console
