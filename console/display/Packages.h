// Packages as tables: those that a query found, and those that a download fetched.
#pragma once

#include "console/display/Screen.h"
#include "console/display/Table.h"
#include "platform/Value.h"

namespace kelvane::console {

// Of a query's output, which is a list: product, version, size, minimum system, file name.
Table offeredPackages(const platform::Value& rules);

// Of a download's output, which is a list: product, version, size, whether it is there, its path.
// Of another system's, a copy, that it is there cannot be told.
Table downloadedPackages(const platform::Value& descriptions, bool isCopy = false);

// Shows what came out of a query or a download; nothing of another job, or where nothing came out.
void showPackages(const platform::Value& record, const Screen& screen, bool isCopy = false);

}  // namespace kelvane::console
