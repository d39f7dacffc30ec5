// What differs between systems: one source file each, chosen by the build.
#pragma once

#include <string>

#include <spawn.h>
#include <sys/stat.h>

namespace kelvane::platform::native {

std::string systemVersionText();
std::string executablePath();  // empty where the system does not tell

// How to open a folder for what is below it alone: it need not be readable.
extern const int kForSearch;

timespec modificationTime(const struct stat& entry);

// Writes the bytes of one open file, which has this size, into another, which is empty; holes of
// a large one stay holes where the disk can have them. Returns whether all arrived.
bool copyContents(int from, int to, off_t size);

// Returns once what was written to the open file, or with a folder which names it holds, outlasts
// a power cut. Returns whether the disk said so.
bool synchronise(int file);

// The same for everything that stands at the path and below it.
bool synchroniseTree(const std::string& path);

// Makes a spawned child have no files but its standard streams; `flags` are the attributes' others.
void closeOtherFiles(posix_spawn_file_actions_t* actions, posix_spawnattr_t* attributes,
                     short flags);

}  // namespace kelvane::platform::native
