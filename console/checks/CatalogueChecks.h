// The update engine's folder, and the catalogue that an engine has left there, of jobs that are not
// finished.
#pragma once

#include <string>

#include "console/checks/Finding.h"
#include "platform/Value.h"

namespace kelvane::console {

// Of the catalogues in the folders that the records name. `name` is the catalogue's in the
// product's settings, without ".plist".
Findings catalogueFindings(const platform::Value& records, const std::string& name);

// The folders that waiting jobs name for the update engine, where they hold anything.
Findings engineFolderFindings(const platform::Value& records);

}  // namespace kelvane::console
