#include "tests/simulators/EngineWorld.h"

#include <algorithm>
#include <filesystem>

#include "tests/support/PropertyLists.h"

namespace kelvane::test {

namespace fs = std::filesystem;

EngineWorld::EngineWorld()
    : catalogue(xmlPropertyList("<dict><key>Rules</key><array><dict/><dict/></array></dict>")),
      engine(folder / "bundle/EngineRunner"),
      environment{{"LD_PRELOAD", KELVANE_INTERPOSER},
                  // The interposer comes before a sanitizer's runtime, which minds by default.
                  {"ASAN_OPTIONS", "verify_asan_link_order=0"},
                  {"KELVANE_TEST_SLEEPS", folder / "sleeps"}} {
  folder.write("bundle/Config/setting.json", R"({"online_update_plist_name": "Offers"})");
  fs::copy_file(KELVANE_ENGINE, engine);
  folder.write("service/catalogue.plist", catalogue);
  folder.write("service/packages/fw/FW_T3.img", std::string(1000, 'i'));
  folder.write("service/packages/fw/Manager.app/a", std::string(100, 'a'));
  folder.write("service/packages/fw/Manager.app/b/c", std::string(100, 'c'));
  folder.write("service/packages/fw/Manager.app/d", std::string(100, 'd'));
  fs::create_directory(folder / "into");
}

void EngineWorld::writeFaults(const std::string& json) const {
  folder.write("service/service.json", json);
}

std::vector<std::string> EngineWorld::commandLine(const std::string& verb) const {
  return {engine, verb,   "-productid",       "fw",      "-version",
          "1.0",  "-url", folder / "service", "-folder", folder / "into"};
}

std::vector<std::string> EngineWorld::with(const std::string& option,
                                           const std::string& value) const {
  std::vector<std::string> argv = commandLine("run");
  *std::next(std::find(argv.begin(), argv.end(), option)) = value;
  return argv;
}

Ended EngineWorld::run(const std::vector<std::string>& argv) const {
  return runProgram(argv, folder.path(), environment);
}

Ended EngineWorld::script(const std::string& commands) const {
  std::vector<std::string> argv = {"/bin/sh", "-c", commands, "sh"};
  const std::vector<std::string> words = commandLine("run");
  argv.insert(argv.end(), words.begin(), words.end());
  return run(argv);
}

}  // namespace kelvane::test
