// What a file system entry is, and what the user that runs the console may do with it.
#pragma once

#include <string>

#include "platform/Value.h"

namespace kelvane::console {

// Unreachable: the system does not tell, for a folder above it that may not be entered.
enum class EntryKind { missing, unreachable, file, folder, other };

// Follows symbolic links: of a dangling one nothing is there.
EntryKind kindOf(const std::string& path);

// Whether a symbolic link stands at the path, wherever it leads.
bool isLink(const std::string& path);

enum class Access { read, write, execute };  // of a folder: list, change, enter

// Why the user may not: "Permission denied"; empty where that is allowed.
std::string refusal(const std::string& path, Access access);

// Why the entries of this folder cannot be made, replaced and removed by the user: "/a/b:
// Permission denied"; of a folder that is not there the nearest one above it counts, in which it
// could be made. Empty where they can.
std::string changeRefusal(const std::string& folder);

// Why the file cannot be started though it may be executed: "it is empty", "it is no program";
// empty where it looks like a program of this system or a script whose interpreter is there.
std::string programFault(const std::string& path);

// Why the file is no shared library: likewise.
std::string libraryFault(const std::string& path);

struct JsonFile {
  platform::Value value;
  std::string fault;  // why there is no value: a line with the path and the cause
};

// Reads a file as the worker does: strict JSON with an array or an object at the top. What is no
// regular file is not opened.
JsonFile readJsonFile(const std::string& path);

}  // namespace kelvane::console
