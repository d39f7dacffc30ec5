// make-service: makes a service folder for the simulated update engine.

#include <iostream>
#include <string>

#include <CLI/CLI.hpp>

#include "simulators/make_service/Description.h"
#include "simulators/make_service/ServiceMaker.h"

namespace {

int run(int argc, char** argv) {
  CLI::App app("Makes a service folder for the simulated update engine.", "make-service");
  app.set_version_flag("--version", "make-service " KELVANE_VERSION, "Show the version");
  std::string description;
  std::string folder;
  app.add_option("description", description, "The JSON file that says what the service offers")
      ->required();
  app.add_option("folder", folder, "The folder to make; a service made before is replaced")
      ->required();
  CLI11_PARSE(app, argc, argv);
  kelvane::simulator::makeService(kelvane::simulator::readDescription(description), folder);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run(argc, argv);
  } catch (const std::exception& caught) {
    std::cerr << "make-service: " << caught.what() << '\n';
    return 1;
  }
}
