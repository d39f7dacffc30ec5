// Packages as tables: those that a query found, and those that a download fetched.
#pragma once

#include "console/Table.h"
#include "platform/Value.h"

namespace kelvane::console {

// Of a query's output, which is a list: product, version, size, minimum system, file name.
Table offeredPackages(const platform::Value& rules);

// Of a download's output, which is a list: product, version, size, whether it is there, its path.
Table downloadedPackages(const platform::Value& descriptions);

}  // namespace kelvane::console
