#include "tests/installation/Package.h"

#include <filesystem>
#include <stdexcept>

namespace kelvane::test {

namespace fs = std::filesystem;

namespace {

constexpr char kDatabase[] = "var/lib/dpkg/";

std::string outputOf(const std::vector<std::string>& argv) {
  Ended ended = runProgram(argv, "/", {{"LC_ALL", "C"}});
  if (ended.exitStatus != 0) throw std::runtime_error(argv.at(0) + ": " + ended.err);
  return ended.out;
}

}  // namespace

Package::Package(const std::string& kind) {
  const std::string settings = kind == "SOURCE" ? "/CPackSourceConfig.cmake" : "/CPackConfig.cmake";
  outputOf({"/bin/sh", "-c", R"(umask 077; exec "$@")", "sh", KELVANE_CPACK, "-G",
            kind == "DEB" ? kind : "TGZ", "--config", KELVANE_BUILD + settings, "-B",
            folder_.path()});
  const std::string ending = kind == "DEB" ? ".deb" : ".tar.gz";
  for (const std::string& name : folder_.names()) {
    if (name.ends_with(ending)) path_ = folder_ / name;
  }
  if (path_.empty()) throw std::runtime_error("cpack made no package of kind " + kind);
}

DebianRoot::DebianRoot() {
  for (const char* part : {"info", "updates"}) fs::create_directories(folder_ / kDatabase + part);
  folder_.write(std::string(kDatabase) + "status",
                outputOf({KELVANE_DPKG_QUERY, "--status", "libc6", "libgcc-s1", "libstdc++6"}));
}

std::vector<std::string> DebianRoot::names() const {
  std::vector<std::string> found;
  for (const auto& entry : fs::recursive_directory_iterator(folder_.path())) {
    const fs::path name = entry.path().lexically_relative(folder_.path());
    if (*name.begin() != "var") found.push_back(name.string());
  }
  return found;
}

std::vector<std::string> DebianRoot::packages() const {
  std::vector<std::string> found;
  for (const std::string& name : folder_.names(std::string(kDatabase) + "info")) {
    if (name.ends_with(".list")) found.push_back(name.substr(0, name.size() - 5));
  }
  return found;
}

Ended DebianRoot::dpkg(std::vector<std::string> arguments) const {
  // The configuration of the machine names its log, which --root does not move.
  arguments.insert(arguments.begin(), {KELVANE_DPKG, "--root=" + folder_.path(),
                                       "--log=" + log_ / "log", "--force-not-root"});
  // Others than root may not have the folders that dpkg looks for tools in.
  return runProgram(arguments, "/", {{"PATH", "/usr/sbin:/usr/bin:/sbin:/bin"}, {"LC_ALL", "C"}});
}

}  // namespace kelvane::test
