// The description that a service folder is made of.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "platform/Value.h"
#include "simulators/make_service/PropertyListWriter.h"

namespace kelvane::simulator {

// One rule of the catalogue, and what is delivered for it.
struct PackageDescription {
  std::string product;
  platform::Value rule;                      // as the catalogue will hold it
  std::map<std::string, std::string> files;  // real paths of files and folders by delivered name
};

struct Description {
  PropertyListForm form = PropertyListForm::xml;
  std::vector<PackageDescription> packages;
  platform::Value service;  // the faults; nothing where there are none
};

// Raises, with the path and the key, where the file cannot be read, holds anything else than a
// description, or names files that are not there.
Description readDescription(const std::string& path);

}  // namespace kelvane::simulator
