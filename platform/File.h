// Files: existence, whole-file reading, atomic replacement, appending a line.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kelvane::platform {

// Whether a file system entry exists at the path; follows symbolic links, so that a dangling link
// does not exist. An empty path never exists.
bool exists(const std::string& path);

// Whether a folder is at the path; follows symbolic links.
bool isFolder(const std::string& path);

// The size in bytes of the file at the path; 0 where it cannot be told.
std::uint64_t fileSize(const std::string& path);

// Gives the entry another path, also on another disk. Returns whether that was done; a failure
// leaves it where it was.
bool movePath(const std::string& from, const std::string& to);

// Makes an empty file; a file that is there is emptied. Returns whether that was done.
bool createEmptyFile(const std::string& path);

// The names in a folder, hidden ones too, in the system's order; none where it cannot be listed.
std::vector<std::string> listFolder(const std::string& path);

// Makes a folder, and those above it that are missing. Returns whether it is there.
bool makeFolders(const std::string& path);

// Removes the entry with all below it; of a symbolic link the link, never what it leads to.
// Returns whether that was done.
bool removeTree(const std::string& path);

// Copies the entry with all below it: links as links, with permission bits and modification times.
// Fails where anything is in the target's place; a failed copy of a folder may leave part of it.
bool copyTree(const std::string& from, const std::string& to);

// The whole file. Raises, with the path and the cause, where it is not there or cannot be read.
std::string readFile(const std::string& path);

// Replaces the file by one with these bytes, in one step: a reader, and whoever comes after a
// crash at any point, finds either the old bytes or the new ones. The old file's permission bits
// are kept, its owner where that is allowed; a symbolic link stays, and what it leads to is
// replaced. Returns false where that failed; the old file is then as it was, and no temporary
// file is left.
bool replaceFile(const std::string& path, std::string_view bytes);

// Appends the bytes at the file's current end. Where the file cannot be opened (it is not there,
// is a folder, may not be written) nothing happens: a file is never created. Raises where it was
// opened and the writing failed.
void appendToFile(const std::string& path, std::string_view bytes);

// The path without its last component, "/" at the least; a trailing "/" does not count.
std::string withoutLastComponent(const std::string& path);

}  // namespace kelvane::platform
