// Names that the worker's sources lay down, read from their text: what the pages have to name, all
// of them and no others.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace kelvane::docs {

// The values of the text constants in a namespace of Kelvane.h, in their order.
std::vector<std::string> constantsOf(const std::string& nameSpace);

// The commands of the job runner's table.
std::vector<std::string> commandNames();

// The functions that zorapi.h declares, in their order.
std::vector<std::string> frameworkFunctions();

// The status codes of zorapi.h by their names.
std::map<std::string, std::int64_t> frameworkStatuses();

}  // namespace kelvane::docs
