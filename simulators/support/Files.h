// Files on disk as the update service's tools see them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kelvane::simulator {

// Whether the text can name one entry of a folder: not empty, without "/", not "." or "..".
bool isEntryName(std::string_view text);

// The regular files at and below the path, in the order of their paths, byte by byte; links are
// not followed and not among them. Raises, with the path and the cause, where a folder cannot be
// listed.
std::vector<std::string> filesBelow(const std::string& path);

// These raise, with the path and, where the system tells it, the cause, where they fail.

// Makes a folder, and those above it that are missing.
void makeFolder(const std::string& path);
// Writes a file, in one step.
void writeFile(const std::string& path, std::string_view bytes);
// Copies an entry as platform::copyTree does.
void copyEntry(const std::string& from, const std::string& to);

}  // namespace kelvane::simulator
