// A service folder for the update engine, made of a description.
#pragma once

#include <string>

#include "simulators/make_service/Description.h"

namespace kelvane::simulator {

// Makes the folder, and those above it. An empty folder is filled, and one that has a catalogue,
// which is a service made before, is replaced, once the new one is complete. Raises, with the path
// and the cause, where that fails or something else is in the folder's place.
void makeService(const Description& description, const std::string& folder);

}  // namespace kelvane::simulator
