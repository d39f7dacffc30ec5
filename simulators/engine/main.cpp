// EngineRunner: stands in for the update engine, over a service that is a folder.

#include <algorithm>
#include <iostream>
#include <string>
#include <vector>

#include "platform/Host.h"
#include "simulators/engine/Engine.h"
#include "simulators/engine/EngineArguments.h"

namespace {

constexpr int kFailed = 1;
constexpr int kUsage = 2;

void run(const std::vector<std::string>& arguments) {
  kelvane::platform::ignoreWriteSignals();
  kelvane::platform::SystemHost host;
  kelvane::simulator::runEngine(kelvane::simulator::readEngineArguments(arguments), host);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 2 && argv[1] == std::string("--version")) {
    std::cout << "EngineRunner " KELVANE_VERSION "\n";
    return 0;
  }
  try {
    run({argv + std::min(argc, 1), argv + argc});
    return 0;
  } catch (const kelvane::simulator::UsageError& caught) {
    std::cerr << "EngineRunner: " << caught.what() << '\n'
              << kelvane::simulator::engineUsage() << '\n';
    return kUsage;
  } catch (const std::exception& caught) {
    std::cerr << "EngineRunner: " << caught.what() << '\n';
    return kFailed;
  }
}
