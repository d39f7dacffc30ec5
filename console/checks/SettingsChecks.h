// The two settings files: their keys, and what these lead to.
#pragma once

#include <span>
#include <string>

#include "console/checks/Finding.h"

namespace kelvane::console {

std::string sharedSettingsPath(const std::string& sharedFolder);  // which ends with "/"
std::string productSettingsPath(const std::string& bundle);

// Where the application stands that an installation replaces, as the product's settings say; empty
// where they do not.
std::string installedApplication(const std::string& bundle);

// Where no application stands though the shared folder's settings name the place; empty where one
// stands there, and where they name none. The folder ends with "/".
std::string missingApplication(const std::string& sharedFolder);

// The shared folder's settings, and the update engine that they lead to; of a copy from another
// system the settings alone.
Findings sharedSettingsFindings(const std::string& path, bool isCopy = false);

// The product's settings, and the application that they lead to.
Findings productSettingsFindings(const std::string& path);

// A key of the product's settings.
struct ProductSetting {
  const char* key;
  Severity severity;    // of its missing
  const char* missing;  // what then happens
};
std::span<const ProductSetting> productSettings();

}  // namespace kelvane::console
