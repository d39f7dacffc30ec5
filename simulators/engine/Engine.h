// The update engine: fetches from a service folder what the worker asked for.
#pragma once

#include "platform/Host.h"
#include "simulators/engine/EngineArguments.h"

namespace kelvane::simulator {

// One run: the catalogue, and with "run" the product's packages, come into the folder, with the
// service's faults. The host tells where the product settings are, and its time is what a slow run
// takes. Raises, with the path and the cause, where something fails. A crash that the service asks
// for does not return; a detached run returns in a child of the process that called.
void runEngine(const EngineArguments& arguments, platform::Host& host);

}  // namespace kelvane::simulator
