// The download area, into which the worker copies what the update engine fetched.
#pragma once

#include <string>

#include "console/checks/Finding.h"

namespace kelvane::console {

// Whether the worker can change it. The shared folder ends with "/".
Findings downloadAreaFindings(const std::string& sharedFolder);

// Hidden copies that a killed worker left there.
Findings leftoverDownloadFindings(const std::string& sharedFolder);

}  // namespace kelvane::console
