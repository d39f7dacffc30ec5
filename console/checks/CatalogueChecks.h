// The update catalogue, where an engine has left one for a job that is not finished.
#pragma once

#include <string>

#include "console/checks/Finding.h"
#include "platform/Value.h"

namespace kelvane::console {

// Of the catalogues in the folders that the records name. `name` is the catalogue's in the
// product's settings, without ".plist".
Findings catalogueFindings(const platform::Value& records, const std::string& name);

}  // namespace kelvane::console
