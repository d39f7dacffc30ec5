// Who else may decide what the worker starts.
#pragma once

#include <string>

#include <sys/stat.h>
#include <sys/types.h>

#include "console/checks/Finding.h"

namespace kelvane::console {

// The shared folder, its settings and the folders between them, where others than the user that
// runs the console may write. The shared folder ends with "/".
Findings rightsFindings(const std::string& sharedFolder);

// Who besides this user may write the entry: "everyone", "its owner, ann", "its group, staff";
// empty where nobody may. The super user may in any case, and does not count.
std::string othersWhoMayWrite(const struct stat& entry, uid_t user);

// Their names; "user 501", "group 20" where the system has none.
std::string userName(uid_t user);
std::string groupName(gid_t group);

}  // namespace kelvane::console
