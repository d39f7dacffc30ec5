// An application as it stands on the disk: a folder with its programs in Contents.
#pragma once

#include <string>

namespace kelvane::console {

// Why the folder is no application: "it has no folder Contents"; empty where it is one.
std::string applicationFault(const std::string& bundle);

// Why nothing can be installed from this path, behind the path: " does not exist"; empty where
// something can.
std::string packageFault(const std::string& path);

// The version that its property list tells; empty where it tells none, or is not in XML: binary
// ones would take a library more.
std::string versionOf(const std::string& bundle);

// The same of a property list.
std::string versionOfPropertyList(const std::string& path);

}  // namespace kelvane::console
