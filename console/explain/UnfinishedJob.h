// What to do about a job whose worker is gone before it was finished.
#pragma once

#include <string>

#include "console/job/LogStretch.h"
#include "platform/Value.h"

namespace kelvane::console {

// The end of the message of a console that followed the job in this shared folder.
std::string adviceForUnfinished(const platform::Value& record, const LogStretch& log,
                                const std::string& sharedFolder);

}  // namespace kelvane::console
