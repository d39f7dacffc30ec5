// The image that a controller was given, looked at.
#pragma once

#include <string>

#include "console/explain/FlashNotes.h"
#include "platform/Value.h"

namespace kelvane::console {

// The image's path, what is wrong with it as far as a look at it tells, and the kind that the
// controller takes; empty where the job has none for it.
std::string imageNote(const platform::Value& record, const FailedController& failed,
                      bool isCopy = false);

}  // namespace kelvane::console
