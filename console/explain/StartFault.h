// Why no worker is to be started for a waiting job that it would take.
#pragma once

#include <optional>
#include <string>

#include "platform/Value.h"

namespace kelvane::console {

// Whole sentences but for the fault.
struct StartFault {
  std::string fault;    // "its package, /a, does not exist"
  std::string meaning;  // what a worker would do
  std::string advice;
  std::string tryAgain;
};

// Of a waiting record that the worker would take as it is: of its package, its images, or the
// folder for the update engine. Nothing where nothing speaks against it. The shared folder ends
// with "/", or is empty where it is not at hand. Of a copy only the paths themselves are looked at.
std::optional<StartFault> startFaultOf(const platform::Value& record,
                                       const std::string& sharedFolder, bool isCopy);

}  // namespace kelvane::console
