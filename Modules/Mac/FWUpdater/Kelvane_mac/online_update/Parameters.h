// What the rooms of the online update share of a job's product parameters.
#pragma once

#include "platform/Value.h"

namespace kelvane {

// A job's "input_parameters" as one set of product parameters: a dictionary itself, of a list the
// first element; nothing of an empty list. Raises for anything else.
platform::Value firstParameters(const platform::Value& inputs);

// Whether the parameters hold all that the update engine needs: "productid", "version", "url" and
// "folder".
bool areComplete(const platform::Value& parameters);

// The arguments for the update engine at the path, a list that ends at its first absent value.
// Raises as platform::argumentList().
platform::Value engineArguments(const platform::Value& enginePath, const char* verb,
                                const platform::Value& parameters, const platform::Value& logId,
                                const platform::Value& jobFile,
                                const platform::Value& sharedFolder);

}  // namespace kelvane
