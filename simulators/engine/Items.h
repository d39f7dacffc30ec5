// What one run of the update engine delivers.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "simulators/engine/EngineArguments.h"
#include "simulators/engine/ServiceFaults.h"

namespace kelvane::simulator {

// One file or folder, and how it is made at a path.
struct Item {
  std::string name;
  std::function<void(const std::string&)> write;
};

// The service's catalogue, under its name in the folder; nothing where the faults leave it out.
// Raises, with the path and the cause, where it cannot be read.
std::vector<Item> catalogueItems(const std::string& service, const std::string& name,
                                 const ServiceFaults& faults);

// The product's packages, and the sparse ones, but for those that the faults leave out.
std::vector<Item> packageItems(const std::string& service, const std::string& productId,
                               const ServiceFaults& faults);

}  // namespace kelvane::simulator
