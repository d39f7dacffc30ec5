// The package of an installation, looked at.
#pragma once

#include <string>

#include "platform/Value.h"

namespace kelvane::console {

// Why the worker finds no application to install: "its package, /a, does not exist". Empty where
// nothing speaks against it, and of another job. Of a copy only the path itself is looked at.
std::string packageFaultOf(const platform::Value& record, bool isCopy);

// Whether anything stands at the absolute path of its package.
bool hasPackage(const platform::Value& record);

}  // namespace kelvane::console
