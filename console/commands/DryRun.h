// The dry run of update-fw: what can be looked at without flashing.
#pragma once

#include <string>

#include "console/display/Screen.h"
#include "platform/Value.h"

namespace kelvane::console {

// How each of the job's input parameters would go, asked of the bundle's framework: an array as
// rehearse() tells it. Raises Failure where a worker runs in the shared folder or the framework
// gives no answer.
platform::Value rehearseIn(const std::string& bundle, const std::string& sharedFolder,
                           const platform::Value& inputs);

// Whether none of it fails for certain.
bool canSucceed(const platform::Value& all);

// Shows each entry, for people.
void showEntries(const platform::Value& all, const Screen& screen);

// Shows it whole, for machines as one list; the exit code.
int showRehearsal(const platform::Value& all, const Screen& screen);

}  // namespace kelvane::console
