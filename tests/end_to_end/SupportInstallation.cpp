#include "tests/end_to_end/SupportInstallation.h"

#include <filesystem>

#include <sys/stat.h>

#include "platform/Json.h"
#include "tests/support/JobFiles.h"
#include "tests/support/OrdinaryUser.h"

namespace kelvane {

using platform::Value;

namespace fs = std::filesystem;

namespace {

std::vector<std::string> inShort(const std::string& json) {
  std::vector<std::string> found;
  const Value all = platform::parseJson(json);
  for (const Value& finding : all.elements()) {
    found.push_back(finding.get("severity").string() + ": " + finding.get("what").string());
  }
  return found;
}

}  // namespace

SupportInstallation::SupportInstallation() {
  install(KELVANE_CONSOLE, "bin/kelvane-console");
  for (const test::TempFolder* each : {&bundle, &folder}) ::chmod(each->path().c_str(), 0755);
  folder.write("Installed.app/Contents/version", "1.0");
  writeJobs("[]");
  bundle.write("Contents/Resources/Config/setting.json",
               R"({"online_update_plist_name": "Offers", "product_id_sw": "sw",
                   "product_id_tarsel2fw": "fw2", "product_id_tarsel3fw": "fw3",
                   "product_id_korfw": "kor", "product_id_zentanfw": "zentan",
                   "app_name": "Manager", "AppPath": ")" +
                   (folder / "Installed.app") + "\"}");
}

test::Ended SupportInstallation::console(const std::vector<std::string>& arguments) const {
  return test::runProgram(consoleCall(arguments), folder.path());
}

test::Ended SupportInstallation::consoleWithFleet(const std::vector<std::string>& arguments) const {
  std::map<std::string, std::string> around = environment;
  around.erase("LD_PRELOAD");
  return test::runProgram(consoleCall(arguments), folder.path(), around);
}

std::vector<std::string> SupportInstallation::consoleCall(
    const std::vector<std::string>& arguments) const {
  std::vector<std::string> argv = {bundle / "bin/kelvane-console"};
  argv.insert(argv.end(), arguments.begin(), arguments.end());
  return argv;
}

test::Ended SupportInstallation::check() const {
  return console({"check", "--shared", shared(), "--bundle", bundle.path()});
}

std::vector<std::string> SupportInstallation::checkCommand() const {
  return {"check", "--json", "--shared", shared(), "--bundle", bundle.path()};
}

std::vector<std::string> SupportInstallation::findings() const {
  const test::Ended ended = console(checkCommand());
  std::vector<std::string> found = inShort(ended.out);
  EXPECT_EQ(ended.exitStatus, found.empty() ? 0 : 1) << ended.out << ended.err;
  EXPECT_EQ(ended.err, "");
  return found;
}

std::vector<std::string> SupportInstallation::findingsOfOrdinaryUser() const {
  return inShort(test::asOrdinaryUser([this] { return console(checkCommand()).out; }));
}

Value SupportInstallation::explained() const {
  const test::Ended ended = console({"explain", "--json", "--shared", shared(), "17"});
  EXPECT_EQ(ended.exitStatus, 0) << ended.err;
  const Value all = platform::parseJson(ended.out);
  EXPECT_EQ(all.count(), 1U) << ended.out;
  return all.count() == 1 ? all.at(0) : Value::dictionary();
}

void SupportInstallation::addFirmwareJob() const {
  const platform::Value entry = platform::Value::dictionary(
      {{"wwn", "50000000000000A1"}, {"file_path", folder.write("any.img", "no image")}});
  writeJobs(test::waitingJob("updateFW", platform::Value::array({entry})));
}

void SupportInstallation::giveSharedFolderToEveryone() const {
  for (const char* name : {"", "/utility", "/utility/command", "/utility/logs"}) {
    ::chmod((folder / "shared" + name).c_str(), 0777);
  }
  for (const char* name : {"command/BGPLog.json", "logs/TarselVistrelUtility.txt"}) {
    ::chmod((folder / "shared/utility/" + name).c_str(), 0666);
  }
}

void SupportInstallation::installFramework(const std::string& library) const {
  fs::copy_file(library, framework(), fs::copy_options::overwrite_existing);
}

}  // namespace kelvane
