// What the user gave on the command line, examined before anything is written or started. All
// raise Failure (bad usage) with a line that says what is wrong.
#pragma once

#include <cstddef>
#include <string>

namespace kelvane::console {

// `what` names the text in the message. It is there and UTF-8: the job file holds nothing else.
void requireText(const std::string& text, const std::string& what);

// The whole number that was given for this option.
std::size_t countIn(const std::string& text, const std::string& option);

// The shared folder as the worker takes it: a plain prefix, with a "/" at its end.
std::string asPrefix(const std::string& folder);

// The same of a shared folder that has to be there.
std::string existingShared(const std::string& folder);

// The same of one that the worker has been told of: there is a part in it of what the two share.
std::string workersShared(const std::string& folder);

// A folder's path without "/" at its end.
std::string withoutSlashAtEnd(std::string folder);

// The absolute path of something that may or may not be there.
std::string absolutePath(const std::string& path, const std::string& what);

// The absolute path of something that is there.
std::string existingPath(const std::string& path, const std::string& what);

}  // namespace kelvane::console
