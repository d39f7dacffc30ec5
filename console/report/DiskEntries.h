// Files and folders that a job depends on: what stands there, and whose it is.
#pragma once

#include <ctime>
#include <string>
#include <vector>

#include "console/job/Places.h"

namespace kelvane::console {

struct DiskEntry {
  std::string path;
  std::string kind;         // "file", "folder", "link to ..."; "not there"
  std::string permissions;  // "drwxr-xr-x"
  std::string owner;
  std::string group;
  std::string size;      // in bytes; of a file
  std::string modified;  // local time, "2026-01-31 14:03:07"
};

// What stands at the path; of a link the link itself.
DiskEntry diskEntryAt(const std::string& path);

// The parts of the shared folder and of a bundle; without one, none of it. Of a copy there are
// none: what is whose there tells nothing.
std::vector<DiskEntry> diskEntriesOf(const Places& places, const std::string& bundle);

// Local time: "2026-01-31 14:03:07", and with its zone "2026-01-31 14:03:07 +0100".
std::string timeText(std::time_t moment);
std::string timeTextWithZone(std::time_t moment);

}  // namespace kelvane::console
