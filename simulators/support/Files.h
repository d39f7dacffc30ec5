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

}  // namespace kelvane::simulator
